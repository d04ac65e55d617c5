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
        for (const QString &name : {u"org.kde.plasmashell"_s, u"org.Cinnamon"_s, u"org.mate.Caja"_s,
                 u"org.mate.SettingsDaemon"_s, u"org.gnome.Shell"_s}) {
            QTest::addRow("the root window lies beneath %s", qPrintable(name))
                << QStringList{name} << true << DesktopKind::Unsupported;
        }
    }
    void thePainterDecides()
    {
        QFETCH(QStringList, busNames);
        QFETCH(bool, isRootVisible);
        QTEST(chooseDesktop(Painting{busNames, isRootVisible}), "kind");
    }
};

QTEST_GUILESS_MAIN(ChooseDesktopTest)

#include "choosedesktoptest.moc"
