#pragma once

#include "imageservice/httpserver.h"
#include "imageservice/imageservice.h"

#include <QImage>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <chrono>
#include <memory>
#include <optional>

/// What came back for one request over the wire.
struct Answer
{
    int status = 0; ///< 0 where there was none.
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QList<QNetworkReply::RawHeaderPair> headers;

    QJsonObject object() const;
};

/// The image service in this process on a free port, and a client that talks to it over loopback.
class RunningService
{
public:
    explicit RunningService(std::optional<imageservice::Recorder> recorder = {});

    QString url(const QString &path) const;
    QNetworkReply *send(const QByteArray &method, const QString &path, const QByteArray &body,
        const QList<QNetworkReply::RawHeaderPair> &headers);
    /// Waits for the answer.
    Answer ask(const QByteArray &method, const QString &path, const QByteArray &body,
        const QList<QNetworkReply::RawHeaderPair> &headers);

    /// Small pictures of a sea, as the product asks for them but for the size.
    QNetworkReply *sendToGemini(const QByteArray &key);
    Answer askGemini(const QByteArray &key);
    Answer askGrok(const QByteArray &key);
    Answer askOpenAI(const QByteArray &key);
    /// Asks Gemini to make @p picture larger.
    Answer askUpscaler(const QByteArray &key, const QByteArray &picture);

private:
    imageservice::ImageService m_service;
    imageservice::HttpServer m_server;
    QNetworkAccessManager m_client;
};

/// Waits for @p reply, takes it apart and deletes it.
Answer answerOf(QNetworkReply *reply);

/// The image in the first part of a Gemini answer that has one; null where none has.
QByteArray geminiImage(const QJsonObject &answer);
/// "b64_json" of the first element, decoded; null where there is none.
QByteArray listedImage(const QJsonObject &answer);
