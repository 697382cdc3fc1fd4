// A laid-out page of set text, cut into bands of about one screen, one below the
// other.
//
// Life, threads, units, ownership: as `ViewerPageItem`; its set text lives as long
// as the item.
#pragma once

#include <cstdint>
#include <memory>

#include "viewers/core/ViewerPageItem.h"
#include "viewers/reflow/IReflowPages.h"

namespace velko::vkit {

using ReflowViewerPageItemBlock = ViewerPageItemBlock; // a band; numbers count from 0

class ReflowViewerPageItem final : public ViewerPageItem {
public:
    ReflowViewerPageItem(std::weak_ptr<IPageItemHost> wkHost, std::weak_ptr<IReflowPages> wkPages,
                         std::int32_t nPage, double dbPageScale, std::int32_t nTurn);

    // Measures the page if need be; raises as `IReflowPages`.
    DisplaySize GetPageDisplaySize() override;

    // Nothing for a page whose text could not be set.
    concurrency::task<void> RenderViewerPage(bool bUseCacheOnly) override;

    std::shared_ptr<VLK_ReflowPage> m_pReflowPage; // empty until measured

protected:
    std::shared_ptr<IBlockRenderer> MakeRenderer() override;
    std::int32_t FirstBlockId() const override { return 0; }
    void TellGridChange(const Render_PageDavidBlock& oldGrid) const override;
    void TellRendered() const override;

private:
    const std::weak_ptr<IReflowPages> m_wkPages;
};

}
