// One step of a column: limit the move, move what is laid out, trim the one end
// and fill the other.
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/core/ColumnViewer.h"

namespace velko::vkit {

namespace {

constexpr double kSmallestMove = 1.0;

// A page is laid out as long as more than this of the height is not filled.
constexpr double kFilled = 1.0;

}

// --- limits ---

bool ColumnViewer::ClampTaskOffset(const PageItems& items, PDFRenderTask& task) {
    if (items.empty()) {
        return true;
    }
    task.dbOffsetY = TheColumn().LimitMove(*items.front(), *items.back(), task.dbOffsetY);
    task.dbOffsetX = LimitSideways(items, task.dbOffsetX);
    return std::abs(task.dbOffsetY) >= kSmallestMove || std::abs(task.dbOffsetX) >= kSmallestMove;
}

// --- the step ---

// False when the step would have emptied the screen and was brought back.
bool ColumnViewer::LayOut(const PDFRenderTask& task) {
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
void ColumnViewer::KeepScreenFilled(PageItems& list, const PDFRenderTask& task) {
    if (!OpenDocument() || HoldsScreen(list)) {
        return;
    }
    try {
        BringBack(list, task);
    } catch (...) { // the first failure is told, and the page that is read stands by now
    }
}

void ColumnViewer::Adopt(PageItems& newList) {
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

bool ColumnViewer::RelayoutPageItems(PageItems& newList, const PDFRenderTask& task) {
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
bool ColumnViewer::StaysOnScreen(const ViewerPageItem& item, const PDFRenderTask& task) const {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    if (task.dbOffsetY < 0.0) {
        return rc.dbOffsetY < m_dbScreenHeight;
    }
    return rc.dbOffsetY >= 0.0 || std::abs(rc.dbOffsetY) < rc.nHeight + PageGap();
}

// A page whose size is not known yet ends the column until it is.
void ColumnViewer::EnumPageTop(std::int32_t nPageIndex, PageItems& list,
                               const PDFRenderTask& task) {
    double dbBelow = std::abs(task.dbOffsetY); // where the page below starts
    double dbLeft = FirstX(task);
    std::int32_t nPage = std::min(nPageIndex, PageCount() - 1);
    if (!list.empty()) {
        const ViewerPageItem& first = *list.front();
        if (first.screenRect.dbOffsetY <= 0.0) {
            return;
        }
        dbBelow = first.screenRect.dbOffsetY;
        dbLeft = first.screenRect.dbOffsetX;
        nPage = first.nPageIndex - 1;
    }
    for (bool bIsFilled = false; !bIsFilled && nPage >= 0 && IsMeasured(nPage); --nPage) {
        if (TakesRoom(nPage)) {
            dbBelow -= PrependItem(nPage, list, task, {dbLeft, dbBelow});
            bIsFilled = dbBelow <= kFilled;
        }
    }
    OnFilled("EnumPageTop", dbBelow);
}

void ColumnViewer::EnumPageBelow(std::int32_t nPageIndex, PageItems& list,
                                 const PDFRenderTask& task) {
    double dbToFill = std::abs(task.dbOffsetY);
    double dbLeft = FirstX(task);
    std::int32_t nPage = std::max(0, nPageIndex);
    if (!list.empty()) {
        const ViewerPageItem& last = *list.back();
        if (m_dbScreenHeight <= BottomOf(last)) {
            return;
        }
        dbToFill = (m_dbScreenHeight - BottomOf(last)) - PageGap();
        dbLeft = last.screenRect.dbOffsetX;
        nPage = last.nPageIndex + 1;
    }
    const std::int32_t nCount = PageCount();
    for (bool bIsFilled = false; !bIsFilled && nPage < nCount && IsMeasured(nPage); ++nPage) {
        if (TakesRoom(nPage)) {
            dbToFill -= AppendItem(nPage, list, task, {dbLeft, m_dbScreenHeight - dbToFill});
            bIsFilled = dbToFill <= kFilled;
        }
    }
    OnFilled("EnumPageBelow", dbToFill);
}

// These give the height that the page takes with its gap.
double ColumnViewer::PrependItem(std::int32_t nPage, PageItems& list, const PDFRenderTask& task,
                                 const Corner& below) {
    const PageItem pItem = MakeItem(nPage, task);
    const DisplaySize size = pItem->GetPageDisplaySize();
    PlaceItem(*pItem, size, below.dbLeft, (below.dbTop - size.fHeight) - PageGap());
    list.insert(list.begin(), pItem);
    pItem->DividToBlock(GetPageDavidBlock(*pItem));
    return pItem->screenRect.nHeight + PageGap();
}

// A page above the screen, or without a size, is not laid out.
double ColumnViewer::AppendItem(std::int32_t nPage, PageItems& list, const PDFRenderTask& task,
                                const Corner& place) {
    const PageItem pItem = MakeItem(nPage, task);
    PlaceItem(*pItem, pItem->GetPageDisplaySize(), place.dbLeft, place.dbTop);
    const Render_ScreenOffsetInfo& rc = pItem->screenRect;
    NarrowToOnlyPage(rc);
    const double dbTaken = rc.nHeight + PageGap();
    const bool bAbove = place.dbTop < 0.0 && std::abs(place.dbTop) >= dbTaken;
    if (rc.nWidth > 0 && rc.nHeight > 0 && !bAbove) {
        list.push_back(pItem);
        pItem->DividToBlock(GetPageDavidBlock(*pItem));
    }
    return dbTaken;
}

void ColumnViewer::PlaceItem(ViewerPageItem& item, const DisplaySize& size, double dbOffsetX,
                             double dbOffsetY) const {
    item.SetSize(size);
    item.MoveTo(PlacedX(item, size.fWidth, dbOffsetX), dbOffsetY);
}

// Until the canvas's size is read again, all limits then work against the page.
void ColumnViewer::NarrowToOnlyPage(const Render_ScreenOffsetInfo& rc) {
    if (PageCount() == 1 && rc.nHeight < m_dbScreenHeight) {
        m_dbScreenHeight = rc.nHeight;
    }
}

// Whether the reader sees a page, or a gap between two. True also where there
// is no screen or no page to see.
bool ColumnViewer::HoldsScreen(const PageItems& items) {
    const Rect rcScreen = CanvasRect();
    if (rcScreen.Width <= 0.0F || rcScreen.Height <= 0.0F || PageCount() == 0) {
        return true;
    }
    const Column column = TheColumn();
    return std::any_of(items.begin(), items.end(),
                       [&](const PageItem& pItem) { return column.HoldsScreen(*pItem); });
}

void ColumnViewer::BringBack(PageItems& list, PDFRenderTask task) {
    task.dbOffsetY = m_dbScreenHeight;
    task.dbOffsetX = list.empty() ? 0.0 : list.front()->screenRect.dbOffsetX;
    for (const PageItem& pItem : list) {
        KeepStandIns(*pItem);
        pItem->ClearBlocks();
    }
    list.clear();
    EnumPageBelow(std::min(m_nCurPageIndex, PageCount() - 1), list, task);
}

const PageViewerBase::PageItems& ColumnViewer::RenderScreenBitmapSync(const PDFRenderTask& task,
                                                                      bool bUseCacheOnly) {
    LayOut(task);
    OnLaidOut();
    StartRenders(bUseCacheOnly);
    return *m_pPageItems;
}

}
