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

}

// --- limits ---

bool PDFConuiunePagesViewer::ClampTaskOffset(const PageItems& items, PDFRenderTask& task) {
    if (items.empty()) {
        return true;
    }
    task.dbOffsetY = TheColumn().LimitMove(*items.front(), *items.back(), task.dbOffsetY);
    task.dbOffsetX = LimitSideways(items, task.dbOffsetX);
    return std::abs(task.dbOffsetY) >= kSmallestMove || std::abs(task.dbOffsetX) >= kSmallestMove;
}

// As far as the page goes that has most left. A page that is off its edges, as
// after a change of the screen's size, comes back to them with any move.
double PDFConuiunePagesViewer::LimitSideways(const PageItems& items, double dbOffsetX) const {
    double dbMostLeft = 0.0;
    double dbMostRight = 0.0;
    double dbBack = 0.0; // for a page whose right edge has come into the screen
    for (const PageItem& pItem : items) {
        const Render_ScreenOffsetInfo& rc = pItem->screenRect;
        if (rc.nWidth >= m_dbScreenWidth) {
            const double dbOverhang = rc.dbOffsetX + rc.nWidth - m_dbScreenWidth;
            dbMostLeft = std::max(dbMostLeft, dbOverhang);
            dbBack = std::min(dbBack, dbOverhang);
            dbMostRight = std::min(dbMostRight, rc.dbOffsetX);
        }
    }
    if (dbOffsetX > 0.0 && dbMostLeft == 0.0 && dbBack < 0.0) {
        Platform::Debug::OutputDebugString("HOffset Error\n"); // told, and the way back taken
        return dbBack;
    }
    return std::clamp(dbOffsetX, dbMostRight, dbMostLeft);
}

// Within its own edges for a page as wide as the screen or wider; in the middle
// for another one, to a pixel, since its exact width decides that at first.
double PDFConuiunePagesViewer::StandingX(const LaidOutPage& item, double dbOffsetX) const {
    const double dbRoom = m_dbScreenWidth - item.screenRect.nWidth;
    if (dbRoom <= 0.0) {
        return std::clamp(dbOffsetX, dbRoom, 0.0);
    }
    const double dbNow = item.screenRect.dbOffsetX;
    return std::abs(dbNow - dbRoom * 0.5) < 1.0 ? dbNow : dbRoom * 0.5;
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
        KeepScreenFilled(newList, task);
        Adopt(newList); // what has been moved is whole; the next step fills the rest
        throw;
    }
    Adopt(newList);
    return bHeld;
}

// A step that ended early, as in a handler of the host, may have moved all pages
// away before it came to those that follow.
void PDFConuiunePagesViewer::KeepScreenFilled(PageItems& list, const PDFRenderTask& task) {
    if (!OpenDocument() || HoldsScreen(list)) {
        return;
    }
    try {
        BringBack(list, task);
    } catch (...) { // the first failure is told, and the page that is read stands by now
    }
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
        pItem->MoveTo(StandingX(*pItem, pItem->screenRect.dbOffsetX - task.dbOffsetX),
                      pItem->screenRect.dbOffsetY - task.dbOffsetY);
        if (StaysOnScreen(*pItem, task)) {
            newList.push_back(pItem);
            pItem->DividToBlock(GetPageDavidBlock(*pItem));
        } else {
            KeepStandIns(*pItem); // it may come back before the frame
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
        const ContinueViewerPageItem& last = *list.back();
        if (m_dbScreenHeight <= BottomOf(last)) {
            return;
        }
        dbToFill = (m_dbScreenHeight - BottomOf(last)) - kPageGap;
        dbLeft = last.screenRect.dbOffsetX;
        nPage = last.nPageIndex + 1;
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
    const bool bIsNarrow = size.fWidth < m_dbScreenWidth;
    item.MoveTo(
        bIsNarrow
            ? (m_dbScreenWidth - size.fWidth) * 0.5
            : std::clamp(dbOffsetX, std::min(0.0, m_dbScreenWidth - item.screenRect.nWidth), 0.0),
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
bool PDFConuiunePagesViewer::HoldsScreen(const PageItems& items) {
    const Rect rcScreen = CanvasRect();
    if (rcScreen.Width <= 0.0F || rcScreen.Height <= 0.0F || PageCount() == 0) {
        return true;
    }
    const Column column = TheColumn();
    return std::any_of(items.begin(), items.end(),
                       [&](const PageItem& pItem) { return column.HoldsScreen(*pItem); });
}

void PDFConuiunePagesViewer::BringBack(PageItems& list, PDFRenderTask task) {
    task.dbOffsetY = m_dbScreenHeight;
    task.dbOffsetX = list.empty() ? 0.0 : list.front()->screenRect.dbOffsetX;
    for (const PageItem& pItem : list) {
        KeepStandIns(*pItem);
        pItem->ClearBlocks();
    }
    list.clear();
    EnumPageBelow(std::min(m_nCurPageIndex, PageCount() - 1), list, task);
}

const PageViewerBase::PageItems& PDFConuiunePagesViewer::RenderScreenBitmapSync(
    const PDFRenderTask& task, bool bUseCacheOnly) {
    LayOut(task);
    StartRenders(bUseCacheOnly);
    return *m_pPageItems;
}

}
