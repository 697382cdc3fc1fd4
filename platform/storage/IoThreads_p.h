// The threads on which file operations run and end.
//
// They multiply when system calls or completion handlers block, and no work of
// the task pool ever runs on them: a pool thread that waits for a read always
// wakes. The process has one set; it ends with the process's static objects,
// and leaves behind those that hang in a system call.
#pragma once

#include <type_traits>
#include <utility>

#include "platform/concurrency/Task.h"
#include "platform/concurrency/ThreadPool.h"

namespace Windows::Storage {

concurrency::ThreadPool& IoThreads();

class IoAwaiter {
public:
    IoAwaiter() {} // user-written: g++ 12 destroys aggregate awaiters twice
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const {
        IoThreads().schedule(concurrency::work(concurrency::detail::resumer(handle)));
    }
    void await_resume() const {}
};

// Runs `fnBody` on one of the threads; the task ends there.
template <class F>
concurrency::task<std::invoke_result_t<F>> RunOnIoThread(F fnBody) {
    co_await IoAwaiter();
    co_return fnBody();
}

}
