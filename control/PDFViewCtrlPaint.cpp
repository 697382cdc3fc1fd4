// Colours, painting, and what is drawn of a document.

#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "document/VLK_Document.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/Modes.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::vkit {

using Windows::UI::Color;

namespace {

// What of the pages in sight is rendered.
struct Ink {
    bool bSome = false; // stand-ins count
    bool bAll = false;  // each block at the size that it has now
};

// A bitmap of another size stands in for the block until its own is rendered.
bool IsFinal(const BlockState& block) {
    return block.bHasBitmap && !block.bIsRendering &&
           block.nBitmapWidth == block.screenRect.nWidth &&
           block.nBitmapHeight == block.screenRect.nHeight;
}

Ink InkOf(const std::shared_ptr<IPDFViewer>& pViewer) {
    const auto pInspection = std::dynamic_pointer_cast<IViewerInspection>(pViewer);
    if (!pInspection) {
        return {};
    }
    const ViewerState state = pInspection->Inspect();
    Ink ink{false, !state.bShowScaleSnapshot};
    for (const PageItemState& item : state.items) {
        for (const BlockState& block : item.blocks) {
            ink.bSome = ink.bSome || (block.bIsDisplay && block.bHasBitmap);
            ink.bAll = ink.bAll && (!block.bIsDisplay || IsFinal(block));
        }
    }
    ink.bAll = ink.bAll && ink.bSome;
    return ink;
}

}

Color PDFViewCtrl::PageBgColor() {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetPageBackgroundColor() : Windows::UI::Colors::Black;
}

Color PDFViewCtrl::PageFgColor() {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetPageForegroundColor() : Windows::UI::Colors::Black;
}

bool PDFViewCtrl::NightMode() {
    const auto pSelf = Enter();
    return PageBgColor() == kNightColors.background && PageFgColor() == kNightColors.foreground;
}

void PDFViewCtrl::NightMode(bool bOn) {
    const auto pSelf = Enter();
    if (ManagerMode() == LayoutMode::kReflow) {
        return;
    }
    if (bOn) {
        SetPageColors(kNightColors.background, kNightColors.foreground);
    } else {
        SetPageColors(Windows::UI::Colors::White, Windows::UI::Colors::Black);
    }
}

void PDFViewCtrl::SetPageColors(Color background, Color foreground) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    if (OpenDocument() && pViewer) {
        pViewer->SetPageColors(background, foreground);
    }
}

void PDFViewCtrl::RedrawScreen() {
    const auto pSelf = Enter();
    if (const auto pViewer = Viewer()) {
        pViewer->RedrawScreen();
    }
}

void PDFViewCtrl::UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) {
    const auto pSelf = Enter();
    if (const auto pViewer = Viewer()) {
        pViewer->UpdatePageAfterAnnotEdit(nPageIndex);
    }
}

void PDFViewCtrl::UpdateViewer() {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    if (OpenDocument() && pViewer) {
        pViewer->UpdateViewer();
    }
}

void PDFViewCtrl::CancelRender() {
    const auto pSelf = Enter();
    if (const auto pViewer = Viewer()) {
        pViewer->CancelRender();
    }
}

bool PDFViewCtrl::HasInk() {
    const auto pSelf = Enter();
    return InkOf(Viewer()).bSome;
}

bool PDFViewCtrl::IsSharp() {
    const auto pSelf = Enter();
    return InkOf(Viewer()).bAll;
}

bool PDFViewCtrl::GetDeleteFileOnClose() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument && pDocument->DeleteFileOnClose();
}

void PDFViewCtrl::SetDeleteFileOnClose(bool bDelete) {
    const auto pSelf = Enter();
    if (const auto pDocument = OpenDocument()) {
        pDocument->DeleteFileOnClose(bDelete);
    }
}

std::uint32_t PDFViewCtrl::GetRenderFlags() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument ? pDocument->RenderFlags() : 0;
}

void PDFViewCtrl::SetRenderFlags(std::uint32_t nFlags) {
    const auto pSelf = Enter();
    if (const auto pDocument = OpenDocument()) {
        pDocument->RenderFlags(nFlags);
    }
}

void PDFViewCtrl::AddHiddenAnnotType(std::int32_t nType) {
    const auto pSelf = Enter();
    if (const auto pDocument = OpenDocument()) {
        pDocument->AddHiddenAnnotType(nType);
    }
}

}
