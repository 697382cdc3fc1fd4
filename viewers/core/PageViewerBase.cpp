#include "viewers/core/PageViewerBase.h"

#include <algorithm>
#include <string>
#include <utility>

#include "document/VLK_Document.h"

namespace velko::vkit {

namespace {

// What stands in for pages may take as much memory as this many screens: the
// blocks of one screen come to less than four.
constexpr double kMostStandInScreens = 12.0;

}

PageViewerBase::PageViewerBase(std::weak_ptr<IViewerOwner> wkOwner,
                               std::shared_ptr<VLK_Document> pDocument,
                               std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits)
    : ViewerCore(std::move(wkOwner), std::move(pDocument), std::move(pCanvas)), m_traits(traits) {}

// --- life ---

void PageViewerBase::OnClosed() {
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            pItem->ClearBlocks();
        }
        ++m_nLayoutVersion;
    }
    m_pPageItems.reset();
    m_standIns.Clear();
    m_bZoomOpen = false;
    m_ctsRender.Renew();
    m_ctsDestination.Renew();
}

void PageViewerBase::BeginChange() {
    m_ctsDestination.Renew();
}

// A zoom that was not completed ends: the pages get the blocks of their true
// size. The frame from before a zoom is no backdrop for another place.
void PageViewerBase::LeavePlace() {
    m_standIns.EndSnapshot();
    EmptyScaleCache();
    m_nStartsBefore = m_nRenderStarts;
    m_bZoomWasOpen = std::exchange(m_bZoomOpen, false);
    if (m_bZoomWasOpen) {
        RegridItems();
    }
}

// Also a change that finds nothing to do leaves no blurred page behind.
void PageViewerBase::ReachPlace() {
    if (std::exchange(m_bZoomWasOpen, false) && m_nStartsBefore == m_nRenderStarts && HasItems() &&
        CanLayOut()) {
        StartRenders(false);
        PaintCanvas();
    }
}

// --- the list ---

PageViewerBase::PageItem PageViewerBase::MakeItem(std::int32_t nPageIndex,
                                                  const PDFRenderTask& task) {
    const auto pSelf = std::static_pointer_cast<PageViewerBase>(shared_from_this());
    return std::make_shared<ViewerPageItem>(std::weak_ptr<IPageItemHost>(pSelf), nPageIndex,
                                            task.dbScale, task.nRotate);
}

PageViewerBase::PageItem PageViewerBase::FindItem(std::int32_t nPageIndex) const {
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            if (pItem->nPageIndex == nPageIndex) {
                return pItem;
            }
        }
    }
    return nullptr;
}

void PageViewerBase::ClearPagesBitmap() {
    ThrowIfDisposed();
    DropItems();
}

void PageViewerBase::DropItems() {
    if (!HasItems()) {
        return;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        KeepStandIns(*pItem);
        pItem->ClearBlocks();
    }
    m_pPageItems->clear();
    ++m_nLayoutVersion;
}

// A window that is small for a moment does not cost what it showed before.
void PageViewerBase::KeepStandIns(const ViewerPageItem& item) {
    m_dbLargestScreen = std::max(m_dbLargestScreen, m_dbScreenWidth * m_dbScreenHeight);
    m_standIns.Keep(item, static_cast<std::int64_t>(kMostStandInScreens * m_dbLargestScreen));
}

PageInk PageViewerBase::InkOf(const ViewerPageItem& item) const {
    PageInk ink{IsSnapshotShown(), !m_standIns.HasSnapshot()};
    m_standIns.ForEachOf(item.nPageIndex, item.m_nRotate,
                         [&](const StandIns::StandIn&) { ink.bSome = true; });
    item.ForEachBlock([&](const ViewerPageItemBlock& block) {
        ink.bSome = ink.bSome || (block.IsDisplayed() && block.HasBitmap());
        ink.bAll = ink.bAll && (!block.IsDisplayed() || block.IsSharp());
    });
    return ink;
}

PageInk PageViewerBase::InkOf(std::int32_t nPageIndex) const {
    const PageItem pItem = FindItem(nPageIndex);
    return pItem ? InkOf(*pItem) : PageInk();
}

PageInk PageViewerBase::Ink() const {
    PageInk ink{false, HasItems()};
    if (HasItems()) {
        for (const PageItem& pItem : *m_pPageItems) {
            const PageInk page = InkOf(*pItem);
            ink = {ink.bSome || page.bSome, ink.bAll && page.bAll};
        }
    }
    return {ink.bSome, ink.bAll && ink.bSome};
}

ViewerState PageViewerBase::Inspect() const {
    ViewerState state;
    state.nScaleCacheEntries = m_standIns.ScaleCacheSize();
    state.bShowScaleSnapshot = m_standIns.HasSnapshot();
    state.nOverviews = m_standIns.CountOverviews();
    state.nStandIns = m_standIns.Count() - state.nOverviews;
    if (!m_pPageItems) {
        return state;
    }
    for (const PageItem& pItem : *m_pPageItems) {
        PageItemState& item = state.items.emplace_back();
        item.nPageIndex = pItem->nPageIndex;
        item.screenRect = pItem->screenRect;
        item.dbScale = pItem->Scale();
        item.nRotate = pItem->m_nRotate;
        item.grid = pItem->Grid();
        m_standIns.ForEachOf(
            pItem->nPageIndex, pItem->m_nRotate,
            [&](const StandIns::StandIn& kept) { item.standIns.push_back(kept.share); });
        std::as_const(*pItem).ForEachBlock([&](const ViewerPageItemBlock& block) {
            BlockState& out = item.blocks.emplace_back();
            out.nBlockId = block.m_nBlockId;
            out.screenRect = block.screenRect;
            out.share = block.Share();
            out.bIsDisplay = block.IsDisplayed();
            out.bIsRendering = block.IsRendering();
            out.bHasBitmap = block.HasBitmap();
            out.bIsSharp = block.IsSharp();
            if (out.bHasBitmap) {
                out.nBitmapWidth = block.BitmapSource()->nWidth;
                out.nBitmapHeight = block.BitmapSource()->nHeight;
            }
        });
    }
    return state;
}

// --- grids ---

Render_PageDavidBlock PageViewerBase::CalcPageDavidBlock(const ViewerPageItem& item) const {
    return CalcBlockGrid(item.screenRect, Screen());
}

// During a zoom the blocks keep the grid of the bitmaps that stand in for them.
Render_PageDavidBlock PageViewerBase::GetPageDavidBlock(const ViewerPageItem& item) const {
    const Render_PageDavidBlock grid = m_standIns.FindScaleDavidBlock(item.nPageIndex);
    return grid.nRows > 0 && grid.nCols > 0 ? grid : CalcPageDavidBlock(item);
}

std::shared_ptr<D2DBitmapSource> PageViewerBase::FindScaleBitmap(std::int32_t nPageIndex,
                                                                 std::int32_t nBlockId) const {
    return m_standIns.FindScaleBitmap(nPageIndex, nBlockId);
}

// A zoom that is open has blocks of another scale, by whose numbers its cache
// finds them: the next step begins with those that are in force now.
void PageViewerBase::RegridItems() {
    EmptyScaleCache();
    if (m_pPageItems) {
        for (const PageItem& pItem : *m_pPageItems) {
            pItem->DividToBlock(CalcPageDavidBlock(*pItem));
        }
    }
}

}
