#include "viewers/continuous/PDFConuiunePagesViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "document/Utility.h"
#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/continuous/PageGap_p.h"

namespace velko::vkit {

namespace {

// A move limited in floating point may miss an end by less than this.
constexpr double kNoDistance = 0.001;

constexpr float kOutlineWidth = 1.0F;

}

PDFConuiunePagesViewer::PDFConuiunePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                                               std::shared_ptr<VLK_Document> pDocument,
                                               std::shared_ptr<PDFViewCanvas> pCanvas)
    : PageViewerBase(std::move(wkOwner), std::move(pDocument), std::move(pCanvas), kTraits) {}

const ViewerTraits PDFConuiunePagesViewer::kTraits = {
    .szClass = "PDFConuiunePagesViewer",
    .szRenderOperation = "RenderScreenBitmapSync",
    .szNothingToRender = "RenderScreenBitmapSync error\n",
    .szNothingToDraw = nullptr,
    .bClearsWithoutPages = true,
};

PDFRenderTask PDFConuiunePagesViewer::MakeTask(double dbOffsetY, double dbOffsetX) {
    return {dbOffsetY, dbOffsetX, GetScale(), m_nRotate};
}

void PDFConuiunePagesViewer::OnClosed() {
    PageViewerBase::OnClosed();
    m_spareItems = PageItems();
}

Column PDFConuiunePagesViewer::TheColumn() {
    return {*this, kPageGap, m_dbScreenHeight, CanvasHeight()};
}

// A page that is not rendered yet has its paper's colour, unless the snapshot
// shows something better.
void PDFConuiunePagesViewer::DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                                       const Windows::Graphics::D2D_RECT_F& rc) const {
    if (!IsSnapshotShown()) {
        const auto& pBrush = m_pCanvas->PageBrush();
        context.FillRectangle(rc, pBrush);
        context.DrawRectangle(rc, pBrush, kOutlineWidth);
    }
}

// --- the current page ---

std::int32_t PDFConuiunePagesViewer::GetCurrentPageIndex() {
    ThrowIfDisposed();
    return HasItems() ? TheColumn().CurrentPage(*m_pPageItems->front()) : 0;
}

void PDFConuiunePagesViewer::RecomputeCurrentPage() {
    if (HasItems()) {
        m_nCurPageIndex = GetCurrentPageIndex();
    }
}

// --- moves ---

