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

// Not in the order of their places.
const std::vector<FakeCompositor::Output> both{
    {"DP-1", {800, 0, 640, 480}}, {"DP-2", {0, 0, 800, 600}}};

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
    QString errorOf(const Screen &screen) const
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
        const auto result
            = QCoro::waitFor(desktop.setPicture(Picture{u"/a.png"_s, "png"_ba, {}}, screen));
        return result ? u"no error"_s : result.error();
    }

private Q_SLOTS:
    void init() { QFile::remove(m_folder.filePath(u"log"_s)); }

    void aCompositorTellsWhatItHas()
    {
        const FakeCompositor compositor({.layerShell = true, .outputs = both});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QVERIFY(globals->hasLayerShell);
        const std::vector<Screen> expected{
            {u"DP-1"_s, {800, 0, 640, 480}}, {u"DP-2"_s, {0, 0, 800, 600}}};
        QCOMPARE(globals->outputs, expected);
    }

    void aCompositorMayHaveNoPlaceForBackgrounds()
    {
        const FakeCompositor compositor({.outputs = both});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QVERIFY(!globals->hasLayerShell);
    }

    void aCompositorMayKeepItsOutputsToItself_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("all of it") << 0;
        QTest::newRow("their names") << 1;
    }
    void aCompositorMayKeepItsOutputsToItself()
    {
        QFETCH(int, version);
        const FakeCompositor compositor(
            {.layerShell = true, .outputs = both, .xdgOutputVersion = version});
        const auto globals = askWaylandGlobals(soon());
        QVERIFY(globals);
        QVERIFY(globals->hasLayerShell);
        QVERIFY(globals->outputs.empty());
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

    void aPictureIsShownOnItsOutput_data()
    {
        QTest::addColumn<Screen>("screen");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("by its name") << Screen{u"DP-2"_s, {800, 0, 1, 1}} << "DP-2"_ba;
        QTest::newRow("by its place, as X servers have other names")
            << Screen{u"XWAYLAND1"_s, {800, 0, 1, 1}} << "DP-1"_ba;
    }
    void aPictureIsShownOnItsOutput()
    {
        QFETCH(Screen, screen);
        QFETCH(QByteArray, output);
        const FakeCompositor compositor({.layerShell = true, .outputs = both});
        QCOMPARE(errorOf(screen), u"no error"_s);
        QCOMPARE(log(), "-o " + output + " -i /a.png -m fill");
    }

    void aScreenIsTakenAtItsNameWhereOutputsAreUntold()
    {
        const FakeCompositor compositor(
            {.layerShell = true, .outputs = both, .xdgOutputVersion = 0});
        QCOMPARE(errorOf(Screen{u"DP-7"_s, {}}), u"no error"_s);
        QCOMPARE(log(), "-o DP-7 -i /a.png -m fill"_ba);
    }

    void nothingIsStartedForAScreenThatIsNotThere()
    {
        const FakeCompositor compositor({.layerShell = true, .outputs = both});
        QCOMPARE(errorOf(Screen{u"DP-9"_s, {0, 600, 1, 1}}), u"The screen is no longer there"_s);
        QCOMPARE(log(), QByteArray());
    }

    void nothingIsStartedWithoutACompositor()
    {
        qputenv("WAYLAND_DISPLAY", "wayland-missing");
        QCOMPARE(errorOf(Screen{u"DP-1"_s, {}}), u"The desktop cannot be reached"_s);
        qunsetenv("WAYLAND_DISPLAY");
        QCOMPARE(log(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(SwaybgDesktopTest)

#include "swaybgdesktoptest.moc"
