#include "managerfixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace core::fakes {

namespace {

QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

providers::ServiceTable servicesAt(const QString &url)
{
    auto table = providers::services();
    table.gemini.baseUrl = url;
    table.grok.baseUrl = url;
    table.openai.baseUrl = url;
    return table;
}

} // namespace

ManagerFixture::ManagerFixture()
    : settings(m_home.filePath(u"settings.conf"_s), QSettings::IniFormat),
      m_services(servicesAt(server.url())), m_exchange(std::make_shared<providers::HttpExchange>())
{
    qputenv("HOME", QFile::encodeName(m_home.path()));
}

ManagerFixture::~ManagerFixture() = default;

WallpaperManager &ManagerFixture::start()
{
    m_manager = std::make_unique<WallpaperManager>(Surroundings{.settings = settings,
        .desktop = desktop,
        .clock = clock,
        .services = m_services,
        .exchange = m_exchange});
    return *m_manager;
}

WallpaperManager &ManagerFixture::restart()
{
    m_manager.reset();
    settings.sync();
    return start();
}

QString ManagerFixture::keyFolder() const
{
    return home() + u"/Library/Application Support/Plenaura"_s;
}

QUrl ManagerFixture::putImage(const QString &name)
{
    QDir().mkpath(imageFolder());
    QFile file(imageFolder() + u'/' + name);
    if (!file.open(QFile::WriteOnly)) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    return QUrl::fromLocalFile(file.fileName());
}

void ManagerFixture::blockImageFolder()
{
    QDir(home() + u"/Pictures"_s).removeRecursively();
    QFile file(home() + u"/Pictures"_s);
    if (!file.open(QFile::WriteOnly)) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
}

QByteArray ManagerFixture::geminiAnswer(const QByteArray &image, const char *mimeType)
{
    const QJsonObject inlineData{
        {u"mimeType"_s, QString::fromLatin1(mimeType)}, {u"data"_s, base64(image)}};
    const QJsonArray parts{QJsonObject{{u"text"_s, u"Here is your picture."_s}},
        QJsonObject{{u"inlineData"_s, inlineData}}};
    return json({{u"candidates"_s,
        QJsonArray{QJsonObject{{u"content"_s, QJsonObject{{u"parts"_s, parts}}}}}}});
}

QByteArray ManagerFixture::openAIShapedAnswer(const QByteArray &image)
{
    return json({{u"data"_s, QJsonArray{QJsonObject{{u"b64_json"_s, base64(image)}}}}});
}

QByteArray ManagerFixture::geminiError(const QString &message)
{
    return json({{u"error"_s, QJsonObject{{u"code"_s, 400}, {u"message"_s, message}}}});
}

} // namespace core::fakes
