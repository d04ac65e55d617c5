#pragma once

#include "core/settings.h"
#include "providers/service.h"

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

namespace ui {

/// Which model of one service is chosen. A change is stored at once.
class ModelChoice : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The advanced settings make one for each service.")
    Q_PROPERTY(QStringList labels READ labels CONSTANT)
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY modelChanged)

public:
    ModelChoice(core::Settings settings, const providers::Service &service);

    /// What people read, in the service's order.
    QStringList labels() const;
    /// Identifier of the chosen model, empty before the first load().
    QString model() const { return m_model; }
    void setModel(const QString &model);
    /// Place of the chosen model among the labels, -1 for none.
    int index() const;
    void setIndex(int index);

    /// Chooses the stored model, or the service's first if what is stored is no longer offered.
    void load();

Q_SIGNALS:
    void modelChanged();

private:
    core::Settings m_settings;
    QString m_settingsKey;
    QList<providers::ModelOption> m_offered;
    QString m_model;
};

/// What the Advanced tab edits, straight in the settings; the manager reads them there afresh.
class AdvancedSettings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The settings window is given its settings.")
    Q_PROPERTY(ui::ModelChoice *gemini READ gemini CONSTANT)
    Q_PROPERTY(ui::ModelChoice *grok READ grok CONSTANT)
    Q_PROPERTY(ui::ModelChoice *openai READ openai CONSTANT)
    Q_PROPERTY(QString providerOverride READ providerOverride WRITE setProviderOverride NOTIFY
            providerOverrideChanged)

public:
    AdvancedSettings(core::Settings settings, const providers::ServiceTable &services,
        QObject *parent = nullptr);

    ModelChoice *gemini() { return &m_gemini; }
    ModelChoice *grok() { return &m_grok; }
    ModelChoice *openai() { return &m_openai; }

    /// The override as it is stored, even if no option means it; "auto" when none is stored.
    QString providerOverride() const { return m_providerOverride; }
    void setProviderOverride(const QString &providerOverride);

    Q_INVOKABLE void loadModels();

Q_SIGNALS:
    void providerOverrideChanged();

private:
    core::Settings m_settings;
    ModelChoice m_gemini;
    ModelChoice m_grok;
    ModelChoice m_openai;
    QString m_providerOverride;
};

} // namespace ui
