#include "tests/support/scripted_engine/ScriptedEngine.h"

#include <algorithm>

#include "platform/concurrency/Cancellation.h"
#include "tests/support/scripted_engine/ScriptedObjects_p.h"

namespace velko::testing {

using common::ErrorCode;

ScriptedEngine::Registration::Registration(const EnginePtr& pEngine) {
    Platform::RegisterActivationFactory(pdf::kPDFDocClass, MakeDocFactory(pEngine));
    Platform::RegisterActivationFactory(common::kBitmapClass, MakeBitmapFactory(pEngine));
    Platform::RegisterActivationFactory(common::kRendererClass, MakeRendererFactory(pEngine));
    Platform::RegisterActivationFactory(pdf::kReflowPageClass, MakeReflowFactory(pEngine));
}

ScriptedEngine::Registration::~Registration() {
    for (const char* szClass :
         {pdf::kPDFDocClass, common::kBitmapClass, common::kRendererClass, pdf::kReflowPageClass}) {
        Platform::UnregisterActivationFactory(szClass);
    }
}

void ScriptedEngine::SetPages(std::vector<ScriptedPage> pages) {
    Locked([&] { m_contents.pages = std::move(pages); });
}

void ScriptedEngine::SetPasswords(std::string strUser, std::string strOwner) {
    Locked([&] {
        m_contents.strUserPassword = std::move(strUser);
        m_contents.strOwnerPassword = std::move(strOwner);
    });
}

void ScriptedEngine::SetPermissions(std::uint32_t nPermissions) {
    Locked([&] { m_contents.nPermissions = nPermissions; });
}

void ScriptedEngine::SetEncryptionType(std::int32_t nType) {
    Locked([&] { m_contents.nEncryptionType = nType; });
}

void ScriptedEngine::SetLoadReads(bool bReads) {
    Locked([&] { m_contents.bLoadReads = bReads; });
}

ScriptedEngine::Contents ScriptedEngine::GetContents() const {
    const std::scoped_lock lock(m_mutex);
    return m_contents;
}

void ScriptedEngine::QueueLoadResult(ErrorCode eCode) {
    Locked([&] { m_loadResults.push_back(eCode); });
}

ErrorCode ScriptedEngine::TakeLoadResult() {
    const std::scoped_lock lock(m_mutex);
    if (m_loadResults.empty()) {
        return ErrorCode::e_ErrSuccess;
    }
    const ErrorCode eCode = m_loadResults.front();
    m_loadResults.pop_front();
    return eCode;
}

void ScriptedEngine::CutShort(std::int32_t nPage, bool bCut) {
    Locked([&] { bCut ? void(m_cutShort.insert(nPage)) : void(m_cutShort.erase(nPage)); });
}

void ScriptedEngine::SetSave(SaveScript script) {
    Locked([&] { m_save = script; });
}

SaveScript ScriptedEngine::GetSaveScript() const {
    const std::scoped_lock lock(m_mutex);
    return m_save;
}

bool ScriptedEngine::IsCutShort(std::int32_t nPage) const {
    const std::scoped_lock lock(m_mutex);
    return m_cutShort.contains(nPage);
}

std::shared_ptr<Gate> ScriptedEngine::Hold(EngineOp eOp, std::int32_t nPage) {
    auto pGate = std::make_shared<Gate>();
    Locked([&] { m_gates[{eOp, nPage}] = pGate; });
    return pGate;
}

void ScriptedEngine::FailCall(EngineOp eOp, int nCall, ErrorCode eCode) {
    Locked([&] { m_failures.push_back({eOp, kAnyPage, nCall, eCode}); });
}

void ScriptedEngine::FailPage(EngineOp eOp, std::int32_t nPage, ErrorCode eCode) {
    Locked([&] { m_failures.push_back({eOp, nPage, 0, eCode}); });
}

void ScriptedEngine::ClearFailures() {
    Locked([&] { m_failures.clear(); });
}

void ScriptedEngine::OnCall(EngineOp eOp, Hook fnHook) {
    Locked([&] { m_hooks[eOp] = std::move(fnHook); });
}

std::vector<EngineCall> ScriptedEngine::Calls() const {
    const std::scoped_lock lock(m_mutex);
    return m_log;
}

std::vector<EngineCall> ScriptedEngine::Calls(EngineOp eOp) const {
    std::vector<EngineCall> calls = Calls();
    std::erase_if(calls, [eOp](const EngineCall& call) { return call.eOp != eOp; });
    return calls;
}

int ScriptedEngine::Count(EngineOp eOp, std::int32_t nPage) const {
    const std::scoped_lock lock(m_mutex);
    return static_cast<int>(std::count_if(m_log.begin(), m_log.end(), [&](const EngineCall& call) {
        return call.eOp == eOp && (nPage == kAnyPage || call.nPage == nPage);
    }));
}

void ScriptedEngine::ClearLog() {
    Locked([&] { m_log.clear(); });
}

void ScriptedEngine::Arrive(const EngineCall& call, const std::atomic<bool>* pAbort) {
    Hook fnHook;
    std::shared_ptr<Gate> pGate;
    ErrorCode eCode = ErrorCode::e_ErrSuccess;
    bool bFails = false;
    Locked([&] {
        m_log.push_back(call);
        if (const auto it = m_hooks.find(call.eOp); it != m_hooks.end()) {
            fnHook = it->second;
        }
        for (const std::int32_t nPage : {kAnyPage, call.nPage}) {
            const auto it = m_gates.find({call.eOp, nPage});
            pGate = it != m_gates.end() ? it->second : pGate;
        }
        bFails = TakeFailure(call, &eCode);
    });
    if (fnHook) {
        fnHook(call);
    }
    if (pGate) {
        pGate->Pass(pAbort);
    }
    ThrowIfAborted(pAbort);
    if (bFails) {
        ++m_nFailures;
        throw common::EngineException(eCode, "a scripted failure");
    }
}

bool ScriptedEngine::TakeFailure(const EngineCall& call, ErrorCode* peCode) {
    bool bFails = false;
    std::erase_if(m_failures, [&](Failure& failure) {
        if (failure.eOp != call.eOp || (failure.nPage != kAnyPage && failure.nPage != call.nPage)) {
            return false;
        }
        const bool bLast = failure.nCallsToGo == 1;
        if (bLast || failure.nCallsToGo == 0) {
            *peCode = failure.eCode;
            bFails = true;
        } else {
            --failure.nCallsToGo;
        }
        return bLast;
    });
    return bFails;
}

void ScriptedEngine::ThrowIfAborted(const std::atomic<bool>* pAbort) {
    if (pAbort != nullptr && *pAbort) {
        ++m_nAborted;
        throw concurrency::task_canceled();
    }
}

}
