// Renders blocks of one page of the document, as the page itself is.
//
// Threads: as `IBlockRenderer`. Ownership: the page's item owns it; it holds
// the viewer weakly.
#pragma once

#include <cstdint>
#include <memory>

#include "viewers/core/IBlockRenderer.h"

namespace velko::vkit {

class IPageItemHost;
class VLK_Document;
struct WPPDFPage;

class PageBlockRenderer final : public IBlockRenderer {
public:
    PageBlockRenderer(std::weak_ptr<IPageItemHost> wkHost, std::int32_t nPage)
        : m_wkHost(std::move(wkHost)), m_nPageIndex(nPage) {}

    BlockRender Start(const ViewerPageItemBlock& block,
                      concurrency::cancellation_token token) override;
    void TellFailed() const override;

private:
    static RenderBlockRequest MakeRequest(const ViewerPageItemBlock& block,
                                          const IPageItemHost& host, const VLK_Document& document,
                                          const WPPDFPage& entry,
                                          concurrency::cancellation_token token);

    const std::weak_ptr<IPageItemHost> m_wkHost;
    const std::int32_t m_nPageIndex;
};

}
