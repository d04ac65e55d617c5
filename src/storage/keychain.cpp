#include "storage/keychain.h"

#include "storage/legacykeychainitems.h"
#include "storage/wholefile.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <tuple>

using namespace Qt::StringLiterals;

namespace storage {
namespace {

QMap<QString, QString> keysFromJson(const QByteArray &json)
{
    const QJsonObject members = QJsonDocument::fromJson(json).object();
    QMap<QString, QString> keys;
    for (auto member = members.begin(); member != members.end(); ++member) {
        if (!member->isString()) {
            return {};
        }
        keys.insert(member.key(), member->toString());
    }
    return keys;
}

/// Compact, and in the order of the identifiers, since QJsonObject sorts its members.
QByteArray jsonFromKeys(const QMap<QString, QString> &keys)
{
    QJsonObject members;
    for (auto key = keys.begin(); key != keys.end(); ++key) {
        members.insert(key.key(), key.value());
    }
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

void moveItem(
    LegacyKeychainItems &items, const QString &identifier, LegacyKeychainItems::Query query)
{
    const QString service = u"com.tarnel.Plenaura"_s;
    const QString account = identifier + "-api-key"_L1;
    const std::optional<QByteArray> data = items.copyData(service, account);
    if (!data || !data->isValidUtf8()) {
        return;
    }
    if (!Keychain::load(identifier)) {
        Keychain::save(QString::fromUtf8(*data), identifier);
    }
    // Saving fails silently on a full disk; the item is then the only copy.
    if (Keychain::load(identifier)) {
        items.remove(service, account, query);
    }
}

} // namespace

QString Keychain::fileURL()
{
    const QString folder = QDir::homePath() + "/Library/Application Support/Plenaura"_L1;
    QDir().mkpath(folder);
    return folder + "/keys.json"_L1;
}

QMap<QString, QString> Keychain::readAll()
{
    QFile file(fileURL());
    return file.open(QIODevice::ReadOnly) ? keysFromJson(file.readAll()) : QMap<QString, QString>();
}

void Keychain::writeAll(const QMap<QString, QString> &keys)
{
    const QString path = fileURL();
    std::ignore = writeWholeFile(path, jsonFromKeys(keys), Readers::Owner);
    // Also after a failure: a file that came about by other means is closed to others all the same.
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
}

void Keychain::save(const QString &key, const QString &identifier)
{
    QMap<QString, QString> keys = readAll();
    keys.insert(identifier, key);
    writeAll(keys);
}

std::optional<QString> Keychain::load(const QString &identifier)
{
    const QMap<QString, QString> keys = readAll();
    const auto key = keys.find(identifier);
    return key == keys.end() ? std::nullopt : std::optional(*key);
}

void Keychain::remove(const QString &identifier)
{
    QMap<QString, QString> keys = readAll();
    keys.remove(identifier);
    writeAll(keys);
}

void Keychain::migrateLegacyKey()
{
    migrateLegacyKey(LegacyKeychainItems::system());
}

void Keychain::migrateLegacyKey(LegacyKeychainItems &items)
{
    // The oldest release kept one key only. Its item has the account that the second pass asks for
    // as well, and is gone by then.
    moveItem(items, u"gemini"_s, LegacyKeychainItems::Query::Full);
    for (const QString &identifier : {u"gemini"_s, u"grok"_s, u"openai"_s}) {
        moveItem(items, identifier, LegacyKeychainItems::Query::Short);
    }
}

} // namespace storage
