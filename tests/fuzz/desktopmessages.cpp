#include "desktop/choosedesktop.h"
#include "desktop/gnomedisplays.h"
#include "desktop/lxqtdesktop.h"
#include "desktop/plasmadesktop.h"
#include "desktop/portaldesktop.h"
#include "desktop/screenlayout.h"
#include "desktop/xfcedesktop.h"
#include "input.h"
#include "liveconnection.h"

#include <QCoroTask>
#include <QGuiApplication>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::Screen;
using desktop::SetResult;

namespace {

// Every desktop reads it as it is, and the portal can open it.
const Picture picture{u"/dev/null"_s, "png", {}};
const Screen screen{u"HDMI-1"_s, {0, 0, 1920, 1080}};

void judge(const SetResult &result)
{
    fuzzing::require(result || (!result.error().isEmpty() && !result.error().contains(u'\n')));
}

void setOnXfce(const QDBusConnection &bus)
{
    desktop::XfceDesktop xfce(bus);
    judge(QCoro::waitFor(xfce.setPicture(picture, screen)));
}

void setOnPlasma(const QDBusConnection &bus)
{
    desktop::PlasmaDesktop plasma(bus);
    judge(QCoro::waitFor(plasma.setPicture(picture, screen)));
}

void setByPortal(const QDBusConnection &bus)
{
    desktop::PortalDesktop portal(bus, std::chrono::milliseconds(2));
    judge(QCoro::waitFor(portal.setPicture(picture, screen)));
}

void askLxqt(const QDBusConnection &bus)
{
    (void)QCoro::waitFor(desktop::LxqtDesktop::paints(bus, QDeadlineTimer(desktop::answerTime)));
}

void lookAround(const QDBusConnection &bus)
{
    const desktop::Painting painting = QCoro::waitFor(desktop::lookAround(bus));
    const auto kind = desktop::chooseDesktop(painting);
    fuzzing::require(kind != desktop::DesktopKind::Unsupported || painting.swaySocket.isEmpty());
    fuzzing::require(desktop::makeBackend(kind, painting, bus, nullptr) != nullptr);
}

void layOut(const QDBusConnection &bus)
{
    const auto screens
        = QCoro::waitFor(desktop::screenLayout(bus, QDeadlineTimer(desktop::answerTime)));
    fuzzing::require(screens.size() == QGuiApplication::screens().size());
}

void followPrimary(const QDBusConnection &bus)
{
    const desktop::GnomePrimaryScreen primary(bus);
    fuzzing::fakeBus().settle(bus);
    fuzzing::require(!primary.name().contains(QChar::Null));
}

template <auto way>
void asScripted(const QDBusConnection &bus, const QList<fuzzing::BusAct> &script)
{
    fuzzing::fakeBus().play(script);
    way(bus);
}

constexpr std::array<fuzzing::Way, 7> ways{asScripted<setOnXfce>, asScripted<setOnPlasma>,
    asScripted<setByPortal>, asScripted<askLxqt>, asScripted<lookAround>, asScripted<layOut>,
    asScripted<followPrimary>};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    fuzzing::silenceQt();
    // Only then it matters how the desktop lays out its screens.
    qputenv("QT_SCALE_FACTOR", "2");
    static QGuiApplication application(*argc, *argv);
    return 0;
}

/// Everything that is asked of a desktop over the bus; the first byte says what, the rest is what
/// the others on the bus do.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzzing::tryWay(ways, data, size);
}
