// Time that passes when a test says so, and the timers that live by it.
//
// Threads: the UI thread only.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

#include "platform/fake/ManualDispatcher.h"

namespace Platform::Fake {

class ManualTimer;

class ManualClock : public std::enable_shared_from_this<ManualClock> {
public:
    // Ticks run as works of `pDispatcher` do.
    explicit ManualClock(std::shared_ptr<ManualDispatcher> pDispatcher);

    std::chrono::nanoseconds Now() const { return m_now; }

    // Lets time pass; timers that fall due tick in the order of their times,
    // those of one time in the order in which they were started.
    void Advance(std::chrono::nanoseconds span);
    // Time that the UI thread is at work: what falls due meanwhile ticks later.
    void Pass(std::chrono::nanoseconds span) { m_now += span; }

    // A stopped timer of one second. An interval below a millisecond counts as one.
    std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> CreateTimer();

    std::size_t RunningTimers() const;

private:
    friend class ManualTimer;
    std::shared_ptr<ManualTimer> NextDue(std::chrono::nanoseconds until) const;

    std::shared_ptr<ManualDispatcher> m_pDispatcher;
    std::chrono::nanoseconds m_now{0};
    std::vector<std::weak_ptr<ManualTimer>> m_timers;
    std::size_t m_nStarts = 0;
};

}
