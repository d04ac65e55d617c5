#include "app/appdelegate.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

using app::AppDelegate;

class AppDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void closingTheLastWindowDoesNotEndTheProgram();
    void aQuitRequestClosesTheWindowsAndIsRefused();
    void quitForRealEndsTheEventLoop();
    void quitForRealEndsAlsoWhileAWindowRefusesToClose();
};

namespace {

/// Whether the event loop ends when @p act runs in it.
bool endsTheLoop(const std::function<void()> &act)
{
    bool loopWentOn = false;
    QObject untilHere; // What is still queued when the loop has ended goes with it.
    QMetaObject::invokeMethod(
        &untilHere,
        [&] {
            act();
            // What is asked to end the loop comes before what is queued after it.
            QMetaObject::invokeMethod(
                &untilHere,
                [&] {
                    loopWentOn = true;
                    QCoreApplication::exit(1);
                },
                Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    const int status = QApplication::exec();
    return status == 0 && !loopWentOn;
}

class StubbornWindow : public QWidget
{
protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }
};

} // namespace

void AppDelegateTest::closingTheLastWindowDoesNotEndTheProgram()
{
    const AppDelegate delegate;
    QVERIFY(!delegate.applicationShouldTerminateAfterLastWindowClosed());
    QVERIFY(!endsTheLoop([] {
        QWidget window;
        window.show();
        window.close();
    }));
}

void AppDelegateTest::aQuitRequestClosesTheWindowsAndIsRefused()
{
    AppDelegate delegate;
    QSignalSpy closing(&delegate, &AppDelegate::closeWindowsRequested);
    QVERIFY(!endsTheLoop([] { QCoreApplication::quit(); }));
    QCOMPARE(closing.count(), 1);
    QVERIFY(!delegate.shouldReallyQuit());
    QCOMPARE(delegate.applicationShouldTerminate(), AppDelegate::TerminateReply::Cancel);
}

void AppDelegateTest::quitForRealEndsTheEventLoop()
{
    AppDelegate delegate;
    QSignalSpy closing(&delegate, &AppDelegate::closeWindowsRequested);
    QVERIFY(endsTheLoop([&] { delegate.quitForReal(); }));
    QVERIFY(delegate.shouldReallyQuit());
    QCOMPARE(closing.count(), 0);
    QCOMPARE(delegate.applicationShouldTerminate(), AppDelegate::TerminateReply::Now);
}

void AppDelegateTest::quitForRealEndsAlsoWhileAWindowRefusesToClose()
{
    AppDelegate delegate;
    StubbornWindow window;
    window.show();
    QVERIFY(endsTheLoop([&] { delegate.quitForReal(); }));
}

QTEST_MAIN(AppDelegateTest)
#include "appdelegatetest.moc"
