#include "runningservice.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using imageservice::HttpRequest;

namespace {

const QString GeminiPath = u"/v1beta/models/gemini-2.5-flash-image:generateContent"_s;
const QString ImagesPath = u"/v1/images/generations"_s;

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray geminiBody(const QJsonArray &parts)
{
    return json({{u"contents"_s, QJsonArray{QJsonObject{{u"parts"_s, parts}}}},
        {u"generationConfig"_s,
            QJsonObject{{u"imageConfig"_s,
                QJsonObject{{u"imageSize"_s, u"1K"_s}, {u"aspectRatio"_s, u"16:9"_s}}}}}});
}

} // namespace

QJsonObject Answer::object() const
{
    return QJsonDocument::fromJson(body).object();
}

RunningService::RunningService(std::optional<imageservice::Recorder> recorder)
    : m_service(std::move(recorder)),
      m_server([this](const HttpRequest &request) { return m_service.handle(request); })
{
    if (!m_server.listen(0)) {
        qFatal("no free port on loopback");
    }
}

QString RunningService::url(const QString &path) const
{
    return u"http://127.0.0.1:"_s + QString::number(m_server.port()) + path;
}

QNetworkReply *RunningService::send(const QByteArray &method, const QString &path,
    const QByteArray &body, const QList<QNetworkReply::RawHeaderPair> &headers)
{
    QNetworkRequest request{QUrl(url(path))};
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    for (const auto &[name, value] : headers) {
        request.setRawHeader(name, value);
    }
    return m_client.sendCustomRequest(request, method, body);
}

Answer RunningService::ask(const QByteArray &method, const QString &path, const QByteArray &body,
    const QList<QNetworkReply::RawHeaderPair> &headers)
{
    return answerOf(send(method, path, body, headers));
}

QNetworkReply *RunningService::sendToGemini(const QByteArray &key)
{
    return send("POST", GeminiPath, geminiBody({QJsonObject{{u"text"_s, u"a sea"_s}}}),
        {{"x-goog-api-key", key}});
}

Answer RunningService::askGemini(const QByteArray &key)
{
    return answerOf(sendToGemini(key));
}

Answer RunningService::askGrok(const QByteArray &key)
{
    return ask("POST", ImagesPath,
        json({{u"model"_s, u"grok-imagine-image"_s}, {u"prompt"_s, u"a sea"_s}}),
        {{"Authorization", "Bearer " + key}});
}

Answer RunningService::askOpenAI(const QByteArray &key)
{
    return ask("POST", ImagesPath,
        json({{u"model"_s, u"gpt-image-1"_s}, {u"prompt"_s, u"a sea"_s}, {u"size"_s, u"96x64"_s}}),
        {{"Authorization", "Bearer " + key}});
}

Answer RunningService::askUpscaler(const QByteArray &key, const QByteArray &picture)
{
    const QJsonObject image{{u"inlineData"_s,
        QJsonObject{{u"mimeType"_s, u"image/png"_s},
            {u"data"_s, QString::fromLatin1(picture.toBase64())}}}};
    return ask("POST", u"/v1beta/models/gemini-3-pro-image-preview:generateContent"_s,
        geminiBody({QJsonObject{{u"text"_s, u"Make it larger."_s}}, image}),
        {{"x-goog-api-key", key}});
}

Answer answerOf(QNetworkReply *reply)
{
    const std::unique_ptr<QNetworkReply> owner(reply);
    QSignalSpy finished(reply, &QNetworkReply::finished);
    // Sanitizers make a painting ten times as slow.
    if (!reply->isFinished() && !finished.wait(60'000)) {
        qFatal("no answer within a minute");
    }
    return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->error(),
        reply->readAll(), reply->rawHeaderPairs()};
}

QByteArray geminiImage(const QJsonObject &answer)
{
    for (const QJsonValue part : answer[u"candidates"][0][u"content"][u"parts"].toArray()) {
        if (const QJsonValue data = part[u"inlineData"][u"data"]; data.isString()) {
            return QByteArray::fromBase64(data.toString().toLatin1());
        }
    }
    return {};
}

QByteArray listedImage(const QJsonObject &answer)
{
    const QJsonValue data = answer[u"data"][0][u"b64_json"];
    return data.isString() ? QByteArray::fromBase64(data.toString().toLatin1()) : QByteArray();
}
