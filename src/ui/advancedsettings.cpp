#include "ui/advancedsettings.h"

#include <algorithm>

namespace ui {

using namespace Qt::StringLiterals;

namespace {
const auto overrideKey = u"providerOverride"_s;
const auto automatic = u"auto"_s;
} // namespace

ModelChoice::ModelChoice(core::Settings settings, const providers::Service &service)
    : m_settings(settings), m_settingsKey(core::Settings::selectedModelKey(service.id)),
      m_offered(service.models)
{
}

QStringList ModelChoice::labels() const
{
    QStringList labels;
    for (const providers::ModelOption &option : m_offered) {
        labels << option.label;
    }
    return labels;
}

void ModelChoice::setModel(const QString &model)
{
    if (model == m_model) {
        return;
    }
    m_model = model;
    m_settings.setText(m_settingsKey, model);
    Q_EMIT modelChanged();
}

int ModelChoice::index() const
{
    const auto chosen = std::find_if(m_offered.cbegin(), m_offered.cend(),
        [this](const providers::ModelOption &option) { return option.id == m_model; });
    return chosen == m_offered.cend() ? -1 : int(chosen - m_offered.cbegin());
}

void ModelChoice::setIndex(int index)
{
    if (index >= 0 && index < m_offered.size()) {
        setModel(m_offered[index].id);
    }
}

void ModelChoice::load()
{
    const auto stored = m_settings.text(m_settingsKey);
    const bool offered = std::any_of(m_offered.cbegin(), m_offered.cend(),
        [&stored](const providers::ModelOption &option) { return option.id == stored; });
    if (offered) {
        setModel(*stored);
    } else {
        setModel(m_offered.isEmpty() ? QString() : m_offered.first().id);
    }
}

AdvancedSettings::AdvancedSettings(
    core::Settings settings, const providers::ServiceTable &services, QObject *parent)
    : QObject(parent), m_settings(settings), m_gemini(settings, services.gemini),
      m_grok(settings, services.grok), m_openai(settings, services.openai),
      m_providerOverride(settings.text(overrideKey).value_or(automatic))
{
}

void AdvancedSettings::setProviderOverride(const QString &providerOverride)
{
    if (providerOverride == m_providerOverride) {
        return;
    }
    m_providerOverride = providerOverride;
    if (providerOverride == automatic) {
        m_settings.remove(overrideKey);
    } else {
        m_settings.setText(overrideKey, providerOverride);
    }
    Q_EMIT providerOverrideChanged();
}

void AdvancedSettings::loadModels()
{
    for (ModelChoice *choice : {&m_gemini, &m_grok, &m_openai}) {
        choice->load();
    }
}

} // namespace ui
