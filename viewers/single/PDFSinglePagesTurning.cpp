// Turning pages: a step of a drag, and the neighbour that it brings.
#include <algorithm>
#include <cmath>

#include "document/Utility.h"
#include "platform/system/Debug.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

// --- one movement ---

// Moves all items and gives them in `outList`. Of two, neither goes further than
// into its place on the one side and out of the screen on the other.
void PDFSinglePagesViewer::OffsetPageItems(double dbOffsetY, double dbOffsetX, PageItems& outList) {
    const bool bForward = dbOffsetX >= 0.0;
    for (std::size_t n = 0; n < m_pPageItems->size(); ++n) {
        if (bForward) {
            OffsetForward(n, dbOffsetX);
        } else {
            OffsetBackward(n, std::max(-m_dbScreenWidth, dbOffsetX));
        }
        OffsetDown(*(*m_pPageItems)[n], dbOffsetY);
        outList.push_back((*m_pPageItems)[n]);
    }
    if (!m_pPageItems->empty()) {
        m_bSwipeBackward = !bForward;
    }
    PinWidePage();
}

void PDFSinglePagesViewer::OffsetForward(std::size_t nPosition, double dbOffsetX) {
    const SingleViewerPageItem& item = *(*m_pPageItems)[nPosition];
    const Render_ScreenOffsetInfo& rcFirst = m_pPageItems->front()->screenRect;
    double& dbX = (*m_pPageItems)[nPosition]->screenRect.dbOffsetX;
    if (nPosition == 1 && rcFirst.dbOffsetX == -rcFirst.nWidth) {
        dbX = 0.0;
    } else {
        dbX -= dbOffsetX;
    }
    if (m_pPageItems->size() < 2) {
        return;
    }
    dbX = std::max(dbX, nPosition == 0 ? -item.screenRect.nWidth : CentreX(item));
}

void PDFSinglePagesViewer::OffsetBackward(std::size_t nPosition, double dbOffsetX) {
    const SingleViewerPageItem& item = *(*m_pPageItems)[nPosition];
    double& dbX = (*m_pPageItems)[nPosition]->screenRect.dbOffsetX;
    dbX -= dbOffsetX;
    if (m_pPageItems->size() < 2) {
        return;
    }
    dbX = std::min(dbX, nPosition == 0 ? CentreX(item) : m_dbScreenWidth);
}

// A page that fits never moves up or down.
void PDFSinglePagesViewer::OffsetDown(SingleViewerPageItem& item, double dbOffsetY) const {
    Render_ScreenOffsetInfo& rc = item.screenRect;
    if (rc.nHeight <= m_dbScreenHeight) {
        return;
    }
    const double dbOverhang = std::abs(rc.nHeight - m_dbScreenHeight);
    const double dbMoved = rc.dbOffsetY - dbOffsetY;
    if (dbOffsetY > 0.0) {
        rc.dbOffsetY = std::abs(dbMoved) > dbOverhang ? -dbOverhang : dbMoved;
    } else if (dbOffsetY < 0.0) {
        rc.dbOffsetY = rc.dbOffsetY > 0.0 || dbMoved > 0.0 ? 0.0 : dbMoved;
    }
}

// The right edge of a wide page stays at the screen's while its neighbour has
// just gone out.
void PDFSinglePagesViewer::PinWidePage() const {
    if (m_pPageItems->size() < 2) {
        return;
    }
    Render_ScreenOffsetInfo& rcFirst = (*m_pPageItems)[0]->screenRect;
    if ((*m_pPageItems)[1]->screenRect.dbOffsetX == m_dbScreenWidth &&
        rcFirst.nWidth > m_dbScreenWidth) {
        rcFirst.dbOffsetX = m_dbScreenWidth - rcFirst.nWidth;
    }
}

