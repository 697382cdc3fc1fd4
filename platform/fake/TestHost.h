// Everything that a test needs to run the component by hand, installed for the
// length of a scope: environment, task pool, application data, debug output.
//
// The thread that makes it is the UI thread, and its dispatcher is the thread's
// context, as if the test's body were a work of the queue. At the end the pool
// ends first, then the dispatcher; what still waits is destroyed, so that its
// tasks end as cancelled. One host at a time.
// Threads: the one that made it, except `DebugOutput` and its like.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/concurrency/ThreadPool.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/ManualDispatcher.h"
#include "platform/fake/ManualScheduler.h"
#include "platform/storage/ApplicationData.h"

namespace Platform::Fake {

class TestHost {
public:
    // The pool to install: the one that is stepped, or one of real threads.
    struct ManualPool {};
    struct RealPool {
        unsigned nThreads = 2;
    };

    explicit TestHost(ManualPool eKind = {});
    explicit TestHost(RealPool pool);
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    ManualDispatcher& Dispatcher() const { return *m_pDispatcher; }
    ManualClock& Clock() const { return *m_pClock; }
    FakeEnvironment& Environment() const { return *m_pEnvironment; }
    // The real one, in a folder that goes with the host.
    Windows::Storage::ApplicationData& Data() const { return *m_pData; }
    // The stepped pool; raises `std::logic_error` when a real one is installed.
    ManualScheduler& Pool() const;

    // Steps dispatcher and pool until `fnDone` holds, or nothing is left to step.
    // Returns whether it holds. Waits for no other thread.
    bool RunUntil(const std::function<bool()>& fnDone);

    // As `RunUntil`, and waits for what other threads (real pool, files) post,
    // at most `limit`.
    bool WaitUntil(const std::function<bool()>& fnDone,
                   std::chrono::milliseconds limit = std::chrono::seconds(20));

    // Steps until dispatcher and pool are both empty; a real pool and file
    // operations are waited for.
    void Drain();

    // Waits until no file operation is under way, and steps nothing meanwhile: what
    // waits to be stepped afterwards does not depend on the speed of the disk.
    void AwaitFiles();

    // The texts written to the debug output so far, each as it was written.
    std::vector<std::string> DebugOutput() const;
    std::size_t CountDebug(const std::string& strText) const; // written exactly so
    bool DebugContains(const std::string& strPart) const;     // within one text
    void ClearDebug();

private:
    struct Log;

    TestHost(std::shared_ptr<ManualScheduler> pManualPool,
             std::shared_ptr<concurrency::ThreadPool> pRealPool);
    bool Step();

    const std::shared_ptr<ManualDispatcher> m_pDispatcher = std::make_shared<ManualDispatcher>();
    const std::shared_ptr<ManualClock> m_pClock = std::make_shared<ManualClock>(m_pDispatcher);
    const std::shared_ptr<FakeEnvironment> m_pEnvironment =
        std::make_shared<FakeEnvironment>(m_pDispatcher, m_pClock);
    const std::shared_ptr<Windows::Storage::ApplicationData> m_pData;
    const std::shared_ptr<Log> m_pLog;
    const std::shared_ptr<ManualScheduler> m_pManualPool; // one of the two
    const std::shared_ptr<concurrency::ThreadPool> m_pRealPool;
    std::function<void(std::string_view)> m_fnSinkBefore;
    std::optional<concurrency::context::scope> m_context;
};

}
