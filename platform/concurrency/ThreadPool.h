// The task pool: threads that run works in their order and that multiply while
// some of them wait.
//
// As many threads run as were asked for; a thread inside a `blocking_scope`
// does not count, so that works waiting for a lock never keep others from
// running. Threads start when needed and idle ones beyond the number asked for
// end after a while. `stop` ends the pool; its owner calls it, since a thread of
// the pool may be the one that lets the last reference go. Threads: any.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/concurrency/Scheduler.h"
#include "platform/concurrency/StopSignal.h"

namespace concurrency {

class ThreadPool final : public scheduler {
public:
    explicit ThreadPool(unsigned nThreads);
    ~ThreadPool() override;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    void schedule(work fnWork) override;

    // Lets the running works end, with their waits by `stop_signal` cut short,
    // destroys those that have not begun and what comes from now on, and joins.
    // Not from a thread of the pool.
    void stop();

    // As `stop`, but leaves behind the threads that wait inside a
    // `blocking_scope`: a system call may never return. Such a thread runs
    // nothing any more once it does. The pool itself must never be destroyed.
    void abandon();

    // True when no work waits or runs.
    bool is_idle() const;

private:
    class worker;

    void RunWorker();
    void GrowIfNeeded(); // with m_lock held
    void StartThread();  // with m_lock held
    void BeginBlocking();
    void EndBlocking();

    const unsigned m_nWanted;
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::condition_variable m_left; // a thread ended, or began to wait
    std::deque<work> m_queue;
    std::vector<std::thread> m_threads;
    std::vector<std::thread> m_ended; // threads that left, to be joined
    unsigned m_nThreads = 0;
    unsigned m_nIdle = 0;
    unsigned m_nBlocked = 0;
    bool m_bStopping = false;
    bool m_bAbandoned = false;
    stop_signal m_stopSignal;
};

}
