#include "platform/fake/ManualScheduler.h"

#include <stdexcept>
#include <utility>

#include "platform/fake/OffUiScope.h"

namespace Platform::Fake {

void ManualScheduler::schedule(concurrency::work fnWork) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (!m_bShutDown) {
        m_works.push_back(std::move(fnWork));
    }
}

std::size_t ManualScheduler::Pending() const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return m_works.size();
}

concurrency::work ManualScheduler::Take(std::size_t nPosition) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (nPosition >= m_works.size()) {
        return {};
    }
    const auto it = m_works.begin() + static_cast<std::ptrdiff_t>(nPosition);
    concurrency::work fnWork = std::move(*it);
    m_works.erase(it);
    return fnWork;
}

bool ManualScheduler::Run(std::size_t nPosition) {
    concurrency::work fnWork = Take(nPosition);
    if (!fnWork) {
        return false;
    }
    const OffUiScope offUi;
    fnWork();
    fnWork = concurrency::work(); // what it owns goes while the thread still is the pool's
    return true;
}

bool ManualScheduler::RunNewest() {
    const std::size_t nPending = Pending();
    return nPending > 0 && Run(nPending - 1);
}

std::size_t ManualScheduler::RunAll() {
    constexpr std::size_t kLimit = 1'000'000;
    std::size_t nRun = 0;
    while (RunOne()) {
        if (++nRun == kLimit) {
            throw std::logic_error("the pool never gets empty");
        }
    }
    return nRun;
}

bool ManualScheduler::Drop(std::size_t nPosition) {
    const OffUiScope offUi;
    return static_cast<bool>(Take(nPosition));
}

void ManualScheduler::ShutDown() {
    const OffUiScope offUi;
    std::deque<concurrency::work> dropped;
    const std::lock_guard<std::mutex> lock(m_lock);
    m_bShutDown = true;
    dropped.swap(m_works);
}

}
