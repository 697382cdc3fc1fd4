// A line of works on the task pool: one runs at a time, in the order in which
// they came.
//
// It takes no thread of its own and keeps none waiting. The pool is given the
// works one by one, so other works of the pool run between them. When the pool
// drops the work that it was given, all that wait are destroyed with it; the
// line can be used again. Held by a `shared_ptr`; it lives as long as works
// wait. Threads: any.
#pragma once

#include <deque>
#include <memory>
#include <mutex>

#include "platform/concurrency/Scheduler.h"

namespace concurrency {

class serial_queue final : public scheduler, public std::enable_shared_from_this<serial_queue> {
public:
    void schedule(work fnWork) override;

private:
    class turn;

    void give_turn();
    void run_first();
    void drop_all();

    std::mutex m_lock;
    std::deque<work> m_waiting;
    bool m_bTurnGiven = false; // to the pool, or running
};

}
