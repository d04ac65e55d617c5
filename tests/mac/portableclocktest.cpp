#include "core/portableclock.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;
using core::Clock;
using core::PortableClock;
using std::chrono::milliseconds;

namespace {

/// A computer that sleeps, and whose wall clock is set, as the test tells.
class SleepyClock : public PortableClock
{
    Q_OBJECT

public:
    using PortableClock::PortableClock;

    QDateTime now() const override
    {
        return PortableClock::now().addMSecs((slept + wrong).count());
    }
    milliseconds elapsed() const override { return PortableClock::elapsed() + slept; }

    milliseconds slept{};
    milliseconds wrong{};
};

} // namespace

class PortableClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theAlarmComesOnceAndNotAMomentEarly_data();
    void theAlarmComesOnceAndNotAMomentEarly();
    void aMomentThatIsPastRingsAtOnce();
    void anAlarmReplacesTheOneBefore();
    void aCancelledAlarmNeverRings();
    void theFarthestMomentIsWaitedFor();
    void anAlarmMissedInSleepRingsOnWaking();
    void anAlarmThatIsNotDueSurvivesSleep();
    void wakingTellsThatTheWallClockReadsAnew();
    void aSleepThatNobodyToldOfIsNoticed();
    void aWallClockThatWasSetIsNoticed_data();
    void aWallClockThatWasSetIsNoticed();
    void aWallClockThatGoesOnIsNotNews();
};

void PortableClockTest::theAlarmComesOnceAndNotAMomentEarly_data()
{
    QTest::addColumn<milliseconds>("longestWait");
    QTest::newRow("in one wait") << milliseconds(1min);
    QTest::newRow("in many waits") << milliseconds(7ms);
}

void PortableClockTest::theAlarmComesOnceAndNotAMomentEarly()
{
    QFETCH(const milliseconds, longestWait);
    PortableClock clock(longestWait);
    QSignalSpy alarm(&clock, &Clock::alarm);
    const milliseconds due = clock.elapsed() + 50ms;
    clock.wakeAt(due);
    QVERIFY(alarm.wait());
    QVERIFY(clock.elapsed() >= due);
    QCOMPARE(alarm.count(), 1);
    QVERIFY(!alarm.wait(100));
}

void PortableClockTest::aMomentThatIsPastRingsAtOnce()
{
    PortableClock clock;
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() - 1h);
    QCOMPARE(alarm.count(), 0);
    QVERIFY(alarm.wait());
}

void PortableClockTest::anAlarmReplacesTheOneBefore()
{
    PortableClock clock;
    QSignalSpy alarm(&clock, &Clock::alarm);
    const milliseconds start = clock.elapsed();
    clock.wakeAt(start + 20ms);
    clock.wakeAt(start + 80ms);
    QVERIFY(alarm.wait());
    QVERIFY(clock.elapsed() >= start + 80ms);
    QCOMPARE(alarm.count(), 1);
}

void PortableClockTest::aCancelledAlarmNeverRings()
{
    SleepyClock clock;
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() + 10ms);
    clock.cancelAlarm();
    QVERIFY(!alarm.wait(100));
    clock.slept = 1h;
    clock.woke();
    QCOMPARE(alarm.count(), 0);
}

void PortableClockTest::theFarthestMomentIsWaitedFor()
{
    PortableClock clock(5ms);
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(milliseconds::max());
    QVERIFY(!alarm.wait(50));
}

void PortableClockTest::anAlarmMissedInSleepRingsOnWaking()
{
    SleepyClock clock;
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() + 30min);
    clock.slept = 8h;
    clock.woke();
    QCOMPARE(alarm.count(), 1);
    clock.woke();
    QCOMPARE(alarm.count(), 1);
}

void PortableClockTest::anAlarmThatIsNotDueSurvivesSleep()
{
    SleepyClock clock;
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() + 8h + 50ms);
    clock.slept = 8h - 1s;
    clock.woke();
    QCOMPARE(alarm.count(), 0);
    clock.slept = 8h;
    clock.woke();
    QTRY_COMPARE(alarm.count(), 1);
}

void PortableClockTest::wakingTellsThatTheWallClockReadsAnew()
{
    SleepyClock clock;
    QStringList told;
    connect(&clock, &Clock::wallClockSet, this, [&] { told << QStringLiteral("set"); });
    connect(&clock, &Clock::alarm, this, [&] { told << QStringLiteral("alarm"); });
    clock.woke();
    QCOMPARE(told, QStringList{QStringLiteral("set")});
    clock.wakeAt(clock.elapsed() + 30min);
    clock.slept = 8h;
    clock.wrong = -3s; // The clock of the board may differ a bit.
    clock.woke();
    QCOMPARE(
        told, (QStringList{QStringLiteral("set"), QStringLiteral("set"), QStringLiteral("alarm")}));
}

void PortableClockTest::aSleepThatNobodyToldOfIsNoticed()
{
    SleepyClock clock(20ms);
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() + 30min);
    clock.slept = 8h;
    QVERIFY(alarm.wait());
}

void PortableClockTest::aWallClockThatWasSetIsNoticed_data()
{
    QTest::addColumn<milliseconds>("wrong");
    QTest::newRow("forward") << milliseconds(1h);
    QTest::newRow("back") << milliseconds(-1h);
}

void PortableClockTest::aWallClockThatWasSetIsNoticed()
{
    QFETCH(const milliseconds, wrong);
    SleepyClock clock(20ms);
    QSignalSpy wallClockSet(&clock, &Clock::wallClockSet);
    QSignalSpy alarm(&clock, &Clock::alarm);
    clock.wakeAt(clock.elapsed() + 30min);
    clock.wrong = wrong;
    QVERIFY(wallClockSet.wait());
    QVERIFY(!wallClockSet.wait(100));
    QCOMPARE(wallClockSet.count(), 1);
    QCOMPARE(alarm.count(), 0);
}

void PortableClockTest::aWallClockThatGoesOnIsNotNews()
{
    SleepyClock clock(5ms);
    QSignalSpy wallClockSet(&clock, &Clock::wallClockSet);
    clock.wakeAt(clock.elapsed() + 30min);
    clock.wrong = 200ms;
    QVERIFY(!wallClockSet.wait(50));
}

QTEST_GUILESS_MAIN(PortableClockTest)
#include "portableclocktest.moc"
