#include "core/choice.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace core::choice {

bool isOpenAIOverride(const std::optional<QString> &providerOverride)
{
    return providerOverride == u"openai"_s;
}

bool effectiveNsfw(bool openAIOverride, bool nsfwEnabled)
{
    return !openAIOverride && nsfwEnabled;
}

QString providerId(bool openAIOverride, bool effectiveNsfw)
{
    if (openAIOverride) {
        return u"openai"_s;
    }
    return effectiveNsfw ? u"grok"_s : u"gemini"_s;
}

bool needsUpscale(bool fourKEnabled, const QString &providerId)
{
    return fourKEnabled && providerId != "gemini"_L1;
}

QString modelId(const std::optional<QString> &chosen, const QList<providers::ModelOption> &models)
{
    const auto isChosen = [&](const providers::ModelOption &model) { return model.id == chosen; };
    if (chosen && std::any_of(models.begin(), models.end(), isChosen)) {
        return *chosen;
    }
    return models.isEmpty() ? u""_s : models.first().id;
}

QStringList missingKeys(
    const QString &providerName, bool hasProviderKey, bool needsUpscale, bool hasGeminiKey)
{
    QStringList missing;
    if (!hasProviderKey) {
        missing << providerName;
    }
    if (needsUpscale && !hasGeminiKey && !missing.contains("Gemini"_L1)) {
        missing << QCoreApplication::translate("MissingKeys", "Gemini (for 4K upscale)");
    }
    return missing;
}

} // namespace core::choice
