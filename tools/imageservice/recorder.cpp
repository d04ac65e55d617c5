#include "imageservice/recorder.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace imageservice {

namespace {

QJsonObject headersOf(const HttpRequest &request)
{
    QJsonObject result;
    for (const auto &[name, value] : request.headers) {
        const QString key = QString::fromLatin1(name.toLower());
        const QString text = QString::fromUtf8(value);
        result[key] = result.contains(key) ? result[key].toString() + u", "_s + text : text;
    }
    return result;
}

QJsonObject recordOf(const HttpRequest &request)
{
    QJsonObject result{{u"method"_s, QString::fromLatin1(request.method)},
        {u"path"_s, QString::fromLatin1(request.target)}, {u"headers"_s, headersOf(request)}};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(request.body);
    if (decoder.hasError()) {
        result[u"bodyBase64"_s] = QString::fromLatin1(request.body.toBase64());
    } else {
        result[u"body"_s] = text;
    }
    return result;
}

} // namespace

Recorder::Recorder(const QString &directory, int lastNumber)
    : m_directory(directory), m_lastNumber(lastNumber)
{
}

std::optional<Recorder> Recorder::open(const QString &directory)
{
    const QDir dir(directory);
    if (!dir.mkpath(u"."_s)) {
        return {};
    }
    int last = 0;
    for (const QString &name : dir.entryList({u"*.json"_s}, QDir::Files)) {
        last = std::max(last, name.chopped(5).toInt());
    }
    return Recorder(dir.absolutePath(), last);
}

bool Recorder::write(int number, const HttpRequest &request) const
{
    QSaveFile file(m_directory + u"/%1.json"_s.arg(number, 6, 10, QLatin1Char('0')));
    return file.open(QIODevice::WriteOnly)
        && file.write(QJsonDocument(recordOf(request)).toJson()) >= 0 && file.commit();
}

} // namespace imageservice
