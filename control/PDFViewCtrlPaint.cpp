// Colours, painting, and what is drawn of a document.

#include "control/PDFViewCtrl_p.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/Modes.h"
#include "viewers/core/ViewerInspection.h"

namespace velko::vkit {

using Windows::UI::Color;

namespace {

PageInk InkOf(const IPDFViewer& viewer) {
    const auto* const pInspection = dynamic_cast<const IViewerInspection*>(&viewer);
    return pInspection != nullptr ? pInspection->Ink() : PageInk();
}

PageInk InkOf(const IPDFViewer& viewer, std::int32_t nPageIndex) {
    const auto* const pInspection = dynamic_cast<const IViewerInspection*>(&viewer);
    return pInspection != nullptr ? pInspection->InkOf(nPageIndex) : PageInk();
}

}

Color PDFViewCtrl::PageBgColor() {
    return WithViewer(Windows::UI::Colors::Black, &IPDFViewer::GetPageBackgroundColor);
}

Color PDFViewCtrl::PageFgColor() {
    return WithViewer(Windows::UI::Colors::Black, &IPDFViewer::GetPageForegroundColor);
}

bool PDFViewCtrl::NightMode() {
    const auto pSelf = Enter();
    return PageBgColor() == kNightColors.background && PageFgColor() == kNightColors.foreground;
}

void PDFViewCtrl::NightMode(bool bOn) {
    const auto pSelf = Enter();
    if (GetPageLayoutMode() == LayoutMode::kReflow) {
        return;
    }
    if (bOn) {
        SetPageColors(kNightColors.background, kNightColors.foreground);
    } else {
        SetPageColors(Windows::UI::Colors::White, Windows::UI::Colors::Black);
    }
}

void PDFViewCtrl::SetPageColors(Color background, Color foreground) {
    WithShown([&](IPDFViewer& viewer) { viewer.SetPageColors(background, foreground); });
}

ReflowStyle PDFViewCtrl::TextStyle() {
    const auto pSelf = Enter();
    return m_pPageViewMgr ? m_pPageViewMgr->TextStyle() : ReflowStyle();
}

void PDFViewCtrl::TextStyle(const ReflowStyle& style) {
    const auto pSelf = Enter();
    if (const auto pManager = m_pPageViewMgr) {
        pManager->TextStyle(style);
    }
}

void PDFViewCtrl::SetSurround(Color color) {
    const auto pSelf = Enter();
    if (const auto pCanvas = Canvas()) {
        pCanvas->SetSurround(color.ToArgb());
    }
}

void PDFViewCtrl::RedrawScreen() {
    WithViewer(&IPDFViewer::RedrawScreen);
}

void PDFViewCtrl::UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) {
    WithViewer([&](IPDFViewer& viewer) { viewer.UpdatePageAfterAnnotEdit(nPageIndex); });
}

void PDFViewCtrl::UpdateViewer() {
    WithShown(&IPDFViewer::UpdateViewer);
}

void PDFViewCtrl::CancelRender() {
    WithViewer(&IPDFViewer::CancelRender);
}

bool PDFViewCtrl::HasInk() {
    return WithViewer(false, [](IPDFViewer& viewer) { return InkOf(viewer).bSome; });
}

bool PDFViewCtrl::HasInk(std::int32_t nPageIndex) {
    return WithViewer(false, [&](IPDFViewer& viewer) { return InkOf(viewer, nPageIndex).bSome; });
}

bool PDFViewCtrl::IsSharp() {
    return WithViewer(false, [](IPDFViewer& viewer) { return InkOf(viewer).bAll; });
}

bool PDFViewCtrl::GetDeleteFileOnClose() {
    return WithDocument(false, [](VLK_Document& document) { return document.DeleteFileOnClose(); });
}

void PDFViewCtrl::SetDeleteFileOnClose(bool bDelete) {
    WithDocument([&](VLK_Document& document) { document.DeleteFileOnClose(bDelete); });
}

std::uint32_t PDFViewCtrl::GetRenderFlags() {
    return WithDocument(0U, [](VLK_Document& document) { return document.RenderFlags(); });
}

void PDFViewCtrl::SetRenderFlags(std::uint32_t nFlags) {
    WithDocument([&](VLK_Document& document) { document.RenderFlags(nFlags); });
}

void PDFViewCtrl::AddHiddenAnnotType(std::int32_t nType) {
    WithDocument([&](VLK_Document& document) { document.AddHiddenAnnotType(nType); });
}

}
