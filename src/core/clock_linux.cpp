#include "core/clock.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>

#include <sys/timerfd.h>
#include <unistd.h>

namespace core {

namespace {

using std::chrono::milliseconds;

/// A timer of the kernel as a file that becomes readable when it is due.
class TimerFile
{
public:
    explicit TimerFile(clockid_t clock)
        : m_descriptor(timerfd_create(clock, TFD_CLOEXEC | TFD_NONBLOCK))
    {
        if (m_descriptor < 0) {
            qFatal("This system offers no timers.");
        }
    }
    TimerFile(const TimerFile &) = delete;
    TimerFile &operator=(const TimerFile &) = delete;
    ~TimerFile() { close(m_descriptor); }

    int descriptor() const { return m_descriptor; }

    void set(time_t seconds, int64_t nanoseconds, int flags) const
    {
        itimerspec when{};
        when.it_value.tv_sec = seconds;
        when.it_value.tv_nsec = nanoseconds;
        timerfd_settime(m_descriptor, flags, &when, nullptr);
    }

    /// Makes the file unreadable again; false when the clock was set meanwhile.
    bool acknowledge() const
    {
        uint64_t expirations = 0;
        return read(m_descriptor, &expirations, sizeof expirations) >= 0 || errno != ECANCELED;
    }

private:
    int m_descriptor;
};

/// The kernel keeps the alarm on a clock that goes on during sleep, and tells when the wall
/// clock jumps; nothing wakes the processor in between.
class SystemClock final : public Clock
{
public:
    SystemClock()
        : m_alarm(CLOCK_BOOTTIME), m_wall(CLOCK_REALTIME),
          m_alarmNotifier(m_alarm.descriptor(), QSocketNotifier::Read),
          m_wallNotifier(m_wall.descriptor(), QSocketNotifier::Read)
    {
        connect(&m_alarmNotifier, &QSocketNotifier::activated, this, [this] {
            m_alarm.acknowledge();
            Q_EMIT alarm();
        });
        connect(&m_wallNotifier, &QSocketNotifier::activated, this, [this] {
            const bool wasSet = !m_wall.acknowledge();
            watchWallClock();
            if (wasSet) {
                Q_EMIT wallClockSet();
            }
        });
        watchWallClock();
    }

    QDateTime now() const override { return QDateTime::currentDateTime(); }

    milliseconds elapsed() const override
    {
        timespec time{};
        clock_gettime(CLOCK_BOOTTIME, &time);
        return std::chrono::seconds(time.tv_sec) + milliseconds(time.tv_nsec / 1'000'000);
    }

    void wakeAt(milliseconds moment) override
    {
        // elapsed() rounds down: one millisecond more, or the alarm would come a bit early.
        const milliseconds later = std::max(moment, milliseconds::zero()) + milliseconds(1);
        m_alarm.set(static_cast<time_t>(later.count() / 1000), later.count() % 1000 * 1'000'000,
            TFD_TIMER_ABSTIME);
    }

    void cancelAlarm() override { m_alarm.set(0, 0, 0); }

private:
    void watchWallClock() const
    {
        constexpr time_t never = 9'000'000'000; // The kernel counts to the year 2262; this is 2255.
        m_wall.set(never, 0, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET);
    }

    TimerFile m_alarm;
    TimerFile m_wall;
    QSocketNotifier m_alarmNotifier;
    QSocketNotifier m_wallNotifier;
};

} // namespace

std::unique_ptr<Clock> Clock::system()
{
    return std::make_unique<SystemClock>();
}

} // namespace core
