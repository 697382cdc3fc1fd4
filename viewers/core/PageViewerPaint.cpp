// A frame: what stands behind the pages, then the pages, block by block.
#include <algorithm>
#include <string>

#include "platform/system/Debug.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr float kSurroundGrey = 0.8784314F;
constexpr D2D_COLOR_F kSurround = {kSurroundGrey, kSurroundGrey, kSurroundGrey, 1.0F};

D2D_RECT_F ToDrawing(const Render_ScreenOffsetInfo& rc) {
    const Windows::Foundation::Rect rect = ToRect(rc);
    return {rect.X, rect.Y, rect.X + rect.Width, rect.Y + rect.Height};
}

// A bitmap of another size than its block fills the block all the same.
void DrawStretched(ID2D1DeviceContext& context, const std::shared_ptr<ID2D1Bitmap>& pBitmap,
                   const D2D_RECT_F& rcTarget, const Render_ScreenOffsetInfo& rcBlock) {
    const D2D_SIZE_U size = pBitmap->GetPixelSize();
    const D2D_RECT_F rcSource = {
        0.0F, 0.0F, std::max(static_cast<float>(size.width), static_cast<float>(rcBlock.nWidth)),
        std::max(static_cast<float>(size.height), static_cast<float>(rcBlock.nHeight))};
    context.DrawBitmap(pBitmap, rcTarget, 1.0F, D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR,
                       rcSource);
}

}

void PageViewerBase::PaintCanvas() {
    const auto pCanvas = m_pCanvas;
    if (pCanvas && m_pPageItems) {
        pCanvas->RenderViewer(*this);
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
    pDc->m_pContext->Clear(kSurround);
    pDc->m_pContext->EndDraw();
}

void PageViewerBase::ClearScreen() {
    ThrowIfDisposed();
    if (const auto pCanvas = m_pCanvas) {
        pCanvas->ClearViewer(*this);
    }
}

void PageViewerBase::OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) {
    ThrowIfDisposed();
    if (!m_pPageItems || !pDc || !pDc->m_pContext) {
        return;
    }
    const auto pSelf = shared_from_this();
    const auto pContext = pDc->m_pContext;
    pContext->BeginDraw();
    if (HasItems() || m_traits.bClearsWithoutPages) {
        DrawBackdrop(*pContext);
        pContext->SetTransform(D2D_MATRIX_3X2_F());
    }
    // A handler of the host may change the layout; it has then asked for a frame
    // of that layout, and the rest of this one is of no use.
    const std::uint64_t nVersion = m_nLayoutVersion;
    for (std::size_t n = 0; nVersion == m_nLayoutVersion && n < m_pPageItems->size(); ++n) {
        const PageItem pItem = (*m_pPageItems)[n];
        DrawItem(*pContext, *pItem, n);
    }
    pContext->EndDraw();
}

void PageViewerBase::DrawBackdrop(ID2D1DeviceContext& context) const {
    if (!IsSnapshotShown()) {
        context.Clear(kSurround);
        return;
    }
    const D2D_SIZE_U size = m_pScaleSnapshot->GetPixelSize();
    const D2D_RECT_F rc = {0.0F, 0.0F, static_cast<float>(size.width),
                           static_cast<float>(size.height)};
    context.DrawBitmap(m_pScaleSnapshot, rc, 1.0F, D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, rc);
}

// Pages whose blocks were cut anew show what they looked like before, where they
// are not rendered yet. The frame from before a zoom does so already while it
// is shown.
void PageViewerBase::DrawItem(ID2D1DeviceContext& context, ViewerPageItem& item,
                              std::size_t nPosition) {
    if (!item.HasBlocks()) {
        if (m_traits.szNothingToDraw) {
            Platform::Debug::OutputDebugString(m_traits.szNothingToDraw);
        }
        return;
    }
    if (item.IsCovered()) {
        item.DropRemnants();
    }
    item.ForEachBlock([&](ViewerPageItemBlock& block) { DrawBlock(context, block, nPosition); });
    if (!item.Remnants().empty() && !IsSnapshotShown()) {
        DrawRemnants(context, item, nPosition);
        item.ForEachBlock([&](ViewerPageItemBlock& block) {
            if (block.HasBitmap()) {
                DrawBlock(context, block, nPosition);
            }
        });
    }
    if (const auto pOwner = Owner()) {
        pOwner->RaiseRenderCanvas(
            std::make_shared<RenderCanvasEventArgs>(Canvas(), item.nPageIndex, item.m_nRotate));
    }
}

void PageViewerBase::DrawRemnants(ID2D1DeviceContext& context, const ViewerPageItem& item,
                                  std::size_t nPosition) const {
    const Render_ScreenOffsetInfo& rcPage = item.screenRect;
    for (const ViewerPageItem::Remnant& remnant : item.Remnants()) {
        const double dbX = DrawnX(nPosition, rcPage.dbOffsetX + remnant.dbLeft * rcPage.nWidth);
        const double dbY = rcPage.dbOffsetY + remnant.dbTop * rcPage.nHeight;
        const D2D_RECT_F rcTarget = {static_cast<float>(dbX), static_cast<float>(dbY),
                                     static_cast<float>(dbX + remnant.dbWidth * rcPage.nWidth),
                                     static_cast<float>(dbY + remnant.dbHeight * rcPage.nHeight)};
        const auto& pBitmap = remnant.pSource->m_pD2DBitmap;
        const D2D_SIZE_U size = pBitmap->GetPixelSize();
        context.DrawBitmap(
            pBitmap, rcTarget, 1.0F, D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR,
            {0.0F, 0.0F, static_cast<float>(size.width), static_cast<float>(size.height)});
    }
}

// Memory of blocks that left the screen is given back here, not at the layout.
void PageViewerBase::DrawBlock(ID2D1DeviceContext& context, ViewerPageItemBlock& block,
                               std::size_t nPosition) const {
    if (!block.m_bIsDisplay) {
        if (block.m_pBitmapSource) {
            block.DropBitmap();
            Platform::Debug::OutputDebugString(
                "Clear DisVisible Page: " + std::to_string(block.nPageIndex) +
                ", ID: " + std::to_string(block.m_nBlockId) + "\n");
        }
        return;
    }
    Render_ScreenOffsetInfo rcDrawn = block.screenRect;
    rcDrawn.dbOffsetX = DrawnX(nPosition, rcDrawn.dbOffsetX);
    const D2D_RECT_F rcTarget = ToDrawing(rcDrawn);
    if (block.HasBitmap()) {
        DrawStretched(context, block.m_pBitmapSource->m_pD2DBitmap, rcTarget, rcDrawn);
    } else {
        DrawBlank(context, rcTarget);
    }
}

}
