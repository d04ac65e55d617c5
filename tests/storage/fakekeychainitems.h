#pragma once

#include "storage/legacykeychainitems.h"

#include <QMap>
#include <QStringList>

/// A key ring in memory that notes every call made to it.
class FakeKeychainItems : public storage::LegacyKeychainItems
{
public:
    std::optional<QByteArray> copyData(const QString &service, const QString &account) override
    {
        calls.append(QStringLiteral("copy %1 %2").arg(service, account));
        const auto item = items.constFind(account);
        return item == items.cend() ? std::nullopt : std::optional(*item);
    }

    void remove(const QString &service, const QString &account, Query query) override
    {
        const QString members
            = query == Query::Full ? QStringLiteral("full") : QStringLiteral("short");
        calls.append(QStringLiteral("remove %1 %2 %3").arg(service, account, members));
        if (!refusesToRemove) {
            items.remove(account);
        }
    }

    /// Data by account.
    QMap<QString, QByteArray> items;
    QStringList calls;
    bool refusesToRemove = false;
};
