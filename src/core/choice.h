#pragma once

#include "providers/modeloption.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace core {

/// The rules that choose a service, its model and what is still missing, as pure functions.
namespace choice {

/// Whether the stored override forces OpenAI; exactly "openai" does.
bool isOpenAIOverride(const std::optional<QString> &providerOverride);
/// The NSFW switch as it applies: the override disables it without changing it.
bool effectiveNsfw(bool openAIOverride, bool nsfwEnabled);
QString providerId(bool openAIOverride, bool effectiveNsfw);
/// Only Gemini draws 4K by itself.
bool needsUpscale(bool fourKEnabled, const QString &providerId);
/// The chosen model if the service still offers it, else the first one, else empty.
QString modelId(const std::optional<QString> &chosen, const QList<providers::ModelOption> &models);
/// Display names of the keys that must still be entered, the provider's first.
QStringList missingKeys(
    const QString &providerName, bool hasProviderKey, bool needsUpscale, bool hasGeminiKey);

} // namespace choice
} // namespace core
