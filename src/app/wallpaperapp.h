#pragma once

#include "app/appdelegate.h"
#include "app/lazywindows.h"
#include "app/sessionclient.h"
#include "app/trayhost.h"
#include "app/trayicon.h"
#include "core/wallpapermanager.h"
#include "desktop/sessionbus.h"
#include "ui/menubarview.h"

#include <QObject>
#include <QSettings>
#include <QTimer>

#include <memory>

namespace core {
class Clock;
}

namespace desktop {
class DesktopPicture;
}

namespace app {

class SingleInstance;

/// The person's settings file and no other: what an administrator or another program of the same
/// maker wrote elsewhere does not shine through.
class OwnSettings : public QSettings
{
public:
    OwnSettings() { setFallbacksEnabled(false); }
};

/// The running program: one manager, one delegate, the windows and the tray icon, tied together.
class WallpaperApp : public QObject
{
    Q_OBJECT

public:
    explicit WallpaperApp(SingleInstance &instance, QObject *parent = nullptr);
    ~WallpaperApp() override;

    /// Opens the main window, unless the bus started the program and will say what it wants.
    void start();

private:
    void generateNow();
    void restInTray();
    void joinAgain(SingleInstance &instance);

    OwnSettings m_settings;
    std::shared_ptr<desktop::SessionBus> m_bus = desktop::SessionBus::shared();
    std::unique_ptr<core::Clock> m_clock;
    std::unique_ptr<desktop::DesktopPicture> m_desktop;
    core::WallpaperManager m_manager;
    AppDelegate m_appDelegate;
    SessionClient m_sessionClient;
    LazyWindows m_windows;
    ui::MenuBarView m_menu;
    TrayHost m_trayHost;
    TrayIcon m_trayIcon;
    QTimer m_rest;
};

} // namespace app
