// Where work runs: the task pool, and the contexts (a UI thread's queue) to
// which a continuation returns.
#pragma once

#include <memory>

#include "platform/concurrency/Work.h"

namespace concurrency {

// Runs works on threads of its own, in the order of scheduling as far as
// threads are free. A work that throws is a fault of its author and ends the
// process. Threads: any.
class scheduler {
public:
    virtual ~scheduler() = default;
    virtual void schedule(work fnWork) = 0;
};

// The process's task pool. Set once by whoever starts the process, before the
// first use; tests replace it. Without one, scheduling raises.
void set_task_pool(std::shared_ptr<scheduler> pPool);
std::shared_ptr<scheduler> task_pool();

enum class priority { idle = -2, low = -1, normal = 0, high = 1 };

// A thread with a queue. Works of a higher priority overtake; those of one
// priority keep their order. A context that has shut down destroys what it is
// given, without running it.
class context : public std::enable_shared_from_this<context> {
public:
    virtual ~context() = default;
    virtual void post(priority ePriority, work fnWork) = 0; // any thread

    // The context of the calling thread; empty on threads without one.
    static std::shared_ptr<context> current();

    // Makes `pContext` the calling thread's context for the scope's length
    // (an empty one hides the thread's own). Scopes nest.
    class scope {
    public:
        explicit scope(std::shared_ptr<context> pContext);
        ~scope();
        scope(const scope&) = delete;
        scope& operator=(const scope&) = delete;

    private:
        std::shared_ptr<context> m_pBefore;
    };
};

// Tells the pool that the calling thread may wait for long, so that it can put
// another thread to work meanwhile. A no-op outside pool threads.
class blocking_scope {
public:
    blocking_scope();
    ~blocking_scope();
    blocking_scope(const blocking_scope&) = delete;
    blocking_scope& operator=(const blocking_scope&) = delete;

    // What a pool's threads install for themselves.
    class observer {
    public:
        virtual ~observer() = default;
        virtual void begin_blocking() = 0;
        virtual void end_blocking() = 0;
    };
    static void set_thread_observer(observer* pObserver);

private:
    observer* m_pObserver;
};

}
