#pragma once

#include <QDeadlineTimer>
#include <QFuture>
#include <QPromise>
#include <QThreadPool>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

namespace desktop {

/// Runs @p work off the calling thread; await the future to be resumed on the calling thread.
/// What @p work refers to must be its own.
template <typename Work>
[[nodiscard]] QFuture<std::invoke_result_t<Work>> onWorkerThread(Work work)
{
    // The pool wants something that can be copied, which a promise cannot.
    auto promise = std::make_shared<QPromise<std::invoke_result_t<Work>>>();
    promise->start();
    QThreadPool::globalInstance()->start([promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
    });
    return promise->future();
}

/// The same for work that may hang: at @p deadline the result is nothing. The work itself goes on.
template <typename Work>
[[nodiscard]] QFuture<std::optional<std::invoke_result_t<Work>>> onWorkerThread(
    Work work, QDeadlineTimer deadline)
{
    using Result = std::optional<std::invoke_result_t<Work>>;
    auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    QThreadPool::globalInstance()->start([promise, work = std::move(work)] {
        promise->addResult(Result(work()));
        promise->finish();
    });
    // Of two results the first counts.
    QTimer::singleShot(std::chrono::milliseconds(deadline.remainingTime()), [promise] {
        promise->addResult(Result());
        promise->finish();
    });
    return promise->future();
}

} // namespace desktop
