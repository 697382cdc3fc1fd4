// A laid-out page: where it stands, the grid of blocks that it is cut into, and
// the chains that bring its blocks to the screen.
//
// A chain loads the page (on the pool), then starts renders of blocks on the UI
// thread, in row order. Laying the item out anew ends the chain of the step
// before and begins one; renders of blocks that stay displayed go on.
// Threads: the UI thread only. Units: device pixels.
// Ownership: a viewer's list owns it, chains in flight share it; it holds its
// viewer weakly.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/concurrency/Task.h"
#include "viewers/core/CancellationGeneration.h"
#include "viewers/core/ChainLog.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/LaidOutPage.h"
#include "viewers/core/PageGeometry.h"
#include "viewers/core/ViewerPageItemBlock.h"

namespace velko::vkit {

class ViewerPageItem : public LaidOutPage, public std::enable_shared_from_this<ViewerPageItem> {
public:
    // A scale of 0 asks for the one that fits the screen.
    ViewerPageItem(std::weak_ptr<IPageItemHost> wkHost, std::int32_t nPage, double dbPageScale,
                   std::int32_t nTurn);
    virtual ~ViewerPageItem() = default;
    ViewerPageItem(const ViewerPageItem&) = delete;
    ViewerPageItem& operator=(const ViewerPageItem&) = delete;

    // The page's size at the item's scale and rotation, not truncated. Raises
    // as `IPageItemHost::PageSizeOf`.
    virtual DisplaySize GetPageDisplaySize();
    double Scale() const { return m_dbScale; } // a fit is known once the size was asked for

    // Stores the size, truncated.
    void SetSize(const DisplaySize& size);
    void MoveTo(double dbOffsetX, double dbOffsetY);

    // Puts the grid in force, and the blocks in their places. Blocks of the same
    // grid stay, with their bitmaps; another grid drops them all, and the host
    // keeps what they showed. Allocates nothing while the grid stays.
    void DividToBlock(const Render_PageDavidBlock& newGrid);
    const Render_PageDavidBlock& Grid() const { return m_grid; } // 0 by 0 until divided
    bool HasBlocks() const { return !m_pPageBlock.empty(); }

    // True when every displayed block has the bitmap that it should have.
    bool IsSharp() const;
    // True when every displayed block has a bitmap, be it a stand-in.
    bool IsCovered() const;

    // For an item that leaves the list: ends its chain and all its renders.
    void ClearBlocks();
    // Ends the chain and the renders of blocks off the screen.
    void ClearInvisibleBlocks();

    // Each returns a task that ends with the renders that it started: as
    // cancelled when the chain or one of them was. Done already when there is
    // nothing to render.

    // Gives displayed blocks a bitmap of the scale cache, and renders those that
    // need one. With `bUseCacheOnly` nothing is rendered.
    virtual concurrency::task<void> RenderViewerPage(bool bUseCacheOnly);
    // Renders displayed blocks anew; old bitmaps stay until replaced.
    concurrency::task<void> Update(bool bPaintWhenDone);
    // Renders displayed blocks that are idle, whatever bitmap they have. A
    // failed page load fails the task.
    concurrency::task<void> RenderVisibleBlocks();

    template <class F>
    void ForEachBlock(F fnVisit) const {
        for (const auto& row : m_pPageBlock) {
            for (const std::shared_ptr<ViewerPageItemBlock>& pBlock : row) {
                fnVisit(std::as_const(*pBlock));
            }
        }
    }
    template <class F>
    void ForEachBlock(F fnVisit) {
        for (const auto& row : m_pPageBlock) {
            for (const std::shared_ptr<ViewerPageItemBlock>& pBlock : row) {
                fnVisit(*pBlock);
            }
        }
    }

protected:
    // What brings the pixels of new blocks, and the number of the first of them.
    virtual std::shared_ptr<IBlockRenderer> MakeRenderer();
    virtual std::int32_t FirstBlockId() const { return 1; }
    // For the log: another grid is in force; the renders of a chain have ended.
    virtual void TellGridChange(const Render_PageDavidBlock& oldGrid) const;
    virtual void TellRendered() const {}

    const std::weak_ptr<IPageItemHost>& Host() const { return m_wkHost; }

private:
    // Which blocks a chain renders once the page is loaded.
    enum class Walk { NeedingRender, Idle, Displayed };

    concurrency::task<void> LoadThenRender(std::shared_ptr<IPageItemHost> pHost, Walk eWalk,
                                           bool bPaintWhenDone, const ChainTexts* pTexts);
    concurrency::task<void> StartBlocks(Walk eWalk, bool bPaintWhenDone,
                                        const concurrency::cancellation_token& token);
    void MakeBlocks();
    void PlaceBlock(std::int32_t nRow, std::int32_t nCol,
                    const Windows::Foundation::Rect& rcScreen);

    const std::weak_ptr<IPageItemHost> m_wkHost;
    double m_dbScale;
    Render_PDFPageOffsetInfo m_pageOffset; // offsets 0
    Render_PageDavidBlock m_grid;
    std::vector<std::vector<std::shared_ptr<ViewerPageItemBlock>>> m_pPageBlock; // by rows
    CancellationGeneration m_ctsBlocks;
};

}
