#pragma once

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <memory>

namespace core {

/// Time as the repeating timer sees it: what a wall shows, how long the computer has been up, and
/// one alarm. Main thread only.
class Clock : public QObject
{
    Q_OBJECT

public:
    /// The wall clock, which people and time servers set forward and back.
    virtual QDateTime now() const = 0;
    /// Time since some fixed moment; never set, and goes on while the computer sleeps.
    virtual std::chrono::milliseconds elapsed() const = 0;
    /// Arranges for alarm() once elapsed() has reached @p moment, or at once on waking if the
    /// computer slept past it. Replaces an earlier alarm. The signal may come early after very
    /// long waits; then ask again.
    virtual void wakeAt(std::chrono::milliseconds moment) = 0;
    virtual void cancelAlarm() = 0;

    /// The clock of this computer.
    static std::unique_ptr<Clock> system();

Q_SIGNALS:
    void alarm();
    /// The wall clock was set, or the computer woke: moments reckoned with now() are stale.
    void wallClockSet();
};

} // namespace core
