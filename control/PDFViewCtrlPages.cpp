// The commands that move between pages and inside the document.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "control/VelkoViewControl.h"
#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "platform/ui/SwapChainPanel.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

std::string Text(double dbValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%g", dbValue);
    return szText;
}

}

std::shared_ptr<VLK_Document> PDFViewCtrl::OpenDocument() const {
    return m_pDocument && !m_pDocument->IsDisposed() ? m_pDocument : nullptr;
}

std::shared_ptr<velko::pdf::PDFDoc> PDFViewCtrl::EngineDocument() const {
    return m_pDocument ? m_pDocument->PdfDoc() : nullptr;
}

std::shared_ptr<IPDFViewer> PDFViewCtrl::Viewer() const {
    return m_pPageViewMgr ? m_pPageViewMgr->GetViewer() : nullptr;
}

std::int32_t PDFViewCtrl::CurrentPageOr0() const {
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetCurrentPageIndex() : 0;
}

std::int32_t PDFViewCtrl::ManagerMode() const {
    return m_pPageViewMgr ? m_pPageViewMgr->LayoutMode() : 0;
}

std::shared_ptr<PDFViewCanvas> PDFViewCtrl::Canvas() const {
    return m_pViewControl ? m_pViewControl->ViewCtrl() : nullptr;
}

void PDFViewCtrl::ManagerGotoPage(std::int32_t nPageIndex) {
    if (const auto pManager = m_pPageViewMgr) {
        pManager->GotoPage(nPageIndex);
    }
}

void PDFViewCtrl::ManagerInitLayOut(std::int32_t nPageIndex, double dbScale) {
    if (const auto pManager = m_pPageViewMgr) {
        pManager->InitLayOut(nPageIndex, dbScale, 0.0, 0.0);
    }
}

void PDFViewCtrl::GotoPage(std::int32_t nPageIndex) {
    const auto pSelf = Enter();
    if (OpenDocument()) {
        ManagerGotoPage(nPageIndex);
    }
}

bool PDFViewCtrl::GotoFirstPage() {
    const auto pSelf = Enter();
    if (!OpenDocument()) {
        return false;
    }
    ManagerGotoPage(0);
    return true;
}

bool PDFViewCtrl::GotoLastPage() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        return false;
    }
    ManagerGotoPage(pDocument->PageCount() - 1);
    return true;
}

// Unlike the first and last page these answer true when they stayed.
bool PDFViewCtrl::GotoPrevPage() {
    const auto pSelf = Enter();
    if (!OpenDocument()) {
        return false;
    }
    const std::int32_t nCurrent = CurrentPageOr0();
    if (nCurrent == 0) {
        return true;
    }
    ManagerGotoPage(nCurrent - 1);
    return false;
}

bool PDFViewCtrl::GotoNextPage() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        return false;
    }
    const std::int32_t nCurrent = CurrentPageOr0();
    if (nCurrent == pDocument->PageCount() - 1) {
        return true;
    }
    ManagerGotoPage(nCurrent + 1);
    return false;
}

std::int32_t PDFViewCtrl::GetCurrentPageIndex() {
    const auto pSelf = Enter();
    return OpenDocument() ? CurrentPageOr0() : 0;
}

std::int32_t PDFViewCtrl::GetPageIndexAtPoint(Point pt) {
    const auto pSelf = Enter();
    if (!m_pPageViewMgr) {
        return -1;
    }
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetPageIndexAtPoint(pt) : 0;
}

std::vector<std::int32_t> PDFViewCtrl::GetVisiblePages() {
    const auto pSelf = Enter();
    return m_pPageViewMgr ? m_pPageViewMgr->GetVisiblePages() : std::vector<std::int32_t>();
}

std::int32_t PDFViewCtrl::GetPageCount() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument ? pDocument->PageCount() : 0;
}

