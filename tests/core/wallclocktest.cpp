#include "core/clock.h"
#include "core/repeatingtimer.h"

#include <QDateTime>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <ctime>

using namespace core;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

/// The real clock and timer on a computer whose wall clock is really set and which really sleeps.
/// Runs on a kernel of its own only, whose clock is nobody else's.
class WallClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void itFiresOncePerPeriodWhateverTheWallShows_data();
    void itFiresOncePerPeriodWhateverTheWallShows();
    void aSleepOfManyPeriodsIsOneFiring();
};

namespace {

constexpr std::chrono::seconds period = 1s;

bool isKernelOfItsOwn()
{
    QFile processors(QStringLiteral("/proc/cpuinfo"));
    return processors.open(QFile::ReadOnly) && processors.readAll().contains("User Mode Linux");
}

bool setWallClock(const QDateTime &time)
{
    const qint64 moment = time.toMSecsSinceEpoch();
    const timespec value{.tv_sec = moment / 1000, .tv_nsec = moment % 1000 * 1'000'000};
    return clock_settime(CLOCK_REALTIME, &value) == 0;
}

bool tell(const char *device, const QByteArray &what)
{
    QFile file(QString::fromLatin1(device));
    return file.open(QFile::WriteOnly | QFile::Unbuffered) && file.write(what) == what.size();
}

/// A running timer, and what became of it.
class Watched
{
public:
    Watched()
    {
        QObject::connect(&timer, &RepeatingTimer::fired, &timer, [this] { onFired(); });
        QObject::connect(
            &timer, &RepeatingTimer::nextFireDateMoved, &timer, [this] { lookAtTheDate(); });
        timer.start(period);
        m_last = clock->elapsed();
    }

    void lookAtTheDate()
    {
        // In milliseconds of the epoch, which no change to summer time moves.
        const milliseconds before(QDateTime::currentMSecsSinceEpoch());
        const milliseconds date(timer.nextFireDate()->toMSecsSinceEpoch());
        const milliseconds after(QDateTime::currentMSecsSinceEpoch());
        wasPast = wasPast || date < before;
        wasFar = wasFar || date > after + period;
    }

    const std::unique_ptr<Clock> clock = Clock::system();
    RepeatingTimer timer{*clock};
    QSignalSpy fired{&timer, &RepeatingTimer::fired};
    QSignalSpy alarm{clock.get(), &Clock::alarm};
    QSignalSpy wallClockSet{clock.get(), &Clock::wallClockSet};
    bool wasPast = false;
    bool wasFar = false;
    bool wasHasty = false;

private:
    void onFired()
    {
        const milliseconds now = clock->elapsed();
        wasHasty = wasHasty || now - m_last < period;
        m_last = now;
        lookAtTheDate();
    }

    milliseconds m_last{};
};

} // namespace

void WallClockTest::initTestCase()
{
    // Anywhere else this would set the clock of the computer that somebody works on.
    QVERIFY(isKernelOfItsOwn());
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
}

void WallClockTest::itFiresOncePerPeriodWhateverTheWallShows_data()
{
    QTest::addColumn<QDateTime>("before");
    QTest::addColumn<qint64>("seconds");
    const QDateTime usual(QDate(2026, 3, 14), QTime(9, 26, 53), Qt::UTC);
    // The last second before the clocks go from two to three, and from three to two.
    const QDateTime spring(QDate(2026, 3, 29), QTime(0, 59, 59), Qt::UTC);
    const QDateTime autumn(QDate(2026, 10, 25), QTime(0, 59, 59), Qt::UTC);
    QTest::newRow("an hour back") << usual << qint64(-3600);
    QTest::newRow("an hour on") << usual << qint64(3600);
    QTest::newRow("thirty days on") << usual << qint64(30 * 86400);
    QTest::newRow("thirty years back") << usual << qint64(-30 * 365 * qint64(86400));
    QTest::newRow("to summer time") << spring << qint64(0);
    QTest::newRow("back from summer time") << autumn << qint64(0);
}

void WallClockTest::itFiresOncePerPeriodWhateverTheWallShows()
{
    QFETCH(const QDateTime, before);
    QFETCH(const qint64, seconds);
    QVERIFY(setWallClock(before));
    Watched watched;
    QTRY_VERIFY(watched.fired.count() > 0);
    const auto firings = watched.fired.count();
    if (seconds != 0) {
        QVERIFY(setWallClock(QDateTime::currentDateTimeUtc().addSecs(seconds)));
    }
    QTRY_VERIFY(watched.fired.count() >= firings + 2);
    QCOMPARE(watched.wallClockSet.count(), seconds != 0 ? 1 : 0);
    QCOMPARE(watched.alarm.count(), watched.fired.count());
    QVERIFY(!watched.wasHasty);
    QVERIFY(!watched.wasPast);
    QVERIFY(!watched.wasFar);
}

void WallClockTest::aSleepOfManyPeriodsIsOneFiring()
{
    Watched watched;
    const milliseconds before = watched.clock->elapsed();
    QVERIFY(tell("/dev/ttyS1", "5\n"));
    QVERIFY(tell("/sys/power/state", "freeze"));
    QVERIFY(watched.clock->elapsed() - before >= 3 * period);
    QCOMPARE(watched.fired.count(), 0);
    QTRY_COMPARE(watched.fired.count(), 1);
    QTRY_COMPARE(watched.fired.count(), 2);
    QCOMPARE(watched.alarm.count(), watched.fired.count());
    QVERIFY(!watched.wasHasty);
    QVERIFY(!watched.wasPast);
}

QTEST_GUILESS_MAIN(WallClockTest)
#include "wallclocktest.moc"
