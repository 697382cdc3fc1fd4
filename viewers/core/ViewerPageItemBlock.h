// One rectangle of a laid-out page: it is rendered, held as one device bitmap
// and drawn in one piece.
//
// Life: made by its item; idle; rendering; rendered. A move changes only its
// numbers. Cancelling a render begins a new generation: what the old one brings
// later is dropped.
// Threads: the UI thread only; the bitmap is handed over there, so there is no
// lock. A render works on the pool with values taken at its start.
// Units: device pixels. Ownership: the item owns it, a render in flight shares
// it; it holds its viewer weakly.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/concurrency/Task.h"
#include "surface/D2DBitmapSource.h"
#include "viewers/core/CancellationGeneration.h"
#include "viewers/core/IBlockRenderer.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/LaidOutPage.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class ViewerPageItemBlock final : public LaidOutPage,
                                  public std::enable_shared_from_this<ViewerPageItemBlock> {
public:
    // `nBlockId` counts up within the page, row by row.
    ViewerPageItemBlock(std::weak_ptr<IPageItemHost> wkHost,
                        std::shared_ptr<IBlockRenderer> pRenderer, std::int32_t nPage,
                        std::int32_t nTurn, std::int32_t nBlockId,
                        const Render_PageDavidBlock& blockGrid);

    // Puts the block at its place on the screen and of the page. It is displayed
    // where it touches `rcScreen`.
    void Place(const Render_ScreenOffsetInfo& rc, const Render_PDFPageOffsetInfo& offset,
               const Windows::Foundation::Rect& rcScreen);
    const Render_PDFPageOffsetInfo& PageOffset() const { return m_pageOffset; }
    PageShare Share() const; // of its page; all zero where that has no size
    bool IsDisplayed() const { return m_bIsDisplay; }
    bool IsRendering() const { return m_bIsRendering; }

    // A bitmap of a lost device counts as none.
    bool HasBitmap() const { return m_pBitmapSource && m_pBitmapSource->HasBitmap(); }
    const std::shared_ptr<D2DBitmapSource>& BitmapSource() const { return m_pBitmapSource; }

    // The bitmap is another scale's, or shows what the page no longer is. It
    // stays on the screen until a render replaces it, and is always replaced.
    bool IsStandIn() const { return m_bIsStandIn; }
    void ShowStandIn(std::shared_ptr<D2DBitmapSource> pSource); // may be empty
    void MarkStale() { m_bIsStandIn = HasBitmap(); }

    bool IsSharp() const { return HasBitmap() && !m_bIsStandIn; }
    bool NeedsRender() const { return m_bIsDisplay && !IsSharp(); }
    // Gives back the memory of a block that left the screen.
    void DropBitmap();

    // Ends the render in flight, if there is one. The bitmap stays.
    void CancelBlock();

    // Renders on the pool, then makes the device bitmap and, if the block is
    // displayed and `bPaintWhenDone`, paints. Not for a block that is
    // rendering. The task ends as cancelled with its generation, and fails when
    // no device bitmap can be made or the frame fails; an engine that fails is
    // told and leaves the block as it is. Ended at once with nothing to render.
    concurrency::task<void> RenderViewerPageBlock(bool bPaintWhenDone);

    const std::int32_t m_nBlockId;

private:
    concurrency::task<void> Render(std::shared_ptr<IPageItemHost> pHost, BlockRender render,
                                   concurrency::cancellation_token token, bool bPaintWhenDone);
    concurrency::priority HandOverPriority() const;
    void HandOver(IPageItemHost& host, BitmapBox& box, bool bGood, bool bPaintWhenDone);
    void TakeOver(IPageItemHost& host, BitmapBox& box, bool bGood);
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> MakeDeviceBitmap(
        const IPageItemHost& host, const std::shared_ptr<velko::common::Bitmap>& pPixels) const;

    const std::weak_ptr<IPageItemHost> m_wkHost;
    const std::shared_ptr<IBlockRenderer> m_pRenderer;
    const Render_PageDavidBlock grid; // that the block was made for
    Render_PDFPageOffsetInfo m_pageOffset;
    CancellationGeneration m_ctsBlock;
    std::shared_ptr<D2DBitmapSource> m_pBitmapSource; // empty until rendered
    bool m_bIsDisplay = false;                        // the rectangle intersects the screen
    bool m_bIsRendering = false;
    bool m_bIsStandIn = false;
};

}
