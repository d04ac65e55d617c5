#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <utility>

#include <tl/expected.hpp>

namespace desktop {

/// Settings of the desktops that keep them in GSettings: the keys of one schema that hold texts.
///
/// Every call may wait for the settings service: not for the main thread. The wait ends when the
/// bus gives up on the service, after half a minute.
class GSettingsKeys
{
public:
    /// An error, one sentence for people, where the desktop has no such settings or what is written
    /// here would never reach it.
    static tl::expected<GSettingsKeys, QString> open(const QByteArray &schema);

    bool has(const QByteArray &key) const;
    /// Empty when there is no such key.
    QString value(const QByteArray &key) const;
    /// Changes all at once, and succeeds only if reading them back shows it; keys that there are
    /// not are left out.
    tl::expected<void, QString> change(const QList<std::pair<QByteArray, QString>> &values) const;

private:
    /// The library's own settings, whose header and Qt's spoil each other.
    class Library;

    explicit GSettingsKeys(std::shared_ptr<const Library> library) : m_library(std::move(library))
    {
    }

    std::shared_ptr<const Library> m_library;
};

} // namespace desktop
