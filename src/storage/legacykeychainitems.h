#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace storage {

/// The two operations that the move of keys out of the system's key ring needs, on
/// generic-password items of one service and account.
class LegacyKeychainItems
{
public:
    LegacyKeychainItems() = default;
    LegacyKeychainItems(const LegacyKeychainItems &) = delete;
    LegacyKeychainItems &operator=(const LegacyKeychainItems &) = delete;
    virtual ~LegacyKeychainItems() = default;

    /// Which members the query for a deletion holds. Both name service and account; the full one
    /// repeats those of the copy (return the data, one match).
    enum class Query { Full, Short };

    /// The data of the matching item; absent when there is none or it may not be read.
    virtual std::optional<QByteArray> copyData(const QString &service, const QString &account) = 0;
    virtual void remove(const QString &service, const QString &account, Query query) = 0;

    /// The items of this platform. Elsewhere than on macOS no such items can exist: copying finds
    /// nothing, and no key ring is woken by asking.
    static LegacyKeychainItems &system();
};

} // namespace storage
