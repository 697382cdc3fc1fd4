#include "viewers/core/ColumnViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

namespace {

// A move limited in floating point may miss an end by less than this.
constexpr double kNoDistance = 0.001;

}

ColumnViewer::ColumnViewer(std::weak_ptr<IViewerOwner> wkOwner,
                           std::shared_ptr<VLK_Document> pDocument,
                           std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits)
    : PageViewerBase(std::move(wkOwner), std::move(pDocument), std::move(pCanvas), traits) {}

PDFRenderTask ColumnViewer::MakeTask(double dbOffsetY, double dbOffsetX) {
    return {dbOffsetY, dbOffsetX, GetScale(), m_nRotate};
}

void ColumnViewer::OnClosed() {
    PageViewerBase::OnClosed();
    m_spareItems = PageItems();
}

Column ColumnViewer::TheColumn() {
    return {*this, PageGap(), m_dbScreenHeight, CanvasHeight()};
}

// --- the current page ---

std::int32_t ColumnViewer::GetCurrentPageIndex() {
    ThrowIfDisposed();
    return HasItems() ? TheColumn().CurrentPage(*m_pPageItems->front()) : 0;
}

void ColumnViewer::RecomputeCurrentPage() {
    if (HasItems()) {
        m_nCurPageIndex = GetCurrentPageIndex();
    }
}

// --- moves ---

void ColumnViewer::OnMoveScreen(double dbOffsetY, double dbOffsetX) {
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
        OnLaidOut();
        StartRenders(false);
        PaintCanvas();
    }
}

// Returns whether anything moved.
bool ColumnViewer::MoveInSteps(double dbOffsetY, double dbOffsetX) {
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
bool ColumnViewer::PinEnds() {
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

void ColumnViewer::OnPageSizeChanged(double dbOffsetX, double dbOffsetY) {
    EmptyScaleCache();
    if (!CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    RecomputeCurrentPage();
    MoveLayout(m_nCurPageIndex, dbOffsetY, dbOffsetX, GetScale(), m_nRotate);
}

void ColumnViewer::MoveLayout(std::int32_t nPageIndex, double dbOffsetY, double dbOffsetX,
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
double ColumnViewer::CalcTailOverflow(std::int32_t nPageIndex) {
    RefreshScreenSize();
    std::int32_t nStart = nPageIndex;
    const double dbOverflow = TheColumn().TailOverflow(nStart);
    if (nStart != nPageIndex) {
        m_nCurPageIndex = nStart;
    }
    return dbOverflow;
}

DisplaySize ColumnViewer::DisplaySizeOf(std::int32_t nPageIndex) {
    return MakeItem(nPageIndex, MakeTask(0.0, 0.0))->GetPageDisplaySize();
}

void ColumnViewer::OnGotoPage(std::int32_t nPageIndex) {
    if (!CanLayOut()) {
        return;
    }
    ShowPage(std::clamp(nPageIndex, 0, std::max(0, PageCount() - 1)), false);
}

void ColumnViewer::ShowPage(std::int32_t nPageIndex, bool bFresh) {
    RefreshScreenSize();
    double dbOffsetY = m_dbScreenHeight;
    double dbOffsetX = 0.0;
    if (HasItems()) {
        const ViewerPageItem& first = *m_pPageItems->front();
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
void ColumnViewer::ShowStep(PDFRenderTask task) {
    if (HasItems()) {
        ClampTaskOffset(*m_pPageItems, task);
    }
    RenderScreenBitmapSync(task, false);
    PaintCanvas();
}

// --- layouts from the start ---

void ColumnViewer::OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
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
    ChooseFirstScale(nPageIndex, dbScale);
    // A page that would stand below the screen stands at its top.
    const double dbTop = dbOffsetY < m_dbScreenHeight ? dbOffsetY : 0.0;
    MoveLayout(nPageIndex, m_dbScreenHeight - dbTop, dbOffsetX, GetScale(), m_nRotate);
    Platform::Debug::OutputDebugString("InitLayOut\n");
}

void ColumnViewer::OnRotateViewer(std::int32_t nRotate) {
    SetRotate(nRotate);
    RecomputeCurrentPage();
    DropItems();
    OnInvaildateLayout();
}

void ColumnViewer::LayOutForSize() {
    EmptyScaleCache();
    if (!m_pPageItems || !CanLayOut()) {
        return;
    }
    if (KeepsOrientation()) {
        LayOutInPlace();
    } else {
        RecomputeCurrentPage();
        DropItems();
        OnInitLayOut(m_nCurPageIndex, 0.0, 0.0, 0.0);
    }
}

// The first page keeps its place, as far as the document's end allows.
void ColumnViewer::LayOutInPlace() {
    double dbTop = 0.0;
    double dbLeft = 0.0;
    if (HasItems()) {
        const ViewerPageItem& first = *m_pPageItems->front();
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
