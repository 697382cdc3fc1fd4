#include "platform/fake/ManualDispatcher.h"

#include <numeric>
#include <stdexcept>
#include <utility>

#include "platform/fake/OffUiScope.h"
#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"

namespace Platform::Fake {

bool ManualDispatcher::HasThreadAccess() const {
    return std::this_thread::get_id() == m_idThread && !OffUiScope::IsActive();
}

std::size_t ManualDispatcher::IndexOf(concurrency::priority ePriority) {
    return static_cast<std::size_t>(static_cast<int>(ePriority) -
                                    static_cast<int>(concurrency::priority::idle));
}

void ManualDispatcher::post(concurrency::priority ePriority, concurrency::work fnWork) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (m_bShutDown) {
        return; // the caller's argument dies after the lock is free
    }
    m_queues[IndexOf(ePriority)].push_back(std::move(fnWork));
    m_posted.notify_all();
}

bool ManualDispatcher::RunOne() {
    concurrency::work fnWork;
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        for (std::size_t n = kPriorities; n-- > 0 && !fnWork;) {
            if (!m_queues[n].empty()) {
                fnWork = std::move(m_queues[n].front());
                m_queues[n].pop_front();
            }
        }
    }
    if (!fnWork) {
        return false;
    }
    RunNow(std::move(fnWork));
    return true;
}

std::size_t ManualDispatcher::RunAll() {
    constexpr std::size_t kLimit = 1'000'000;
    std::size_t nRun = 0;
    while (RunOne()) {
        if (++nRun == kLimit) {
            throw std::logic_error("the dispatcher never gets empty");
        }
    }
    return nRun;
}

void ManualDispatcher::RunNow(concurrency::work fnWork) {
    const OnUiScope scope(shared_from_this());
    try {
        fnWork();
        fnWork = concurrency::work(); // what it owns goes while the context is in force
    } catch (...) {
        Debug::OutputDebugString(
            "unhandled failure in the dispatcher: " + Describe(std::current_exception()) + "\n");
    }
}

std::size_t ManualDispatcher::PendingLocked() const {
    return std::accumulate(m_queues.begin(), m_queues.end(), std::size_t{0},
                           [](std::size_t n, const auto& queue) { return n + queue.size(); });
}

std::size_t ManualDispatcher::Pending() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return PendingLocked();
}

std::size_t ManualDispatcher::Pending(concurrency::priority ePriority) const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_queues[IndexOf(ePriority)].size();
}

bool ManualDispatcher::WaitForWork(std::chrono::nanoseconds limit) {
    std::unique_lock<std::mutex> lock(m_lock);
    return m_posted.wait_for(lock, limit, [this] { return PendingLocked() > 0; });
}

void ManualDispatcher::ShutDown() {
    std::array<std::deque<concurrency::work>, kPriorities> dropped;
    const std::lock_guard<std::mutex> lock(m_lock);
    m_bShutDown = true;
    dropped.swap(m_queues);
}

}
