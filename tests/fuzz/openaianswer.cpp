#include "answer.h"
#include "providers/openaiprovider.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzing::checkAnswer(providers::OpenAIProvider::readAnswer, fuzzing::bytes(data, size));
    return 0;
}
