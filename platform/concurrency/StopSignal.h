// Wakes threads that wait for what may never come, because their pool is told
// to end.
//
// A pool installs its signal on its threads. Code that runs on one waits with
// `stop_signal::wait` where the other side may hang for ever, and looks itself
// at what it waited for. On threads without a signal that is a plain wait.
//
// Threads: any. The lock is a leaf but for the events' own.
#pragma once

#include <mutex>
#include <vector>

#include "platform/concurrency/CriticalSection.h"

namespace concurrency {

class stop_signal {
public:
    // Ends the waits of the threads that it is installed on, now and later.
    void stop();

    // Waits for the event, or until the calling thread's signal stops.
    static void wait(event& done);

    // Installs a signal on the calling thread; empty takes it away.
    static void install(stop_signal* pSignal);

private:
    class registration;

    std::mutex m_lock;
    std::vector<event*> m_waits;
    bool m_bStopped = false;
};

}
