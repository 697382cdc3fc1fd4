// A task pool whose works a test runs by hand, on the test's own thread and in
// any order that it likes.
//
// A work that runs sees no UI context, as on a pool thread. A work that blocks
// until another work of this pool has run never returns: tests of blocking use
// the real pool. Threads: `schedule` and the counts from any thread.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>

#include "platform/concurrency/Scheduler.h"

namespace Platform::Fake {

class ManualScheduler final : public concurrency::scheduler {
public:
    void schedule(concurrency::work fnWork) override;

    std::size_t Pending() const;

    // Runs the oldest work. False when there is none.
    bool RunOne() { return Run(0); }
    // Runs the newest work. False when there is none.
    bool RunNewest();
    // Runs the work at `nPosition`, 0 being the oldest. False when it is not there.
    bool Run(std::size_t nPosition);
    // Runs works, the oldest first, until none is left. Returns how many ran;
    // raises `std::logic_error` after a million.
    std::size_t RunAll();

    // Destroys the work at `nPosition` without running it, as a pool that ends does.
    bool Drop(std::size_t nPosition);
    // Destroys what waits and everything that is scheduled from now on.
    void ShutDown();

private:
    concurrency::work Take(std::size_t nPosition);

    mutable std::mutex m_lock;
    std::deque<concurrency::work> m_works;
    bool m_bShutDown = false;
};

}
