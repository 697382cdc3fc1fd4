#include "viewers/reflow/ReflowBandRenderer.h"

#include <string>
#include <utility>

#include "platform/system/Debug.h"
#include "settings/AppConfig.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/LogText.h"
#include "viewers/core/PageUse.h"
#include "viewers/core/ViewerPageItemBlock.h"

namespace velko::vkit {

using Platform::Debug::OutputDebugString;

BlockRender ReflowBandRenderer::Start(const ViewerPageItemBlock& block,
                                      concurrency::cancellation_token token) {
    const auto pHost = m_wkHost.lock();
    const auto pDocument = pHost ? pHost->LiveDocument() : nullptr;
    const auto pEntry =
        pDocument && m_pPage ? pDocument->EnsurePageEntry(block.nPageIndex) : nullptr;
    if (!pEntry) {
        return {};
    }
    OutputDebugString("Render Page: " + std::to_string(block.nPageIndex) + "\n");
    const BlockColors colors = pHost->RenderColors();
    ReflowBlockRequest request;
    request.pPage = m_pPage;
    request.nPageIndex = block.nPageIndex;
    request.nLeft = block.PageOffset().nOffsetX;
    request.nTop = block.PageOffset().nOffsetY;
    request.nBitmapWidth = block.screenRect.nWidth;
    request.nBitmapHeight = block.screenRect.nHeight;
    request.fScale = m_fRatio;
    request.nBackColor = colors.nBackground;
    request.nForeColor = colors.nForeground;
    request.eScanColors = velko::common::ToScanColors(AppConfig::PageScanColors());
    request.token = std::move(token);
    return {[pDocument, request = std::move(request)](BitmapBox& box) {
                return pDocument->RenderReflowBlock(request, box);
            },
            pDocument->RenderQueue(), std::make_shared<PageUse>(pDocument, pEntry)};
}

void ReflowBandRenderer::TellFailed() const {
    OutputDebugString("Render error\n");
}

void ReflowBandRenderer::TellShown(const ViewerPageItemBlock& block) const {
    OutputDebugString("Bitmap Render Over ., PageIndex: " + std::to_string(block.nPageIndex) +
                      ", Scale: " + NumberText(m_dbScale) + "\n");
}

}
