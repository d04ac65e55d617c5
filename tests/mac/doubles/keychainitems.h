#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace doubles {

/// What the stand-in for the system's keychain hands out for an account.
struct KeychainItem
{
    enum class Kind { Data, Text, Nothing };

    QByteArray bytes;
    Kind kind = Kind::Data;
    int status = 0; ///< What copying answers with, whatever else is handed out.
};

/// One call, with the members of its query by the names of the constants.
struct KeychainCall
{
    QString function;
    QMap<QString, QString> query;

    friend bool operator==(const KeychainCall &, const KeychainCall &) = default;
};

struct KeychainItems
{
    QMap<QString, KeychainItem> items; ///< By account, all of one service.
    QList<KeychainCall> calls;
};

KeychainItems &keychainItems();

/// The objects that were created or copied and not released yet.
int livingObjects();

} // namespace doubles
