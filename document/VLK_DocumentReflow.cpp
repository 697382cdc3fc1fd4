// A page's text set anew: measuring it, and rendering a band of it.
#include <utility>

#include "document/Conversion.h"
#include "document/RenderTarget_p.h"
#include "document/VLK_Document.h"
#include "document/engine/ReflowPage.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Activation.h"

namespace velko::vkit {

using concurrency::critical_section;
using velko::common::EngineException;
using velko::common::ErrorCode;
using velko::common::IPauseCallback;
using velko::common::Progressive;
using velko::common::vxbase::Matrix2D;
using velko::pdf::PDFPage;
using velko::pdf::ReflowPage;

namespace {

constexpr float kPercent = 100.0F;

// Told apart from the parts of a page as it is, which has no size below 0.
PageFailures::Part PartOf(const ReflowBlockRequest& request) {
    return {{-1, request.pPage->nContentWidth, request.pPage->nContentHeight},
            {request.nLeft, request.nTop, request.nBitmapWidth, request.nBitmapHeight}};
}

bool IsPaused(const std::shared_ptr<Progressive>& pProgress, IPauseCallback* pPause) {
    return pPause != nullptr && pProgress->Continue() == Progressive::kToBeContinued;
}

// Empty when it was paused.
std::shared_ptr<ReflowPage> Set(std::shared_ptr<PDFPage> pPage, const ReflowParameters& wanted,
                                IPauseCallback* pPause) {
    auto pReflow =
        Platform::GetActivationFactory<velko::pdf::IReflowPageFactory>(velko::pdf::kReflowPageClass)
            ->Create(std::move(pPage));
    pReflow->SetScreenSize(static_cast<float>(wanted.dbWidth), static_cast<float>(wanted.dbHeight));
    pReflow->SetZoom(detail::Truncate(wanted.fZoom * kPercent));
    pReflow->SetSpacing1(wanted.fSpacing1);
    pReflow->SetSpacing2(wanted.fSpacing2);
    pReflow->SetParseFlags(wanted.bShowPicture ? ReflowPage::kTextAndPictures : ReflowPage::kText);
    const bool bPaused = IsPaused(pReflow->StartParse(pPause), pPause);
    return bPaused ? nullptr : pReflow; // set by now
}

Matrix2D MakeBandMatrix(const ReflowBlockRequest& request) {
    Matrix2D matrix = request.pPage->m_pReflowPage->GetDisplayMatrix();
    matrix.Scale(request.fScale, request.fScale, 0);
    matrix.E += static_cast<float>(request.nLeft);
    matrix.F += static_cast<float>(request.nTop);
    return matrix;
}

}

std::shared_ptr<VLK_ReflowPage> VLK_Document::CreateReflowPage(std::int32_t nPageIndex,
                                                               const ReflowParameters& wanted,
                                                               IPauseCallback* pPause) {
    const PdfDocPtr pPdfDoc = EngineDoc();
    if (!IsPageIndex(nPageIndex)) {
        return nullptr;
    }
    auto pRecord = std::make_shared<VLK_ReflowPage>();
    try {
        const auto pPage = pPdfDoc->GetPage(nPageIndex);
        if (!pPage) {
            throw EngineException(ErrorCode::e_ErrNotFound, "the document has no such page");
        }
        if (!pPage->IsParsed() && !ParseToEnd(*pPage, pPause)) {
            return nullptr;
        }
        pRecord->m_pReflowPage = Set(pPage, wanted, pPause);
        if (!pRecord->m_pReflowPage) {
            return nullptr;
        }
        pRecord->nContentWidth = pRecord->m_pReflowPage->GetContentWidth();
        pRecord->nContentHeight = pRecord->m_pReflowPage->GetContentHeight();
    } catch (...) {
        NoteFailure({}, nPageIndex, std::current_exception());
        throw;
    }
    return pRecord;
}

bool VLK_Document::RenderReflowBlock(const ReflowBlockRequest& request, BitmapBox& outBox) {
    ThrowIfDisposed();
    if (!request.pPage || !request.pPage->m_pReflowPage) {
        throw Platform::NullReferenceException("a render needs a page");
    }
    const critical_section::scoped_lock lock(m_RenderLock);
    request.token.throw_if_canceled();
    if (m_bDisposed) {
        throw concurrency::task_canceled(); // closed while this waited
    }
    const PageFailures::Part part = PartOf(request);
    try {
        auto pBitmap = detail::MakeFilledBitmap(request.nBitmapWidth, request.nBitmapHeight,
                                                request.nBackColor);
        const auto pRenderer = detail::MakeRenderer(request, request.token, pBitmap);
        pRenderer->StartRenderReflowPage(request.pPage->m_pReflowPage, MakeBandMatrix(request),
                                         nullptr);
        if (pRenderer->IsIncomplete()) {
            NoteCutShort(part, request.nPageIndex);
        } else {
            NoteSuccess(part, request.nPageIndex);
        }
        outBox.pBitmap = std::move(pBitmap);
    } catch (...) {
        NoteFailure(part, request.nPageIndex, std::current_exception());
        throw;
    }
    return true;
}

}
