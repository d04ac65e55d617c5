#include "core/wallpapermanager.h"

#include "core/choice.h"
#include "core/clock.h"
#include "core/repeatingtimer.h"
#include "core/texts.h"
#include "desktop/desktoppicture.h"
#include "providers/geminiprovider.h"
#include "providers/grokprovider.h"
#include "providers/httpexchange.h"
#include "providers/openaiprovider.h"
#include "storage/imagestore.h"
#include "storage/keychain.h"

#include <QPointer>

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;

namespace core {

namespace {

const auto lastPromptKey = u"lastPrompt"_s;
const auto fourKEnabledKey = u"fourKEnabled"_s;
const auto nsfwEnabledKey = u"nsfwEnabled"_s;
const auto autoEnabledKey = u"autoEnabled"_s;
const auto intervalMinutesKey = u"intervalMinutes"_s;
const auto providerOverrideKey = u"providerOverride"_s;
const auto geminiId = u"gemini"_s;

constexpr qint64 defaultIntervalMinutes = 30;

WallpaperManager::Providers allProviders(const Surroundings &surroundings)
{
    const auto &[gemini, grok, openai] = surroundings.services;
    return {
        std::make_shared<providers::GeminiProvider>(surroundings.exchange, gemini),
        std::make_shared<providers::GrokProvider>(surroundings.exchange, grok),
        std::make_shared<providers::OpenAIProvider>(surroundings.exchange, openai),
    };
}

std::chrono::seconds period(qint64 minutes)
{
    qint64 seconds = 0;
    if (__builtin_mul_overflow(minutes, qint64(60), &seconds)) {
        qFatal("The interval of %lld minutes is too long to be counted in seconds.",
            static_cast<long long>(minutes));
    }
    return std::chrono::seconds(seconds);
}

} // namespace

WallpaperManager::WallpaperManager(const Surroundings &surroundings, QObject *parent)
    : QObject(parent), m_settings(surroundings.settings), m_desktop(surroundings.desktop),
      m_providers(allProviders(surroundings)),
      m_upscaler(std::make_shared<providers::Upscaler>(
          surroundings.exchange, surroundings.services.gemini.baseUrl)),
      m_timer(std::make_unique<RepeatingTimer>(surroundings.clock)),
      m_prompt(m_settings.text(lastPromptKey).value_or(QString())),
      m_fourKEnabled(m_settings.boolean(fourKEnabledKey)),
      m_nsfwEnabled(m_settings.boolean(nsfwEnabledKey)),
      m_autoEnabled(m_settings.boolean(autoEnabledKey)),
      m_intervalMinutes(m_settings.integer(intervalMinutesKey))
{
    if (m_intervalMinutes <= 0) {
        m_intervalMinutes = defaultIntervalMinutes;
    }
    connect(m_timer.get(), &RepeatingTimer::fired, this, &WallpaperManager::onTimerFired);
    connect(m_timer.get(), &RepeatingTimer::nextFireDateMoved, this,
        &WallpaperManager::publishNextFireDate);

    storage::Keychain::migrateLegacyKey();
    reloadHistory();
    if (m_autoEnabled) {
        startTimer();
    }
}

WallpaperManager::~WallpaperManager() = default;

QList<qint64> WallpaperManager::intervalOptions() const
{
    return {5, 15, 30, 60, 120, 240, 480, 720, 1440};
}

template <typename Value>
void WallpaperManager::publish(
    Value &field, const Value &value, void (WallpaperManager::*changed)())
{
    if (field == value) {
        return;
    }
    field = value;
    Q_EMIT(this->*changed)();
    Q_EMIT derivedChanged();
}

void WallpaperManager::setPrompt(const QString &prompt)
{
    publish(m_prompt, prompt, &WallpaperManager::promptChanged);
    m_settings.setText(lastPromptKey, prompt);
}

void WallpaperManager::setFourKEnabled(bool enabled)
{
    publish(m_fourKEnabled, enabled, &WallpaperManager::fourKEnabledChanged);
    m_settings.setBoolean(fourKEnabledKey, enabled);
}

void WallpaperManager::setNsfwEnabled(bool enabled)
{
    publish(m_nsfwEnabled, enabled, &WallpaperManager::nsfwEnabledChanged);
    m_settings.setBoolean(nsfwEnabledKey, enabled);
}

void WallpaperManager::setAutoEnabled(bool enabled)
{
    publish(m_autoEnabled, enabled, &WallpaperManager::autoEnabledChanged);
    m_settings.setBoolean(autoEnabledKey, enabled);
    if (enabled) {
        startTimer();
    } else {
        stopTimer();
    }
}

void WallpaperManager::setIntervalMinutes(qint64 minutes)
{
    publish(m_intervalMinutes, minutes, &WallpaperManager::intervalMinutesChanged);
    m_settings.setInteger(intervalMinutesKey, minutes);
    if (m_autoEnabled) {
        startTimer();
    }
}

void WallpaperManager::setStatus(const QString &status, bool error)
{
    publish(m_status, status, &WallpaperManager::statusChanged);
    publish(m_isError, error, &WallpaperManager::isErrorChanged);
}

void WallpaperManager::setIsLoading(bool loading)
{
    publish(m_isLoading, loading, &WallpaperManager::isLoadingChanged);
}

void WallpaperManager::reloadHistory()
{
    publish(m_history, storage::ImageStore::allImages(), &WallpaperManager::historyChanged);
}

void WallpaperManager::deleteImage(const QUrl &url)
{
    storage::ImageStore::remove(url);
    reloadHistory();
}

void WallpaperManager::refreshDerived()
{
    Q_EMIT derivedChanged();
}

QString WallpaperManager::formatInterval(qint64 minutes) const
{
    return texts::formatInterval(minutes);
}

QString WallpaperManager::shortTime(const QDateTime &moment) const
{
    return texts::shortTime(moment);
}

// The choice of what the next run uses.

bool WallpaperManager::isOpenAIOverride() const
{
    return choice::isOpenAIOverride(m_settings.text(providerOverrideKey));
}

bool WallpaperManager::effectiveNsfw() const
{
    return choice::effectiveNsfw(isOpenAIOverride(), m_nsfwEnabled);
}

std::shared_ptr<const providers::ImageProvider> WallpaperManager::resolvedProvider() const
{
    const QString id = choice::providerId(isOpenAIOverride(), effectiveNsfw());
    const auto found = std::find_if(m_providers.begin(), m_providers.end(),
        [&](const auto &provider) { return provider->id() == id; });
    if (found == m_providers.end()) {
        qFatal("Unexpectedly found nil while unwrapping an Optional value");
    }
    return *found;
}

QString WallpaperManager::providerName() const
{
    return resolvedProvider()->name();
}

bool WallpaperManager::needsUpscale() const
{
    return choice::needsUpscale(m_fourKEnabled, resolvedProvider()->id());
}

QString WallpaperManager::resolvedModelId() const
{
    const auto provider = resolvedProvider();
    const auto chosen = m_settings.text(Settings::selectedModelKey(provider->id()));
    return choice::modelId(chosen, provider->models());
}

bool WallpaperManager::hasKey(const QString &providerId) const
{
    return storage::Keychain::load(providerId).has_value();
}

QStringList WallpaperManager::missingKeys() const
{
    const auto provider = resolvedProvider();
    return choice::missingKeys(
        provider->name(), hasKey(provider->id()), needsUpscale(), hasKey(geminiId));
}

bool WallpaperManager::canGenerate() const
{
    return !m_prompt.isEmpty() && !m_isLoading && missingKeys().isEmpty();
}

// From the prompt to the desktop picture.

void WallpaperManager::generateAndSet()
{
    setIsLoading(true);
    setStatus({}, false);
    const Run run{resolvedProvider(), m_prompt, resolvedModelId(), needsUpscale()};
    const auto key = storage::Keychain::load(run.provider->id());
    if (!key) {
        endRun(texts::missingKey(run.provider->name()));
        return;
    }
    runInBackground(run, *key);
}

QCoro::Task<> WallpaperManager::runInBackground(Run run, QString apiKey)
{
    const QPointer alive(this);
    auto image = co_await run.provider->generate(run.prompt, apiKey, run.model);
    if (!alive) {
        co_return;
    }
    if (!image) {
        endRun(image.error().errorDescription());
        co_return;
    }

    const auto geminiKey = run.needsUpscale ? storage::Keychain::load(geminiId) : std::nullopt;
    if (geminiKey) {
        setStatus(u"Upscaling to 4K..."_s, false);
        auto upscaled = co_await upscaleImage(image->bytes, image->extension, *geminiKey);
        if (!alive) {
            co_return;
        }
        if (upscaled) {
            image = std::move(upscaled);
        } else {
            setStatus(texts::upscaleFailed(upscaled.error().errorDescription()), false);
        }
    }

    const auto saved = storage::ImageStore::save(image->bytes, image->extension);
    if (!saved) {
        endRun(u"Failed to save image"_s);
        co_return;
    }
    image->bytes.clear(); // Up to 25 MB that nothing needs while the desktop fades.

    co_await showOnDesktop(*saved);
    if (!alive) {
        co_return;
    }
    reloadHistory();
    setIsLoading(false);
}

QCoro::Task<providers::ImageResult> WallpaperManager::upscaleImage(
    QByteArray bytes, QString ext, QString geminiApiKey)
{
    const auto upscaler = m_upscaler; // Kept while the request is out, should the manager go.
    co_return co_await upscaler->upscale(bytes, ext, geminiApiKey);
}

void WallpaperManager::endRun(const QString &status)
{
    setStatus(status, true);
    setIsLoading(false);
}

void WallpaperManager::setWallpaper(const QUrl &url)
{
    showOnDesktop(url);
}

QCoro::Task<> WallpaperManager::showOnDesktop(QUrl url)
{
    const QPointer alive(this);
    const auto screen = m_desktop.mainScreen();
    if (!screen) {
        setStatus(u"No screen found"_s, true);
        co_return;
    }
    const auto result = co_await m_desktop.setPicture(url.toLocalFile(), *screen);
    if (!alive) {
        co_return;
    }
    if (result) {
        setStatus(u"Wallpaper set!"_s, false);
    } else {
        setStatus(texts::wallpaperNotSet(result.error()), true);
    }
}

// The timer.

void WallpaperManager::startTimer()
{
    stopTimer();
    if (!m_autoEnabled) {
        return;
    }
    m_timer->start(period(m_intervalMinutes));
    publishNextFireDate();
}

void WallpaperManager::stopTimer()
{
    m_timer->stop();
    publishNextFireDate();
}

void WallpaperManager::onTimerFired()
{
    generateAndSet();
    publishNextFireDate();
}

void WallpaperManager::publishNextFireDate()
{
    publish(m_nextFireDate, m_timer->nextFireDate().value_or(QDateTime()),
        &WallpaperManager::nextFireDateChanged);
}

} // namespace core