// Whether the document's first or last page stays where it is. A zoom on the
// desktop also holds a wide last page that stands half of its overhang away.
bool PDFSinglePagesViewer::IsMoveRefused(const SingleViewerPageItem& item, double dbOffsetX,
                                         bool bIsZoom) const {
    const double dbX = item.screenRect.dbOffsetX;
    const double dbAway = std::abs(dbX);
    const double dbDifference = std::abs(m_dbScreenWidth - item.screenRect.nWidth);
    if (item.nPageIndex == 0 && dbOffsetX <= 0.0) {
        return dbX >= 0.0 || dbAway > dbDifference;
    }
    if (IsLastPage(item.nPageIndex) && dbOffsetX >= 0.0) {
        const bool bHalfCounts = Utility::IsDesktop() && (bIsZoom || IsNarrow(item));
        return (bHalfCounts && dbAway >= dbDifference * 0.5) || dbAway >= dbDifference ||
               (dbX == CentreX(item) && IsNarrow(item));
    }
    return false;
}

// --- the step ---

void PDFSinglePagesViewer::ScrollPageItems(double dbOffsetY, double dbOffsetX,
                                           bool bAppendNeighbour, bool bComplete) {
    if (!HasItems()) {
        return;
    }
    SingleViewerPageItem& first = *m_pPageItems->front();
    if (m_bCentreNarrowPage && first.screenRect.nWidth <= m_dbScreenWidth) {
        first.screenRect.dbOffsetX = CentreX(first);
    }
    if (m_pPageItems->size() == 1 && IsMoveRefused(first, dbOffsetX, false)) {
        dbOffsetX = 0.0;
    }
    PageItems newList;
    newList.reserve(2);
    const double dbFrom = first.screenRect.dbOffsetX;
    OffsetPageItems(dbOffsetY, dbOffsetX, newList);
    if (newList.size() == 1) {
        NoteMoveWithin(first, dbFrom);
    }
    if (newList.size() == 1 && !m_bCentreNarrowPage && dbOffsetX != 0.0 && bAppendNeighbour) {
        FetchNeighbour(newList, {dbOffsetY, dbOffsetX, m_fScale, m_nRotate});
    }
    AdoptItems(newList);
    BringIntoSight();
    if (bComplete) {
        if (m_pPageItems->size() == 1) {
            m_pPageItems->front()->screenRect.dbOffsetX = RecentredX(*m_pPageItems->front());
        }
        RegridItems(); // the frame that is kept as a backdrop shows the new place
        CompleteGesture();
        return;
    }
    RegridItems();
    LoadPageBitmapFromCache(false);
    PaintCanvas();
}

// What a drag moves between the edges of a wide page turns no page.
void PDFSinglePagesViewer::NoteMoveWithin(const SingleViewerPageItem& item, double dbFrom) {
    const double dbRoom = std::min(0.0, m_dbScreenWidth - item.screenRect.nWidth);
    m_dbMovedWithin +=
        std::clamp(dbFrom, dbRoom, 0.0) - std::clamp(item.screenRect.dbOffsetX, dbRoom, 0.0);
}

// Where a gap has opened on a side.
void PDFSinglePagesViewer::FetchNeighbour(PageItems& list, const PDFRenderTask& task) {
    const SingleViewerPageItem& item = *list.front();
    const double dbX = item.screenRect.dbOffsetX;
    if (dbX <= 0.0 && dbX >= m_dbScreenWidth - item.screenRect.nWidth) {
        return;
    }
    if (m_bSwipeBackward) {
        EnumPageLeft(item.nPageIndex, list, task);
    } else {
        EnumPageRight(item.nPageIndex, list, task);
    }
}

void PDFSinglePagesViewer::EnumPageLeft(std::int32_t nPageIndex, PageItems& list,
                                        const PDFRenderTask& task) {
    Platform::Debug::OutputDebugString("EnumPageLeft\n");
    const Render_ScreenOffsetInfo& rcFirst = list.front()->screenRect;
    if (nPageIndex - 1 < 0 || rcFirst.dbOffsetX < m_dbScreenWidth - rcFirst.nWidth) {
        return;
    }
    const PageItem pItem = MakeItem(nPageIndex - 1, task);
    const DisplaySize size = pItem->GetPageDisplaySize();
    PlaceNeighbour(*pItem, size, -double{size.fWidth});
    list.insert(list.begin(), pItem);
}

