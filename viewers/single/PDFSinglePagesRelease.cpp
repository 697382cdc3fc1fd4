// The end of a drag: which of two pages stays, and where it comes to stand.
#include <cmath>

#include "document/Utility.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

// Which of two pages goes; both stay where a page stands at exactly half.
void PDFSinglePagesViewer::DropHiddenPageItem(double dbOffsetX) {
    if (!HasItems() || m_pPageItems->size() < 2) {
        return;
    }
    const Render_ScreenOffsetInfo& rcA = m_pPageItems->front()->screenRect;
    const Render_ScreenOffsetInfo& rcB = m_pPageItems->back()->screenRect;
    const double dbHalf = m_dbScreenWidth * 0.5;
    const std::size_t nFirst = 0;
    const std::size_t nLast = m_pPageItems->size() - 1;
    const double dbA = rcA.dbOffsetX;
    const double dbB = rcB.dbOffsetX;
    if (std::abs(dbOffsetX) >= m_dbScreenWidth) { // a drag as long always turns
        RemoveItem(dbOffsetX > 0.0 ? nFirst : nLast);
    } else if (dbA > dbHalf) {
        RemoveItem(nFirst);
    } else if (dbA > 0.0 && dbA < dbHalf) {
        RemoveItem(nLast);
    } else if (dbA < 0.0 && dbA < -(rcA.nWidth / 2)) {
        RemoveItem(nFirst);
    } else if (dbB > dbHalf) {
        RemoveItem(nLast);
    } else if (dbB > 0.0 && dbB < dbHalf) {
        RemoveItem(nFirst);
    } else if (dbA == 0.0) {
        RemoveItem(nLast);
    } else if (dbB == 0.0) {
        RemoveItem(nFirst);
    }
}

// A neighbour that has not come in, or a page that has gone out, exactly to the
// left of the screen.
bool PDFSinglePagesViewer::DropItemOutside() {
    for (std::size_t n = 0; n < m_pPageItems->size(); ++n) {
        const Render_ScreenOffsetInfo& rc = (*m_pPageItems)[n]->screenRect;
        if (rc.dbOffsetX + rc.nWidth == 0.0) {
            RemoveItem(n);
            return true;
        }
    }
    return false;
}

// Where a page comes to stand: the mobile family goes by the scale, any other by
// the page's width alone. A page below its smallest scale stays where it is, if
// that is on the screen.
double PDFSinglePagesViewer::ReleasedX(const SingleViewerPageItem& item) const {
    const double dbX = item.screenRect.dbOffsetX;
    if (Utility::IsMobile() && item.dbScale < 1.0) {
        const bool bIsShown = dbX < m_dbScreenWidth && dbX + item.screenRect.nWidth > 0.0;
        return bIsShown ? dbX : CentreX(item);
    }
    if (Utility::IsMobile() ? item.dbScale == 1.0 : IsNarrow(item)) {
        return CentreX(item);
    }
    return dbX > 0.0 && !IsNarrow(item) ? 0.0 : RecentredX(item);
}

void PDFSinglePagesViewer::OnAlignPageAfterScroll(double /*dbOffsetY*/, double dbOffsetX) {
    if (!HasItems() || !CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    const bool bTurning = m_pPageItems->size() >= 2;
    const bool bTurned = bTurning && DropItemOutside();
    if (bTurning && !bTurned) {
        DropHiddenPageItem(dbOffsetX);
    }
    SingleViewerPageItem& item = *m_pPageItems->front();
    const double dbX = ReleasedX(item);
    const bool bMoves = item.screenRect.dbOffsetX != dbX;
    item.screenRect.dbOffsetX = dbX;
    if (!bTurning && !bMoves) {
        return;
    }
    if (!bTurned) {
        NoteEdges(item);
    }
    if (!bTurning || Utility::IsMobile()) {
        SetScale(static_cast<float>(item.dbScale));
    }
    ShowReleased(item);
}

// Also where nothing moved: what a page that went had under way no longer closes
// the renders. The frame comes last, as a handler of the host may do anything.
void PDFSinglePagesViewer::ShowReleased(SingleViewerPageItem& item) {
    Regrid(item);
    LoadPageBitmapFromCache(false);
    m_pScaleBitmapCache.Clear();
    PaintCanvas();
}

void PDFSinglePagesViewer::NoteEdges(const SingleViewerPageItem& item) {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    if (item.dbScale <= 1.0) {
        m_bAtLeftEdge = false;
        m_bAtRightEdge = false;
    } else if (rc.dbOffsetX == 0.0) {
        m_bAtLeftEdge = true;
    } else if (rc.dbOffsetX == m_dbScreenWidth - rc.nWidth) {
        m_bAtRightEdge = true;
    }
}

}
