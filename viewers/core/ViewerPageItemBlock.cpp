#include "viewers/core/ViewerPageItemBlock.h"

#include <exception>
#include <utility>

#include "document/VLK_Document.h"
#include "document/engine/Bitmap.h"
#include "platform/system/Debug.h"
#include "platform/ui/CoreDispatcher.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/ViewerCounters.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::task;
using concurrency::task_canceled;

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

// Up to this many blocks in a page, a finished one overtakes other UI work.
constexpr std::int64_t kLargestUrgentGrid = 8;

// Counts a render in flight in the page's entry, until told to end or gone.
class PageUse {
public:
    PageUse(std::shared_ptr<VLK_Document> pDocument, std::shared_ptr<WPPDFPage> pEntry)
        : m_pDocument(std::move(pDocument)), m_pEntry(std::move(pEntry)) {
        m_pDocument->AddPageUse(m_pEntry, 1);
    }
    ~PageUse() { End(); }
    PageUse(const PageUse&) = delete;
    PageUse& operator=(const PageUse&) = delete;

    void End() {
        if (m_pEntry) {
            m_pDocument->AddPageUse(std::exchange(m_pEntry, nullptr), -1);
        }
    }

private:
    const std::shared_ptr<VLK_Document> m_pDocument;
    std::shared_ptr<WPPDFPage> m_pEntry;
};

}

ViewerPageItemBlock::ViewerPageItemBlock(std::weak_ptr<IPageItemHost> wkHost, std::int32_t nPage,
                                         std::int32_t nTurn, std::int32_t nBlockId,
                                         const Render_PageDavidBlock& blockGrid)
    : m_nRotate(nTurn),
      nPageIndex(nPage),
      m_nBlockId(nBlockId),
      m_wkHost(std::move(wkHost)),
      grid(blockGrid) {
    ViewerCounters::CountBlock();
}

void ViewerPageItemBlock::ShowStandIn(std::shared_ptr<D2DBitmapSource> pSource) {
    m_pBitmapSource = std::move(pSource);
    m_bIsStandIn = m_pBitmapSource != nullptr;
}

void ViewerPageItemBlock::DropBitmap() {
    m_pBitmapSource.reset();
    m_bIsStandIn = false;
}

void ViewerPageItemBlock::CancelBlock() {
    m_ctsBlock.Renew();
    m_bIsRendering = false;
}

task<void> ViewerPageItemBlock::RenderViewerPageBlock(bool bPaintWhenDone) {
    const auto pHost = m_wkHost.lock();
    const auto pDocument = pHost ? pHost->LiveDocument() : nullptr;
    const auto pEntry = pDocument ? pDocument->ReLoadPageIndex(nPageIndex) : nullptr;
    if (!pEntry || !pEntry->m_pPageHandle || !pEntry->m_pPageHandle->m_pPage) {
        return concurrency::task_from_result<void>();
    }
    return Render(pHost, pDocument, pEntry, bPaintWhenDone);
}

task<void> ViewerPageItemBlock::Render(std::shared_ptr<IPageItemHost> pHost,
                                       std::shared_ptr<VLK_Document> pDocument,
                                       std::shared_ptr<WPPDFPage> pEntry, bool bPaintWhenDone) {
    const auto pSelf = shared_from_this();
    const cancellation_token token = m_ctsBlock.Token();
    const RenderBlockRequest request = MakeRequest(*pHost, *pDocument, *pEntry, token);
    const auto pDispatcher = pHost->Dispatcher();
    PageUse use(pDocument, pEntry);
    m_bIsRendering = true;

    BitmapBox box;
    bool bGood = false;
    bool bCanceled = false;
    try {
        co_await concurrency::resume_on(pDocument->RenderQueue(), token);
        bGood = pDocument->RenderPageBlock(request, box);
    } catch (const task_canceled&) {
        bCanceled = true;
    } catch (...) {
        bGood = false; // told on the UI thread
    }
    use.End();

    // Also when cancelled: what the chain holds last goes on the UI thread.
    co_await concurrency::resume_foreground(pDispatcher, HandOverPriority());
    if (bCanceled || token.is_canceled()) {
        throw task_canceled();
    }
    const std::exception_ptr pFailure = HandOver(*pHost, box, bGood, bPaintWhenDone);
    if (pFailure) {
        std::rethrow_exception(pFailure);
    }
}

