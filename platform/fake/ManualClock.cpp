#include "platform/fake/ManualClock.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/foundation/Exception.h"

namespace Platform::Fake {

class ManualTimer final : public Windows::UI::Xaml::DispatcherTimer {
public:
    explicit ManualTimer(std::weak_ptr<ManualClock> wkClock) : m_wkClock(std::move(wkClock)) {}

    void Interval(std::chrono::nanoseconds interval) override {
        if (interval < std::chrono::nanoseconds::zero()) {
            throw Platform::InvalidArgumentException("a negative timer interval");
        }
        m_interval = std::max<std::chrono::nanoseconds>(interval, std::chrono::milliseconds(1));
        if (m_bEnabled) {
            Start();
        }
    }
    void Start() override {
        if (const auto pClock = m_wkClock.lock()) {
            m_bEnabled = true;
            m_due = pClock->m_now + m_interval;
            m_nOrder = ++pClock->m_nStarts;
        }
    }
    void Stop() override { m_bEnabled = false; }
    bool IsEnabled() const override { return m_bEnabled; }

    std::chrono::nanoseconds Due() const { return m_due; }
    auto Rank() const { return std::tuple(m_due, m_nOrder); }
    void Restart() { Start(); }

private:
    std::weak_ptr<ManualClock> m_wkClock;
    std::chrono::nanoseconds m_interval = std::chrono::seconds(1);
    std::chrono::nanoseconds m_due{0};
    std::size_t m_nOrder = 0;
    bool m_bEnabled = false;
};

ManualClock::ManualClock(std::shared_ptr<ManualDispatcher> pDispatcher)
    : m_pDispatcher(std::move(pDispatcher)) {}

std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> ManualClock::CreateTimer() {
    std::erase_if(m_timers, [](const auto& wkTimer) { return wkTimer.expired(); });
    auto pTimer = std::make_shared<ManualTimer>(weak_from_this());
    m_timers.push_back(pTimer);
    return pTimer;
}

std::size_t ManualClock::RunningTimers() const {
    return static_cast<std::size_t>(
        std::count_if(m_timers.begin(), m_timers.end(), [](const auto& wkTimer) {
            const auto pTimer = wkTimer.lock();
            return pTimer && pTimer->IsEnabled();
        }));
}

std::shared_ptr<ManualTimer> ManualClock::NextDue(std::chrono::nanoseconds until) const {
    std::shared_ptr<ManualTimer> pNext;
    for (const auto& wkTimer : m_timers) {
        const auto pTimer = wkTimer.lock();
        if (pTimer && pTimer->IsEnabled() && pTimer->Due() <= until &&
            (!pNext || pTimer->Rank() < pNext->Rank())) {
            pNext = pTimer;
        }
    }
    return pNext;
}

void ManualClock::Advance(std::chrono::nanoseconds span) {
    const std::chrono::nanoseconds until = m_now + span;
    while (const auto pTimer = NextDue(until)) {
        m_now = std::max(m_now, pTimer->Due());
        pTimer->Restart();
        m_pDispatcher->RunNow([pTimer] { pTimer->Tick.raise(); });
    }
    m_now = until;
}

}
