#pragma once

#include "cannedanswers.h"
#include "providers/geminiprovider.h"
#include "providers/grokprovider.h"
#include "providers/httpexchange.h"
#include "providers/openaiprovider.h"
#include "providers/upscaler.h"
#include "testlibs/httpserver.h"

#include <QCoroTask>
#include <QList>
#include <QMetaType>

#include <chrono>
#include <memory>

namespace canned {

using Exchange = std::shared_ptr<providers::HttpExchange>;

/// One of the four calls that go through the exchange, and what it expects of its service.
struct Caller
{
    const char *name;
    QCoro::Task<providers::ImageResult> (*call)(const Exchange &exchange, const QString &baseUrl,
        const QString &prompt, const QString &key);
    QByteArray answer; ///< Holds the image "Man".
    QString image;
    QByteArray keyHeader;
    QByteArray keyPrefix;
    QString unreadable;
    QString noImage;
    QString errorPrefix;
};

/// The provider is gone when the call goes on its way; only the exchange has to stay.
template <typename Provider>
QCoro::Task<providers::ImageResult> generate(const Exchange &exchange, providers::Service service,
    const QString &baseUrl, const QString &prompt, const QString &key)
{
    service.baseUrl = baseUrl;
    const Provider provider(exchange, service);
    return provider.generate(prompt, key, service.models.first().id);
}

inline QCoro::Task<providers::ImageResult> viaGemini(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::GeminiProvider>(
        exchange, providers::services().gemini, baseUrl, prompt, key);
}

inline QCoro::Task<providers::ImageResult> viaGrok(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::GrokProvider>(
        exchange, providers::services().grok, baseUrl, prompt, key);
}

inline QCoro::Task<providers::ImageResult> viaOpenAI(
    const Exchange &exchange, const QString &baseUrl, const QString &prompt, const QString &key)
{
    return generate<providers::OpenAIProvider>(
        exchange, providers::services().openai, baseUrl, prompt, key);
}

inline QCoro::Task<providers::ImageResult> viaUpscaler(const Exchange &exchange,
    const QString &baseUrl, const QString & /*prompt*/, const QString &key)
{
    const providers::Upscaler upscaler(exchange, baseUrl);
    return upscaler.upscale("bytes"_ba, u"png"_s, key);
}

inline const QString unreadable = u"Invalid response: Failed to parse response"_s;
inline const QString noImage = u"Invalid response: No image in response"_s;
inline const QList<Caller> callers{
    {"Gemini", viaGemini, candidates("[" + inlineData() + "]"), u"Man.png"_s, "x-goog-api-key"_ba,
        ""_ba, unreadable, noImage, u"API error: "_s},
    {"Grok", viaGrok, data("[" + image() + "]"), u"Man.jpg"_s, "Authorization"_ba, "Bearer "_ba,
        unreadable, noImage, u"API error: "_s},
    {"OpenAI", viaOpenAI, data("[" + image() + "]"), u"Man.png"_s, "Authorization"_ba, "Bearer "_ba,
        unreadable, noImage, u"API error: "_s},
    {"upscaler", viaUpscaler, candidates("[" + inlineData() + "]"), u"Man.png"_s,
        "x-goog-api-key"_ba, ""_ba, u"Invalid response: Failed to parse upscale response"_s,
        u"Invalid response: No image in upscale response"_s, u"API error: Upscale failed: "_s},
};

/// Plays @p answer to one call.
inline QString outcomeOf(const Caller &caller, testlibs::HttpServer &server,
    const testlibs::HttpAnswer &answer, const QString &key = u"canary-key"_s)
{
    server.enqueue(answer);
    auto exchange = std::make_shared<providers::HttpExchange>(std::chrono::milliseconds(1500));
    return outcome(QCoro::waitFor(caller.call(exchange, server.url(), u"a hill"_s, key)));
}

} // namespace canned

Q_DECLARE_METATYPE(canned::Caller)