// The frame is asked for in any case: a device that fails may have been lost,
// which the frame finds out and makes up for.
std::exception_ptr ViewerPageItemBlock::HandOver(IPageItemHost& host, BitmapBox& box, bool bGood,
                                                 bool bPaintWhenDone) {
    std::exception_ptr pFailure;
    try {
        TakeOver(host, box, bGood);
    } catch (...) {
        pFailure = std::current_exception();
    }
    // Idle before the frame: one that meets a lost device starts this block anew.
    m_bIsRendering = false;
    try {
        if (m_bIsDisplay && bPaintWhenDone) {
            host.PaintCanvas();
        }
    } catch (...) {
        pFailure = std::current_exception();
    }
    return pFailure;
}

RenderBlockRequest ViewerPageItemBlock::MakeRequest(const IPageItemHost& host,
                                                    const VLK_Document& document,
                                                    const WPPDFPage& entry,
                                                    cancellation_token token) const {
    const BlockColors colors = host.RenderColors();
    RenderBlockRequest request;
    request.pPage = entry.m_pPageHandle->m_pPage;
    request.nLeft = pageOffset.nOffsetX;
    request.nTop = pageOffset.nOffsetY;
    request.nBitmapWidth = screenRect.nWidth;
    request.nBitmapHeight = screenRect.nHeight;
    request.fDisplayWidth = static_cast<float>(pageOffset.nPageWidth);
    request.fDisplayHeight = static_cast<float>(pageOffset.nPageHeight);
    request.nRotate = m_nRotate;
    request.nBackColor = colors.nBackground;
    request.nForeColor = colors.nForeground;
    request.token = std::move(token);
    document.FillRenderState(request);
    return request;
}

concurrency::priority ViewerPageItemBlock::HandOverPriority() const {
    return std::int64_t{grid.nRows} * grid.nCols <= kLargestUrgentGrid
               ? concurrency::priority::high
               : concurrency::priority::normal;
}

// The box gives its bitmap up to the device, which may draw from the engine's
// pixels where they lie.
void ViewerPageItemBlock::TakeOver(IPageItemHost& host, BitmapBox& box, bool bGood) {
    const std::shared_ptr<velko::common::Bitmap> pPixels = std::move(box.pBitmap);
    if (!bGood || !pPixels) {
        Platform::Debug::OutputDebugString("RenderViewerPageBlock Error...\n");
        return;
    }
    auto pSource = std::make_shared<D2DBitmapSource>();
    pSource->m_nBlockId = m_nBlockId;
    pSource->nPageIndex = nPageIndex;
    pSource->nRows = grid.nRows;
    pSource->nCols = grid.nCols;
    pSource->nWidth = pPixels->GetWidth();
    pSource->nHeight = pPixels->GetHeight();
    pSource->m_pD2DBitmap = MakeDeviceBitmap(host, pPixels);
    if (pSource->m_pD2DBitmap) {
        m_pBitmapSource = std::move(pSource);
        m_bIsStandIn = false;
    }
}

std::shared_ptr<Windows::Graphics::ID2D1Bitmap> ViewerPageItemBlock::MakeDeviceBitmap(
    const IPageItemHost& host, const std::shared_ptr<velko::common::Bitmap>& pPixels) const {
    const auto pCanvas = host.Canvas();
    const auto pContext = pCanvas ? pCanvas->CreateRenderDC()->m_pContext : nullptr;
    if (!pContext) {
        return nullptr;
    }
    const auto nWidth = static_cast<std::uint32_t>(pPixels->GetWidth());
    const auto nHeight = static_cast<std::uint32_t>(pPixels->GetHeight());
    return pContext->CreateSharedBitmap({nWidth, nHeight}, pPixels, pPixels->GetBuffer(),
                                        nWidth * kBytesPerPixel,
                                        Windows::Graphics::D2D1_BITMAP_PROPERTIES{});
}

}
