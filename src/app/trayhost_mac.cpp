#include "app/trayhost.h"

namespace app {

class TrayHost::SelectionWatch
{
};

TrayHost::TrayHost(QObject *parent) : QObject(parent) { }

TrayHost::~TrayHost() = default;

void TrayHost::watch()
{
    askForHost();
}

void TrayHost::askForHost()
{
    onSeen(); // The menu bar is always there.
}

void TrayHost::onSeen()
{
    if (!m_isAvailable) {
        m_isAvailable = true;
        Q_EMIT available();
    }
}

} // namespace app
