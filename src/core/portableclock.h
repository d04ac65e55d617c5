#pragma once

#include "core/clock.h"

#include <QTimer>

#include <chrono>
#include <optional>

namespace core {

/// A clock made of a timer and the system's monotonic clock, for systems whose timers stand still
/// while the computer sleeps.
///
/// It does not know of sleep by itself: whoever hears of waking calls woke(). While an alarm is set
/// it looks at the time once in a while, so an untold sleep or a wall clock that was set goes
/// unnoticed for at most that long.
class PortableClock : public Clock
{
    Q_OBJECT

public:
    explicit PortableClock(std::chrono::milliseconds longestWait = std::chrono::minutes(1));

    QDateTime now() const override;
    std::chrono::milliseconds elapsed() const override;
    void wakeAt(std::chrono::milliseconds moment) override;
    void cancelAlarm() override;

public Q_SLOTS:
    /// The computer woke: gives an alarm that was missed meanwhile.
    void woke();

private:
    std::chrono::milliseconds wallClockLead() const;
    void wait();
    void look();

    std::chrono::milliseconds m_longestWait;
    QTimer m_timer;
    std::optional<std::chrono::milliseconds> m_alarm;
    std::chrono::milliseconds m_lead{};
};

} // namespace core
