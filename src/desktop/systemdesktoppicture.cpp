#include "desktop/systemdesktoppicture.h"

#include "desktop/backgroundprocesses.h"
#include "desktop/buscall.h"
#include "desktop/choosedesktop.h"
#include "desktop/picturefile.h"
#include "desktop/workerthread.h"
#include "desktop/x11display.h"

#include <QCoroFuture>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace desktop {

using namespace Qt::StringLiterals;

namespace {

Screen screenAsQtHasIt(const QScreen &screen)
{
    const QRect geometry = screen.geometry();
    return {screen.name(), {geometry.topLeft(), geometry.size() * screen.devicePixelRatio()}};
}

// Qt scales sizes, and where no monitor is on it makes up a screen: the server is asked.
std::optional<Screen> screenAsX11HasIt(const QScreen &screen)
{
    const auto display = X11Display::open();
    const auto monitors = display ? display->monitors() : std::nullopt;
    if (!monitors) {
        return screenAsQtHasIt(screen);
    }
    if (monitors->empty()) {
        return {};
    }
    const auto same = std::find_if(monitors->begin(), monitors->end(),
        [&](const Screen &monitor) { return monitor.name == screen.name(); });
    return same == monitors->end() ? monitors->front() : *same;
}

/// One change waits for the one before: else the picture that is quicker to decode would be set
/// first, and the other one, asked for earlier, would be seen in the end.
QCoro::Task<SetResult> setOnWhatPaints(Turn turn, QDBusConnection bus,
    std::shared_ptr<BackgroundProcesses> processes, QString file, Screen screen)
{
    co_await turn.before;
    const auto over = qScopeGuard([&] { turn.over->finish(); });
    const QFuture<tl::expected<Picture, QString>> reading
        = onWorkerThread([file] { return readPicture(file); });
    const tl::expected<Picture, QString> picture = co_await reading;
    if (!picture) {
        co_return tl::make_unexpected(picture.error());
    }
    const Painting painting = co_await lookAround(bus);
    const DesktopKind kind = chooseDesktop(painting);
    // Most desktops are known by their names on the bus.
    if (kind == DesktopKind::Unsupported && !bus.isConnected()) {
        co_return tl::make_unexpected(unreachableBus);
    }
    const auto backend = makeBackend(kind, painting, bus, processes);
    co_return co_await backend->setPicture(*picture, screen);
}

// Nobody waits for it, and where it fails the screens show something until the next picture.
QCoro::Task<> followScreens(
    Turn turn, QDBusConnection bus, std::shared_ptr<BackgroundProcesses> processes)
{
    co_await turn.before;
    const auto over = qScopeGuard([&] { turn.over->finish(); });
    const Painting painting = co_await lookAround(bus);
    const auto backend = makeBackend(chooseDesktop(painting), painting, bus, processes);
    co_await backend->followScreens();
}

} // namespace

std::unique_ptr<DesktopPicture> DesktopPicture::system()
{
    return std::make_unique<SystemDesktopPicture>();
}

SystemDesktopPicture::SystemDesktopPicture()
    : m_processes(std::make_shared<BackgroundProcesses>()),
      m_screenChanges(m_bus->connection(), painterNames()), m_gnomePrimary(m_bus->connection())
{
    QObject::connect(&m_screenChanges, &ScreenChanges::settled, &m_screenChanges,
        [this] { followScreens(takeTurn(), m_bus->connection(), m_processes); });
    QObject::connect(m_bus.get(), &SessionBus::returned, &m_screenChanges, [this] {
        m_screenChanges.moveTo(m_bus->connection());
        m_gnomePrimary.moveTo(m_bus->connection());
    });
}

Turn SystemDesktopPicture::takeTurn()
{
    auto over = std::make_shared<QPromise<void>>();
    over->start();
    const QFuture<void> before = std::exchange(m_lastTurn, over->future());
    return {before, over};
}

std::optional<Screen> SystemDesktopPicture::mainScreen() const
{
    const QWindow *focused = QGuiApplication::focusWindow();
    const QScreen *screen = focused != nullptr ? focused->screen() : primaryScreen();
    if (screen == nullptr) {
        return {};
    }
    return QGuiApplication::platformName() == "xcb"_L1 ? screenAsX11HasIt(*screen)
                                                       : screenAsQtHasIt(*screen);
}

// Under Wayland Qt takes the first of all screens.
const QScreen *SystemDesktopPicture::primaryScreen() const
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const auto primary = std::find_if(screens.begin(), screens.end(),
        [&](const QScreen *screen) { return screen->name() == m_gnomePrimary.name(); });
    return primary == screens.end() ? QGuiApplication::primaryScreen() : *primary;
}

QCoro::Task<SetResult> SystemDesktopPicture::setPicture(QString file, Screen screen)
{
    return setOnWhatPaints(takeTurn(), m_bus->connection(), m_processes, file, screen);
}

} // namespace desktop
