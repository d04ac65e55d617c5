#pragma once

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <optional>

namespace core {

class Clock;

/// Fires every period, the first time one period after start().
///
/// A firing that a sleeping computer missed comes once on waking; the next is a full period later.
/// Setting the wall clock moves nextFireDate() but neither delays nor hastens a firing.
class RepeatingTimer : public QObject
{
    Q_OBJECT

public:
    explicit RepeatingTimer(Clock &clock, QObject *parent = nullptr);
    ~RepeatingTimer() override;

    void start(std::chrono::seconds period);
    void stop();
    bool isRunning() const { return m_due.has_value(); }
    /// When the next firing is expected by the wall clock, never in the past; none while stopped.
    std::optional<QDateTime> nextFireDate() const;

Q_SIGNALS:
    void fired();
    /// The wall clock was set while running: nextFireDate() reads differently now.
    void nextFireDateMoved();

private:
    void arm();
    void onAlarm();

    Clock &m_clock;
    std::chrono::milliseconds m_period{};
    std::optional<std::chrono::milliseconds> m_due; ///< In Clock::elapsed() time.
};

} // namespace core
