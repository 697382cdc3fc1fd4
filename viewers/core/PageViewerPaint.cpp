// A frame: what stands behind the pages, then the pages, block by block; and
// what is let go of once it is on the screen.
#include <cmath>
#include <string>

#include "platform/system/Debug.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

// Sides of a place off the pixel grid come out this exactly at worst.
constexpr float kSameSize = 0.05F;

// For the time of a frame.
class DrawingMark {
public:
    explicit DrawingMark(bool& bDrawing) : m_bDrawing(bDrawing), m_bBefore(bDrawing) {
        m_bDrawing = true;
    }
    ~DrawingMark() { m_bDrawing = m_bBefore; }
    DrawingMark(const DrawingMark&) = delete;
    DrawingMark& operator=(const DrawingMark&) = delete;

private:
    bool& m_bDrawing;
    const bool m_bBefore;
};

D2D_RECT_F ToDrawing(const Render_ScreenOffsetInfo& rc) {
    const Windows::Foundation::Rect rect = ToRect(rc);
    return {rect.X, rect.Y, rect.X + rect.Width, rect.Y + rect.Height};
}

// A bitmap of another size than its target fills it all the same, smoothly; one
// of the same size is copied as it is.
void DrawStretched(ID2D1DeviceContext& context, const std::shared_ptr<ID2D1Bitmap>& pBitmap,
                   const D2D_RECT_F& rcTarget) {
    const D2D_SIZE_U size = pBitmap->GetPixelSize();
    const auto fWidth = static_cast<float>(size.width);
    const auto fHeight = static_cast<float>(size.height);
    const bool bIsSameSize = std::abs(rcTarget.right - rcTarget.left - fWidth) < kSameSize &&
                             std::abs(rcTarget.bottom - rcTarget.top - fHeight) < kSameSize;
    context.DrawBitmap(
        pBitmap, rcTarget, 1.0F,
        bIsSameSize ? D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR : D2D1_INTERPOLATION_MODE::LINEAR,
        {0.0F, 0.0F, fWidth, fHeight});
}

}

void PageViewerBase::PaintCanvas() {
    const auto pCanvas = m_pCanvas;
    if (pCanvas && m_pPageItems) {
        m_bFrameDrawn = false;
        pCanvas->RenderViewer(*this);
        if (m_bFrameDrawn) { // not when asked for within another frame
            GiveBackMemory();
        }
    }
}

void PageViewerBase::UpdateViewer() {
    ThrowIfDisposed();
    PaintCanvas();
}

void PageViewerBase::ClearCanvas(const std::shared_ptr<WPRenderDC>& pDc) {
    ThrowIfDisposed();
    if (!pDc || !pDc->m_pContext) {
        return;
    }
    pDc->m_pContext->BeginDraw();
    pDc->m_pContext->Clear(m_pCanvas->Surround());
    pDc->m_pContext->EndDraw();
}

void PageViewerBase::ClearScreen() {
    ThrowIfDisposed();
    if (const auto pCanvas = m_pCanvas) {
        pCanvas->ClearViewer(*this);
    }
}

// --- a frame ---

void PageViewerBase::OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) {
    ThrowIfDisposed();
    if (!m_pPageItems || !pDc || !pDc->m_pContext) {
        return;
    }
    const auto pSelf = shared_from_this();
    const auto pContext = pDc->m_pContext;
    const DrawingMark mark(m_bDrawing);
    pContext->BeginDraw();
    if (HasItems() || m_traits.bClearsWithoutPages) {
        DrawBackdrop(*pContext);
        pContext->SetTransform(D2D_MATRIX_3X2_F());
    }
    m_bFrameDrawn = DrawPages(*pContext);
    pContext->EndDraw();
}

// A handler of the host may change the layout; it has then asked for a frame of
// that layout, and the rest of this one is of no use: then false.
bool PageViewerBase::DrawPages(ID2D1DeviceContext& context) {
    const std::uint64_t nVersion = m_nLayoutVersion;
    for (std::size_t n = 0; nVersion == m_nLayoutVersion && n < m_pPageItems->size(); ++n) {
        const PageItem pItem = (*m_pPageItems)[n];
        if (!pItem->HasBlocks()) {
            if (m_traits.szNothingToDraw) {
                Platform::Debug::OutputDebugString(m_traits.szNothingToDraw);
            }
            continue;
        }
        DrawItem(context, *pItem, n);
        TellDrawn(*pItem);
    }
    return nVersion == m_nLayoutVersion;
}

void PageViewerBase::TellDrawn(const ViewerPageItem& item) const {
    if (const auto pOwner = Owner()) {
        pOwner->RaiseRenderCanvas(
            std::make_shared<RenderCanvasEventArgs>(Canvas(), item.nPageIndex, item.m_nRotate));
    }
}

