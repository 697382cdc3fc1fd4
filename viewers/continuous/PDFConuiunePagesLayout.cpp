// One step of the continuous layout: limit the move, move what is laid out,
// trim the one end and fill the other.
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/continuous/PageGap_p.h"

namespace velko::vkit {

namespace {

constexpr double kSmallestMove = 1.0;

// A page is laid out as long as more than this of the height is not filled.
constexpr double kFilled = 1.0;

double BottomOf(const Render_ScreenOffsetInfo& rc) {
    return rc.dbOffsetY + rc.nHeight;
}

}

// --- limits ---

bool PDFConuiunePagesViewer::ClampTaskOffset(const PageItems& items, PDFRenderTask& task) {
    if (items.empty()) {
        return true;
    }
    if (PageCount() < 2) {
        ClampOnlyPage(*items.front(), task.dbOffsetY);
    } else {
        ClampToEnds(items, task.dbOffsetY);
    }
    ClampHorizontal(items, task.dbOffsetX);
    return std::abs(task.dbOffsetY) >= kSmallestMove || std::abs(task.dbOffsetX) >= kSmallestMove;
}

// Each of the two decides by the sign that comes in. A page 0 that hangs below
// the top is brought there by any upward move.
void PDFConuiunePagesViewer::ClampOnlyPage(const ContinueViewerPageItem& page,
                                           double& dbOffsetY) const {
    const Render_ScreenOffsetInfo& rc = page.screenRect;
    if (dbOffsetY < 0.0) {
        if (rc.dbOffsetY == 0.0) {
            dbOffsetY = 0.0;
        } else if (rc.dbOffsetY > 0.0 || std::abs(rc.dbOffsetY) <= std::abs(dbOffsetY)) {
            dbOffsetY = rc.dbOffsetY;
        }
    } else if (dbOffsetY > 0.0) {
        const double dbCanvasHeight = CanvasHeight();
        if (rc.nHeight <= dbCanvasHeight) {
            dbOffsetY = 0.0;
        } else if (rc.nHeight + (rc.dbOffsetY - dbOffsetY) < dbCanvasHeight) {
            dbOffsetY = std::abs(BottomOf(rc) - dbCanvasHeight);
        }
    }
}

void PDFConuiunePagesViewer::ClampToEnds(const PageItems& items, double& dbOffsetY) const {
    const Render_ScreenOffsetInfo& rcFirst = items.front()->screenRect;
    const Render_ScreenOffsetInfo& rcLast = items.back()->screenRect;
    if (dbOffsetY < 0.0) {
        const bool bReachesTop =
            rcFirst.dbOffsetY > 0.0 || std::abs(dbOffsetY) >= std::abs(rcFirst.dbOffsetY);
        if (items.front()->nPageIndex == 0 && bReachesTop) {
            dbOffsetY = rcFirst.dbOffsetY;
        }
    } else if (dbOffsetY > 0.0) {
        if (IsLastPage(items.back()->nPageIndex) &&
            rcLast.nHeight + (rcLast.dbOffsetY - dbOffsetY) < m_dbScreenHeight) {
            dbOffsetY = BottomOf(rcLast) <= m_dbScreenHeight
                            ? 0.0
                            : std::abs(BottomOf(rcLast) - m_dbScreenHeight);
        }
    }
}

// The widest page decides, the first of several.
void PDFConuiunePagesViewer::ClampHorizontal(const PageItems& items, double& dbOffsetX) const {
    const auto it = std::max_element(items.begin(), items.end(), [](const auto& a, const auto& b) {
        return a->screenRect.nWidth < b->screenRect.nWidth;
    });
    const double dbWidest = (*it)->screenRect.nWidth;
    const double dbLeft = (*it)->screenRect.dbOffsetX;
    if (dbWidest <= m_dbScreenWidth) {
        const double dbCentred = (m_dbScreenWidth - dbWidest) * 0.5;
        const double dbAway = std::abs(dbCentred - dbLeft);
        if (dbLeft == dbCentred) {
            dbOffsetX = 0.0;
        } else if (dbLeft > dbCentred) {
            dbOffsetX = dbOffsetX > 0.0 ? std::min(dbOffsetX, dbAway) : 0.0;
        } else {
            dbOffsetX = dbOffsetX < 0.0 ? std::max(dbOffsetX, -dbAway) : 0.0;
        }
    } else if (dbOffsetX > 0.0) {
        if (dbLeft == dbWidest - m_dbScreenWidth) {
            dbOffsetX = 0.0;
        } else if (dbWidest < std::abs(dbOffsetX) + std::abs(dbLeft) + m_dbScreenWidth) {
            dbOffsetX = dbWidest - std::abs(dbLeft - m_dbScreenWidth);
            if (dbOffsetX < 0.0) {
                Platform::Debug::OutputDebugString("HOffset Error\n");
            }
        }
    } else if (dbLeft == 0.0) {
        dbOffsetX = 0.0;
    } else if (std::abs(dbLeft) < std::abs(dbOffsetX)) {
        dbOffsetX = -std::abs(dbLeft);
    }
}

// --- the step ---

// False when the step would have emptied the screen and was brought back.
bool PDFConuiunePagesViewer::LayOut(const PDFRenderTask& task) {
    const auto pSelf = shared_from_this();
    if (!m_pPageItems) {
        m_pPageItems = std::make_unique<PageItems>();
    }
    PageItems newList = std::move(m_spareItems);
    newList.clear();
    bool bHeld = false;
    try {
        RelayoutPageItems(newList, task);
        bHeld = HoldsScreen(newList);
        if (!bHeld) {
            BringBack(newList, task);
        }
    } catch (...) {
        Adopt(newList); // what has been moved is whole; the next step fills the rest
        throw;
    }
    Adopt(newList);
    return bHeld;
}

void PDFConuiunePagesViewer::Adopt(PageItems& newList) {
    if (m_pPageItems) {
        m_pPageItems->swap(newList);
    } else { // closed by a handler of the host meanwhile
        for (const PageItem& pItem : newList) {
            pItem->ClearBlocks();
        }
    }
    newList.clear();
    m_spareItems = std::move(newList);
    ++m_nLayoutVersion;
}

bool PDFConuiunePagesViewer::RelayoutPageItems(PageItems& newList, const PDFRenderTask& task) {
    for (const PageItem& pItem : *m_pPageItems) {
        pItem->MoveTo(pItem->screenRect.dbOffsetX - task.dbOffsetX,
                      pItem->screenRect.dbOffsetY - task.dbOffsetY);
        if (StaysOnScreen(*pItem, task)) {
            newList.push_back(pItem);
            pItem->DividToBlock(GetPageDavidBlock(*pItem));
        } else {
            pItem->ClearBlocks();
        }
    }
    if (task.dbOffsetY < 0.0) {
        EnumPageTop(m_nCurPageIndex, newList, task);
    } else {
        EnumPageBelow(m_nCurPageIndex, newList, task);
    }
    return true;
}

// Only the end away from which the pages move is trimmed.
bool PDFConuiunePagesViewer::StaysOnScreen(const ContinueViewerPageItem& item,
                                           const PDFRenderTask& task) const {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    if (task.dbOffsetY < 0.0) {
        return rc.dbOffsetY < m_dbScreenHeight;
    }
    return rc.dbOffsetY >= 0.0 || std::abs(rc.dbOffsetY) < rc.nHeight + kPageGapPixels;
}

void PDFConuiunePagesViewer::EnumPageTop(std::int32_t nPageIndex, PageItems& list,
                                         const PDFRenderTask& task) {
    double dbBelow = std::abs(task.dbOffsetY); // where the page below starts
    double dbLeft = task.dbOffsetX;
    std::int32_t nPage = nPageIndex;
    if (!list.empty()) {
        const ContinueViewerPageItem& first = *list.front();
        if (first.screenRect.dbOffsetY <= 0.0) {
            return;
        }
        dbBelow = first.screenRect.dbOffsetY;
        dbLeft = first.screenRect.dbOffsetX;
        nPage = first.nPageIndex - 1;
    }
    for (; nPage >= 0; --nPage) {
        const PageItem pItem = MakeItem(nPage, task);
        const DisplaySize size = pItem->GetPageDisplaySize();
        PlaceItem(*pItem, size, dbLeft, (dbBelow - size.fHeight) - kPageGap);
        list.insert(list.begin(), pItem);
        pItem->DividToBlock(GetPageDavidBlock(*pItem));
        dbBelow -= pItem->screenRect.nHeight + kPageGapPixels;
        if (dbBelow <= kFilled) {
            return;
        }
    }
}

void PDFConuiunePagesViewer::EnumPageBelow(std::int32_t nPageIndex, PageItems& list,
                                           const PDFRenderTask& task) {
    double dbToFill = std::abs(task.dbOffsetY);
    double dbLeft = task.dbOffsetX;
    std::int32_t nPage = std::max(0, nPageIndex);
    if (!list.empty()) {
        const Render_ScreenOffsetInfo& rcLast = list.back()->screenRect;
        if (m_dbScreenHeight <= BottomOf(rcLast)) {
            return;
        }
        dbToFill = (m_dbScreenHeight - BottomOf(rcLast)) - kPageGap;
        dbLeft = rcLast.dbOffsetX;
        nPage = list.back()->nPageIndex + 1;
    }
    for (const std::int32_t nCount = PageCount(); nPage < nCount; ++nPage) {
        const PageItem pItem = MakeItem(nPage, task);
        const double dbTop = m_dbScreenHeight - dbToFill;
        PlaceItem(*pItem, pItem->GetPageDisplaySize(), dbLeft, dbTop);
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        NarrowToOnlyPage(rc);
        const bool bAbove = dbTop < 0.0 && std::abs(dbTop) >= rc.nHeight + kPageGapPixels;
        if (rc.nWidth > 0 && rc.nHeight > 0 && !bAbove) {
            list.push_back(pItem);
            pItem->DividToBlock(GetPageDavidBlock(*pItem));
        }
        dbToFill -= rc.nHeight + kPageGapPixels;
        if (dbToFill <= kFilled) {
            return;
        }
    }
}

void PDFConuiunePagesViewer::PlaceItem(ContinueViewerPageItem& item, const DisplaySize& size,
                                       double dbOffsetX, double dbOffsetY) const {
    item.SetSize(size);
    item.MoveTo(size.fWidth < m_dbScreenWidth ? (m_dbScreenWidth - size.fWidth) * 0.5 : dbOffsetX,
                dbOffsetY);
}

// Until the canvas's size is read again, all limits then work against the page.
void PDFConuiunePagesViewer::NarrowToOnlyPage(const Render_ScreenOffsetInfo& rc) {
    if (PageCount() == 1 && rc.nHeight < m_dbScreenHeight) {
        m_dbScreenHeight = rc.nHeight;
    }
}

// Whether the reader sees a page, or a gap between two. True also where there
// is no screen or no page to see.
bool PDFConuiunePagesViewer::HoldsScreen(const PageItems& items) const {
    const Rect rcScreen = ScreenRect();
    if (rcScreen.Width <= 0.0F || rcScreen.Height <= 0.0F || PageCount() == 0) {
        return true;
    }
    return std::any_of(items.begin(), items.end(), [&](const PageItem& pItem) {
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        return rc.dbOffsetY < rcScreen.Height && BottomOf(rc) + kPageGap > 0.0 &&
               rc.dbOffsetX < rcScreen.Width && rc.dbOffsetX + rc.nWidth > 0.0;
    });
}

void PDFConuiunePagesViewer::BringBack(PageItems& list, PDFRenderTask task) {
    for (const PageItem& pItem : list) {
        pItem->ClearBlocks();
    }
    list.clear();
    task.dbOffsetY = m_dbScreenHeight;
    task.dbOffsetX = 0.0;
    EnumPageBelow(std::min(m_nCurPageIndex, PageCount() - 1), list, task);
}

const PageViewerBase::PageItems& PDFConuiunePagesViewer::RenderScreenBitmapSync(
    const PDFRenderTask& task, bool bUseCacheOnly) {
    LayOut(task);
    StartRenders(bUseCacheOnly);
    return *m_pPageItems;
}

}
