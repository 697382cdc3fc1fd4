// Waiting for an operation on a pool thread.
//
// For code that must have the result before it can go on, such as a callback of
// a library; a coroutine awaits instead. Threads: any but the UI thread.
#pragma once

#include <memory>

#include "platform/concurrency/CriticalSection.h"
#include "platform/concurrency/StopSignal.h"
#include "platform/foundation/AsyncOperation.h"

namespace Windows::Foundation {

// Gives the value or raises the failure of the operation once it has ended. The
// pool puts another thread to work meanwhile. Raises `task_canceled` when the
// calling thread's pool is told to end first; the operation then goes on without.
template <class T>
T WaitFor(const AsyncOperation<T>& operation) {
    const auto pDone = std::make_shared<concurrency::event>();
    operation.Completed([pDone](const AsyncOperation<T>&, AsyncStatus) { pDone->set(); });
    concurrency::stop_signal::wait(*pDone);
    if (operation.Status() == AsyncStatus::Started) {
        throw concurrency::task_canceled();
    }
    return operation.GetResults();
}

}
