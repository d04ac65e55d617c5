#include "answer.h"
#include "providers/upscaler.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzing::checkAnswer(providers::Upscaler::readAnswer, fuzzing::bytes(data, size));
    return 0;
}
