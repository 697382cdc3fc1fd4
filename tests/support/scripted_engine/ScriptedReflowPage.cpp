#include "tests/support/scripted_engine/ScriptedReflowPage_p.h"

#include <algorithm>

#include "tests/support/scripted_engine/ScriptedDoc_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;

ScriptedReflowPage::ScriptedReflowPage(std::shared_ptr<EngineScript> pScript,
                                       std::shared_ptr<ScriptedPageObject> pPage)
    : m_pScript(std::move(pScript)), m_pPage(std::move(pPage)) {}

std::int32_t ScriptedReflowPage::Index() const {
    return m_pPage->Index();
}

std::shared_ptr<common::Progressive> ScriptedReflowPage::StartParse(common::IPauseCallback*) {
    EngineCall call;
    call.eOp = EngineOp::ReflowStartParse;
    call.nPage = m_pPage->Index();
    call.nWidth = static_cast<std::int32_t>(m_fWidth);
    call.nHeight = m_nZoom;
    m_pScript->Arrive(call);
    const float fZoom = static_cast<float>(m_nZoom) / 100.0F;
    const float fWidth = std::max(m_fWidth, 1.0F);
    m_nContentWidth = static_cast<std::int32_t>(m_fWidth);
    m_nContentHeight = static_cast<std::int32_t>(m_pPage->Script().fReflowHeight * fZoom * fZoom *
                                                 1000.0F / fWidth);
    return std::make_shared<CountedProgress>(0);
}

std::shared_ptr<pdf::ReflowPage> ScriptedReflowPageFactory::Create(
    std::shared_ptr<pdf::PDFPage> pPage) {
    auto pScripted = std::dynamic_pointer_cast<ScriptedPageObject>(pPage);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "a page of another engine");
    }
    return std::make_shared<ScriptedReflowPage>(m_pScript, std::move(pScripted));
}

}
