#include "stage.h"

#include "testlibs/belongings.h"

#include <QCoreApplication>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace ui::fakes;

namespace {

/// Counts requests to quit and refuses them, as the shell does.
class QuitFilter : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == qApp && event->type() == QEvent::Quit) {
            ++requests;
            event->ignore();
            QCoreApplication::exit(); // Only the loop that the test runs.
            return true;
        }
        return false;
    }

    int requests = 0;
};

} // namespace

/// Opening, closing and bringing to the front.
class WindowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachWindowOpensOnce();
    void closedWindowsTakeTheEngineAlong();
    void windowOpensAgainAfterClosing();
    void reopenedSettingsStartOnTheirFirstTab();
    void closeAllClosesBoth();
    void minimizedWindowComesBack();
    void managerOutlivesTheWindow();
    void quitKeyAsksTheApplication_data();
    void quitKeyAsksTheApplication();
    void closeKeyClosesTheWindow();
    void trayMakesTheWindowMenuNeedless();
    void windowMenuOpensSettingsAndQuits();
    void deletingWindowsClosesThem();
    void manyWindowsGatherNothing();
};

void WindowsTest::eachWindowOpensOnce()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(window && stage.windows().isMainWindowShown());
    QCOMPARE(stage.openMain(), window);
    QQuickWindow *settings = stage.openSettings();
    QVERIFY(settings && settings->isActive());
    QCOMPARE(stage.openSettings(), settings);
    stage.windows().showMainWindow();
    QTRY_VERIFY(window->isActive());
    QVERIFY(!window->transientParent() && !settings->transientParent());
}

void WindowsTest::closedWindowsTakeTheEngineAlong()
{
    Stage stage;
    QPointer<QQuickWindow> window = stage.openMain();
    const QPointer<QQmlEngine> engine = qmlEngine(window);
    QPointer<QQuickWindow> settings = stage.openSettings();
    QCOMPARE(qmlEngine(settings), engine.data());
    window->close();
    QTRY_VERIFY(!window);
    QCoreApplication::processEvents(); // When it is gone is when the engine is thought about.
    QVERIFY(engine);
    settings->close();
    QTRY_VERIFY(!settings);
    QTRY_VERIFY(!engine);
}

void WindowsTest::windowOpensAgainAfterClosing()
{
    Stage stage;
    stage.openMain()->close();
    QVERIFY(!stage.windows().isMainWindowShown());
    // At once, before the closed window is really gone, and after.
    QVERIFY(stage.openMain());
    stage.mainWindow()->close();
    QTRY_VERIFY(QGuiApplication::topLevelWindows().isEmpty());
    QVERIFY(stage.openMain());
}

void WindowsTest::reopenedSettingsStartOnTheirFirstTab()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    window->close();
    QVERIFY(!itemOfType(stage.openSettings()->contentItem(), "AdvancedTab"));
}

void WindowsTest::closeAllClosesBoth()
{
    Stage stage;
    QVERIFY(stage.openMain() && stage.openSettings());
    stage.windows().closeAll();
    QVERIFY(!stage.windows().isMainWindowShown());
    QVERIFY(!stage.windows().isSettingsShown());
    stage.windows().closeAll();
}

void WindowsTest::minimizedWindowComesBack()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    window->showMinimized();
    QCOMPARE(window->windowState(), Qt::WindowMinimized);
    stage.windows().showMainWindow();
    QTRY_COMPARE(window->windowState(), Qt::WindowNoState);
    QCOMPARE(stage.mainWindow(), window);
}

void WindowsTest::managerOutlivesTheWindow()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    type(window, u"a lake"_s);
    stage.manager().setAutoEnabled(true);
    window->close();
    QTRY_VERIFY(!stage.mainWindow());
    QVERIFY(stage.clock.alarmMoment());
    window = stage.openMain();
    QCOMPARE(control(window, u"Prompt"_s)->property("text").toString(), u"a lake"_s);
    QVERIFY(control(window, u"Auto-generate"_s)->property("checked").toBool());
}

