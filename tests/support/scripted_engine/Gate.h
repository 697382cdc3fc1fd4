// A point at which calls of the scripted engine wait until the test lets them on.
//
// Threads: any. A call that waits here keeps its thread: use it with a real
// pool, and `ScriptedEngine::OnCall` with a manual one.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velko::testing {

class Gate {
public:
    // Waits until a call has come to the gate. False when none has after ten
    // seconds, so that a test fails instead of hanging.
    bool WaitUntilReached() {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_bReached; });
    }

    void Open() { // lets all calls pass from now on
        const std::scoped_lock lock(m_mutex);
        m_bOpen = true;
        m_changed.notify_all();
    }

    // For the engine: waits until the gate is open or the flag is set.
    void Pass(const std::atomic<bool>* pAbort) {
        std::unique_lock lock(m_mutex);
        m_bReached = true;
        m_changed.notify_all();
        while (!m_bOpen && (pAbort == nullptr || !*pAbort)) {
            m_changed.wait_for(lock, std::chrono::milliseconds(1)); // no notice of an abort
        }
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bReached = false;
    bool m_bOpen = false;
};

}