void PDFViewCtrl::MoveScreen(double dbOffsetY, double dbOffsetX) {
    const auto pSelf = Enter();
    CheckFinite(dbOffsetY, dbOffsetX);
    if (const auto pManager = m_pPageViewMgr) {
        pManager->MoveScreen(dbOffsetY, dbOffsetX);
    }
}

// A page of a continuous layout that is laid out need not be jumped to; the
// other layouts show one page at a time.
bool PDFViewCtrl::IsJumpNeeded(std::int32_t nPageIndex) const {
    const auto pViewer = Viewer();
    const Rect rcPage = pViewer ? pViewer->GetPageRectAtPoint(Point(), nPageIndex) : Rect();
    const bool bLaidOut = rcPage.Width > 0.0F && rcPage.Height != 0.0F;
    return CurrentPageOr0() != nPageIndex &&
           !(ManagerMode() == LayoutMode::kContinuous && bLaidOut);
}

void PDFViewCtrl::GotoExactlyPage(std::int32_t nPageIndex, Point ptPage) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument || nPageIndex < 0 || nPageIndex >= pDocument->PageCount()) {
        return;
    }
    if (IsJumpNeeded(nPageIndex)) {
        ManagerGotoPage(nPageIndex);
    }
    const auto pViewer = Viewer(); // a page event may have brought another
    const auto pDevicePoint =
        pViewer ? pViewer->PagePointToDevicePoint(nPageIndex, ptPage) : nullptr;
    const Point pt = pDevicePoint ? pDevicePoint->pt : Point();
    const Rect rcVisible = GetVisibleCanvasRect();
    std::string strLine = "GotoExactlyPage: " + std::to_string(nPageIndex) + ", Pt: " + Text(pt.X) +
                          ", " + Text(pt.Y);
    if (rcVisible.Contains(pt)) {
        if (pViewer) {
            pViewer->UpdateViewer();
        }
        strLine += ", Not Moveto";
    } else {
        const double dbX = pt.X - rcVisible.Width * 0.5;
        const double dbY = pt.Y - rcVisible.Height * 0.5;
        if (pViewer) {
            pViewer->PageSizeChanged(ScaleX() * dbX, ScaleY() * dbY);
        }
        strLine += ", MoveTo: " + Text(dbX) + ", " + Text(dbY);
    }
    Platform::Debug::OutputDebugString(strLine + "\n");
}

// Clipped against the window's top left only.
PDFViewCtrl::Rect PDFViewCtrl::GetVisibleCanvasRect() const {
    if (!m_pViewControl) {
        return Rect();
    }
    const Point ptCanvas = m_pViewControl->CanvasPanel()->PositionInWindow();
    const Size size = CanvasSize();
    const float fLeft = std::max(ptCanvas.X, 0.0F);
    const float fTop = std::max(ptCanvas.Y, 0.0F);
    return {fLeft, fTop, ptCanvas.X + size.Width - fLeft, ptCanvas.Y + size.Height - fTop};
}

void PDFViewCtrl::GotoDestination(const std::shared_ptr<velko::pdf::IAction>& pAction) {
    const auto pSelf = Enter();
    const auto pPdfDoc = OpenDocument() ? EngineDocument() : nullptr;
    const auto pDestination = pPdfDoc && pAction ? pAction->GetDestination() : nullptr;
    if (!pDestination) {
        return;
    }
    const std::int32_t nPageIndex = pDestination->GetPageIndex(*pPdfDoc);
    const std::int32_t nZoomMode = pDestination->GetZoomMode();
    const std::vector<float> values = {
        pDestination->IsLeftAbsent() ? 0.0F : pDestination->GetLeft(),
        pDestination->IsTopAbsent() ? 0.0F : pDestination->GetTop(), pDestination->GetRight(),
        pDestination->GetBottom()};
    if (const auto pViewer = Viewer()) {
        pViewer->GotoDestination(nPageIndex, nZoomMode, values);
    }
}

}
