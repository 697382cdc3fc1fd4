// A frame: the paper, over the whole width, and what hosts hear of it.
#include <string>

#include "platform/system/Debug.h"
#include "viewers/reflow/PDFReflowPagesViewer.h"
#include "viewers/reflow/ReflowViewerPageItem.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr D2D_COLOR_F kGrey = {0.73333335F, 0.73333335F, 0.73333335F, 1.0F};

}

BlockColors PDFReflowPagesViewer::RenderColors() const {
    return m_bUsesPageColors ? PageColors() : BlockColors();
}

D2D_COLOR_F PDFReflowPagesViewer::AroundPages() const {
    return m_bUsesPageColors ? m_pCanvas->Surround() : kGrey;
}

// The margins beside the text are paper too.
void PDFReflowPagesViewer::DrawPaper(ID2D1DeviceContext& context,
                                     const ViewerPageItem& item) const {
    const auto& pBrush = m_bUsesPageColors ? m_pCanvas->PageBrush() : m_pCanvas->WhiteBrush();
    item.ForEachBlock([&](const ReflowViewerPageItemBlock& band) {
        if (band.IsDisplayed()) {
            const Rect rc = ToRect(band.screenRect);
            context.FillRectangle({0.0F, rc.Y, static_cast<float>(m_dbScreenWidth), rc.Bottom()},
                                  pBrush);
        }
    });
}

void PDFReflowPagesViewer::TellDrawn(const ViewerPageItem& item) const {
    if (const auto pOwner = Owner()) {
        pOwner->RaiseReflowCanvas(
            std::make_shared<RenderCanvasEventArgs>(Canvas(), item.nPageIndex, item.m_nRotate));
    }
}

void PDFReflowPagesViewer::TellCleared(const ViewerPageItemBlock& block) const {
    Platform::Debug::OutputDebugString("Clear DisVisible Page:" + std::to_string(block.nPageIndex) +
                                       "\n");
}

}
