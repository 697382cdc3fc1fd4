// The UI thread's queue: the most urgent work first, those of one priority by age.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Event.h"

namespace Windows::UI::Core {

using CoreDispatcherPriority = concurrency::priority;

// What throws is logged. After the end works are destroyed unrun. Posting: any thread.
class CoreDispatcher : public concurrency::context {
public:
    virtual bool HasThreadAccess() const = 0;
    void RunAsync(CoreDispatcherPriority ePriority, concurrency::work fnWork) {
        post(ePriority, std::move(fnWork));
    }
};

}

namespace Windows::UI::Xaml {

// Ticks on the UI thread until stopped, each interval after the last tick.
// Threads: UI thread only.
class DispatcherTimer {
public:
    virtual ~DispatcherTimer() = default;
    virtual void Interval(std::chrono::nanoseconds interval) = 0;
    virtual void Start() = 0; // a running timer begins its interval anew
    virtual void Stop() = 0;
    virtual bool IsEnabled() const = 0;
    Foundation::Event<> Tick;
};

}
