#include "desktop/gsettingskeys.h"

#include "fakesettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::GSettingsKeys;

/// Where changes of settings stay within the program, which GLib takes for a success.
class GSettingsNowhereTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsThatReachNobodyAreAnError()
    {
        const auto keys = GSettingsKeys::open("org.gnome.desktop.background"_ba);
        QVERIFY(!keys);
        QCOMPARE(keys.error(),
            u"The desktop's settings cannot be reached: GLib's dconf module is missing"_s);
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FakeSettings settings;
    qputenv("GSETTINGS_BACKEND", "memory");
    GSettingsNowhereTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "gsettingsnowheretest.moc"
