// One rectangle of a laid-out page: it is rendered, held as one device bitmap
// and drawn in one piece.
//
// Life: made by its page item; idle; rendering; rendered. A move changes only
// its numbers. Cancelling a render begins a new generation: what the old one
// brings later is dropped.
// Threads: the UI thread only; the bitmap is handed over there, so there is no
// lock. A render works on the pool with values taken at its start.
// Units: device pixels. Ownership: the item owns it, a render in flight shares
// it; it holds its viewer weakly.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>

#include "document/PageTable.h"
#include "document/RenderBlockRequest.h"
#include "platform/concurrency/Task.h"
#include "surface/D2DBitmapSource.h"
#include "viewers/core/CancellationGeneration.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class ViewerPageItemBlock final : public std::enable_shared_from_this<ViewerPageItemBlock> {
public:
    // `nBlockId` counts from 1 within the page, row by row.
    ViewerPageItemBlock(std::weak_ptr<IPageItemHost> wkHost, std::int32_t nPage, std::int32_t nTurn,
                        std::int32_t nBlockId, const Render_PageDavidBlock& blockGrid);

    // A bitmap of a lost device counts as none.
    bool HasBitmap() const { return m_pBitmapSource && m_pBitmapSource->HasBitmap(); }

    // The bitmap is another scale's, or shows what the page no longer is. It
    // stays on the screen until a render replaces it, and is always replaced.
    bool IsStandIn() const { return m_bIsStandIn; }
    void ShowStandIn(std::shared_ptr<D2DBitmapSource> pSource); // may be empty
    void MarkStale() { m_bIsStandIn = HasBitmap(); }

    bool NeedsRender() const { return m_bIsDisplay && (!HasBitmap() || m_bIsStandIn); }
    void DropBitmap();

    // Ends the render in flight, if there is one. The bitmap stays.
    void CancelBlock();

    // Renders on the pool, then makes the device bitmap and, if the block is
    // displayed and `bPaintWhenDone`, paints. Not for a block that is
    // rendering. The task ends as cancelled with its generation, and fails when
    // no device bitmap can be made or the frame fails; a failed engine is
    // logged only. Ended at once without a viewer, a document or a page.
    concurrency::task<void> RenderViewerPageBlock(bool bPaintWhenDone);

    bool m_bIsRendering = false;
    Render_ScreenOffsetInfo screenRect;
    Render_PDFPageOffsetInfo pageOffset;
    bool m_bIsDisplay = false; // the rectangle intersects the screen
    const std::int32_t m_nRotate;
    const std::int32_t nPageIndex;
    const std::int32_t m_nBlockId;
    std::shared_ptr<D2DBitmapSource> m_pBitmapSource; // empty until rendered

private:
    concurrency::task<void> Render(std::shared_ptr<IPageItemHost> pHost,
                                   std::shared_ptr<VLK_Document> pDocument,
                                   std::shared_ptr<WPPDFPage> pEntry, bool bPaintWhenDone);
    RenderBlockRequest MakeRequest(const IPageItemHost& host, const VLK_Document& document,
                                   const WPPDFPage& entry,
                                   concurrency::cancellation_token token) const;
    concurrency::priority HandOverPriority() const;
    std::exception_ptr HandOver(IPageItemHost& host, BitmapBox& box, bool bGood,
                                bool bPaintWhenDone);
    void TakeOver(IPageItemHost& host, BitmapBox& box, bool bGood);
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> MakeDeviceBitmap(
        const IPageItemHost& host, const std::shared_ptr<velko::common::Bitmap>& pPixels) const;

    const std::weak_ptr<IPageItemHost> m_wkHost;
    const Render_PageDavidBlock grid; // that the block was made for
    CancellationGeneration m_ctsBlock;
    bool m_bIsStandIn = false;
};

}
