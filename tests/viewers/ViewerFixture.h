// A viewer over the scripted engine, on a device without pixels or on another one.
//
// One point is one pixel at scale 1.0. The pool and the dispatcher are stepped
// by hand, so nothing renders until a test lets it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <vector>

#include "document/VLK_Document.h"
#include "platform/fake/CountingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "surface/PDFViewCanvas.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::testing {

using Platform::Fake::GraphicsCall;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;

// Where a page stands; compared exactly.
struct Place {
    std::int32_t nPage = 0;
    double dbX = 0.0;
    double dbY = 0.0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    friend bool operator==(const Place&, const Place&) = default;
};
using Places = std::vector<Place>;
std::ostream& operator<<(std::ostream& out, const Place& place);

// The control, as far as a viewer knows it.
class TestOwner final : public vkit::IViewerOwner {
public:
    void RaiseRenderCanvas(const std::shared_ptr<vkit::RenderCanvasEventArgs>& pArgs) override {
        drawn.push_back(pArgs->nPageIndex);
        if (fnDrawn) {
            fnDrawn(pArgs->nPageIndex);
        }
    }
    double GetFitScale(std::int32_t nZoomMode) override {
        askedModes.push_back(nZoomMode);
        return dbFit;
    }
    void RaisePageLoaded(std::int32_t nPageIndex) override { loaded.push_back(nPageIndex); }

    void RunOperation(const std::function<void()>& fnOperation) override {
        ++nOperations;
        fnOperation();
    }

    int nOperations = 0; // that had been put off
    double dbFit = 1.0;
    std::vector<std::int32_t> askedModes;
    std::vector<std::int32_t> drawn;
    std::vector<std::int32_t> loaded;
    std::function<void(std::int32_t)> fnDrawn;
};

// A document's owner that runs what a test wants when a page is first measured.
class TestDocumentOwner final : public vkit::IDocumentOwner {
public:
    void RaisePageLoaded(const std::shared_ptr<pdf::PDFDoc>&, std::int32_t nPageIndex) override {
        if (fnLoaded) {
            fnLoaded(nPageIndex);
        }
    }
    void RaisePageUnloaded(const std::shared_ptr<pdf::PDFDoc>&, std::int32_t) override {}
    void RaisePageFailure(std::int32_t) override {}
    void RaiseSaveProgress(float) override {}
    void RaiseRenderPage(const std::shared_ptr<vkit::RenderPageEventArgs>&) override {}

    std::function<void(std::int32_t)> fnLoaded;
};

enum class Layout { Continuous, Single, Reflow };

class ViewerWorld {
public:
    ViewerWorld();
    explicit ViewerWorld(Platform::Fake::TestHost::RealPool pool);
    // On this device; its pages have a pattern, which others leave out.
    explicit ViewerWorld(std::shared_ptr<Windows::Graphics::IGraphicsFactory> pDevice);
    ~ViewerWorld();
    ViewerWorld(const ViewerWorld&) = delete;
    ViewerWorld& operator=(const ViewerWorld&) = delete;

    // The viewer that is made next; continuous unless told.
    void SetLayout(Layout eNext) { eLayout = eNext; }
    // Makes document, canvas and viewer; nothing is laid out yet.
    void Make(std::vector<ScriptedPage> pages, float fWidth, float fHeight, float fScaleX = 1.0F,
              float fScaleY = 1.0F);
    // As `Make`, and lays the page out.
    void Open(std::vector<ScriptedPage> pages, float fWidth, float fHeight, std::int32_t nPage = 0);

    // Another viewer of the same document on the same canvas, as a change of the
    // layout mode makes it.
    void Exchange(Layout eNext);

    vkit::PageViewerBase& Viewer() { return *pViewer; }
    Platform::Fake::CountingGraphicsFactory& Device() { return *pFactory; }
    void Resize(float fWidth, float fHeight) { pPanel->Arrange({fWidth, fHeight}); }
    void SetFamily(const char* szFamily) { host.Environment().SetDeviceFamily(szFamily); }

    Places Laid() const;
    vkit::ViewerState State() const { return pViewer->Inspect(); }
    vkit::PageItemState ItemOf(std::int32_t nPage) const;
    std::size_t CountBlocks(const std::function<bool(const vkit::BlockState&)>& fnWanted) const;

    std::size_t Displayed() const {
        return CountBlocks([](const auto& block) { return block.bIsDisplay; });
    }
    std::size_t Drawn() const { // sharp or not
        return CountBlocks([](const auto& block) { return block.bIsDisplay && block.bHasBitmap; });
    }
    std::size_t Rendering() const {
        return CountBlocks([](const auto& block) { return block.bIsRendering; });
    }
    // Once all has run what shows is sharp, and nothing else is kept.
    void ExpectSharp();

    // Runs all that waits, pool and dispatcher, until the screen is at rest.
    void Settle() { host.Drain(); }
    std::int32_t Renders(std::int32_t nPage = ScriptedEngine::kAnyPage) const {
        return pEngine->Count(EngineOp::StartRender, nPage);
    }
    std::size_t Frames() const { return pFactory->Count(GraphicsCall::Present1); }
    void Zoom(Point pt, double dbScale, bool bComplete) {
        pViewer->PageScaled(pt, dbScale, false, bComplete);
    }

    Platform::Fake::TestHost host;
    std::shared_ptr<Platform::Fake::CountingGraphicsFactory> pFactory; // unless on another
    std::shared_ptr<ScriptedEngine> pEngine;
    std::unique_ptr<ScriptedEngine::Registration> pRegistration;
    std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel;
    std::shared_ptr<vkit::PDFViewCanvas> pCanvas;
    std::shared_ptr<vkit::VLK_Document> pDocument;
    std::shared_ptr<TestOwner> pOwner = std::make_shared<TestOwner>();
    std::shared_ptr<TestDocumentOwner> pDocumentOwner = std::make_shared<TestDocumentOwner>();
    std::shared_ptr<vkit::PageViewerBase> pViewer;

private:
    void Start(std::shared_ptr<Windows::Graphics::IGraphicsFactory> pDevice);
    void MakeViewer();

    Layout eLayout = Layout::Continuous;
};

class ViewerTest : public ::testing::Test {
protected:
    ViewerWorld w;
};

}
