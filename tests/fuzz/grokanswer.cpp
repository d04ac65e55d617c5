#include "answer.h"
#include "providers/grokprovider.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzzing::checkAnswer(providers::GrokProvider::readAnswer, fuzzing::bytes(data, size));
    return 0;
}