D2D_COLOR_F PageViewerBase::AroundPages() const {
    return m_pCanvas->Surround();
}

void PageViewerBase::DrawBackdrop(ID2D1DeviceContext& context) const {
    if (!IsSnapshotShown()) {
        context.Clear(AroundPages());
        return;
    }
    const D2D_SIZE_U size = m_standIns.Snapshot()->GetPixelSize();
    DrawStretched(context, m_standIns.Snapshot(),
                  {0.0F, 0.0F, static_cast<float>(size.width), static_cast<float>(size.height)});
}

void PageViewerBase::DrawItem(ID2D1DeviceContext& context, const ViewerPageItem& item,
                              std::size_t nPosition) const {
    DrawPaper(context, item);
    if (!item.IsCovered()) {
        DrawMissing(context, item, nPosition);
    }
    item.ForEachBlock([&](const ViewerPageItemBlock& block) {
        if (block.IsDisplayed() && block.HasBitmap()) {
            Render_ScreenOffsetInfo rc = block.screenRect;
            rc.dbOffsetX = DrawnX(nPosition, rc.dbOffsetX);
            DrawStretched(context, block.BitmapSource()->m_pD2DBitmap, ToDrawing(rc));
        }
    });
}

// Blank paper, and on it what the page looked like before. The frame from before
// a zoom shows that already.
void PageViewerBase::DrawMissing(ID2D1DeviceContext& context, const ViewerPageItem& item,
                                 std::size_t nPosition) const {
    item.ForEachBlock([&](const ViewerPageItemBlock& block) {
        if (block.IsDisplayed() && !block.HasBitmap()) {
            Render_ScreenOffsetInfo rc = block.screenRect;
            rc.dbOffsetX = DrawnX(nPosition, rc.dbOffsetX);
            DrawBlank(context, ToDrawing(rc));
        }
    });
    if (!IsSnapshotShown()) {
        DrawStandIns(context, item, nPosition);
    }
}

void PageViewerBase::DrawStandIns(ID2D1DeviceContext& context, const ViewerPageItem& item,
                                  std::size_t nPosition) const {
    const Render_ScreenOffsetInfo& rcPage = item.screenRect;
    const D2D_RECT_F rcScreen = {0.0F, 0.0F, CanvasWidth(), CanvasHeight()};
    m_standIns.ForEachOf(item.nPageIndex, item.m_nRotate, [&](const StandIns::StandIn& kept) {
        const double dbX = DrawnX(nPosition, rcPage.dbOffsetX + kept.share.dbLeft * rcPage.nWidth);
        const double dbY = rcPage.dbOffsetY + kept.share.dbTop * rcPage.nHeight;
        const D2D_RECT_F rc = {static_cast<float>(dbX), static_cast<float>(dbY),
                               static_cast<float>(dbX + kept.share.dbWidth * rcPage.nWidth),
                               static_cast<float>(dbY + kept.share.dbHeight * rcPage.nHeight)};
        if (rc.left < rcScreen.right && rc.right > 0.0F && rc.top < rcScreen.bottom &&
            rc.bottom > 0.0F) {
            DrawStretched(context, kept.pSource->m_pD2DBitmap, rc);
        }
    });
}

// --- after a frame ---

void PageViewerBase::GiveBackMemory() {
    if (!HasItems()) { // between two layouts: what pages have shown waits for the next
        return;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        pItem->ForEachBlock([this](ViewerPageItemBlock& block) {
            if (!block.IsDisplayed() && block.BitmapSource()) {
                block.DropBitmap();
                TellCleared(block);
            }
        });
    }
    if (m_standIns.Count() > 0 && !m_bZoomOpen && !IsSnapshotShown()) {
        m_standIns.Release([this](const StandIns::StandIn& kept) { return IsNeeded(kept); });
    }
}

void PageViewerBase::TellCleared(const ViewerPageItemBlock& block) const {
    Platform::Debug::OutputDebugString(
        "Clear DisVisible Page: " + std::to_string(block.nPageIndex) +
        ", ID: " + std::to_string(block.m_nBlockId) + "\n");
}

// As long as its page is laid out and not sharp; an overview, as long as the page
// is cut into blocks of which some are not on the screen.
bool PageViewerBase::IsNeeded(const StandIns::StandIn& kept) const {
    const PageItem pItem = FindItem(kept.nPageIndex);
    if (!pItem || pItem->m_nRotate != kept.nRotate) {
        return false;
    }
    const bool bIsWhole = pItem->Grid() == Render_PageDavidBlock{1, 1};
    return !pItem->IsSharp() || (kept.bIsOverview && !bIsWhole);
}

}
