#include "desktop/systemdesktoppicture.h"

#include "fakemutter.h"
#include "twoscreens.h"

#include <QGuiApplication>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::SystemDesktopPicture;

class GnomeDisplaysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gnomesPrimaryScreenIsTheMainOne()
    {
        const FakeMutter fake(u"right"_s);
        const SystemDesktopPicture picture;
        QTRY_COMPARE(picture.mainScreen()->name, u"right"_s);
        QCOMPARE(picture.mainScreen()->geometry, QRect(80, 0, 100, 60));
    }

    void anotherPrimaryScreenIsFollowed()
    {
        FakeMutter fake(u"right"_s);
        const SystemDesktopPicture picture;
        QTRY_COMPARE(picture.mainScreen()->name, u"right"_s);
        fake.changePrimary(u"left"_s);
        QTRY_COMPARE(picture.mainScreen()->name, u"left"_s);
        fake.changePrimary(u"right"_s);
        QTRY_COMPARE(picture.mainScreen()->name, u"right"_s);
        fake.changePrimary(u"neither"_s);
        QTRY_COMPARE(picture.mainScreen()->name, u"left"_s);
    }

    void gnomeMayComeLater()
    {
        const SystemDesktopPicture picture;
        QCOMPARE(picture.mainScreen()->name, u"left"_s);
        const FakeMutter fake(u"right"_s);
        QTRY_COMPARE(picture.mainScreen()->name, u"right"_s);
    }
};

int main(int argc, char **argv)
{
    const TwoScreens screens;
    QGuiApplication application(argc, argv);
    GnomeDisplaysTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "gnomedisplaystest.moc"
