// A frame of the continuous viewer.
#include <algorithm>
#include <string>

#include "platform/system/Debug.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr float kOutlineWidth = 1.0F;

D2D_RECT_F ToDrawing(const Render_ScreenOffsetInfo& rc) {
    const Windows::Foundation::Rect rect = ToRect(rc);
    return {rect.X, rect.Y, rect.X + rect.Width, rect.Y + rect.Height};
}

}

void PDFConuiunePagesViewer::OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) {
    ThrowIfDisposed();
    if (!m_pPageItems || !pDc || !pDc->m_pContext) {
        return;
    }
    const auto pSelf = shared_from_this();
    const auto pContext = pDc->m_pContext;
    pContext->BeginDraw();
    DrawBackdrop(*pContext);
    pContext->SetTransform(D2D_MATRIX_3X2_F());
    // A handler of the host may change the layout; it has then asked for a frame
    // of that layout, and the rest of this one is of no use.
    const std::uint64_t nVersion = m_nLayoutVersion;
    for (std::size_t n = 0; nVersion == m_nLayoutVersion && n < m_pPageItems->size(); ++n) {
        const PageItem pItem = (*m_pPageItems)[n];
        DrawItem(*pContext, *pItem);
    }
    pContext->EndDraw();
}

void PDFConuiunePagesViewer::DrawItem(ID2D1DeviceContext& context,
                                      const ContinueViewerPageItem& item) {
    item.ForEachBlock([&](ContinueViewerPageItemBlock& block) { DrawBlock(context, block); });
    const auto pOwner = item.HasBlocks() ? Owner() : nullptr;
    if (pOwner) {
        pOwner->RaiseRenderCanvas(
            std::make_shared<RenderCanvasEventArgs>(Canvas(), item.nPageIndex, item.m_nRotate));
    }
}

// Memory of blocks that left the screen is given back here, not at the layout.
void PDFConuiunePagesViewer::DrawBlock(ID2D1DeviceContext& context,
                                       ContinueViewerPageItemBlock& block) const {
    if (!block.m_bIsDisplay) {
        if (block.m_pBitmapSource) {
            block.DropBitmap();
            Platform::Debug::OutputDebugString(
                "Clear DisVisible Page: " + std::to_string(block.nPageIndex) +
                ", ID: " + std::to_string(block.m_nBlockId) + "\n");
        }
        return;
    }
    const D2D_RECT_F rcBlock = ToDrawing(block.screenRect);
    if (block.HasBitmap()) {
        const auto& pBitmap = block.m_pBitmapSource->m_pD2DBitmap;
        const D2D_SIZE_U size = pBitmap->GetPixelSize();
        const D2D_RECT_F rcSource = {
            0.0F, 0.0F,
            std::max(static_cast<float>(size.width), static_cast<float>(block.screenRect.nWidth)),
            std::max(static_cast<float>(size.height),
                     static_cast<float>(block.screenRect.nHeight))};
        context.DrawBitmap(pBitmap, rcBlock, 1.0F, D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR,
                           rcSource);
    } else if (!IsSnapshotShown()) {
        const auto& pBrush = m_pCanvas->PageBrush();
        context.FillRectangle(rcBlock, pBrush);
        context.DrawRectangle(rcBlock, pBrush, kOutlineWidth);
    }
}

}
