#include "viewers/core/PageBlockRenderer.h"

#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "settings/AppConfig.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/PageUse.h"
#include "viewers/core/ViewerPageItemBlock.h"

namespace velko::vkit {

BlockRender PageBlockRenderer::Start(const ViewerPageItemBlock& block,
                                     concurrency::cancellation_token token) {
    const auto pHost = m_wkHost.lock();
    const auto pDocument = pHost ? pHost->LiveDocument() : nullptr;
    const auto pEntry = pDocument ? pDocument->ReLoadPageIndex(m_nPageIndex) : nullptr;
    if (!pEntry || !pEntry->m_pPageHandle || !pEntry->m_pPageHandle->m_pPage) {
        return {};
    }
    BlockRender render;
    render.pUse = std::make_shared<PageUse>(pDocument, pEntry);
    render.pQueue = pDocument->RenderQueue();
    render.fnRender = [pDocument,
                       request = MakeRequest(block, *pHost, *pDocument, *pEntry, std::move(token))](
                          BitmapBox& box) { return pDocument->RenderPageBlock(request, box); };
    return render;
}

void PageBlockRenderer::TellFailed() const {
    Platform::Debug::OutputDebugString("RenderViewerPageBlock Error...\n");
}

RenderBlockRequest PageBlockRenderer::MakeRequest(const ViewerPageItemBlock& block,
                                                  const IPageItemHost& host,
                                                  const VLK_Document& document,
                                                  const WPPDFPage& entry,
                                                  concurrency::cancellation_token token) {
    const BlockColors colors = host.RenderColors();
    const Render_PDFPageOffsetInfo& pageOffset = block.PageOffset();
    RenderBlockRequest request;
    request.pPage = entry.m_pPageHandle->m_pPage;
    request.nLeft = pageOffset.nOffsetX;
    request.nTop = pageOffset.nOffsetY;
    request.nBitmapWidth = block.screenRect.nWidth;
    request.nBitmapHeight = block.screenRect.nHeight;
    request.fDisplayWidth = static_cast<float>(pageOffset.nPageWidth);
    request.fDisplayHeight = static_cast<float>(pageOffset.nPageHeight);
    request.nRotate = block.m_nRotate;
    request.nBackColor = colors.nBackground;
    request.nForeColor = colors.nForeground;
    request.eScanColors = velko::common::ToScanColors(AppConfig::PageScanColors());
    request.token = std::move(token);
    document.FillRenderState(request);
    return request;
}

}
