// The state behind a scripted engine: script, log and counters.
//
// Threads: any. One leaf lock; hooks and gates run outside of it.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

class EngineScript {
public:
    struct Settings {
        std::vector<ScriptedPage> pages;
        std::string strUserPassword;
        std::string strOwnerPassword;
        std::uint32_t nPermissions = 0xFFFFFFFFU;
        std::int32_t nEncryptionType = 0;
        bool bLoadReads = false;
        std::set<std::int32_t> cutShort;
        std::vector<std::uint8_t> savedBytes;
    };

    Settings GetSettings() const;
    bool IsCutShort(std::int32_t nPage) const;
    void ChangeSettings(const std::function<void(Settings&)>& fnChange);

    void QueueLoadResult(common::ErrorCode eCode);
    std::optional<common::ErrorCode> TakeLoadResult();

    std::shared_ptr<Gate> Hold(EngineOp eOp, std::int32_t nPage);
    void FailCall(EngineOp eOp, int nCall, common::ErrorCode eCode);
    void FailPage(EngineOp eOp, std::int32_t nPage, common::ErrorCode eCode);
    void ClearFailures();
    void OnCall(EngineOp eOp, ScriptedEngine::Hook fnHook);

    std::vector<EngineCall> Calls() const;
    void ClearLog();

    // What every operation of the engine does first: logs the call, runs the
    // hook, waits at the gate, and raises what the script says. Raises
    // `task_canceled` when `pAbort` is set before or at the gate.
    void Arrive(EngineCall call, const std::atomic<bool>* pAbort = nullptr);

    // Breaks a render off when its flag is set.
    void ThrowIfAborted(const std::atomic<bool>* pAbort);

    // Counts itself in `nCounter` for its length.
    class Counted {
    public:
        explicit Counted(std::atomic<int>& nCounter) : m_nCounter(nCounter) { ++m_nCounter; }
        ~Counted() { --m_nCounter; }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;

    private:
        std::atomic<int>& m_nCounter;
    };

    std::atomic<int> m_nDocs = 0;
    std::atomic<int> m_nPages = 0;
    std::atomic<int> m_nBitmaps = 0;
    std::atomic<int> m_nRenders = 0;
    std::atomic<int> m_nPeakRenders = 0;
    std::atomic<int> m_nAborted = 0;
    std::atomic<int> m_nFailures = 0;

private:
    using PlaceInEngine = std::pair<EngineOp, std::int32_t>;
    struct PlannedFailure {
        int nCallsToGo = 0;
        common::ErrorCode eCode = common::ErrorCode::e_ErrUnknown;
    };

    std::optional<common::ErrorCode> TakeFailure(const EngineCall& call);
    std::shared_ptr<Gate> GateOf(const EngineCall& call) const;

    mutable std::mutex m_mutex; // guards everything below
    Settings m_settings;
    std::vector<common::ErrorCode> m_loadResults;
    std::map<PlaceInEngine, std::shared_ptr<Gate>> m_gates;
    std::multimap<EngineOp, PlannedFailure> m_callFailures;
    std::map<PlaceInEngine, common::ErrorCode> m_pageFailures;
    std::map<EngineOp, ScriptedEngine::Hook> m_hooks;
    std::vector<EngineCall> m_log;
};

}
