#include "desktop/output.h"
#include "desktop/swayipc.h"
#include "input.h"

/// What came from sway's socket, which may be anybody's: as a whole message, and as its text alone.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using desktop::SwayQuestion;
    const QByteArray received = fuzzing::bytes(data, size);
    for (const SwayQuestion question : {SwayQuestion::Command, SwayQuestion::Outputs}) {
        const auto answer = desktop::swayAnswer(question, received);
        fuzzing::require(!answer || !*answer || (*answer)->size() <= received.size());
    }
    const auto result = desktop::swayCommandResult(received);
    fuzzing::require(result || !result.error().isEmpty());
    const auto outputs = desktop::swayOutputs(received);
    if (outputs) {
        for (const desktop::Screen &output : *outputs) {
            fuzzing::require(!output.name.isEmpty());
            fuzzing::require(desktop::outputOf(output, *outputs).has_value());
        }
    }
    return 0;
}
