#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>

namespace testlibs {

/// Turns the event loop until @p condition holds, and gives up after half a minute. Without the
/// pauses of QTRY_VERIFY, which would be most of the time of a test that goes round thousands of
/// times.
template <typename Condition>
bool comesTrue(Condition condition)
{
    const QDeadlineTimer deadline(std::chrono::seconds(30));
    QTimer wake;
    wake.start(std::chrono::seconds(1));
    while (!condition() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return condition();
}

} // namespace testlibs
