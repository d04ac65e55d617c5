#include "app/trayicon.h"

#include "app/trayhost.h"

#include <QGuiApplication>
#include <QIcon>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace app {

TrayIcon::TrayIcon(QMenu &menu, TrayHost &host, QObject *parent) : QObject(parent), m_menu(menu)
{
    connect(&host, &TrayHost::available, this, &TrayIcon::show);
    if (host.isAvailable()) {
        show();
    }
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::show()
{
    const QIcon fallback(u":/plenaura/tray.svg"_s);
    QIcon icon = QIcon::fromTheme(u"com.tarnel.Plenaura-symbolic"_s, fallback);
    icon.setIsMask(true); // On macOS the menu bar gives it its own colour.
    // The new icon must not find the menu held by one that speaks to a bus that has ended.
    m_icon.reset();
    m_icon = std::make_unique<QSystemTrayIcon>(icon);
    m_icon->setToolTip(QGuiApplication::applicationDisplayName());
    m_icon->setContextMenu(&m_menu);
    // Elsewhere than on macOS the menu is the right button's; the left one opens the program.
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
        [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger) {
                Q_EMIT activated();
            }
        });
    m_icon->show();
}

} // namespace app
