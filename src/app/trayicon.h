#pragma once

#include <QObject>
#include <QSystemTrayIcon>

#include <memory>

class QMenu;

namespace app {

class TrayHost;

/// The program's icon in the tray, there as soon as something shows tray icons, and a
/// new one each time this is told again.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    /// @p menu and @p host must outlive the icon.
    TrayIcon(QMenu &menu, TrayHost &host, QObject *parent = nullptr);
    ~TrayIcon() override;

Q_SIGNALS:
    /// The icon was clicked as for opening it.
    void activated();

private:
    void show();

    QMenu &m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace app
