// Renders bands of one page's set text.
//
// Threads: as `IBlockRenderer`. Ownership: the page's item owns it; it holds the
// viewer weakly.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "document/VLK_ReflowPage.h"
#include "viewers/core/IBlockRenderer.h"

namespace velko::vkit {

class IPageItemHost;

class ReflowBandRenderer final : public IBlockRenderer {
public:
    // `fRatio`: pixels of the screen to a pixel of the set text; `dbScale`: that of
    // the text, for the log.
    ReflowBandRenderer(std::weak_ptr<IPageItemHost> wkHost, std::shared_ptr<VLK_ReflowPage> pPage,
                       float fRatio, double dbScale)
        : m_wkHost(std::move(wkHost)),
          m_pPage(std::move(pPage)),
          m_fRatio(fRatio),
          m_dbScale(dbScale) {}

    BlockRender Start(const ViewerPageItemBlock& block,
                      concurrency::cancellation_token token) override;
    void TellFailed() const override;
    void TellShown(const ViewerPageItemBlock& block) const override;

private:
    const std::weak_ptr<IPageItemHost> m_wkHost;
    const std::shared_ptr<VLK_ReflowPage> m_pPage;
    const float m_fRatio;
    const double m_dbScale;
};

}
