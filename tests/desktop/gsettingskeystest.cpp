#include "desktop/gsettingskeys.h"

#include "fakesettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::GSettingsKeys;

namespace {

const QByteArray gnome = "org.gnome.desktop.background"_ba;

GSettingsKeys opened()
{
    return GSettingsKeys::open(gnome).value();
}

} // namespace

/// With the real settings service, on a bus of its own.
class GSettingsKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMissingSchemaIsAnErrorAndDoesNotEndTheProgram()
    {
        const auto keys = GSettingsKeys::open("org.example.none"_ba);
        QVERIFY(!keys);
        QCOMPARE(keys.error(), u"The desktop's settings are not installed"_s);
    }

    void onlyKeysThatHoldTextsAreThere()
    {
        QVERIFY(opened().has("picture-uri"_ba));
        QVERIFY(opened().has("picture-options"_ba));
        QVERIFY(!opened().has("picture-opacity"_ba));
        QVERIFY(!opened().has("picture-uri-darker"_ba));
        QVERIFY(!opened().has({}));
        QCOMPARE(opened().value("picture-uri-darker"_ba), QString());
        QCOMPARE(opened().value("picture-options"_ba), u"zoom"_s);
    }

    void aChangeIsKept()
    {
        const QString uri = u"file:///home/me/wall%20%231%20ü.png"_s;
        QVERIFY(opened().change({{"picture-uri"_ba, uri}, {"picture-options"_ba, u"spanned"_s}}));
        QCOMPARE(opened().value("picture-uri"_ba), uri);
        QCOMPARE(opened().value("picture-options"_ba), u"spanned"_s);
    }

    void aKeyThatIsNotThereIsLeftOut()
    {
        QVERIFY(opened().change({{"no-such-key"_ba, u"a"_s}, {"picture-uri"_ba, u"b"_s}}));
        QCOMPARE(opened().value("picture-uri"_ba), u"b"_s);
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FakeSettings settings;
    GSettingsKeysTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "gsettingskeystest.moc"
