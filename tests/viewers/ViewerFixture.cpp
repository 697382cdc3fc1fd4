#include "tests/viewers/ViewerFixture.h"

#include <algorithm>

#include "settings/AppConfig.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/reflow/PDFReflowPagesViewer.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::testing {

std::ostream& operator<<(std::ostream& out, const Place& place) {
    return out << "page " << place.nPage << " at (" << place.dbX << ", " << place.dbY << ") "
               << place.nWidth << " x " << place.nHeight;
}

namespace {

// A document that has not been loaded has no pages.
std::shared_ptr<pdf::PDFDoc> MakeEmptyDoc() {
    return Platform::GetActivationFactory<pdf::IPDFDocFactory>(pdf::kPDFDocClass)->Create(nullptr);
}

}

ViewerWorld::ViewerWorld() : pFactory(std::make_shared<Platform::Fake::CountingGraphicsFactory>()) {
    Start(pFactory);
}

ViewerWorld::ViewerWorld(Platform::Fake::TestHost::RealPool pool)
    : host(pool), pFactory(std::make_shared<Platform::Fake::CountingGraphicsFactory>()) {
    Start(pFactory);
}

ViewerWorld::ViewerWorld(std::shared_ptr<Windows::Graphics::IGraphicsFactory> pDevice) {
    Start(std::move(pDevice));
}

void ViewerWorld::Start(std::shared_ptr<Windows::Graphics::IGraphicsFactory> pDevice) {
    host.Environment().SetGraphicsFactory(std::move(pDevice));
    host.Environment().SetLogicalDpi(72.0F);
    vkit::AppConfig::Init();
}

ViewerWorld::~ViewerWorld() {
    if (pViewer) {
        pViewer->Dispose();
    }
    vkit::AppConfig::Close();
}

void ViewerWorld::Make(std::vector<ScriptedPage> pages, float fWidth, float fHeight, float fScaleX,
                       float fScaleY) {
    if (pViewer) {
        pViewer->Dispose();
    }
    pRegistration.reset();
    const bool bEmpty = pages.empty();
    for (ScriptedPage& page : pages) {
        page.ePaper = pFactory ? ScriptedPage::Paper::None : ScriptedPage::Paper::Pattern;
    }
    pEngine = std::make_shared<ScriptedEngine>(std::move(pages));
    pRegistration = std::make_unique<ScriptedEngine::Registration>(pEngine);
    pPanel = std::make_shared<Windows::UI::Xaml::Controls::SwapChainPanel>();
    pCanvas = std::make_shared<vkit::PDFViewCanvas>(pPanel);
    pCanvas->Initialize();
    pPanel->ArrangeAtScale({fWidth, fHeight}, fScaleX, fScaleY);
    pDocument =
        std::make_shared<vkit::VLK_Document>(bEmpty ? MakeEmptyDoc() : pEngine->MakeLoadedDoc());
    pDocument->SetOwner(pDocumentOwner);
    MakeViewer();
    host.Dispatcher().RunAll();
    pEngine->ClearLog();
    if (pFactory) {
        pFactory->ClearCalls();
    }
}

void ViewerWorld::MakeViewer() {
    if (eLayout == Layout::Continuous) {
        pViewer = std::make_shared<vkit::PDFConuiunePagesViewer>(pOwner, pDocument, pCanvas);
    } else if (eLayout == Layout::Reflow) {
        pViewer = std::make_shared<vkit::PDFReflowPagesViewer>(pOwner, pDocument, pCanvas);
    } else {
        pViewer = std::make_shared<vkit::PDFSinglePagesViewer>(pOwner, pDocument, pCanvas);
    }
}

void ViewerWorld::Exchange(Layout eNext) {
    const std::int32_t nPage = pViewer->GetCurrentPageIndex();
    pViewer->CloseViewer();
    SetLayout(eNext);
    MakeViewer();
    pViewer->InitLayOut(nPage, 1.0, 0.0, 0.0);
}

void ViewerWorld::Open(std::vector<ScriptedPage> pages, float fWidth, float fHeight,
                       std::int32_t nPage) {
    Make(std::move(pages), fWidth, fHeight);
    pViewer->InitLayOut(nPage, 0.0, 0.0, 0.0);
}

Places ViewerWorld::Laid() const {
    Places places;
    for (const vkit::PageItemState& item : State().items) {
        const vkit::Render_ScreenOffsetInfo& rc = item.screenRect;
        places.push_back({item.nPageIndex, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth, rc.nHeight});
    }
    return places;
}

vkit::PageItemState ViewerWorld::ItemOf(std::int32_t nPage) const {
    for (const vkit::PageItemState& item : State().items) {
        if (item.nPageIndex == nPage) {
            return item;
        }
    }
    ADD_FAILURE() << "page " << nPage << " is not laid out";
    return {};
}

std::size_t ViewerWorld::CountBlocks(
    const std::function<bool(const vkit::BlockState&)>& fnWanted) const {
    std::size_t nCount = 0;
    for (const vkit::PageItemState& item : State().items) {
        nCount += std::count_if(item.blocks.begin(), item.blocks.end(), fnWanted);
    }
    return nCount;
}

void ViewerWorld::ExpectSharp() {
    Settle();
    const vkit::ViewerState state = State();
    for (const vkit::PageItemState& item : state.items) {
        for (const vkit::BlockState& block : item.blocks) {
            EXPECT_EQ(block.bIsSharp && block.nBitmapWidth == block.screenRect.nWidth &&
                          block.nBitmapHeight == block.screenRect.nHeight,
                      block.bIsDisplay)
                << "block " << block.nBlockId << " of page " << item.nPageIndex;
        }
    }
    EXPECT_EQ(Rendering(), 0U);
    EXPECT_EQ(state.nScaleCacheEntries, 0U);
    EXPECT_EQ(state.nStandIns, 0U);
    EXPECT_FALSE(state.bShowScaleSnapshot);
    if (pFactory) {
        EXPECT_EQ(pFactory->LiveBitmaps(),
                  static_cast<std::int64_t>(Displayed() + state.nOverviews));
    }
}

}
