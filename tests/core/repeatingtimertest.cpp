#include "core/repeatingtimer.h"

#include "fakes.h"

#include <QSignalSpy>
#include <QTest>

using namespace core;
using namespace std::chrono_literals;

class RepeatingTimerTest : public QObject
{
    Q_OBJECT

public:
    /// Clocks that go from two to three in the last night of a week in March, and back in October.
    static void initMain() { qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3"); }

private Q_SLOTS:
    void firesOncePerPeriod();
    void startingAgainBeginsAFreshPeriod();
    void stoppedItNeverFires();
    void stoppedItHasNoDateThatMoves();
    void aMissedNightIsOneFiringOnWaking();
    void afterWakingAFullPeriodFollows();
    void settingTheWallClockMovesTheDateOnly_data();
    void settingTheWallClockMovesTheDateOnly();
    void summerTimeIsNoReasonToFireEarlyOrLate_data();
    void summerTimeIsNoReasonToFireEarlyOrLate();
    void theDateIsNeverInThePast_data();
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

void RepeatingTimerTest::stoppedItHasNoDateThatMoves()
{
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    const QSignalSpy moved(&timer, &RepeatingTimer::nextFireDateMoved);
    clock.setWallClock(clock.now().addSecs(3600));
    timer.start(30min);
    timer.stop();
    clock.sleep(8h);
    QCOMPARE(moved.count(), 0);
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

void RepeatingTimerTest::summerTimeIsNoReasonToFireEarlyOrLate_data()
{
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QTime>("shown");
    const auto local = [](const QDate &day, const QTime &utc) {
        return QDateTime(day, utc, Qt::UTC).toLocalTime();
    };
    QTest::newRow("1:50, then 3:20") << local({2026, 3, 29}, {0, 50}) << QTime(3, 20);
    QTest::newRow("2:50, then 2:20") << local({2026, 10, 25}, {0, 50}) << QTime(2, 20);
}

void RepeatingTimerTest::summerTimeIsNoReasonToFireEarlyOrLate()
{
    QFETCH(QDateTime, start);
    fakes::FakeClock clock;
    clock.setWallClock(start);
    RepeatingTimer timer(clock);
    QSignalSpy fired(&timer, &RepeatingTimer::fired);
    timer.start(30min);
    QTEST(timer.nextFireDate()->time(), "shown");
    QCOMPARE(timer.nextFireDate()->toMSecsSinceEpoch(), start.toMSecsSinceEpoch() + 1'800'000);
    clock.pass(30min - 1ms);
    QCOMPARE(fired.count(), 0);
    clock.pass(1ms);
    QCOMPARE(fired.count(), 1);
    clock.pass(90min);
    QCOMPARE(fired.count(), 4);
}

void RepeatingTimerTest::theDateIsNeverInThePast_data()
{
    QTest::addColumn<qint64>("asleep");
    QTest::addColumn<qint64>("setBy");
    QTest::newRow("three hours of sleep") << qint64(10'800) << qint64(0);
    QTest::newRow("an hour back") << qint64(0) << qint64(-3600);
    QTest::newRow("an hour on") << qint64(0) << qint64(3600);
    QTest::newRow("thirty days on") << qint64(0) << qint64(30 * 86400);
    QTest::newRow("eight hours of sleep, and the clock was set") << qint64(28'800) << qint64(-3600);
}

void RepeatingTimerTest::theDateIsNeverInThePast()
{
    QFETCH(qint64, asleep);
    QFETCH(qint64, setBy);
    fakes::FakeClock clock;
    RepeatingTimer timer(clock);
    timer.start(1min);
    QSignalSpy moved(&timer, &RepeatingTimer::nextFireDateMoved);
    bool wasPast = false;
    connect(&timer, &RepeatingTimer::nextFireDateMoved, this,
        [&] { wasPast = wasPast || *timer.nextFireDate() < clock.now(); });
    clock.pass(59s);
    if (asleep != 0) {
        clock.sleep(std::chrono::seconds(asleep));
    }
    if (setBy != 0) {
        clock.setWallClock(clock.now().addSecs(setBy));
    }
    QCOMPARE(moved.count(), (asleep != 0 ? 1 : 0) + (setBy != 0 ? 1 : 0));
    QVERIFY(!wasPast);
    QVERIFY(*timer.nextFireDate() >= clock.now());
    QVERIFY(*timer.nextFireDate() <= clock.now().addSecs(60));
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
