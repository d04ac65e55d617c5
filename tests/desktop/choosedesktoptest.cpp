#include "desktop/choosedesktop.h"

#include <QTest>

using namespace Qt::StringLiterals;
using desktop::chooseDesktop;
using desktop::DesktopKind;
using desktop::Painting;

class ChooseDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePainterDecides_data()
    {
        QTest::addColumn<QStringList>("busNames");
        QTest::addColumn<bool>("isRootVisible");
        QTest::addColumn<DesktopKind>("kind");

        QTest::newRow("xfdesktop")
            << QStringList{u"org.xfce.xfdesktop"_s} << false << DesktopKind::Xfce;
        QTest::newRow("xfdesktop before its window is there")
            << QStringList{u"org.xfce.xfdesktop"_s} << true << DesktopKind::Xfce;
        QTest::newRow("xfdesktop, among others")
            << QStringList{u"org.freedesktop.DBus"_s, u"org.xfce.xfdesktop"_s, u":1.5"_s} << false
            << DesktopKind::Xfce;
        QTest::newRow("xfdesktop wins over a service of MATE")
            << QStringList{u"org.mate.SettingsDaemon"_s, u"org.xfce.xfdesktop"_s} << false
            << DesktopKind::Xfce;
        QTest::newRow("a settings service paints nothing")
            << QStringList{u"org.xfce.Xfconf"_s} << false << DesktopKind::Unsupported;
        QTest::newRow("a name that only begins like xfdesktop's")
            << QStringList{u"org.xfce.xfdesktop.Other"_s} << false << DesktopKind::Unsupported;
        QTest::newRow("nobody on the bus, and the root window is seen")
            << QStringList() << true << DesktopKind::X11Root;
        QTest::newRow("nobody on the bus, and the root window is not seen")
            << QStringList() << false << DesktopKind::Unsupported;
        QTest::newRow("the root window lies beneath Cinnamon")
            << QStringList{u"org.Cinnamon"_s} << true << DesktopKind::Cinnamon;
        QTest::newRow("Cinnamon owns names of GNOME")
            << QStringList{u"org.gnome.Shell"_s, u"org.gnome.SettingsDaemon"_s, u"org.Cinnamon"_s}
            << false << DesktopKind::Cinnamon;
        QTest::newRow("MATE's file manager")
            << QStringList{u"org.mate.Caja"_s} << true << DesktopKind::Mate;
        QTest::newRow("MATE without its file manager")
            << QStringList{u"org.mate.SettingsDaemon"_s} << true << DesktopKind::Mate;
        QTest::newRow("GNOME or Budgie")
            << QStringList{u"org.gnome.Shell"_s} << true << DesktopKind::Gnome;
        QTest::newRow("a file manager of LXQt that only shows folders")
            << QStringList{u"org.pcmanfm.PCManFM"_s} << true << DesktopKind::X11Root;
    }
    void thePainterDecides()
    {
        QFETCH(QStringList, busNames);
        QFETCH(bool, isRootVisible);
        Painting painting;
        painting.busNames = busNames;
        painting.isRootVisible = isRootVisible;
        QTEST(chooseDesktop(painting), "kind");
    }

    void lxqtsFileManagerMayPaint()
    {
        const Painting painting{
            .busNames = {u"org.gnome.Shell"_s, u"org.pcmanfm.PCManFM"_s},
            .isFileManagerPainting = true,
            .isRootVisible = true,
        };
        QCOMPARE(chooseDesktop(painting), DesktopKind::Lxqt);
    }

    void anotherDesktopMayUseLxqtsFileManager()
    {
        const Painting painting{.busNames = {u"org.gnome.Shell"_s, u"org.pcmanfm.PCManFM"_s}};
        QCOMPARE(chooseDesktop(painting), DesktopKind::Gnome);
    }

    void moreThanTheBusIsLookedAt_data()
    {
        QTest::addColumn<Painting>("painting");
        QTest::addColumn<DesktopKind>("kind");

        Painting plasma;
        plasma.busNames = QStringList{u"org.kde.plasmashell"_s};
        QTest::newRow("plasmashell") << plasma << DesktopKind::Plasma;
        plasma.hasLayerShell = true;
        QTest::newRow("plasmashell, whose compositor has a layer for backgrounds")
            << plasma << DesktopKind::Plasma;
        plasma.swaySocket = u"/run/sway"_s;
        QTest::newRow("sway, beneath which every painter lies") << plasma << DesktopKind::Sway;

        Painting layerShell;
        layerShell.hasLayerShell = true;
        QTest::newRow("a layer for backgrounds") << layerShell << DesktopKind::Swaybg;
        layerShell.busNames = QStringList{u"org.xfce.xfdesktop"_s};
        QTest::newRow("a painter who may use that layer") << layerShell << DesktopKind::Xfce;

        Painting sandbox;
        sandbox.needsPortal = true;
        QTest::newRow("in a sandbox on GNOME") << sandbox << DesktopKind::Portal;
        sandbox.busNames = QStringList{u"org.gnome.Shell"_s};
        QTest::newRow("in a sandbox that sees GNOME's shell") << sandbox << DesktopKind::Portal;
    }
    void moreThanTheBusIsLookedAt()
    {
        QFETCH(Painting, painting);
        QTEST(chooseDesktop(painting), "kind");
    }
};

QTEST_GUILESS_MAIN(ChooseDesktopTest)

#include "choosedesktoptest.moc"