// Beyond the last page there is none: the page's right edge stays at the
// screen's.
void PDFSinglePagesViewer::EnumPageRight(std::int32_t nPageIndex, PageItems& list,
                                         const PDFRenderTask& task) {
    SingleViewerPageItem& last = *list.back();
    Render_ScreenOffsetInfo& rcLast = last.screenRect;
    if (!IsPage(nPageIndex + 1)) {
        const double dbOverhang = rcLast.nWidth - m_dbScreenWidth;
        if (last.Scale() == 1.0 || std::abs(rcLast.dbOffsetX) > dbOverhang) {
            rcLast.dbOffsetX = -static_cast<std::int32_t>(dbOverhang);
        }
        return;
    }
    if (rcLast.dbOffsetX > 0.0) {
        return;
    }
    const PageItem pItem = MakeItem(nPageIndex + 1, task);
    PlaceNeighbour(*pItem, pItem->GetPageDisplaySize(), m_dbScreenWidth);
    list.push_back(pItem);
}

void PDFSinglePagesViewer::PlaceNeighbour(SingleViewerPageItem& item, const DisplaySize& size,
                                          double dbX) const {
    item.SetSize(size);
    item.MoveTo(dbX,
                m_dbScreenHeight >= size.fHeight ? (m_dbScreenHeight - size.fHeight) * 0.5 : 0.0);
    Regrid(item);
}

// After a move longer than the page: the neighbour takes its place.
void PDFSinglePagesViewer::BringIntoSight() {
    if (m_pPageItems->size() < 2) {
        return;
    }
    const Render_ScreenOffsetInfo& rcFirst = m_pPageItems->front()->screenRect;
    const Render_ScreenOffsetInfo& rcLast = m_pPageItems->back()->screenRect;
    if (rcFirst.dbOffsetX + rcFirst.nWidth > 0.0 || rcLast.dbOffsetX < m_dbScreenWidth) {
        return;
    }
    SingleViewerPageItem& item = *(m_bSwipeBackward ? m_pPageItems->front() : m_pPageItems->back());
    item.screenRect.dbOffsetX = std::max(0.0, CentreX(item));
}

void PDFSinglePagesViewer::RegridItems() const {
    for (const PageItem& pItem : *m_pPageItems) {
        Regrid(*pItem);
    }
}

// What has gone out of the screen goes first, so that a drag turns over several
// pages.
void PDFSinglePagesViewer::OnMoveScreen(double dbOffsetY, double dbOffsetX) {
    if (!m_pPageItems || !CanLayOut()) {
        return;
    }
    EmptyScaleCache();
    GetScale(); // lowers it to the limit
    RefreshScreenSize();
    if (m_pPageItems->size() == 2) {
        const Render_ScreenOffsetInfo& rcFirst = m_pPageItems->front()->screenRect;
        if (dbOffsetX > 0.0 && rcFirst.dbOffsetX <= -rcFirst.nWidth) {
            RemoveItem(0);
        } else if (dbOffsetX < 0.0 &&
                   m_pPageItems->back()->screenRect.dbOffsetX >= m_dbScreenWidth) {
            RemoveItem(1);
        }
    }
    ScrollPageItems(dbOffsetY, dbOffsetX, true, false);
}

// Turns no page: a page wider than the screen moves as far as its edges.
void PDFSinglePagesViewer::OnPageSizeChanged(double dbOffsetX, double dbOffsetY) {
    if (!CanLayOut()) {
        return;
    }
    RefreshScreenSize();
    GetScale(); // lowers it to the limit
    double dbMove = 0.0;
    if (HasItems() && m_pPageItems->front()->screenRect.nWidth > m_dbScreenWidth) {
        const Render_ScreenOffsetInfo& rc = m_pPageItems->front()->screenRect;
        dbMove =
            rc.dbOffsetX - std::clamp(rc.dbOffsetX - dbOffsetX, m_dbScreenWidth - rc.nWidth, 0.0);
    }
    ScrollPageItems(dbOffsetY, dbMove, false, false);
}

}
