#include "desktop/swaybgdesktop.h"
#include "desktop/waylandglobals.h"

#include "fakecompositor.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::askWaylandGlobals;
using desktop::BackgroundProcesses;
using desktop::Picture;
using desktop::Screen;
using desktop::SwaybgDesktop;

namespace {

QDeadlineTimer soon()
{
    return QDeadlineTimer(std::chrono::seconds(20));
}

} // namespace

class SwaybgDesktopTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QByteArray log() const
    {
        QFile file(m_folder.filePath(u"log"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    }
    QString errorOf(const QString &screen) const
    {
        QFile program(m_folder.filePath(u"swaybg"_s));
        if (!program.open(QIODevice::WriteOnly)
            || program.write("#!/bin/sh\necho \"$@\" >>'" + m_folder.filePath(u"log"_s).toUtf8()
                   + "'\nexec sleep 1000\n")
                <= 0) {
            qFatal("The test's own script cannot be written.");
        }
        program.close();
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
        SwaybgDesktop desktop(std::make_shared<BackgroundProcesses>(program.fileName()));
        const auto result = QCoro::waitFor(
            desktop.setPicture(Picture{u"/a.png"_s, "png"_ba, {}}, Screen{screen, {}}));
        return result ? u"no error"_s : result.error();
    }

private Q_SLOTS:
    void init() { QFile::remove(m_folder.filePath(u"log"_s)); }

    void aCompositorTellsWhatItHas()
    {
        const FakeCompositor compositor({.layerShell = true, .outputs = {"DP-1", "DP-2"}});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QVERIFY(globals->hasLayerShell);
        QCOMPARE(globals->outputs, QStringList({u"DP-1"_s, u"DP-2"_s}));
    }

    void aCompositorMayHaveNoPlaceForBackgrounds()
    {
        const FakeCompositor compositor({.outputs = {"DP-1"}});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QVERIFY(!globals->hasLayerShell);
    }

    void anOldCompositorTellsNoNames()
    {
        const FakeCompositor compositor(
            {.layerShell = true, .outputs = {"DP-1"}, .outputVersion = 3});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QCOMPARE(globals->outputs, QStringList());
    }

    void withoutACompositorThereIsNothing()
    {
        qputenv("WAYLAND_DISPLAY", "wayland-missing");
        QVERIFY(!askWaylandGlobals(soon()));
        qunsetenv("WAYLAND_DISPLAY");
    }

    void aCompositorThatHangsIsNotWaitedForLonger()
    {
        QLocalServer silent;
        QVERIFY(silent.listen(m_folder.filePath(u"silent"_s)));
        qputenv("WAYLAND_DISPLAY", silent.fullServerName().toLocal8Bit());
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!askWaylandGlobals(QDeadlineTimer(300)));
        qunsetenv("WAYLAND_DISPLAY");
        const qint64 elapsed = clock.elapsed();
        QVERIFY2(elapsed >= 290 && elapsed < 3000, qPrintable(QString::number(elapsed)));
    }

    void aScreenIsOneOfTheOutputs_data()
    {
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("name");
        const QStringList both{u"DP-1"_s, u"DP-2"_s};
        QTest::newRow("by its name") << both << u"DP-2"_s << u"DP-2"_s;
        QTest::newRow("another name where there are two") << both << u"XWAYLAND0"_s << u"none"_s;
        QTest::newRow("another name for the only one")
            << QStringList{u"DP-1"_s} << u"XWAYLAND0"_s << u"DP-1"_s;
        QTest::newRow("where names are not told") << QStringList() << u"DP-1"_s << u"DP-1"_s;
    }
    void aScreenIsOneOfTheOutputs()
    {
        QFETCH(QStringList, outputs);
        QFETCH(QString, screen);
        QTEST(SwaybgDesktop::outputName(outputs, screen).value_or(u"none"_s), "name");
    }

    void aPictureIsShownOnItsOutput()
    {
        const FakeCompositor compositor({.layerShell = true, .outputs = {"DP-1", "DP-2"}});
        QCOMPARE(errorOf(u"DP-2"_s), u"no error"_s);
        QCOMPARE(log(), "-o DP-2 -i /a.png -m fill"_ba);
    }

    void nothingIsStartedForAScreenThatIsNotThere()
    {
        const FakeCompositor compositor({.layerShell = true, .outputs = {"DP-1", "DP-2"}});
        QCOMPARE(errorOf(u"DP-9"_s), u"The desktop has no screen named DP-9"_s);
        QCOMPARE(log(), QByteArray());
    }

    void nothingIsStartedWithoutACompositor()
    {
        qputenv("WAYLAND_DISPLAY", "wayland-missing");
        QCOMPARE(errorOf(u"DP-1"_s), u"The desktop cannot be reached"_s);
        qunsetenv("WAYLAND_DISPLAY");
        QCOMPARE(log(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(SwaybgDesktopTest)

#include "swaybgdesktoptest.moc"
