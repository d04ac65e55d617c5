#include "answer.h"
#include "providers/geminiprovider.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzing::checkAnswer(providers::GeminiProvider::readAnswer, fuzzing::bytes(data, size));
    return 0;
}
