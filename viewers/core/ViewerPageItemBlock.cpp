#include "viewers/core/ViewerPageItemBlock.h"

#include <utility>

#include "document/engine/Bitmap.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/ui/CoreDispatcher.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/PageGeometry.h"
#include "viewers/core/ViewerCounters.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::task;
using concurrency::task_canceled;

namespace {

constexpr std::uint32_t kBytesPerPixel = 4;

// Up to this many blocks in a page, a finished one overtakes other UI work.
constexpr std::int64_t kLargestUrgentGrid = 8;

}

ViewerPageItemBlock::ViewerPageItemBlock(std::weak_ptr<IPageItemHost> wkHost,
                                         std::shared_ptr<IBlockRenderer> pRenderer,
                                         std::int32_t nPage, std::int32_t nTurn,
                                         std::int32_t nBlockId,
                                         const Render_PageDavidBlock& blockGrid)
    : LaidOutPage(nPage, nTurn),
      m_nBlockId(nBlockId),
      m_wkHost(std::move(wkHost)),
      m_pRenderer(std::move(pRenderer)),
      grid(blockGrid) {
    ViewerCounters::CountBlock();
}

// --- place and bitmap ---

void ViewerPageItemBlock::Place(const Render_ScreenOffsetInfo& rc,
                                const Render_PDFPageOffsetInfo& offset,
                                const Windows::Foundation::Rect& rcScreen) {
    screenRect = rc;
    m_pageOffset = offset;
    m_bIsDisplay = rc.nWidth > 0 && rc.nHeight > 0 && ToRect(rc).IntersectsWith(rcScreen);
}

PageShare ViewerPageItemBlock::Share() const {
    if (m_pageOffset.nPageWidth <= 0 || m_pageOffset.nPageHeight <= 0) {
        return {};
    }
    const double dbWidth = m_pageOffset.nPageWidth;
    const double dbHeight = m_pageOffset.nPageHeight;
    return {-m_pageOffset.nOffsetX / dbWidth, -m_pageOffset.nOffsetY / dbHeight,
            screenRect.nWidth / dbWidth, screenRect.nHeight / dbHeight};
}

void ViewerPageItemBlock::ShowStandIn(std::shared_ptr<D2DBitmapSource> pSource) {
    m_pBitmapSource = std::move(pSource);
    m_bIsStandIn = m_pBitmapSource != nullptr;
}

void ViewerPageItemBlock::DropBitmap() {
    m_pBitmapSource.reset();
    m_bIsStandIn = false;
}

// --- rendering ---

void ViewerPageItemBlock::CancelBlock() {
    m_ctsBlock.Renew();
    m_bIsRendering = false;
}

task<void> ViewerPageItemBlock::RenderViewerPageBlock(bool bPaintWhenDone) {
    const auto pHost = m_wkHost.lock();
    const cancellation_token token = m_ctsBlock.Token();
    BlockRender render = pHost ? m_pRenderer->Start(*this, token) : BlockRender();
    if (!render.fnRender) {
        return concurrency::task_from_result<void>();
    }
    return Render(pHost, std::move(render), token, bPaintWhenDone);
}

task<void> ViewerPageItemBlock::Render(std::shared_ptr<IPageItemHost> pHost, BlockRender render,
                                       cancellation_token token, bool bPaintWhenDone) {
    const auto pSelf = shared_from_this();
    const auto pDispatcher = pHost->Dispatcher();
    m_bIsRendering = true;

    BitmapBox box;
    bool bGood = false;
    bool bCanceled = false;
    try {
        co_await concurrency::resume_on(render.pQueue, token);
        bGood = render.fnRender(box);
    } catch (const task_canceled&) {
        bCanceled = true;
    } catch (...) {
        bGood = false; // told on the UI thread
    }
    render = BlockRender();

    // Also when cancelled: what the chain holds last goes on the UI thread.
    co_await concurrency::resume_foreground(pDispatcher, HandOverPriority());
    if (bCanceled || token.is_canceled()) {
        throw task_canceled();
    }
    HandOver(*pHost, box, bGood, bPaintWhenDone);
}

// The frame is asked for in any case: a device that fails may have been lost,
// which the frame finds out and makes up for.
void ViewerPageItemBlock::HandOver(IPageItemHost& host, BitmapBox& box, bool bGood,
                                   bool bPaintWhenDone) {
    Platform::FirstFailure steps;
    steps.Run([&] { TakeOver(host, box, bGood); });
    // Idle before the frame: one that meets a lost device starts this block anew.
    m_bIsRendering = false;
    steps.Run([&] {
        if (m_bIsDisplay && bPaintWhenDone) {
            host.PaintCanvas();
        }
    });
    steps.Rethrow();
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
        m_pRenderer->TellFailed();
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
        m_pRenderer->TellShown(*this);
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
