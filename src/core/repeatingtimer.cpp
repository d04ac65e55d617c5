#include "core/repeatingtimer.h"

#include "core/clock.h"

#include <algorithm>
#include <limits>

namespace core {

namespace {

using std::chrono::milliseconds;

// People may write any number of minutes into the settings file; one that lies beyond what
// milliseconds can count is as good as never.
milliseconds saturated(std::chrono::seconds period)
{
    constexpr auto longest = std::chrono::duration_cast<std::chrono::seconds>(milliseconds::max());
    return std::min(period, longest / 4);
}

QDateTime later(const QDateTime &moment, milliseconds wait)
{
    // Beyond this year locales and QDateTime stop agreeing on how to show a date.
    const QDateTime last(QDate(9999, 12, 31), QTime(23, 59));
    return wait.count() > moment.msecsTo(last) ? last : moment.addMSecs(wait.count());
}

} // namespace

RepeatingTimer::RepeatingTimer(Clock &clock, QObject *parent) : QObject(parent), m_clock(clock)
{
    connect(&m_clock, &Clock::alarm, this, &RepeatingTimer::onAlarm);
    connect(&m_clock, &Clock::wallClockSet, this, [this] {
        if (isRunning()) {
            Q_EMIT nextFireDateMoved();
        }
    });
}

RepeatingTimer::~RepeatingTimer()
{
    stop();
}

void RepeatingTimer::start(std::chrono::seconds period)
{
    m_period = saturated(period);
    arm();
}

void RepeatingTimer::stop()
{
    if (m_due) {
        m_due.reset();
        m_clock.cancelAlarm();
    }
}

std::optional<QDateTime> RepeatingTimer::nextFireDate() const
{
    if (!m_due) {
        return std::nullopt;
    }
    return later(m_clock.now(), std::max(*m_due - m_clock.elapsed(), milliseconds::zero()));
}

void RepeatingTimer::arm()
{
    m_due = m_clock.elapsed() + m_period;
    m_clock.wakeAt(*m_due);
}

void RepeatingTimer::onAlarm()
{
    if (!m_due) {
        return;
    }
    if (m_clock.elapsed() < *m_due) {
        m_clock.wakeAt(*m_due);
        return;
    }
    // From now, not from when it was due: after a night's sleep the missed firings are one.
    arm();
    Q_EMIT fired();
}

} // namespace core
