// The UI thread's queue on Qt's event loop.
//
// A work is posted through `QCoreApplication::postEvent` with the event
// priority that matches its own, so that works, input and paints share one
// queue. Works of a higher priority overtake also those that the event loop has
// already begun to hand out. Posting works before an application object exists;
// the works run once its event loop does.
//
// Lifetime: `Create` on the UI thread; from then until `ShutDown` it is that
// thread's `concurrency::context::current`. `ShutDown` (UI thread) destroys
// what waits and everything posted later, unrun.
// Errors: a work that throws is caught and logged.
// Threads: `post`, `HasThreadAccess` and `PendingCount` from any thread.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/ui/CoreDispatcher.h"

namespace Platform::Qt {

class QtDispatcher final : public Windows::UI::Core::CoreDispatcher {
public:
    static std::shared_ptr<QtDispatcher> Create();
    ~QtDispatcher() override;

    bool HasThreadAccess() const override;
    void post(concurrency::priority ePriority, concurrency::work fnWork) override;

    // Works that wait or run now.
    std::size_t PendingCount() const;

    // Runs the works that wait now, without waiting for the event loop. UI thread.
    void RunPending();

    void ShutDown();

    // Runs `fnBody` as a work of the queue is run: what it throws is logged as
    // a failure of `szWhat`. For handlers that Qt calls.
    static void RunGuarded(const char* szWhat, const std::function<void()>& fnBody);

private:
    class Receiver;
    static constexpr std::size_t kPriorities = 4;

    QtDispatcher();
    void RunForemost();
    concurrency::work TakeForemost();

    const std::thread::id m_idThread = std::this_thread::get_id();
    mutable std::mutex m_lock;
    std::array<std::deque<concurrency::work>, kPriorities> m_queues; // most urgent first
    std::size_t m_nPending = 0;
    std::unique_ptr<Receiver> m_pReceiver; // empty after shut-down; all three guarded by m_lock
    int m_nRunning = 0; // works on the UI thread's stack; this and what follows: UI thread
    std::optional<concurrency::context::scope> m_scope;
};

}
