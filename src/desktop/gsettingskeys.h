#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <utility>

#include <tl/expected.hpp>

// The library's own header cannot be seen by Qt's.
// NOLINTNEXTLINE(bugprone-reserved-identifier): it is the library's name.
typedef struct _GSettings GSettings;

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
    struct Unref
    {
        void operator()(GSettings *settings) const;
    };

    explicit GSettingsKeys(GSettings *settings) : m_settings(settings) { }

    std::unique_ptr<GSettings, Unref> m_settings;
};

} // namespace desktop
