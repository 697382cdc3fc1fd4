#include "widget/PageInk.h"

#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::vkit {

namespace {

// A bitmap of another size stands in for the block until its own is rendered.
bool IsFinal(const BlockState& block) {
    return block.bHasBitmap && !block.bIsRendering &&
           block.nBitmapWidth == block.screenRect.nWidth &&
           block.nBitmapHeight == block.screenRect.nHeight;
}

}

PageInk InkOf(PDFViewCtrl& control) {
    const auto pManager = control.PageViewMgr();
    const auto pViewer =
        std::dynamic_pointer_cast<IViewerInspection>(pManager ? pManager->GetViewer() : nullptr);
    if (!pViewer) {
        return {};
    }
    const ViewerState state = pViewer->Inspect();
    bool bMissing = state.bShowScaleSnapshot;
    bool bSome = false;
    for (const PageItemState& item : state.items) {
        for (const BlockState& block : item.blocks) {
            bSome = bSome || (block.bIsDisplay && block.bHasBitmap);
            bMissing = bMissing || (block.bIsDisplay && !IsFinal(block));
        }
    }
    return {bSome, bSome && !bMissing};
}

}
