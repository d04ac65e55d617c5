#pragma once

#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include <functional>
#include <memory>
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

} // namespace desktop
