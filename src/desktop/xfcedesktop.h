#pragma once

#include "desktop/backend.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QStringList>
#include <QVariantMap>

namespace desktop {

/// Xfce: xfdesktop paints what its settings service, Xfconf, holds for each monitor and workspace.
class XfceDesktop : public Backend
{
public:
    explicit XfceDesktop(QDBusConnection bus);

    /// Changes every workspace of the monitor, since a setting of Xfce decides whether the first
    /// one counts for all.
    QCoro::Task<SetResult> setPicture(Picture picture, Screen screen) override;

    /// Property paths of the monitor's workspaces, without an end slash. Where Xfce has none for
    /// this monitor yet: of those workspaces that other monitors have, else of the first one.
    static QStringList workspacePaths(const QStringList &properties, const QString &monitor);
    /// Whether a picture in this image style is shown, and on its own monitor only.
    static bool isStyleForOneMonitor(const QVariant &style);

private:
    QCoro::Task<SetResult> change(QStringList workspaces, QString file, QVariantMap properties);
    QCoro::Task<SetResult> readBack(QStringList workspaces, QString file);
    QCoro::Task<SetResult> send(QDBusMessage call);
    QCoro::Task<tl::expected<QVariantMap, QString>> backdropProperties();

    QDBusConnection m_bus;
    QDeadlineTimer m_deadline;
};

} // namespace desktop
