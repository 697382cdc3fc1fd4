#include "tests/support/scripted_engine/Gate.h"

#include <chrono>

namespace velko::testing {

namespace {

// How long a test waits for a call that never comes, and how often a waiting
// call looks at its abort flag.
constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kAbortPoll{1};

}

bool Gate::WaitUntilReached(int nCalls) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, kPatience, [&] { return m_nReached >= nCalls; });
}

int Gate::Reached() const {
    const std::scoped_lock lock(m_mutex);
    return m_nReached;
}

int Gate::Waiting() const {
    const std::scoped_lock lock(m_mutex);
    return m_nWaiting;
}

void Gate::Step(int nCalls) {
    const std::scoped_lock lock(m_mutex);
    m_nTickets += nCalls;
    m_changed.notify_all();
}

void Gate::Open() {
    const std::scoped_lock lock(m_mutex);
    m_bOpen = true;
    m_changed.notify_all();
}

bool Gate::Pass(const std::atomic<bool>* pAbort) {
    const auto fnAborted = [&] { return pAbort != nullptr && pAbort->load(); };
    const auto fnMayPass = [&] { return m_bOpen || m_nTickets > 0 || fnAborted(); };
    std::unique_lock lock(m_mutex);
    ++m_nReached;
    ++m_nWaiting;
    m_changed.notify_all();
    while (!fnMayPass()) {
        if (pAbort != nullptr) {
            m_changed.wait_for(lock, kAbortPoll); // nobody notifies of an abort
        } else {
            m_changed.wait(lock);
        }
    }
    --m_nWaiting;
    if (fnAborted()) {
        return false;
    }
    if (!m_bOpen) {
        --m_nTickets;
    }
    return true;
}

}
