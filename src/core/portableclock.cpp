#include "core/portableclock.h"

#include <algorithm>
#include <ctime>

namespace core {

using std::chrono::milliseconds;

PortableClock::PortableClock(milliseconds longestWait) : m_longestWait(longestWait)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &PortableClock::look);
}

QDateTime PortableClock::now() const
{
    return QDateTime::currentDateTime();
}

milliseconds PortableClock::elapsed() const
{
    // Goes on during sleep on macOS; Linux has another clock for that.
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + milliseconds(time.tv_nsec / 1'000'000);
}

void PortableClock::wakeAt(milliseconds moment)
{
    m_alarm = moment;
    m_lead = wallClockLead();
    wait();
}

void PortableClock::cancelAlarm()
{
    m_alarm.reset();
    m_timer.stop();
}

void PortableClock::woke()
{
    m_lead = wallClockLead();
    Q_EMIT wallClockSet();
    look();
}

milliseconds PortableClock::wallClockLead() const
{
    return milliseconds(now().toMSecsSinceEpoch()) - elapsed();
}

void PortableClock::wait()
{
    m_timer.start(std::clamp(*m_alarm - elapsed(), milliseconds::zero(), m_longestWait));
}

void PortableClock::look()
{
    // Time servers move the wall clock by less all the time.
    constexpr milliseconds noticeable = std::chrono::seconds(1);
    const milliseconds lead = wallClockLead();
    if (std::chrono::abs(lead - m_lead) >= noticeable) {
        m_lead = lead;
        Q_EMIT wallClockSet();
    }
    if (!m_alarm) {
        return;
    }
    if (elapsed() < *m_alarm) {
        wait();
        return;
    }
    cancelAlarm();
    Q_EMIT alarm();
}

} // namespace core
