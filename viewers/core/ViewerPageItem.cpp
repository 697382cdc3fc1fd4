#include "viewers/core/ViewerPageItem.h"

#include <algorithm>
#include <string>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/core/PageBlockRenderer.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::task;
using concurrency::task_canceled;
using Windows::Foundation::Rect;

namespace {

constexpr ChainTexts kRenderViewerPageTexts = {
    "ContinueViewerPageItem::RenderViewerPage Platform::Exception...\n",
    "ContinueViewerPageItem::RenderViewerPage concurrency::task_canceled...\n",
    "ContinueViewerPageItem::RenderViewerPage Exception...\n"};

constexpr ChainTexts kUpdateTexts = {"ContinueViewerPageItem::Update() Platform::Exception...\n",
                                     "ContinueViewerPageItem::Update() task_canceled...\n",
                                     "Exception...\n"};

// One for all, so that an item without work costs a layout step nothing.
const task<void>& FinishedTask() {
    static const task<void> finished = concurrency::task_from_result<void>();
    return finished;
}

}

ViewerPageItem::ViewerPageItem(std::weak_ptr<IPageItemHost> wkHost, std::int32_t nPage,
                               double dbPageScale, std::int32_t nTurn)
    : LaidOutPage(nPage, nTurn), m_wkHost(std::move(wkHost)), m_dbScale(dbPageScale) {}

DisplaySize ViewerPageItem::GetPageDisplaySize() {
    const auto pHost = m_wkHost.lock();
    if (!pHost) {
        return {};
    }
    return CalcPageDisplaySize(pHost->PageSizeOf(nPageIndex), m_nRotate, pHost->LayoutScreen(),
                               m_dbScale);
}

void ViewerPageItem::SetSize(const DisplaySize& size) {
    screenRect.nWidth = TruncateSide(size.fWidth);
    screenRect.nHeight = TruncateSide(size.fHeight);
    m_pageOffset = {screenRect.nWidth, screenRect.nHeight, 0, 0};
}

void ViewerPageItem::MoveTo(double dbOffsetX, double dbOffsetY) {
    screenRect.dbOffsetX = dbOffsetX;
    screenRect.dbOffsetY = dbOffsetY;
}

// --- blocks ---

void ViewerPageItem::DividToBlock(const Render_PageDavidBlock& newGrid) {
    const Render_PageDavidBlock oldGrid = m_grid;
    const bool bNew = !(oldGrid == newGrid) || m_pPageBlock.empty();
    const auto pHost = m_wkHost.lock();
    if (bNew) {
        if (pHost) {
            pHost->KeepStandIns(*this);
        }
        m_grid = newGrid;
        MakeBlocks();
    }
    const Rect rcScreen = pHost ? pHost->ScreenRect() : Rect();
    for (std::int32_t nRow = 0; nRow < m_grid.nRows; ++nRow) {
        for (std::int32_t nCol = 0; nCol < m_grid.nCols; ++nCol) {
            PlaceBlock(nRow, nCol, rcScreen);
        }
    }
    if (bNew) {
        TellGridChange(oldGrid);
    }
}

bool ViewerPageItem::IsSharp() const {
    bool bSharp = true;
    ForEachBlock(
        [&](const ViewerPageItemBlock& block) { bSharp = bSharp && !block.NeedsRender(); });
    return bSharp;
}

bool ViewerPageItem::IsCovered() const {
    bool bCovered = true;
    ForEachBlock([&](const ViewerPageItemBlock& block) {
        bCovered = bCovered && (!block.IsDisplayed() || block.HasBitmap());
    });
    return bCovered;
}

std::shared_ptr<IBlockRenderer> ViewerPageItem::MakeRenderer() {
    return std::make_shared<PageBlockRenderer>(m_wkHost, nPageIndex);
}

void ViewerPageItem::MakeBlocks() {
    ForEachBlock([](ViewerPageItemBlock& block) { block.CancelBlock(); });
    m_pPageBlock.clear();
    m_pPageBlock.reserve(m_grid.nRows);
    const auto pRenderer = MakeRenderer();
    std::int32_t nBlockId = FirstBlockId();
    for (std::int32_t nRow = 0; nRow < m_grid.nRows; ++nRow) {
        auto& row = m_pPageBlock.emplace_back();
        row.reserve(m_grid.nCols);
        for (std::int32_t nCol = 0; nCol < m_grid.nCols; ++nCol) {
            row.push_back(std::make_shared<ViewerPageItemBlock>(m_wkHost, pRenderer, nPageIndex,
                                                                m_nRotate, nBlockId++, m_grid));
        }
    }
}

