#include "app/wallpaperapp.h"

#include "app/codepages.h"
#include "app/singleinstance.h"
#include "core/clock.h"
#include "desktop/desktoppicture.h"
#include "providers/httpexchange.h"
#include "providers/service.h"

#include <QGuiApplication>

#include <chrono>

namespace app {

using namespace std::chrono_literals;

WallpaperApp::WallpaperApp(SingleInstance &instance, QObject *parent)
    : QObject(parent), m_clock(core::Clock::system()), m_desktop(desktop::DesktopPicture::system()),
      m_manager({.settings = m_settings,
          .desktop = *m_desktop,
          .clock = *m_clock,
          .services = providers::services(),
          .exchange = std::make_shared<providers::HttpExchange>()}),
      m_sessionClient(m_appDelegate), m_windows(m_manager, m_settings), m_menu(m_manager),
      m_trayIcon(m_menu, m_trayHost)
{
    connect(
        &m_appDelegate, &AppDelegate::closeWindowsRequested, &m_windows, &LazyWindows::closeAll);
    connect(
        &m_windows, &LazyWindows::reallyQuitRequested, &m_appDelegate, &AppDelegate::quitForReal);
    connect(
        &m_menu, &ui::MenuBarView::openWindowRequested, &m_windows, &LazyWindows::showMainWindow);
    connect(&m_menu, &ui::MenuBarView::settingsRequested, &m_windows, &LazyWindows::showSettings);
    connect(&m_menu, &ui::MenuBarView::quitRequested, &m_appDelegate, &AppDelegate::quitForReal);
#ifdef Q_OS_MACOS
    // A click on the icon is for the menu. Opening the running program again comes as activation.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
        [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive && !m_windows.isMainWindowShown()
                && !m_windows.isSettingsShown()) {
                m_windows.showMainWindow();
            }
        });
#else
    connect(&m_trayIcon, &TrayIcon::activated, &m_windows, &LazyWindows::showMainWindow);
#endif

    connect(&instance, &SingleInstance::activated, &m_windows, &LazyWindows::showMainWindow);
    connect(&instance, &SingleInstance::generateRequested, this, &WallpaperApp::generateNow);
    connect(&instance, &SingleInstance::settingsRequested, &m_windows, &LazyWindows::showSettings);
    connect(&instance, &SingleInstance::quitRequested, &m_appDelegate, &AppDelegate::quitForReal);

    if (!SessionClient::isAskedByX11()) {
        m_sessionClient.watch();
    }

    m_windows.setTrayAvailable(false);
    connect(&m_trayHost, &TrayHost::available, &m_windows,
        [this] { m_windows.setTrayAvailable(true); });
    m_trayHost.watch();
    connect(m_bus.get(), &desktop::SessionBus::returned, this,
        [this, &instance] { joinAgain(instance); });

    // What a start or a closing window still has to do is done by then.
    constexpr std::chrono::milliseconds untilSettled = 500ms;
    m_rest.setSingleShot(true);
    m_rest.setInterval(untilSettled);
    connect(&m_rest, &QTimer::timeout, this, &WallpaperApp::restInTray);
    connect(qGuiApp, &QGuiApplication::lastWindowClosed, &m_rest, qOverload<>(&QTimer::start));
}

WallpaperApp::~WallpaperApp() = default;

void WallpaperApp::start()
{
    if (!SingleInstance::startedByBus()) {
        m_windows.showMainWindow();
    } else {
        m_rest.start();
    }
}

// Where another program has taken the name meanwhile, the two go on side by side.
void WallpaperApp::joinAgain(SingleInstance &instance)
{
    instance.serveOn(m_bus->connection());
    if (!SessionClient::isAskedByX11()) {
        m_sessionClient.moveTo(m_bus->connection());
    }
    m_trayHost.watch(m_bus->connection());
}

void WallpaperApp::restInTray()
{
    if (!m_windows.isMainWindowShown() && !m_windows.isSettingsShown()) {
        releaseCodePages();
    }
}

void WallpaperApp::generateNow()
{
    if (m_manager.canGenerate()) {
        m_manager.generateAndSet();
    } else if (!m_manager.isLoading()) {
        m_windows.showMainWindow(); // It says what is missing.
    }
}

} // namespace app
