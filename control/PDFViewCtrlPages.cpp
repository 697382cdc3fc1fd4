// The commands that move between pages and inside the document.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "control/PDFViewCtrl_p.h"
#include "platform/system/Debug.h"
#include "platform/ui/SwapChainPanel.h"
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

std::shared_ptr<IPDFViewer> PDFViewCtrl::Viewer() const {
    return m_pPageViewMgr ? m_pPageViewMgr->GetViewer() : nullptr;
}

void PDFViewCtrl::GotoPage(std::int32_t nPageIndex) {
    WithDocument([&](VLK_Document&) {
        WithManager([&](PDFViewerManager& manager) { manager.GotoPage(nPageIndex); });
    });
}

bool PDFViewCtrl::GotoFirstPage() {
    return WithDocument(false, [this](VLK_Document&) {
        GotoPage(0);
        return true;
    });
}

bool PDFViewCtrl::GotoLastPage() {
    return WithDocument(false, [this](VLK_Document& document) {
        GotoPage(document.PageCount() - 1);
        return true;
    });
}

// Unlike the first and last page these answer true when they stayed.
bool PDFViewCtrl::GotoPrevPage() {
    return WithDocument(false, [this](VLK_Document&) {
        const std::int32_t nCurrent = GetCurrentPageIndex();
        if (nCurrent != 0) {
            GotoPage(nCurrent - 1);
        }
        return nCurrent == 0;
    });
}

bool PDFViewCtrl::GotoNextPage() {
    return WithDocument(false, [this](VLK_Document& document) {
        const std::int32_t nCurrent = GetCurrentPageIndex();
        const bool bAtEnd = nCurrent == document.PageCount() - 1;
        if (!bAtEnd) {
            GotoPage(nCurrent + 1);
        }
        return bAtEnd;
    });
}

std::int32_t PDFViewCtrl::GetCurrentPageIndex() {
    return WithDocument(
        0, [this](VLK_Document&) { return WithViewer(0, &IPDFViewer::GetCurrentPageIndex); });
}

std::int32_t PDFViewCtrl::GetPageIndexAtPoint(Point pt) {
    const auto pSelf = Enter();
    const std::int32_t nNone = m_pPageViewMgr ? 0 : -1;
    return WithViewer(nNone, [&](IPDFViewer& viewer) { return viewer.GetPageIndexAtPoint(pt); });
}

std::vector<std::int32_t> PDFViewCtrl::GetVisiblePages() {
    return WithViewer(std::vector<std::int32_t>(), &IPDFViewer::GetVisiblePages);
}

std::int32_t PDFViewCtrl::GetPageCount() {
    return WithDocument(0, &VLK_Document::PageCount);
}

void PDFViewCtrl::MoveScreen(double dbOffsetY, double dbOffsetX) {
    WithManager([&](PDFViewerManager& manager) {
        CheckFinite(dbOffsetY, dbOffsetX);
        manager.MoveScreen(dbOffsetY, dbOffsetX);
    });
}

// A page of a continuous layout that is laid out need not be jumped to; the
// other layouts show one page at a time.
bool PDFViewCtrl::IsJumpNeeded(std::int32_t nPageIndex) {
    const Rect rcPage = GetPageRectAtPoint(Point(), nPageIndex);
    const bool bLaidOut = rcPage.Width > 0.0F && rcPage.Height != 0.0F;
    return GetCurrentPageIndex() != nPageIndex &&
           !(GetPageLayoutMode() == LayoutMode::kContinuous && bLaidOut);
}

void PDFViewCtrl::GotoExactlyPage(std::int32_t nPageIndex, Point ptPage) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument || nPageIndex < 0 || nPageIndex >= pDocument->PageCount()) {
        return;
    }
    if (IsJumpNeeded(nPageIndex)) {
        GotoPage(nPageIndex);
    }
    // A page event may have brought another viewer, or none.
    const Point pt = PagePointToDevicePoint(nPageIndex, ptPage);
    const Rect rcVisible = GetVisibleCanvasRect();
    std::string strLine = "GotoExactlyPage: " + std::to_string(nPageIndex) + ", Pt: " + Text(pt.X) +
                          ", " + Text(pt.Y);
    if (rcVisible.Contains(pt)) {
        WithViewer(&IPDFViewer::UpdateViewer);
        strLine += ", Not Moveto";
    } else {
        const double dbX = pt.X - rcVisible.Width * 0.5;
        const double dbY = pt.Y - rcVisible.Height * 0.5;
        WithManager([&](PDFViewerManager& manager) {
            manager.PageSizeChanged(CompositionScaleX() * dbX, CompositionScaleY() * dbY);
        });
        strLine += ", MoveTo: " + Text(dbX) + ", " + Text(dbY);
    }
    Platform::Debug::OutputDebugString(strLine + "\n");
}

// Clipped against the window's top left only.
PDFViewCtrl::Rect PDFViewCtrl::GetVisibleCanvasRect() {
    const auto pPanel = CanvasPanel();
    if (!pPanel) {
        return Rect();
    }
    const Point ptCanvas = pPanel->PositionInWindow();
    const Size size = GetCanvasSize();
    const float fLeft = std::max(ptCanvas.X, 0.0F);
    const float fTop = std::max(ptCanvas.Y, 0.0F);
    return {fLeft, fTop, ptCanvas.X + size.Width - fLeft, ptCanvas.Y + size.Height - fTop};
}

void PDFViewCtrl::GotoDestination(const std::shared_ptr<velko::pdf::IAction>& pAction) {
    const auto pSelf = Enter();
    const auto pPdfDoc = OpenDocument() ? GetPDFDoc() : nullptr;
    const auto pDestination = pPdfDoc && pAction ? pAction->GetDestination() : nullptr;
    if (!pDestination) {
        return;
    }
    const std::int32_t nPageIndex = pDestination->GetPageIndex(*pPdfDoc);
    const std::vector<float> values = {
        pDestination->IsLeftAbsent() ? 0.0F : pDestination->GetLeft(),
        pDestination->IsTopAbsent() ? 0.0F : pDestination->GetTop(), pDestination->GetRight(),
        pDestination->GetBottom()};
    WithManager([&](PDFViewerManager& manager) {
        manager.GotoDestination(nPageIndex, pDestination->GetZoomMode(), values);
    });
}

}