void WindowsTest::quitKeyAsksTheApplication_data()
{
    QTest::addColumn<bool>("settings");
    QTest::newRow("in the main window") << false;
    QTest::newRow("in the settings window") << true;
}

void WindowsTest::quitKeyAsksTheApplication()
{
    QFETCH(bool, settings);
    Stage stage;
    QuitFilter filter;
    qApp->installEventFilter(&filter);
    QSignalSpy quitSpy(&stage.windows(), &ui::Windows::reallyQuitRequested);
    QQuickWindow *window = settings ? stage.openSettings() : stage.openMain();
    // Nobody can be asked to quit who does not run.
    QTimer::singleShot(0, window, [window] { press(window, Qt::Key_Q, Qt::ControlModifier); });
    QTimer::singleShot(5s, qApp, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    QCOMPARE(filter.requests, 1);
    QVERIFY(window->isVisible());
    QCOMPARE(quitSpy.count(), 0);
}

void WindowsTest::closeKeyClosesTheWindow()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(stage.openSettings());
    press(stage.settingsWindow(), Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(!stage.settingsWindow());
    QCOMPARE(stage.mainWindow(), window);
}

void WindowsTest::trayMakesTheWindowMenuNeedless()
{
    Stage stage;
    QQuickWindow *window = stage.openMain();
    QVERIFY(!control(window, u"Menu"_s));
    stage.windows().setTrayAvailable(false);
    QVERIFY(control(window, u"Menu"_s));
    stage.windows().setTrayAvailable(true);
    QVERIFY(!control(window, u"Menu"_s));
}

void WindowsTest::windowMenuOpensSettingsAndQuits()
{
    Stage stage;
    QSignalSpy quitSpy(&stage.windows(), &ui::Windows::reallyQuitRequested);
    stage.windows().setTrayAvailable(false);
    QQuickWindow *window = stage.openMain();
    const qreal editorTop = place(control(window, u"Prompt"_s)).top();
    const QRectF header = place(label(window, u"Prompt"_s));
    QCOMPARE(editorTop - header.bottom(), 8.0); // It takes no place of its own.
    click(control(window, u"Menu"_s));
    QTRY_VERIFY(label(window, u"Settings..."_s) && label(window, u"Quit"_s));
    click(label(window, u"Settings..."_s));
    QTRY_VERIFY(stage.settingsWindow());
    QCOMPARE(quitSpy.count(), 0);
    // And with the keyboard.
    QVERIFY(stage.openMain());
    control(window, u"Menu"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_Space);
    QTRY_VERIFY(label(window, u"Quit"_s));
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Return);
    QTRY_COMPARE(quitSpy.count(), 1);
}

void WindowsTest::deletingWindowsClosesThem()
{
    Stage stage;
    auto windows = std::make_unique<ui::Windows>(stage.manager(), stage.settings);
    windows->showMainWindow();
    windows->showSettings();
    QCOMPARE(QGuiApplication::topLevelWindows().size(), 2);
    windows.reset();
    QVERIFY(QGuiApplication::topLevelWindows().isEmpty());
}

void WindowsTest::manyWindowsGatherNothing()
{
    Stage stage;
    stage.fillGallery(4);
    const int count = testlibs::soakCycles(60);
    testlibs::Belongings before{};
    for (int cycle = 0; cycle < count; ++cycle) {
        QVERIFY(stage.openMain() && stage.openSettings());
        QTRY_VERIFY(isReady(tiles(stage.mainWindow()).first()));
        stage.windows().closeAll();
        QTRY_VERIFY(QGuiApplication::topLevelWindows().isEmpty());
        if (cycle == count / 3) {
            before = testlibs::Belongings::now();
        }
    }
    const auto after = testlibs::Belongings::now();
    const qsizetype each = (after.heap - before.heap) / (count - count / 3);
    qInfo("%d windows: heap %+lld bytes each, files %+lld, threads %+lld", count, each,
        after.files - before.files, after.threads - before.threads);
    QVERIFY(each < 2048);
    QVERIFY(after.files <= before.files);
    QVERIFY(after.threads <= before.threads);
}

QTEST_MAIN(WindowsTest)
#include "windowstest.moc"
