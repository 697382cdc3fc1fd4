// The asynchronous operations of the platform: a result that arrives later,
// with a status, and a handler that hears of its completion.
//
// The handler runs on the thread that ends the operation, or at once on the
// caller's when it has ended. File operations end on threads of their own,
// never on the task pool, so a pool thread may wait for one.
//
// Threads: any. One handler at a time may be set.
#pragma once

#include <functional>
#include <utility>

#include "platform/concurrency/Task.h"

namespace Windows::Foundation {

enum class AsyncStatus { Started = 0, Completed = 1, Canceled = 2, Error = 3 };

template <class T>
class AsyncOperation {
public:
    using CompletedHandler = std::function<void(const AsyncOperation&, AsyncStatus)>;

    AsyncOperation(concurrency::task<T> task) // NOLINT(google-explicit-constructor)
        : m_task(std::move(task)) {}

    AsyncStatus Status() const {
        if (!m_task.is_done()) {
            return AsyncStatus::Started;
        }
        if (m_task.is_value()) {
            return AsyncStatus::Completed;
        }
        return m_task.is_canceled() ? AsyncStatus::Canceled : AsyncStatus::Error;
    }

    // The value; raises the failure or `task_canceled`. Only when ended.
    decltype(auto) GetResults() const { return m_task.get(); }

    void Completed(CompletedHandler fnHandler) const { CallWhenDone(m_task, std::move(fnHandler)); }

    const concurrency::task<T>& AsTask() const { return m_task; }
    auto operator co_await() const { return m_task.operator co_await(); }

private:
    static concurrency::task<void> CallWhenDone(concurrency::task<T> task,
                                                CompletedHandler fnHandler) {
        co_await task.settled_anywhere();
        task.mark_observed(); // the handler is told the status
        const AsyncOperation operation(task);
        fnHandler(operation, operation.Status());
    }

    concurrency::task<T> m_task;
};

using AsyncAction = AsyncOperation<void>;

}
