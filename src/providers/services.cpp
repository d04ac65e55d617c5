#include "providers/service.h"

using namespace Qt::StringLiterals;

namespace providers {

const ServiceTable &services()
{
    static const ServiceTable table{
        .gemini = {.id = u"gemini"_s,
            .name = u"Gemini"_s,
            .baseUrl = QStringLiteral(PLENAURA_GEMINI_URL),
            .models = {{u"gemini-2.5-flash-image"_s, u"2.5 Flash Image"_s},
                {u"gemini-3-pro-image-preview"_s, u"3 Pro Image"_s}}},
        .grok = {.id = u"grok"_s,
            .name = u"Grok"_s,
            .baseUrl = QStringLiteral(PLENAURA_GROK_URL),
            .models = {{u"grok-imagine-image"_s, u"Imagine"_s},
                {u"grok-imagine-image-pro"_s, u"Imagine Pro"_s}}},
        .openai = {.id = u"openai"_s,
            .name = u"OpenAI"_s,
            .baseUrl = QStringLiteral(PLENAURA_OPENAI_URL),
            .models
            = {{u"gpt-image-1"_s, u"GPT Image 1"_s}, {u"gpt-image-1.5"_s, u"GPT Image 1.5"_s},
                {u"gpt-image-1-mini"_s, u"GPT Image 1 Mini"_s}}},
    };
    return table;
}

} // namespace providers
