// First, as Qt's macros would spoil its headers.
#include <gio/gio.h>

#include "desktop/gsettingskeys.h"

#include "fakesettings.h"
#include "mortalbus.h"

#include <QTest>

#include <atomic>

using namespace Qt::StringLiterals;
using desktop::GSettingsKeys;

namespace {

const QByteArray gnome = "org.gnome.desktop.background"_ba;

/// Whether GLib has done all that it does when its connection to the bus ends.
class EndOfConnection
{
public:
    EndOfConnection() : m_bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr))
    {
        g_signal_connect_after(m_bus, "closed", G_CALLBACK(&EndOfConnection::hear), this);
    }
    EndOfConnection(const EndOfConnection &) = delete;
    EndOfConnection &operator=(const EndOfConnection &) = delete;
    ~EndOfConnection()
    {
        g_signal_handlers_disconnect_by_data(m_bus, this);
        g_object_unref(m_bus);
    }

    bool isHeard() const { return m_isHeard; }

private:
    static void hear(
        GDBusConnection * /*bus*/, gboolean /*isByOthers*/, GError * /*why*/, EndOfConnection *end)
    {
        end->m_isHeard = true;
    }

    GDBusConnection *const m_bus;
    std::atomic<bool> m_isHeard = false; ///< By a thread of GLib's.
};

} // namespace

/// With the real settings service, on a bus that ends.
class GSettingsBusEndTest : public QObject
{
    Q_OBJECT

public:
    explicit GSettingsBusEndTest(MortalBus &bus) : m_bus(bus) { }

private Q_SLOTS:
    void theProgramOutlivesTheBus()
    {
        const auto keys = GSettingsKeys::open(gnome);
        QVERIFY(keys);
        QVERIFY(keys->change({{"picture-uri"_ba, u"file:///a.png"_s}}));
        const EndOfConnection end;
        m_bus.end();
        QTRY_VERIFY(end.isHeard());
        const auto changed = GSettingsKeys::open(gnome)->change({{"picture-uri"_ba, u"b"_s}});
        QVERIFY(!changed);
        QCOMPARE(changed.error(), u"The desktop did not keep the picture"_s);
    }

private:
    MortalBus &m_bus;
};

int main(int argc, char **argv)
{
    MortalBus bus;
    const FakeSettings settings;
    const QCoreApplication application(argc, argv);
    GSettingsBusEndTest test(bus);
    return QTest::qExec(&test, argc, argv);
}

#include "gsettingsbusendtest.moc"
