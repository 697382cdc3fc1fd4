#include "viewers/reflow/ReflowViewerPageItem.h"

#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "platform/system/Debug.h"
#include "viewers/reflow/ReflowBandRenderer.h"

namespace velko::vkit {

using Platform::Debug::OutputDebugString;

namespace {

std::string ThisThread() {
    std::ostringstream text;
    text << std::this_thread::get_id();
    return text.str();
}

}

ReflowViewerPageItem::ReflowViewerPageItem(std::weak_ptr<IPageItemHost> wkHost,
                                           std::weak_ptr<IReflowPages> wkPages, std::int32_t nPage,
                                           double dbPageScale, std::int32_t nTurn)
    : ViewerPageItem(std::move(wkHost), nPage, dbPageScale, nTurn), m_wkPages(std::move(wkPages)) {}

DisplaySize ReflowViewerPageItem::GetPageDisplaySize() {
    const auto pPages = m_wkPages.lock();
    return pPages ? pPages->GetReflowDisplaySize(*this) : DisplaySize();
}

std::shared_ptr<IBlockRenderer> ReflowViewerPageItem::MakeRenderer() {
    const double dbContent = m_pReflowPage ? m_pReflowPage->nContentWidth : 0;
    const double dbRatio = dbContent > 0.0 ? screenRect.nWidth / dbContent : 1.0;
    return std::make_shared<ReflowBandRenderer>(Host(), m_pReflowPage, static_cast<float>(dbRatio),
                                                Scale());
}

concurrency::task<void> ReflowViewerPageItem::RenderViewerPage(bool bUseCacheOnly) {
    const std::string strPage = std::to_string(nPageIndex) + "\n";
    OutputDebugString("RenderViewerPage: " + ThisThread() + ", Index:" + strPage);
    if (!m_pReflowPage) {
        return concurrency::task_from_result<void>();
    }
    std::as_const(*this).ForEachBlock([&](const ReflowViewerPageItemBlock& band) {
        if (band.NeedsRender()) {
            OutputDebugString("Prepare to Rendering:" + strPage);
            if (!band.IsRendering()) {
                OutputDebugString("Append Page" + strPage);
            }
        }
    });
    return ViewerPageItem::RenderViewerPage(bUseCacheOnly);
}

// The last band has what the division of the height leaves.
void ReflowViewerPageItem::TellGridChange(const Render_PageDavidBlock& /*oldGrid*/) const {
    const std::int32_t nBands = Grid().nRows;
    if (nBands > 1 && screenRect.nHeight - screenRect.nHeight / nBands * (nBands - 1) < 1) {
        OutputDebugString("123\n");
    }
}

void ReflowViewerPageItem::TellRendered() const {
    OutputDebugString("Bitmap UpdatePage \n");
}

}
