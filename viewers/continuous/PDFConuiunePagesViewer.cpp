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
    .bStepEndsSnapshot = true,
    .bClearsWithoutPages = true,
};

PDFRenderTask PDFConuiunePagesViewer::MakeTask(double dbOffsetY, double dbOffsetX) {
    return {dbOffsetY, dbOffsetX, GetScale(), m_nRotate};
}

void PDFConuiunePagesViewer::CloseViewer() {
    PageViewerBase::CloseViewer();
    m_spareItems = PageItems();
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
    if (!HasItems()) {
        return 0;
    }
    const ContinueViewerPageItem& first = *m_pPageItems->front();
    const std::int32_t nLast = std::max(0, PageCount() - 1);
    const std::int32_t nPage = std::min(first.nPageIndex, nLast);
    const Render_ScreenOffsetInfo& rc = first.screenRect;
    if (rc.dbOffsetY >= 0.0) {
        return nPage;
    }
    const double dbHidden = std::abs(rc.dbOffsetY);
    const float fCanvasHeight = CanvasHeight();
    const bool bMostlyShown = static_cast<float>(rc.nHeight) < fCanvasHeight
                                  ? dbHidden < rc.nHeight / 2
                                  : fCanvasHeight * 0.5 < rc.nHeight - dbHidden;
    return bMostlyShown ? nPage : std::min(first.nPageIndex + 1, nLast);
}

void PDFConuiunePagesViewer::RecomputeCurrentPage() {
    if (HasItems()) {
        m_nCurPageIndex = GetCurrentPageIndex();
    }
}

// --- moves ---

void PDFConuiunePagesViewer::OnMoveScreen(double dbOffsetY, double dbOffsetX) {
    m_pScaleBitmapCache.Clear();
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

// Steps shorter than the screen, so that no step empties it. Returns whether
// anything moved.
bool PDFConuiunePagesViewer::MoveInSteps(double dbOffsetY, double dbOffsetX) {
    const double dbLongest = std::max(1.0, m_dbScreenHeight - kPageGap);
    bool bMoved = false;
    double dbLeft = dbOffsetY;
    while (std::abs(dbLeft) > dbLongest) {
        PDFRenderTask step = MakeTask(std::copysign(dbLongest, dbLeft), 0.0);
        if (!ClampTaskOffset(*m_pPageItems, step)) {
            dbLeft = 0.0; // the document's end
            break;
        }
        bMoved = true;
        if (!LayOut(step)) {
            dbLeft = 0.0; // past what can be shown: an end that has no size
            break;
        }
        dbLeft -= std::copysign(dbLongest, dbLeft);
    }
    PDFRenderTask last = MakeTask(dbLeft, dbOffsetX);
    if (ClampTaskOffset(*m_pPageItems, last)) {
        LayOut(last);
        bMoved = true;
    }
    return bMoved;
}

// Neither page 0 hangs below the top nor, in a document taller than the screen,
// the last page's end above the bottom.
bool PDFConuiunePagesViewer::PinEnds() {
    bool bMoved = false;
    if (HasItems() && IsLastPage(m_pPageItems->back()->nPageIndex)) {
        const Render_ScreenOffsetInfo& rcLast = m_pPageItems->back()->screenRect;
        const ContinueViewerPageItem& first = *m_pPageItems->front();
        double dbGap = m_dbScreenHeight - (rcLast.dbOffsetY + rcLast.nHeight);
        if (first.nPageIndex == 0) {
            dbGap = std::min(dbGap, -first.screenRect.dbOffsetY);
        }
        if (dbGap > kNoDistance) {
            LayOut(MakeTask(-dbGap, 0.0));
            bMoved = true;
        }
    }
    return PinFirstPage() || bMoved;
}

bool PDFConuiunePagesViewer::PinFirstPage() {
    if (!HasItems()) {
        return false;
    }
    const ContinueViewerPageItem& first = *m_pPageItems->front();
    if (first.nPageIndex != 0 || first.screenRect.dbOffsetY <= kNoDistance) {
        return false;
    }
    LayOut(MakeTask(first.screenRect.dbOffsetY, 0.0));
    return true;
}

void PDFConuiunePagesViewer::OnPageSizeChanged(double dbOffsetX, double dbOffsetY) {
    m_pScaleBitmapCache.Clear();
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
    const std::int32_t nCount = PageCount();
    double dbLeft = m_dbScreenHeight;
    for (std::int32_t nPage = nPageIndex; nPage < nCount; ++nPage) {
        dbLeft = dbLeft - DisplaySizeOf(nPage).fHeight - kPageGap;
        if (dbLeft <= 0.0) {
            return 0.0;
        }
    }
    dbLeft = m_dbScreenHeight;
    for (std::int32_t nPage = nCount - 1; nPage >= 0; --nPage) {
        dbLeft -= DisplaySizeOf(nPage).fHeight;
        if (nPage != nCount - 1) {
            dbLeft -= kPageGap;
        }
        m_nCurPageIndex = nPage;
        if (dbLeft <= 0.0) {
            break;
        }
    }
    return std::min(dbLeft, 0.0);
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
    m_pScaleBitmapCache.Clear();
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
