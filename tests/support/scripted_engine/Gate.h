// A point at which calls of the scripted engine wait until the test lets them on.
//
// Threads: any. A call that waits here keeps its thread: use it with a real
// pool, and `ScriptedEngine::OnCall` with a manual one.
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace velko::testing {

class Gate {
public:
    // Waits until `nCalls` calls in all have reached the gate. False when they
    // have not after ten seconds, so that a test fails instead of hanging.
    bool WaitUntilReached(int nCalls = 1);

    // Calls that have reached the gate so far, and those that wait in it now.
    int Reached() const;
    int Waiting() const;

    void Step(int nCalls = 1); // lets so many calls pass, now or when they come
    void Open();               // lets all calls pass from now on

    // For the engine: waits for the turn. False when `pAbort` was set first.
    bool Pass(const std::atomic<bool>* pAbort);

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_nReached = 0;
    int m_nWaiting = 0;
    int m_nTickets = 0;
    bool m_bOpen = false;
};

}
