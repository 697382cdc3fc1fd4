// The end of a drag: which of two pages stays, and where it comes to stand.
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/Utility.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

void PDFSinglePagesViewer::DropHiddenPageItem(double dbOffsetX) {
    if (HasItems() && m_pPageItems->size() >= 2) {
        RemoveItem(PositionToDrop(dbOffsetX));
    }
}

// `dbOffsetX` is the part of the drag that went beyond the page's edge. A page
// wider than the screen goes by where its neighbour stands: that it hangs far
// over the left edge says nothing.
std::size_t PDFSinglePagesViewer::PositionToDrop(double dbOffsetX) const {
    const Render_ScreenOffsetInfo& rcA = m_pPageItems->front()->screenRect;
    const Render_ScreenOffsetInfo& rcB = m_pPageItems->back()->screenRect;
    const double dbHalf = m_dbScreenWidth * 0.5;
    const std::size_t nFirst = 0;
    const std::size_t nLast = m_pPageItems->size() - 1;
    const double dbA = rcA.dbOffsetX;
    const double dbB = rcB.dbOffsetX;
    if (std::abs(dbOffsetX) >= m_dbScreenWidth) { // a drag as long always turns
        return dbOffsetX > 0.0 ? nFirst : nLast;
    }
    if (dbA > dbHalf) {
        return nFirst;
    }
    if (dbA > 0.0 && dbA < dbHalf) {
        return nLast;
    }
    const std::int32_t nHalfWidth = rcA.nWidth / 2;
    if (rcA.nWidth <= m_dbScreenWidth && dbA < 0.0 && dbA < -nHalfWidth) {
        return nFirst;
    }
    if (dbB > dbHalf) {
        return nLast;
    }
    if (dbB > 0.0 && dbB < dbHalf) {
        return nFirst;
    }
    if (dbA == 0.0) {
        return nLast;
    }
    return dbB == 0.0 ? nFirst : PositionFarther();
}

// Where both stand at half: of two as far from the middle, the second.
std::size_t PDFSinglePagesViewer::PositionFarther() const {
    const auto fnAway = [this](const SingleViewerPageItem& item) {
        return std::abs(item.screenRect.dbOffsetX - CentreX(item));
    };
    return fnAway(*m_pPageItems->front()) > fnAway(*m_pPageItems->back())
               ? 0
               : m_pPageItems->size() - 1;
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
    if (Utility::IsMobile() && item.Scale() < 1.0) {
        const bool bIsShown = dbX < m_dbScreenWidth && dbX + item.screenRect.nWidth > 0.0;
        return bIsShown ? dbX : CentreX(item);
    }
    if (Utility::IsMobile() ? item.Scale() == 1.0 : IsNarrow(item)) {
        return CentreX(item);
    }
    return RecentredX(item);
}

void PDFSinglePagesViewer::OnAlignPageAfterScroll(double /*dbOffsetY*/, double dbOffsetX) {
    if (!HasItems() || !CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    const double dbWithin = std::exchange(m_dbMovedWithin, 0.0);
    const double dbBeyond =
        dbOffsetX - std::clamp(dbWithin, std::min(0.0, dbOffsetX), std::max(0.0, dbOffsetX));
    const bool bTurning = m_pPageItems->size() >= 2;
    const bool bTurned = bTurning && DropItemOutside();
    if (bTurning && !bTurned) {
        DropHiddenPageItem(dbBeyond);
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
        SetScale(static_cast<float>(item.Scale()));
    }
    ShowReleased(item);
}

// Also where nothing moved: what a page that went had under way no longer closes
// the renders. The frame comes last, as a handler of the host may do anything.
void PDFSinglePagesViewer::ShowReleased(SingleViewerPageItem& item) {
    Regrid(item);
    LoadPageBitmapFromCache(false);
    EmptyScaleCache();
    PaintCanvas();
}

void PDFSinglePagesViewer::NoteEdges(const SingleViewerPageItem& item) {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    if (item.Scale() <= 1.0) {
        m_bAtLeftEdge = false;
        m_bAtRightEdge = false;
    } else if (rc.dbOffsetX == 0.0) {
        m_bAtLeftEdge = true;
    } else if (rc.dbOffsetX == m_dbScreenWidth - rc.nWidth) {
        m_bAtRightEdge = true;
    }
}

}
