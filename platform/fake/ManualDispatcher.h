// A UI queue that a test steps by hand.
//
// The thread that makes it is the UI thread. Nothing runs until a test asks;
// while a work runs, this dispatcher is the thread's context. A work that
// throws is logged ("unhandled failure in the dispatcher: ...\n").
// Threads: `post` and the counts from any thread, the rest on the UI thread.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>

#include "platform/ui/CoreDispatcher.h"

namespace Platform::Fake {

class ManualDispatcher final : public Windows::UI::Core::CoreDispatcher {
public:
    // False inside an `OffUiScope`, although a test has but one thread.
    bool HasThreadAccess() const override;
    void post(concurrency::priority ePriority, concurrency::work fnWork) override;

    // Runs the next work by priority and age. False when there is none.
    bool RunOne();
    // Runs works until none is left, those posted meanwhile included. Returns
    // how many ran; raises `std::logic_error` after a million.
    std::size_t RunAll();

    std::size_t Pending() const;
    std::size_t Pending(concurrency::priority ePriority) const;

    // Runs `fnWork` now, as if it came from the queue.
    void RunNow(concurrency::work fnWork);

    // Blocks until a work is there, at most `limit`. Returns whether one is.
    bool WaitForWork(std::chrono::nanoseconds limit);

    // Destroys what waits and everything that is posted from now on.
    void ShutDown();

private:
    static constexpr std::size_t kPriorities = 4;
    static std::size_t IndexOf(concurrency::priority ePriority);
    std::size_t PendingLocked() const;

    const std::thread::id m_idThread = std::this_thread::get_id();
    mutable std::mutex m_lock;
    std::condition_variable m_posted;
    std::array<std::deque<concurrency::work>, kPriorities> m_queues; // lowest priority first
    bool m_bShutDown = false;
};

}