// What the division truncates goes to the last row and column.
void ViewerPageItem::PlaceBlock(std::int32_t nRow, std::int32_t nCol, const Rect& rcScreen) {
    const std::int32_t nBlockHeight = screenRect.nHeight / m_grid.nRows;
    const std::int32_t nBlockWidth = screenRect.nWidth / m_grid.nCols;
    const std::int32_t nLeft = nCol * nBlockWidth;
    const std::int32_t nTop = nRow * nBlockHeight;
    Render_ScreenOffsetInfo rc;
    rc.dbOffsetX = screenRect.dbOffsetX + nLeft;
    rc.dbOffsetY = screenRect.dbOffsetY + nTop;
    rc.nWidth = nCol + 1 == m_grid.nCols ? screenRect.nWidth - nLeft : nBlockWidth;
    rc.nHeight = nRow + 1 == m_grid.nRows ? screenRect.nHeight - nTop : nBlockHeight;
    Render_PDFPageOffsetInfo offset = m_pageOffset;
    offset.nOffsetX = -(m_pageOffset.nOffsetX + nLeft);
    offset.nOffsetY = -nTop;
    m_pPageBlock[nRow][nCol]->Place(rc, offset, rcScreen);
}

void ViewerPageItem::TellGridChange(const Render_PageDavidBlock& oldGrid) const {
    Platform::Debug::OutputDebugString(
        "ContinueViewerPageItem::DividToBlock: " + std::to_string(nPageIndex) + ", [" +
        std::to_string(oldGrid.nRows) + " * " + std::to_string(oldGrid.nCols) + "] --> [" +
        std::to_string(m_grid.nRows) + " * " + std::to_string(m_grid.nCols) + "]\n");
}

void ViewerPageItem::ClearBlocks() {
    if (!HasBlocks()) {
        return;
    }
    ForEachBlock([](ViewerPageItemBlock& block) { block.CancelBlock(); });
    m_ctsBlocks.Renew();
}

void ViewerPageItem::ClearInvisibleBlocks() {
    ForEachBlock([](ViewerPageItemBlock& block) {
        if (!block.IsDisplayed()) {
            block.CancelBlock();
        }
    });
    m_ctsBlocks.Renew();
}

// --- chains ---

task<void> ViewerPageItem::RenderViewerPage(bool bUseCacheOnly) {
    ClearInvisibleBlocks();
    const auto pHost = m_wkHost.lock();
    if (!pHost) {
        return FinishedTask();
    }
    bool bRenders = false;
    ForEachBlock([&](ViewerPageItemBlock& block) {
        if (block.IsDisplayed() && !block.HasBitmap()) {
            auto pCached = pHost->FindScaleBitmap(nPageIndex, block.m_nBlockId);
            if (pCached || bUseCacheOnly) {
                block.ShowStandIn(std::move(pCached));
            }
        }
        bRenders = bRenders || (!block.IsRendering() && block.NeedsRender());
    });
    if (bUseCacheOnly || !bRenders) {
        return FinishedTask();
    }
    return LoadThenRender(pHost, Walk::NeedingRender, true, &kRenderViewerPageTexts);
}

task<void> ViewerPageItem::Update(bool bPaintWhenDone) {
    ClearBlocks();
    const auto pHost = m_wkHost.lock();
    if (!pHost || !HasBlocks()) {
        return FinishedTask();
    }
    // Should a move end this chain before the blocks are rendered, the move's
    // own chain has to know that they are out of date.
    ForEachBlock([](ViewerPageItemBlock& block) { block.MarkStale(); });
    return LoadThenRender(pHost, Walk::Displayed, bPaintWhenDone, &kUpdateTexts);
}

task<void> ViewerPageItem::RenderVisibleBlocks() {
    ClearInvisibleBlocks();
    const auto pHost = m_wkHost.lock();
    if (!pHost || !HasBlocks()) {
        return FinishedTask();
    }
    return LoadThenRender(pHost, Walk::Idle, true, nullptr);
}

// Without texts a failure is the waiter's to log.
task<void> ViewerPageItem::LoadThenRender(std::shared_ptr<IPageItemHost> pHost, Walk eWalk,
                                          bool bPaintWhenDone, const ChainTexts* pTexts) {
    const auto pSelf = shared_from_this();
    const cancellation_token token = m_ctsBlocks.Token();
    bool bCanceled = false;
    try {
        const auto pDocument = pHost->LiveDocument();
        if (!pDocument) {
            co_return;
        }
        const auto load = pDocument->LoadPageAsync(nPageIndex, token, eWalk == Walk::Displayed);
        co_await load.settled_in_turn(); // pages start their blocks from the top down
        co_await load;
        token.throw_if_canceled();
        const task<void> renders = StartBlocks(eWalk, bPaintWhenDone, token);
        co_await renders;
        TellRendered();
    } catch (...) {
        if (!pTexts) {
            throw;
        }
        bCanceled = WriteChainOutcome(*pTexts);
    }
    if (bCanceled) {
        throw task_canceled();
    }
}

// The layout may have moved on while the page was loaded.
task<void> ViewerPageItem::StartBlocks(Walk eWalk, bool bPaintWhenDone,
                                       const cancellation_token& token) {
    std::vector<task<void>> renders;
    ForEachBlock([&](ViewerPageItemBlock& block) {
        if (!block.IsDisplayed() || eWalk == Walk::Displayed) {
            block.CancelBlock();
        }
        const bool bWanted =
            eWalk == Walk::NeedingRender ? block.NeedsRender() : block.IsDisplayed();
        if (bWanted && !block.IsRendering()) {
            renders.push_back(block.RenderViewerPageBlock(bPaintWhenDone));
        }
    });
    return concurrency::when_all(std::move(renders), token);
}

}
