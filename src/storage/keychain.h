#pragma once

#include <QMap>
#include <QString>

#include <optional>

namespace storage {

class LegacyKeychainItems;

/// The person's API keys: a JSON file of identifier and key, readable by its owner alone.
///
/// A namespace of static operations without state. Each one goes to disk and creates the folder if
/// need be; none reports an error: what cannot be read is an empty store, and a write that fails
/// leaves the file as it was. Main thread only; operations must not overlap.
class Keychain
{
public:
    Keychain() = delete;

    /// Stores @p key under @p identifier, adding or replacing; an empty key is a key too.
    static void save(const QString &key, const QString &identifier);
    /// The key stored under @p identifier, absent if there is none.
    static std::optional<QString> load(const QString &identifier);
    /// Removes the entry of @p identifier; the file is written even when there was none.
    static void remove(const QString &identifier);

    /// Moves keys that an earlier release kept in the system's key ring into the file. A key in the
    /// file wins; an item is deleted once its key is safe, and left alone when it is not UTF-8.
    static void migrateLegacyKey();
    static void migrateLegacyKey(LegacyKeychainItems &items);

private:
    static QString fileURL();
    static QMap<QString, QString> readAll();
    static void writeAll(const QMap<QString, QString> &keys);
};

} // namespace storage
