#include "desktop/macwake.h"
#include "core/clock.h"
#include "doubles/workspace.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;
using core::Clock;
using desktop::MacWake;
using doubles::Center;
using doubles::postDidWake;

/// Waking from sleep as macOS tells it, on a stand-in for AppKit, up to the clock of the program.
class MacWakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wakingIsTold();
    void onlyTheWorkspaceTellsOfWaking();
    void nobodyIsToldOnceGone();
    void everyoneIsTold();
    void theClockHearsOfWaking();
};

void MacWakeTest::wakingIsTold()
{
    MacWake wake;
    QSignalSpy woke(&wake, &MacWake::woke);
    postDidWake(Center::Workspace);
    QCOMPARE(woke.count(), 1);
    postDidWake(Center::Workspace);
    QCOMPARE(woke.count(), 2);
}

void MacWakeTest::onlyTheWorkspaceTellsOfWaking()
{
    MacWake wake;
    QSignalSpy woke(&wake, &MacWake::woke);
    postDidWake(Center::Program);
    QCOMPARE(woke.count(), 0);
}

void MacWakeTest::nobodyIsToldOnceGone()
{
    int told = 0;
    auto wake = std::make_unique<MacWake>();
    // Not a spy: the signal of a destroyed object would have to get through to be seen.
    connect(wake.get(), &MacWake::woke, this, [&] { ++told; });
    postDidWake(Center::Workspace);
    wake.reset();
    postDidWake(Center::Workspace);
    QCOMPARE(told, 1);
}

void MacWakeTest::everyoneIsTold()
{
    MacWake first;
    MacWake second;
    QSignalSpy firstWoke(&first, &MacWake::woke);
    QSignalSpy secondWoke(&second, &MacWake::woke);
    postDidWake(Center::Workspace);
    QCOMPARE(firstWoke.count(), 1);
    QCOMPARE(secondWoke.count(), 1);
}

void MacWakeTest::theClockHearsOfWaking()
{
    const auto clock = Clock::system();
    QSignalSpy wallClockSet(clock.get(), &Clock::wallClockSet);
    postDidWake(Center::Workspace);
    QCOMPARE(wallClockSet.count(), 1);
}

QTEST_GUILESS_MAIN(MacWakeTest)
#include "macwaketest.moc"
