#pragma once

#include "core/clock.h"
#include "desktop/desktoppicture.h"

#include <QCoroTask>
#include <QList>

#include <functional>
#include <optional>
#include <utility>

namespace core::fakes {

/// A clock that stands still until a test moves it.
class FakeClock : public Clock
{
    Q_OBJECT

public:
    QDateTime now() const override { return m_now; }
    std::chrono::milliseconds elapsed() const override { return m_elapsed; }
    void wakeAt(std::chrono::milliseconds moment) override { m_alarm = moment; }
    void cancelAlarm() override { m_alarm.reset(); }

    /// Time passes, awake: the alarm comes when it is due, as often as it is set again.
    void pass(std::chrono::milliseconds time)
    {
        const auto end = m_elapsed + time;
        while (m_alarm && *m_alarm <= end) {
            moveTo(std::max(*m_alarm, m_elapsed));
            m_alarm.reset();
            Q_EMIT alarm();
        }
        moveTo(end);
    }

    /// Time passes, asleep: an alarm that was missed comes once, on waking.
    void sleep(std::chrono::milliseconds time)
    {
        moveTo(m_elapsed + time);
        Q_EMIT wallClockSet();
        if (m_alarm && *m_alarm <= m_elapsed) {
            m_alarm.reset();
            Q_EMIT alarm();
        }
    }

    /// The alarm before it is due, as systems give it after very long waits.
    void ringEarly()
    {
        m_alarm.reset();
        Q_EMIT alarm();
    }

    void setWallClock(const QDateTime &now)
    {
        m_now = now;
        Q_EMIT wallClockSet();
    }

    std::optional<std::chrono::milliseconds> alarmMoment() const { return m_alarm; }

private:
    void moveTo(std::chrono::milliseconds moment)
    {
        m_now = m_now.addMSecs((moment - m_elapsed).count());
        m_elapsed = moment;
    }

    QDateTime m_now{QDate(2026, 3, 14), QTime(9, 26, 53)};
    std::chrono::milliseconds m_elapsed{std::chrono::hours(5)};
    std::optional<std::chrono::milliseconds> m_alarm;
};

/// A desktop that remembers what it was given and answers as told.
class FakeDesktop : public desktop::DesktopPicture
{
public:
    std::optional<desktop::Screen> mainScreen() const override { return screen; }

    QCoro::Task<desktop::SetResult> setPicture(QString file, desktop::Screen onScreen) override
    {
        pictures.append({file, onScreen.name});
        meanwhile();
        co_return answer;
    }

    std::optional<desktop::Screen> screen
        = desktop::Screen{QStringLiteral("one"), {0, 0, 800, 600}};
    desktop::SetResult answer;
    std::function<void()> meanwhile = [] {}; ///< What happens while it takes a picture.
    QList<std::pair<QString, QString>> pictures; ///< File and screen name, in order.
};

} // namespace core::fakes
