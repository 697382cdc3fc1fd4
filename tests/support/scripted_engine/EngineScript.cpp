#include <algorithm>

#include "platform/concurrency/Cancellation.h"
#include "tests/support/scripted_engine/EngineScript_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;

EngineScript::Settings EngineScript::GetSettings() const {
    const std::scoped_lock lock(m_mutex);
    return m_settings;
}

bool EngineScript::IsCutShort(std::int32_t nPage) const {
    const std::scoped_lock lock(m_mutex);
    return m_settings.cutShort.contains(nPage);
}

void EngineScript::ChangeSettings(const std::function<void(Settings&)>& fnChange) {
    const std::scoped_lock lock(m_mutex);
    fnChange(m_settings);
}

void EngineScript::QueueLoadResult(ErrorCode eCode) {
    const std::scoped_lock lock(m_mutex);
    m_loadResults.push_back(eCode);
}

std::optional<ErrorCode> EngineScript::TakeLoadResult() {
    const std::scoped_lock lock(m_mutex);
    if (m_loadResults.empty()) {
        return std::nullopt;
    }
    const ErrorCode eCode = m_loadResults.front();
    m_loadResults.erase(m_loadResults.begin());
    return eCode;
}

std::shared_ptr<Gate> EngineScript::Hold(EngineOp eOp, std::int32_t nPage) {
    auto pGate = std::make_shared<Gate>();
    const std::scoped_lock lock(m_mutex);
    m_gates[{eOp, nPage}] = pGate;
    return pGate;
}

void EngineScript::FailCall(EngineOp eOp, int nCall, ErrorCode eCode) {
    const std::scoped_lock lock(m_mutex);
    m_callFailures.insert({eOp, {nCall, eCode}});
}

void EngineScript::FailPage(EngineOp eOp, std::int32_t nPage, ErrorCode eCode) {
    const std::scoped_lock lock(m_mutex);
    m_pageFailures[{eOp, nPage}] = eCode;
}

void EngineScript::ClearFailures() {
    const std::scoped_lock lock(m_mutex);
    m_callFailures.clear();
    m_pageFailures.clear();
}

void EngineScript::OnCall(EngineOp eOp, ScriptedEngine::Hook fnHook) {
    const std::scoped_lock lock(m_mutex);
    m_hooks[eOp] = std::move(fnHook);
}

std::vector<EngineCall> EngineScript::Calls() const {
    const std::scoped_lock lock(m_mutex);
    return m_log;
}

void EngineScript::ClearLog() {
    const std::scoped_lock lock(m_mutex);
    m_log.clear();
}

std::optional<ErrorCode> EngineScript::TakeFailure(const EngineCall& call) {
    std::optional<ErrorCode> eCode;
    const auto [itFirst, itLast] = m_callFailures.equal_range(call.eOp);
    for (auto it = itFirst; it != itLast;) {
        if (--it->second.nCallsToGo == 0) {
            eCode = it->second.eCode;
            it = m_callFailures.erase(it);
        } else {
            ++it;
        }
    }
    const auto itPage = m_pageFailures.find({call.eOp, call.nPage});
    if (itPage != m_pageFailures.end()) {
        eCode = itPage->second;
    }
    return eCode;
}

std::shared_ptr<Gate> EngineScript::GateOf(const EngineCall& call) const {
    for (const std::int32_t nPage : {call.nPage, ScriptedEngine::kAnyPage}) {
        const auto it = m_gates.find({call.eOp, nPage});
        if (it != m_gates.end()) {
            return it->second;
        }
    }
    return nullptr;
}

void EngineScript::Arrive(EngineCall call, const std::atomic<bool>* pAbort) {
    call.idThread = std::this_thread::get_id();
    ScriptedEngine::Hook fnHook;
    std::shared_ptr<Gate> pGate;
    std::optional<ErrorCode> eFailure;
    {
        const std::scoped_lock lock(m_mutex);
        m_log.push_back(call);
        const auto itHook = m_hooks.find(call.eOp);
        if (itHook != m_hooks.end()) {
            fnHook = itHook->second;
        }
        pGate = GateOf(call);
        eFailure = TakeFailure(call);
    }
    if (fnHook) {
        fnHook(call);
    }
    if (pGate) {
        pGate->Pass(pAbort);
    }
    ThrowIfAborted(pAbort);
    if (eFailure) {
        ++m_nFailures;
        throw EngineException(*eFailure,
                              std::string("scripted failure of ") + EngineOpName(call.eOp));
    }
}

void EngineScript::ThrowIfAborted(const std::atomic<bool>* pAbort) {
    if (pAbort != nullptr && pAbort->load(std::memory_order_acquire)) {
        ++m_nAborted;
        throw concurrency::task_canceled();
    }
}

}
