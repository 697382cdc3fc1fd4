// Rendering a rectangle of a page, and the ways between page and device space.
#include <algorithm>
#include <utility>

#include "document/Conversion.h"
#include "document/PagePicture.h"
#include "document/RenderPageEventArgs.h"
#include "document/RenderTarget_p.h"
#include "document/Utility.h"
#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"

namespace velko::vkit {

using concurrency::critical_section;
using velko::common::Bitmap;
using velko::common::Renderer;
using velko::common::vxbase::Matrix2D;
using velko::pdf::PDFPage;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;

namespace {

std::shared_ptr<Bitmap> MakeBlockBitmap(const RenderBlockRequest& request) {
    return detail::MakeFilledBitmap(
        detail::Truncate(static_cast<float>(request.nBitmapWidth) * request.fScale),
        detail::Truncate(static_cast<float>(request.nBitmapHeight) * request.fScale),
        request.nBackColor);
}

Matrix2D MakeBlockMatrix(const RenderBlockRequest& request) {
    Matrix2D matrix = request.pPage->GetDisplayMatrix(
        request.nLeft, request.nTop, detail::Truncate(request.fDisplayWidth),
        detail::Truncate(request.fDisplayHeight), request.nRotate);
    matrix.Scale(request.fScale, request.fScale, 0);
    return matrix;
}

void DrawAnnots(const RenderBlockRequest& request, Renderer& renderer, const Matrix2D& matrix) {
    const auto& hidden = request.hiddenAnnotTypes;
    const std::int32_t nCount = request.pPage->GetAnnotCount();
    for (std::int32_t nIndex = 0; nIndex < nCount; ++nIndex) {
        auto pAnnot = request.pPage->GetAnnot(nIndex);
        if (pAnnot && std::find(hidden.begin(), hidden.end(), pAnnot->GetType()) == hidden.end()) {
            renderer.RenderAnnot(std::move(pAnnot), matrix);
        }
    }
}

// Without a pause object the engine has drawn all when the start returns.
void DrawPage(const RenderBlockRequest& request, Renderer& renderer, const Matrix2D& matrix) {
    if (!request.pPage->IsParsed()) {
        request.pPage->StartParse(0, nullptr, 0);
    }
    if ((request.nRenderFlags & VLK_Document::kRenderContent) != 0) {
        renderer.SetRenderContentFlags(Renderer::kRenderContent);
        renderer.StartRender(request.pPage, matrix, nullptr);
    }
    if ((request.nRenderFlags & VLK_Document::kRenderAnnots) != 0) {
        DrawAnnots(request, renderer, matrix);
    }
}

PageFailures::Part PartOf(const RenderBlockRequest& request) {
    return {{detail::Truncate(request.fDisplayWidth), detail::Truncate(request.fDisplayHeight),
             request.nRotate},
            {request.nLeft, request.nTop, request.nBitmapWidth, request.nBitmapHeight}};
}

Matrix2D MatrixOf(const PDFPage& page, double dbLeft, double dbTop, double dbWidth, double dbHeight,
                  std::int32_t nRotate) {
    return page.GetDisplayMatrix(detail::Truncate(dbLeft), detail::Truncate(dbTop),
                                 detail::Truncate(dbWidth), detail::Truncate(dbHeight), nRotate);
}

Matrix2D Reverse(const Matrix2D& matrix) {
    Matrix2D reverse;
    reverse.SetReverse(matrix);
    return reverse;
}

}

std::shared_ptr<Bitmap> DrawPagePicture(const std::shared_ptr<PDFPage>& pPage, std::int32_t nWidth,
                                        std::int32_t nHeight, const RenderColors& colors,
                                        const concurrency::cancellation_token& token) {
    RenderBlockRequest request;
    static_cast<RenderColors&>(request) = colors;
    request.pPage = pPage;
    request.nBitmapWidth = nWidth;
    request.nBitmapHeight = nHeight;
    request.fDisplayWidth = static_cast<float>(nWidth);
    request.fDisplayHeight = static_cast<float>(nHeight);
    token.throw_if_canceled();
    auto pBitmap = MakeBlockBitmap(request);
    const auto pRenderer = detail::MakeRenderer(request, token, pBitmap);
    DrawPage(request, *pRenderer, MakeBlockMatrix(request));
    return pRenderer->IsIncomplete() ? nullptr : pBitmap;
}

void VLK_Document::FillRenderState(RenderBlockRequest& request) const {
    ThrowIfDisposed();
    request.nRenderFlags = m_nRenderFlags;
    request.hiddenAnnotTypes = m_vecHiddenAnnotTypes;
}

bool VLK_Document::RenderPageBlock(const RenderBlockRequest& request, BitmapBox& outBox) {
    ThrowIfDisposed();
    if (!request.pPage) {
        throw Platform::NullReferenceException("a render needs a page");
    }
    const critical_section::scoped_lock lock(m_RenderLock);
    request.token.throw_if_canceled();
    if (m_bDisposed) {
        throw concurrency::task_canceled(); // closed while this waited
    }
    std::shared_ptr<Bitmap> pBitmap;
    std::shared_ptr<Renderer> pRenderer;
    Matrix2D matrix;
    const PageFailures::Part part = PartOf(request);
    try {
        pBitmap = MakeBlockBitmap(request);
        matrix = MakeBlockMatrix(request);
        pRenderer = detail::MakeRenderer(request, request.token, pBitmap);
        DrawPage(request, *pRenderer, matrix);
    } catch (...) {
        NoteFailure(part, request.pPage->GetIndex(), std::current_exception());
        throw;
    }
    if (pRenderer->IsIncomplete()) {
        NoteCutShort(part, request.pPage->GetIndex());
    } else {
        NoteSuccess(part, request.pPage->GetIndex());
    }
    if (const auto pOwner = Owner()) {
        pOwner->RaiseRenderPage(
            std::make_shared<RenderPageEventArgs>(pRenderer, request.pPage->GetIndex(), matrix));
    }
    outBox.pBitmap = std::move(pBitmap);
    return true;
}

std::shared_ptr<PDFPage> VLK_Document::TablePage(std::int32_t nPageIndex) {
    const EntryPtr pEntry = ReLoadPageIndex(nPageIndex);
    return pEntry ? View(pEntry).pPage : nullptr;
}

Point VLK_Document::DevicePointToPagePoint(std::int32_t nPageIndex, double dbLeft, double dbTop,
                                           double dbWidth, double dbHeight, std::int32_t nRotate,
                                           Point pt) {
    const auto pPage = TablePage(nPageIndex);
    if (!pPage) {
        return pt;
    }
    return Utility::TransformPoint(
        Reverse(MatrixOf(*pPage, dbLeft, dbTop, dbWidth, dbHeight, nRotate)), pt);
}

Point VLK_Document::PagePointToDevicePoint(std::int32_t nPageIndex, double dbLeft, double dbTop,
                                           double dbWidth, double dbHeight, std::int32_t nRotate,
                                           Point pt) {
    const auto pPage = TablePage(nPageIndex);
    if (!pPage) {
        return pt;
    }
    return Utility::TransformPoint(MatrixOf(*pPage, dbLeft, dbTop, dbWidth, dbHeight, nRotate), pt);
}

Rect VLK_Document::DeviceRectToPageRect(std::int32_t nPageIndex, double dbLeft, double dbTop,
                                        double dbWidth, double dbHeight, std::int32_t nRotate,
                                        const Rect& rc) {
    const auto pPage = TablePage(nPageIndex);
    if (!pPage) {
        return Rect::Empty();
    }
    return Utility::TransformRect(
        Reverse(MatrixOf(*pPage, dbLeft, dbTop, dbWidth, dbHeight, nRotate)), rc);
}

Rect VLK_Document::PageRectToDeviceRect(std::int32_t nPageIndex, double dbLeft, double dbTop,
                                        double dbWidth, double dbHeight, std::int32_t nRotate,
                                        const Rect& rc) {
    const auto pPage = TablePage(nPageIndex);
    if (!pPage) {
        return Rect::Empty();
    }
    return Utility::TransformRect(MatrixOf(*pPage, dbLeft, dbTop, dbWidth, dbHeight, nRotate), rc);
}

Matrix2D VLK_Document::GetDisplayMatrix(std::int32_t nPageIndex, double dbLeft, double dbTop,
                                        double dbWidth, double dbHeight, std::int32_t nRotate) {
    const auto pPage = TablePage(nPageIndex);
    return pPage ? MatrixOf(*pPage, dbLeft, dbTop, dbWidth, dbHeight, nRotate) : Matrix2D();
}

}
