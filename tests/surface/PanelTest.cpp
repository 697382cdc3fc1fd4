// How the surface comes up, follows its panel, and goes.
#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

class PanelTest : public SurfaceTest {
protected:
    void ExpectTarget(std::uint32_t nWidth, std::uint32_t nHeight) {
        EXPECT_EQ(Canvas().TargetBitmap()->GetPixelSize(), (Graphics::D2D_SIZE_U{nWidth, nHeight}));
    }
};

TEST_F(PanelTest, ShowsItsChainThroughTheDispatcher) {
    Canvas().Initialize();
    EXPECT_TRUE(Canvas().IsLoadingComplete());
    ExpectTarget(1000, 800); // the window's size, as long as the panel has none
    EXPECT_EQ(m_pPanel->SwapChain(), nullptr) << "shown before the dispatcher ran";
    m_host.Dispatcher().RunAll();
    EXPECT_NE(m_pPanel->SwapChain(), nullptr);
}

TEST_F(PanelTest, FallsBackToTheSoftwareDeviceAndRaisesWhenThereIsNone) {
    Device().HasHardware(false);
    Canvas().Initialize();
    EXPECT_TRUE(Canvas().IsLoadingComplete());

    const auto pOther = std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
    Device().FailCallOf(GraphicsCall::D3D11CreateDevice, 2, Platform::E_OUTOFMEMORY);
    EXPECT_EQ(CodeRaisedBy([&] { pOther->Initialize(); }), Platform::E_OUTOFMEMORY);
    EXPECT_FALSE(pOther->IsLoadingComplete());
    TestClient client;
    pOther->RenderViewer(client);
    EXPECT_EQ(client.nFrames, 1) << "the next frame makes what is missing";
    EXPECT_TRUE(pOther->IsLoadingComplete());
}

TEST_F(PanelTest, SizesBelowOnePixelBecomeOneAndKnownSizesDoNothing) {
    Start();
    Device().ClearCalls();
    m_pPanel->SizeChanged.raise({{}, {40.0F, 30.0F}});
    m_pPanel->CompositionScaleChanged.raise();
    EXPECT_EQ(Device().CountAll(), 0U);
    m_pPanel->Arrange({0.0F, 0.0F});
    ExpectTarget(1, 1);
    m_pPanel->Arrange({12.9F, 7.2F});
    ExpectTarget(12, 7);
}

TEST_F(PanelTest, ACompositionScaleGivesRealPixelsAtLogicalSize) {
    Start(41.0F, 30.0F);
    m_pPanel->CompositionScale(1.5F, 2.0F);

    ExpectTarget(61, 60);
    EXPECT_EQ(Device().MatrixTransform()._11, 1.0F / 1.5F);
    EXPECT_EQ(Device().MatrixTransform()._22, 0.5F);
    EXPECT_EQ(Device().Dpi(), (Windows::Foundation::Point{144.0F, 192.0F}));
    EXPECT_EQ(Canvas().GetScaledWidth(), 61.5F);
    EXPECT_EQ(Canvas().GetScaledHeight(), 60.0F);
    m_pPanel->ArrangeAtScale({20.0F, 10.0F}, 3.0F, 3.0F);
    ExpectTarget(60, 30);
    // A panel that has its place already is taken as it is.
    m_pCanvas = std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
    Canvas().Initialize();
    ExpectTarget(60, 30);
}

TEST_F(PanelTest, DoesNothingInTheDesigner) {
    m_host.Environment().SetDesignMode(true);
    Start();
    TestClient client;
    Canvas().RenderViewer(client);
    Canvas().ClearAndPresent();
    EXPECT_EQ(client.nFrames, 0);
    EXPECT_EQ(Device().CountAll(), 0U);
    EXPECT_TRUE(m_pPanel->SizeChanged.empty());
}

TEST_F(PanelTest, EventsDoNotKeepItAliveAndAreLeftAtItsEnd) {
    Start();
    const std::weak_ptr<vkit::PDFViewCanvas> wkCanvas = m_pCanvas;
    m_pCanvas.reset();
    EXPECT_TRUE(wkCanvas.expired());
    EXPECT_TRUE(m_pPanel->SizeChanged.empty());
    EXPECT_TRUE(m_pPanel->CompositionScaleChanged.empty());
    EXPECT_TRUE(m_pPanel->Loaded.empty());
    EXPECT_TRUE(m_pPanel->Unloaded.empty());
    EXPECT_TRUE(m_host.Environment().Suspending.empty());
    EXPECT_TRUE(m_host.Environment().Resuming.empty());
    EXPECT_EQ(Device().LiveDevices(), 0);
}

TEST_F(PanelTest, ADisposedCanvasLetsGoOfAllAndRefusesToWork) {
    Start();
    TestClient client;
    NumberedBitmap bitmap(1, 1);
    Canvas().Dispose();
    Canvas().Dispose();

    EXPECT_EQ(m_pPanel->SwapChain(), nullptr);
    EXPECT_EQ(Device().LiveDevices(), 0);
    EXPECT_EQ(Device().LiveSwapChains(), 0);
    m_pPanel->Arrange({77.0F, 66.0F}); // nothing hears it
    const Rect rc(0.0F, 0.0F, 1.0F, 1.0F);
    const std::vector<std::function<void()>> calls = {
        [&] { Canvas().Initialize(); },
        [&] { Canvas().RenderViewer(client); },
        [&] { Canvas().ClearViewer(client); },
        [&] { Canvas().ClearAndPresent(); },
        [&] { Canvas().FillSelection(rc); },
        [&] { Canvas().FillRect(rc, 0); },
        [&] { Canvas().DrawRect(rc, 0); },
        [&] { Canvas().DrawRectWidth(rc, 0, 2.0F); },
        [&] { Canvas().DrawEngineBitmap(bitmap, rc, rc); },
        [&] { Canvas().GetDeviceContext(); },
        [&] { Canvas().CreateRenderDC(); },
        [&] { Canvas().CopyTarget(nullptr); },
        [&] { Canvas().SetPageColor(0); },
        [&] { Canvas().SetSurround(0); },
    };
    for (std::size_t nCall = 0; nCall < calls.size(); ++nCall) {
        EXPECT_EQ(CodeRaisedBy(calls[nCall]), Platform::RO_E_CLOSED) << "call " << nCall;
    }
}

}
}
