#include "engines/mupdf/reflow/ReflowedPage.h"

#include <utility>

#include "engines/mupdf/FinishedProgress.h"
#include "engines/mupdf/reflow/ModelBuilder.h"

namespace velko::engines::mupdf::reflow {

using Lock = concurrency::critical_section::scoped_lock;

void ReflowedPage::SetScreenSize(float fWidth, float fHeight) {
    m_parameters.fScreenWidth = fWidth;
    m_parameters.fScreenHeight = fHeight;
}

void ReflowedPage::SetParseFlags(std::int32_t nFlags) {
    m_parameters.bPictures = nFlags == kTextAndPictures;
}

std::shared_ptr<const PageModel> ReflowedPage::MakeModel() const {
    auto pContent = m_pPage->Content(nullptr);
    auto pAnnots = m_pPage->GetAnnotCount() != 0 ? m_pPage->Annots(nullptr) : nullptr;
    const fz_rect rcPage = fz_make_rect(0.0F, 0.0F, m_pPage->GetWidth(), m_pPage->GetHeight());
    Operation operation(nullptr, CurrentBudgets().parse);
    return std::make_shared<const PageModel>(
        BuildModel(std::move(pContent), std::move(pAnnots), rcPage, operation));
}

std::shared_ptr<common::Progressive> ReflowedPage::StartParse(common::IPauseCallback*) {
    if (!m_pModel || m_pModel->bCutShort) {
        m_pModel = MakeModel();
    }
    auto pResult = SetModel(m_pModel, m_parameters);
    const bool bCutShort = pResult->bCutShort;
    const Lock lock(m_lock);
    m_pResult = std::move(pResult);
    return std::make_shared<FinishedProgress>(bCutShort ? FinishedProgress::kCutShort
                                                        : FinishedProgress::kFinished);
}

std::shared_ptr<const Layout> ReflowedPage::Result() const {
    const Lock lock(m_lock);
    return m_pResult;
}

std::int32_t ReflowedPage::GetContentWidth() const {
    const auto pResult = Result();
    return pResult ? pResult->nWidth : 0;
}

std::int32_t ReflowedPage::GetContentHeight() const {
    const auto pResult = Result();
    return pResult ? pResult->nHeight : 0;
}

std::shared_ptr<pdf::ReflowPage> ReflowedPageFactory::Create(std::shared_ptr<pdf::PDFPage> pPage) {
    auto pOwn = std::dynamic_pointer_cast<Page>(std::move(pPage));
    if (!pOwn) {
        throw common::EngineException(common::ErrorCode::e_ErrParam, "not a page of this engine");
    }
    return std::make_shared<ReflowedPage>(std::move(pOwn));
}

}