void PDFConuiunePagesViewer::OnMoveScreen(double dbOffsetY, double dbOffsetX) {
    EmptyScaleCache();
    if (!m_pPageItems || !CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    RecomputeCurrentPage();
    if (!HasItems()) {
        MoveLayout(m_nCurPageIndex, m_dbScreenHeight, 0.0, GetScale(), m_nRotate);
        return;
    }
    bool bMoved = MoveInSteps(dbOffsetY, dbOffsetX);
    bMoved = PinEnds() || bMoved;
    if (bMoved) {
        StartRenders(false);
        PaintCanvas();
    }
}

// Returns whether anything moved.
bool PDFConuiunePagesViewer::MoveInSteps(double dbOffsetY, double dbOffsetX) {
    bool bMoved = false;
    TheColumn().MoveInSteps(dbOffsetY, [&](double dbStep, bool bIsLast) {
        PDFRenderTask task = MakeTask(dbStep, bIsLast ? dbOffsetX : 0.0);
        if (!ClampTaskOffset(*m_pPageItems, task)) {
            return false; // the document's end
        }
        bMoved = true;
        return LayOut(task); // else past what can be shown: an end that has no size
    });
    return bMoved;
}

// Neither page 0 hangs below the top nor, in a document taller than the screen,
// the last page's end above the bottom.
bool PDFConuiunePagesViewer::PinEnds() {
    bool bMoved = false;
    const auto fnPin = [&](double dbMove) {
        if (std::abs(dbMove) > kNoDistance) {
            LayOut(MakeTask(dbMove, 0.0));
            bMoved = true;
        }
    };
    if (HasItems()) {
        fnPin(-TheColumn().GapBelow(*m_pPageItems->front(), *m_pPageItems->back()));
    }
    if (HasItems()) {
        fnPin(TheColumn().GapAbove(*m_pPageItems->front()));
    }
    return bMoved;
}

void PDFConuiunePagesViewer::OnPageSizeChanged(double dbOffsetX, double dbOffsetY) {
    EmptyScaleCache();
    if (!CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    RecomputeCurrentPage();
    MoveLayout(m_nCurPageIndex, dbOffsetY, dbOffsetX, GetScale(), m_nRotate);
}

void PDFConuiunePagesViewer::MoveLayout(std::int32_t nPageIndex, double dbOffsetY, double dbOffsetX,
                                        double dbScale, std::int32_t nRotate) {
    PDFRenderTask task = {dbOffsetY, dbOffsetX, dbScale, nRotate};
    m_nCurPageIndex = nPageIndex;
    const bool bMoves = !HasItems() || ClampTaskOffset(*m_pPageItems, task);
    if (bMoves && !RenderScreenBitmapSync(task, false).empty()) {
        PaintCanvas();
    }
}

// --- going to pages ---

// The overhang above the screen, as a number of at most 0, when the pages from
// the one asked for to the last do not fill the screen: `m_nCurPageIndex` is
// then the page at which the document's last screen starts. Else 0.
double PDFConuiunePagesViewer::CalcTailOverflow(std::int32_t nPageIndex) {
    RefreshScreenSize();
    std::int32_t nStart = nPageIndex;
    const double dbOverflow = TheColumn().TailOverflow(nStart);
    if (nStart != nPageIndex) {
        m_nCurPageIndex = nStart;
    }
    return dbOverflow;
}

DisplaySize PDFConuiunePagesViewer::DisplaySizeOf(std::int32_t nPageIndex) {
    return MakeItem(nPageIndex, MakeTask(0.0, 0.0))->GetPageDisplaySize();
}

void PDFConuiunePagesViewer::OnGotoPage(std::int32_t nPageIndex) {
    if (!CanLayOut()) {
        return;
    }
    ShowPage(std::clamp(nPageIndex, 0, std::max(0, PageCount() - 1)), false);
}

void PDFConuiunePagesViewer::GotoPageTop(std::int32_t nPageIndex) {
    ShowPage(nPageIndex, true);
}

void PDFConuiunePagesViewer::ShowPage(std::int32_t nPageIndex, bool bFresh) {
    RefreshScreenSize();
    double dbOffsetY = m_dbScreenHeight;
    double dbOffsetX = 0.0;
    if (HasItems()) {
        const ContinueViewerPageItem& first = *m_pPageItems->front();
        if (bFresh || first.nPageIndex != nPageIndex) {
            DropItems();
        } else {
            dbOffsetX = first.screenRect.dbOffsetX;
            dbOffsetY = first.screenRect.dbOffsetY;
        }
    }
    m_nCurPageIndex = nPageIndex;
    dbOffsetY -= CalcTailOverflow(nPageIndex);
    ShowStep(MakeTask(dbOffsetY, dbOffsetX));
}

// A step whose limits do not decide whether it is shown.
void PDFConuiunePagesViewer::ShowStep(PDFRenderTask task) {
    if (HasItems()) {
        ClampTaskOffset(*m_pPageItems, task);
    }
    RenderScreenBitmapSync(task, false);
    PaintCanvas();
}

// --- layouts from the start ---

void PDFConuiunePagesViewer::OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                          double dbOffsetY) {
    if (!CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    DropItems();
    m_nCurPageIndex = nPageIndex;
    if (!IsPage(nPageIndex)) {
        return;
    }
    ScaleForFirstLayout(dbScale, PageSizeOf(nPageIndex));
    // A page that would stand below the screen stands at its top.
    const double dbTop = dbOffsetY < m_dbScreenHeight ? dbOffsetY : 0.0;
    MoveLayout(nPageIndex, m_dbScreenHeight - dbTop, dbOffsetX, GetScale(), m_nRotate);
    Platform::Debug::OutputDebugString("InitLayOut\n");
}

void PDFConuiunePagesViewer::ScaleForFirstLayout(double dbScale, const VLK_PageSize& size) {
    if (Utility::IsDesktop()) {
        SetScale(AskFitScale());
    } else if (Utility::IsMobile()) {
        const double dbDefault = std::max(1.0, CalcWidthRatio(size, m_nRotate, LayoutScreen()));
        SetScale(static_cast<float>(dbScale != 0.0 ? dbScale : dbDefault));
    }
}

void PDFConuiunePagesViewer::OnRotateViewer(std::int32_t nRotate) {
    SetRotate(nRotate);
    RecomputeCurrentPage();
    DropItems();
    OnInvaildateLayout();
}

void PDFConuiunePagesViewer::OnInvaildateLayout() {
    EmptyScaleCache();
    if (m_pPageItems && CanLayOut()) {
        if (KeepsOrientation()) {
            LayOutInPlace();
        } else {
            RecomputeCurrentPage();
            DropItems();
            OnInitLayOut(m_nCurPageIndex, 0.0, 0.0, 0.0);
        }
    }
    Platform::Debug::OutputDebugString("InvaildateLayout - UpdateViewer\n");
}

// The first page keeps its place, as far as the document's end allows.
void PDFConuiunePagesViewer::LayOutInPlace() {
    double dbTop = 0.0;
    double dbLeft = 0.0;
    if (HasItems()) {
        const ContinueViewerPageItem& first = *m_pPageItems->front();
        m_nCurPageIndex = first.nPageIndex;
        dbTop = first.screenRect.dbOffsetY;
        dbLeft = first.screenRect.dbOffsetX;
        DropItems();
    }
    const double dbOverflow = CalcTailOverflow(m_nCurPageIndex);
    if (dbOverflow == 0.0) {
        OnInitLayOut(m_nCurPageIndex, GetScale(), dbLeft, dbTop);
    } else {
        ShowStep(MakeTask((dbTop + m_dbScreenHeight) - dbOverflow, dbLeft));
    }
}

}
