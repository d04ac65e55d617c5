#include "desktop/gsettingskeys.h"

#include "fakesettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::GSettingsKeys;

/// Where the settings service cannot be asked, which GLib says only by going back to what was.
class GSettingsNoBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChangeThatIsTakenBackIsAnError()
    {
        const auto keys = GSettingsKeys::open("org.gnome.desktop.background"_ba);
        QVERIFY(keys);
        const auto changed = keys->change({{"picture-uri"_ba, u"file:///a.png"_s}});
        QVERIFY(!changed);
        QCOMPARE(changed.error(), u"The desktop did not keep the picture"_s);
        QCOMPARE(keys->value("picture-uri"_ba), QString());
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FakeSettings settings;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    GSettingsNoBusTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "gsettingsnobustest.moc"
