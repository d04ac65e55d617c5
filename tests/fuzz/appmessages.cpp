#include "app/appdelegate.h"
#include "app/sessionclient.h"
#include "app/singleinstance.h"
#include "app/trayhost.h"
#include "input.h"
#include "liveconnection.h"

#include <QGuiApplication>

using fuzzing::fakeBus;

namespace {

using Script = QList<fuzzing::BusAct>;

void beCalled(const QDBusConnection &bus, const Script &script)
{
    app::SingleInstance instance;
    fuzzing::require(instance.serveOn(bus));
    const int calls = fakeBus().calls();
    const int answers = fakeBus().answers();
    fakeBus().play(script);
    fakeBus().settle(bus);
    // Whatever is called with whatever values, the caller is told something.
    fuzzing::require(
        !bus.isConnected() || fakeBus().answers() - answers == fakeBus().calls() - calls);
}

void lookForATray(const QDBusConnection &bus, const Script &script)
{
    app::TrayHost host;
    fakeBus().play(script);
    host.watch(bus);
    fakeBus().settle(bus);
}

void takePartInASession(const QDBusConnection &bus, const Script &script)
{
    app::AppDelegate delegate;
    app::SessionClient client(delegate, bus);
    fakeBus().play(script);
    client.watch();
    fakeBus().settle(bus);
}

constexpr std::array<fuzzing::Way, 3> ways{beCalled, lookForATray, takePartInASession};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    fuzzing::silenceQt();
    static QGuiApplication application(*argc, *argv);
    return 0;
}

/// Everything that others on the bus tell the program unasked or to its own questions; the first
/// byte says which part of it listens, the rest is what the others do.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzzing::tryWay(ways, data, size);
}
