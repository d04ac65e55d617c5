#include "core/repeatingtimer.h"

#include "fakes.h"

#include <QSignalSpy>
#include <QTest>

using namespace core;
using namespace std::chrono_literals;

class RepeatingTimerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firesOncePerPeriod();
    void startingAgainBeginsAFreshPeriod();
    void stoppedItNeverFires();
    void aMissedNightIsOneFiringOnWaking();
    void afterWakingAFullPeriodFollows();
    void settingTheWallClockMovesTheDateOnly_data();
    void settingTheWallClockMovesTheDateOnly();
    void theDateIsNeverInThePast();
    void anEarlyAlarmIsNoFiring();
    void longPeriodsNeitherOverflowNorFireEarly_data();
    void longPeriodsNeitherOverflowNorFireEarly();
    void theRealClockRings();
    void theRealClockCanBeCancelled();
};

void RepeatingTimerTest::firesOncePerPeriod()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    QCOMPARE(timer.nextFireDate(), clock.now().addSecs(1800));
    clock.pass(30min - 1ms);
    QCOMPARE(fired.count(), 0);
    clock.pass(1ms);
    QCOMPARE(fired.count(), 1);
    QCOMPARE(timer.nextFireDate(), clock.now().addSecs(1800));
    clock.pass(90min);
    QCOMPARE(fired.count(), 4);
}

void RepeatingTimerTest::startingAgainBeginsAFreshPeriod()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    clock.pass(29min);
    timer.start(60min);
    clock.pass(59min);
    QCOMPARE(fired.count(), 0);
    clock.pass(1min);
    QCOMPARE(fired.count(), 1);
}

void RepeatingTimerTest::stoppedItNeverFires()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    timer.stop();
    QVERIFY(!timer.isRunning());
    QVERIFY(!timer.nextFireDate());
    QVERIFY(!clock.alarmMoment());
    clock.ringEarly();
    clock.pass(24h);
    QCOMPARE(fired.count(), 0);
}

void RepeatingTimerTest::aMissedNightIsOneFiringOnWaking()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    clock.sleep(8h);
    QCOMPARE(fired.count(), 1);
}

void RepeatingTimerTest::afterWakingAFullPeriodFollows()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    clock.sleep(8h + 10min);
    QCOMPARE(timer.nextFireDate(), clock.now().addSecs(1800));
    clock.pass(29min);
    QCOMPARE(fired.count(), 1);
    clock.pass(1min);
    QCOMPARE(fired.count(), 2);
}

void RepeatingTimerTest::settingTheWallClockMovesTheDateOnly_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::newRow("an hour back") << qint64(-3600);
    QTest::newRow("an hour on") << qint64(3600);
    QTest::newRow("thirty days on") << qint64(30 * 86400);
}

void RepeatingTimerTest::settingTheWallClockMovesTheDateOnly()
{
    QFETCH(qint64, seconds);
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    QSignalSpy moved(&timer, &RepeatingTimer::nextFireDateMoved);
    timer.start(30min);
    clock.pass(10min);
    clock.setWallClock(clock.now().addSecs(seconds));
    QCOMPARE(moved.count(), 1);
    QCOMPARE(fired.count(), 0);
    QCOMPARE(timer.nextFireDate(), clock.now().addSecs(20 * 60));
    clock.pass(20min);
    QCOMPARE(fired.count(), 1);
}

void RepeatingTimerTest::theDateIsNeverInThePast()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    timer.start(1min);
    QSignalSpy moved(&timer, &RepeatingTimer::nextFireDateMoved);
    bool wasPast = false;
    connect(&timer, &RepeatingTimer::nextFireDateMoved, this,
        [&] { wasPast = wasPast || *timer.nextFireDate() < clock.now(); });
    clock.sleep(3h);
    QCOMPARE(moved.count(), 1);
    QVERIFY(!wasPast);
}

void RepeatingTimerTest::anEarlyAlarmIsNoFiring()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    clock.pass(10min);
    clock.ringEarly();
    QCOMPARE(fired.count(), 0);
    clock.pass(20min);
    QCOMPARE(fired.count(), 1);
}

void RepeatingTimerTest::longPeriodsNeitherOverflowNorFireEarly_data()
{
    QTest::addColumn<qint64>("minutes");
    QTest::newRow("100,000 minutes, beyond 32 bits of milliseconds") << qint64(100'000);
    QTest::newRow("beyond 64 bits of milliseconds") << qint64(153'000'000'000'000'000);
}

void RepeatingTimerTest::longPeriodsNeitherOverflowNorFireEarly()
{
    QFETCH(qint64, minutes);
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    const std::chrono::seconds period(minutes * 60);
    timer.start(period);
    QVERIFY(timer.nextFireDate()->isValid());
    QVERIFY(*timer.nextFireDate() > clock.now().addDays(69));
    clock.pass(100'000min - 1ms);
    QCOMPARE(fired.count(), 0);
    clock.pass(1ms);
    QCOMPARE(fired.count(), minutes == 100'000 ? 1 : 0);
}

void RepeatingTimerTest::theRealClockRings()
{
    const auto clock = Clock::system();
    QSignalSpy alarm(clock.get(), &Clock::alarm);
    const auto due = clock->elapsed() + 50ms;
    clock->wakeAt(due);
    QVERIFY(alarm.wait());
    QVERIFY2(clock->elapsed() >= due, "not a moment early");
    QCOMPARE(alarm.count(), 1);
}

void RepeatingTimerTest::theRealClockCanBeCancelled()
{
    const auto clock = Clock::system();
    QSignalSpy alarm(clock.get(), &Clock::alarm);
    clock->wakeAt(clock->elapsed() + 10ms);
    clock->cancelAlarm();
    clock->wakeAt(clock->elapsed() + 100ms);
    QVERIFY(alarm.wait());
    QCOMPARE(alarm.count(), 1);
}

QTEST_GUILESS_MAIN(RepeatingTimerTest)
#include "repeatingtimertest.moc"
