#pragma once

#include "core/settings.h"
#include "providers/imageprovider.h"
#include "providers/service.h"
#include "providers/upscaler.h"

#include <QCoroTask>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <vector>

class QSettings;

namespace desktop {
class DesktopPicture;
}

namespace providers {
class HttpExchange;
}

namespace core {

class Clock;
class RepeatingTimer;

/// What the manager reaches the world through; each must outlive it.
struct Surroundings
{
    QSettings &settings;
    desktop::DesktopPicture &desktop;
    Clock &clock;
    const providers::ServiceTable &services;
    std::shared_ptr<providers::HttpExchange> exchange;
};

/// The one state object of the program: the person's prompt and switches, the status line, the
/// gallery and the timer, with the operations that change them.
///
/// Lives from start to exit. Everything is read and written on the main thread only. Each property
/// has a signal that is emitted when its value changed; besides, every published change emits
/// derivedChanged(), because derived values also depend on keys and settings that are written
/// behind the manager's back and are read afresh each time.
class WallpaperManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY promptChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    Q_PROPERTY(bool isError READ isError NOTIFY isErrorChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool fourKEnabled READ fourKEnabled WRITE setFourKEnabled NOTIFY fourKEnabledChanged)
    Q_PROPERTY(bool nsfwEnabled READ nsfwEnabled WRITE setNsfwEnabled NOTIFY nsfwEnabledChanged)
    Q_PROPERTY(QList<QUrl> history READ history NOTIFY historyChanged)
    Q_PROPERTY(bool autoEnabled READ autoEnabled WRITE setAutoEnabled NOTIFY autoEnabledChanged)
    Q_PROPERTY(qint64 intervalMinutes READ intervalMinutes WRITE setIntervalMinutes NOTIFY
            intervalMinutesChanged)
    Q_PROPERTY(QDateTime nextFireDate READ nextFireDate NOTIFY nextFireDateChanged)
    Q_PROPERTY(QList<qint64> intervalOptions READ intervalOptions CONSTANT)
    Q_PROPERTY(bool isOpenAIOverride READ isOpenAIOverride NOTIFY derivedChanged)
    Q_PROPERTY(bool effectiveNsfw READ effectiveNsfw NOTIFY derivedChanged)
    Q_PROPERTY(QString providerName READ providerName NOTIFY derivedChanged)
    Q_PROPERTY(bool needsUpscale READ needsUpscale NOTIFY derivedChanged)
    Q_PROPERTY(QString resolvedModelId READ resolvedModelId NOTIFY derivedChanged)
    Q_PROPERTY(QStringList missingKeys READ missingKeys NOTIFY derivedChanged)
    Q_PROPERTY(bool canGenerate READ canGenerate NOTIFY derivedChanged)

public:
    using Providers = std::vector<std::shared_ptr<const providers::ImageProvider>>;

    explicit WallpaperManager(const Surroundings &surroundings, QObject *parent = nullptr);
    ~WallpaperManager() override;

    const Providers &providers() const { return m_providers; }
    /// Minutes that the interval picker offers; any value above 0 is accepted as an interval.
    QList<qint64> intervalOptions() const;

    QString prompt() const { return m_prompt; }
    void setPrompt(const QString &prompt);
    QString status() const { return m_status; }
    bool isError() const { return m_isError; }
    bool isLoading() const { return m_isLoading; }
    bool fourKEnabled() const { return m_fourKEnabled; }
    void setFourKEnabled(bool enabled);
    bool nsfwEnabled() const { return m_nsfwEnabled; }
    void setNsfwEnabled(bool enabled);
    /// Saved pictures, newest first.
    QList<QUrl> history() const { return m_history; }
    bool autoEnabled() const { return m_autoEnabled; }
    /// Starts or stops the timer; setting true again starts a fresh period.
    void setAutoEnabled(bool enabled);
    qint64 intervalMinutes() const { return m_intervalMinutes; }
    /// Restarts a running timer with the new period.
    void setIntervalMinutes(qint64 minutes);
    /// When the timer is next expected to fire; invalid while it does not run.
    QDateTime nextFireDate() const { return m_nextFireDate; }

    bool isOpenAIOverride() const;
    bool effectiveNsfw() const;
    std::shared_ptr<const providers::ImageProvider> resolvedProvider() const;
    QString providerName() const;
    bool needsUpscale() const;
    QString resolvedModelId() const;
    QStringList missingKeys() const;
    bool canGenerate() const;

    /// Makes a picture of the prompt and sets it, as far as it comes; returns at once. Reports only
    /// through status, isError and isLoading. Does not ask canGenerate, and runs may overlap: the
    /// one that ends later wins.
    Q_INVOKABLE void generateAndSet();
    /// Makes the picture at @p url the desktop picture of the main screen; the outcome is the
    /// status. Returns at once.
    Q_INVOKABLE void setWallpaper(const QUrl &url);
    Q_INVOKABLE void reloadHistory();
    /// Deletes the picture and reads the gallery again.
    Q_INVOKABLE void deleteImage(const QUrl &url);
    Q_INVOKABLE QString formatInterval(qint64 minutes) const;
    /// The time of day of @p moment in the locale's short style.
    Q_INVOKABLE QString shortTime(const QDateTime &moment) const;
    /// Tells views to read the derived values again: keys or settings may have been written.
    Q_INVOKABLE void refreshDerived();

    void setStatus(const QString &status, bool error);
    void startTimer();
    void stopTimer();

Q_SIGNALS:
    void promptChanged();
    void statusChanged();
    void isErrorChanged();
    void isLoadingChanged();
    void fourKEnabledChanged();
    void nsfwEnabledChanged();
    void historyChanged();
    void autoEnabledChanged();
    void intervalMinutesChanged();
    void nextFireDateChanged();
    void derivedChanged();

private:
    /// What a run was started with; later changes of switches and settings do not reach it.
    struct Run
    {
        std::shared_ptr<const providers::ImageProvider> provider;
        QString prompt;
        QString model;
        bool needsUpscale;
    };

    QCoro::Task<> runInBackground(Run run, QString apiKey);
    QCoro::Task<> showOnDesktop(QUrl url);
    /// Brings a generated image to 4K; private to the run.
    QCoro::Task<providers::ImageResult> upscaleImage(
        QByteArray bytes, QString ext, QString geminiApiKey);
    void endRun(const QString &status);
    void onTimerFired();
    void setIsLoading(bool loading);
    void publishNextFireDate();
    /// Assigns and, if that changed the value, notifies.
    template <typename Value>
    void publish(Value &field, const Value &value, void (WallpaperManager::*changed)());
    bool hasKey(const QString &providerId) const;

    Settings m_settings;
    desktop::DesktopPicture &m_desktop;
    const Providers m_providers;
    const std::shared_ptr<const providers::Upscaler> m_upscaler;
    std::unique_ptr<RepeatingTimer> m_timer;
    QString m_prompt;
    QString m_status;
    bool m_isError = false;
    bool m_isLoading = false;
    bool m_fourKEnabled = false;
    bool m_nsfwEnabled = false;
    QList<QUrl> m_history;
    bool m_autoEnabled = false;
    qint64 m_intervalMinutes;
    QDateTime m_nextFireDate;
};

} // namespace core
