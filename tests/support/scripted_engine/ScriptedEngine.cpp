#include "tests/support/scripted_engine/ScriptedEngine.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/support/scripted_engine/EngineScript_p.h"
#include "tests/support/scripted_engine/ScriptedBitmap_p.h"
#include "tests/support/scripted_engine/ScriptedDoc_p.h"
#include "tests/support/scripted_engine/ScriptedReflowPage_p.h"
#include "tests/support/scripted_engine/ScriptedRenderer_p.h"

namespace velko::testing {

using common::ErrorCode;

const char* EngineOpName(EngineOp eOp) {
    switch (eOp) {
        case EngineOp::CreateDoc:
            return "CreateDoc";
        case EngineOp::Load:
            return "Load";
        case EngineOp::GetPage:
            return "GetPage";
        case EngineOp::StartParse:
            return "StartParse";
        case EngineOp::GetAnnotCount:
            return "GetAnnotCount";
        case EngineOp::GetAnnot:
            return "GetAnnot";
        case EngineOp::CreateBitmap:
            return "CreateBitmap";
        case EngineOp::CreateRenderer:
            return "CreateRenderer";
        case EngineOp::StartRender:
            return "StartRender";
        case EngineOp::RenderAnnot:
            return "RenderAnnot";
        case EngineOp::StartSaveAs:
            return "StartSaveAs";
        case EngineOp::ReflowStartParse:
            return "ReflowStartParse";
        case EngineOp::StartRenderReflowPage:
            return "StartRenderReflowPage";
        case EngineOp::ReleaseReader:
            return "ReleaseReader";
    }
    return "?";
}

ScriptedEngine::ScriptedEngine(std::vector<ScriptedPage> pages)
    : m_pScript(std::make_shared<EngineScript>()) {
    SetPages(std::move(pages));
}

ScriptedEngine::Registration::Registration(std::shared_ptr<ScriptedEngine> pEngine) {
    const auto& pScript = pEngine->m_pScript;
    Platform::RegisterActivationFactory(pdf::kPDFDocClass,
                                        std::make_shared<ScriptedDocFactory>(pScript));
    Platform::RegisterActivationFactory(pdf::kReflowPageClass,
                                        std::make_shared<ScriptedReflowPageFactory>(pScript));
    Platform::RegisterActivationFactory(common::kBitmapClass,
                                        std::make_shared<ScriptedBitmapFactory>(pScript));
    Platform::RegisterActivationFactory(common::kRendererClass,
                                        std::make_shared<ScriptedRendererFactory>(pScript));
}

ScriptedEngine::Registration::~Registration() {
    for (const char* szClass :
         {pdf::kPDFDocClass, pdf::kReflowPageClass, common::kBitmapClass, common::kRendererClass}) {
        Platform::UnregisterActivationFactory(szClass);
    }
}

std::shared_ptr<pdf::PDFDoc> ScriptedEngine::MakeLoadedDoc() {
    auto pDoc = std::make_shared<ScriptedDoc>(m_pScript, nullptr);
    if (pDoc->Load({}) != ErrorCode::e_ErrSuccess) {
        throw std::logic_error("the scripted document does not load");
    }
    return pDoc;
}

void ScriptedEngine::SetPages(std::vector<ScriptedPage> pages) {
    m_pScript->ChangeSettings([&](auto& settings) { settings.pages = std::move(pages); });
}

void ScriptedEngine::SetPasswords(std::string strUser, std::string strOwner) {
    m_pScript->ChangeSettings([&](auto& settings) {
        settings.strUserPassword = std::move(strUser);
        settings.strOwnerPassword = std::move(strOwner);
    });
}

void ScriptedEngine::SetPermissions(std::uint32_t nPermissions) {
    m_pScript->ChangeSettings([&](auto& settings) { settings.nPermissions = nPermissions; });
}

void ScriptedEngine::SetEncryptionType(std::int32_t nType) {
    m_pScript->ChangeSettings([&](auto& settings) { settings.nEncryptionType = nType; });
}

void ScriptedEngine::SetLoadReads(bool bReads) {
    m_pScript->ChangeSettings([&](auto& settings) { settings.bLoadReads = bReads; });
}

void ScriptedEngine::CutShort(std::int32_t nPage, bool bCut) {
    m_pScript->ChangeSettings([&](auto& settings) {
        settings.cutShort.erase(nPage);
        if (bCut) {
            settings.cutShort.insert(nPage);
        }
    });
}

void ScriptedEngine::SetSavedBytes(std::vector<std::uint8_t> bytes) {
    m_pScript->ChangeSettings([&](auto& settings) { settings.savedBytes = std::move(bytes); });
}

void ScriptedEngine::QueueLoadResult(ErrorCode eCode) {
    m_pScript->QueueLoadResult(eCode);
}

std::shared_ptr<Gate> ScriptedEngine::Hold(EngineOp eOp, std::int32_t nPage) {
    return m_pScript->Hold(eOp, nPage);
}

void ScriptedEngine::FailCall(EngineOp eOp, int nCall, ErrorCode eCode) {
    m_pScript->FailCall(eOp, nCall, eCode);
}

void ScriptedEngine::FailPage(EngineOp eOp, std::int32_t nPage, ErrorCode eCode) {
    m_pScript->FailPage(eOp, nPage, eCode);
}

void ScriptedEngine::ClearFailures() {
    m_pScript->ClearFailures();
}

int ScriptedEngine::FailuresRaised() const {
    return m_pScript->m_nFailures;
}

void ScriptedEngine::OnCall(EngineOp eOp, Hook fnHook) {
    m_pScript->OnCall(eOp, std::move(fnHook));
}

std::vector<EngineCall> ScriptedEngine::Calls() const {
    return m_pScript->Calls();
}

std::vector<EngineCall> ScriptedEngine::Calls(EngineOp eOp) const {
    std::vector<EngineCall> calls = m_pScript->Calls();
    std::erase_if(calls, [eOp](const EngineCall& call) { return call.eOp != eOp; });
    return calls;
}

int ScriptedEngine::Count(EngineOp eOp, std::int32_t nPage) const {
    const std::vector<EngineCall> calls = Calls(eOp);
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const EngineCall& call) {
        return nPage == kAnyPage || call.nPage == nPage;
    }));
}

void ScriptedEngine::ClearLog() {
    m_pScript->ClearLog();
}

int ScriptedEngine::AbortedRenders() const {
    return m_pScript->m_nAborted;
}
int ScriptedEngine::LiveDocs() const {
    return m_pScript->m_nDocs;
}
int ScriptedEngine::LivePages() const {
    return m_pScript->m_nPages;
}
int ScriptedEngine::LiveBitmaps() const {
    return m_pScript->m_nBitmaps;
}
int ScriptedEngine::PeakRenders() const {
    return m_pScript->m_nPeakRenders;
}

}
