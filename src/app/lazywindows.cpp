#include "app/lazywindows.h"

#include <QCoreApplication>
#include <QLibrary>

using namespace Qt::StringLiterals;

#ifdef Q_OS_MACOS
extern "C" ui::WindowSet *plenauraMakeWindows(
    core::WallpaperManager &manager, QSettings &store, const std::function<void()> &reallyQuit);
#endif

namespace app {

LazyWindows::LazyWindows(core::WallpaperManager &manager, QSettings &store, QObject *parent)
    : QObject(parent), m_manager(manager), m_store(store)
{
}

LazyWindows::~LazyWindows() = default;

void LazyWindows::setTrayAvailable(bool available)
{
    m_trayAvailable = available;
    if (m_windows) {
        m_windows->setTrayAvailable(available);
    }
}

void LazyWindows::closeAll()
{
    if (m_windows) {
        m_windows->closeAll();
    }
}

ui::WindowSet &LazyWindows::windows()
{
    if (!m_windows) {
        m_windows = load();
        m_windows->setTrayAvailable(m_trayAvailable);
    }
    return *m_windows;
}

std::unique_ptr<ui::WindowSet> LazyWindows::load()
{
#ifdef Q_OS_MACOS
    // A module would have a core of its own there, to which the program's signals mean nothing.
    const ui::MakeWindows make = plenauraMakeWindows;
#else
    QLibrary module(
        QCoreApplication::applicationDirPath() + "/" PLENAURA_MODULES "/plenaura-windows"_L1);
    const auto make = reinterpret_cast<ui::MakeWindows>(module.resolve("plenauraMakeWindows"));
    if (make == nullptr) {
        qFatal("Plenaura is not completely installed: %s", qPrintable(module.errorString()));
    }
#endif
    return std::unique_ptr<ui::WindowSet>(
        make(m_manager, m_store, [this] { Q_EMIT reallyQuitRequested(); }));
}

} // namespace app
