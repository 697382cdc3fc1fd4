// The device goes, or calls to it fail, at every point; the surface comes back.
#include "surface/D2DBitmapSource.h"
#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

class DeviceLossTest : public SurfaceTest {
protected:
    std::shared_ptr<Graphics::ID2D1Bitmap> MakeBitmap() {
        return Canvas().GetDeviceContext()->CreateBitmap({4, 4}, {}, 0, {});
    }
    Graphics::D2D_SIZE_U TargetSize() { return Canvas().TargetBitmap()->GetPixelSize(); }

    // Drawn once, presented once, on a chain of the panel's size that is shown.
    void ExpectWorkingFrame(const std::string& strWhere) {
        SCOPED_TRACE(strWhere);
        const std::size_t nPresents = Presents();
        TestClient client([this](auto&) { Canvas().FillRect({0, 0, 10, 10}, 0xFFFF0000U); });
        Canvas().RenderViewer(client);
        m_host.Dispatcher().RunAll();
        EXPECT_EQ(client.nFrames, 1);
        EXPECT_EQ(Presents(), nPresents + 1);
        EXPECT_TRUE(Canvas().IsLoadingComplete());
        EXPECT_EQ(Device().LiveSwapChains(), 1);
        EXPECT_EQ(Device().LiveDevices(), 1);
        ASSERT_NE(m_pPanel->SwapChain(), nullptr);
        EXPECT_EQ(m_pPanel->SwapChain()->GetBuffer(0)->GetSize(), TargetSize());
        EXPECT_EQ(static_cast<float>(TargetSize().width), Canvas().GetScaledWidth());
    }
};

TEST_F(DeviceLossTest, APresentThatLosesTheDeviceEndsWithAFrameOnAFreshOne) {
    Start();
    TestClient client;
    Canvas().RenderViewer(client);
    Canvas().SetPageColor(0xFF102030U);
    const auto pOldBrush = Canvas().PageBrush();
    const auto pOldChain = m_pPanel->SwapChain();
    vkit::D2DBitmapSource source;
    source.m_pD2DBitmap = MakeBitmap();
    ASSERT_TRUE(source.HasBitmap());

    Device().LoseDeviceAtPresent(1);
    Canvas().RenderViewer(client);
    EXPECT_FALSE(source.HasBitmap());
    EXPECT_EQ(client.nFrames, 3) << "one before, the lost one, and once more";
    EXPECT_EQ(client.nDevicesRemade, 1);
    EXPECT_NE(Canvas().PageBrush(), pOldBrush);
    EXPECT_EQ(Canvas().PageBrush()->GetColor().g, 32.0F / 255.0F);
    EXPECT_EQ(TargetSize(), (Graphics::D2D_SIZE_U{40, 30}));
    m_host.Dispatcher().RunAll();
    EXPECT_NE(m_pPanel->SwapChain(), pOldChain);
    EXPECT_NE(m_pPanel->SwapChain(), nullptr);

    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nDevicesRemade, 1) << "told once";
}

TEST_F(DeviceLossTest, LossesInAResizeAndWithinARecoveryEndAtTheNewSize) {
    Start();
    Device().LoseDeviceAtResize(1);
    m_pPanel->Arrange({50.0F, 20.0F});
    EXPECT_EQ(Canvas().DeviceGeneration(), 1U);
    EXPECT_EQ(TargetSize(), (Graphics::D2D_SIZE_U{50, 20}));
    TestClient client;
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nDevicesRemade, 1) << "also of a loss outside of a frame";
    ExpectWorkingFrame("after a loss in a resize");

    Device().LoseDeviceAtResize(1);
    Device().LoseDeviceAtResize(2); // the one that fits the fresh chain to the panel
    m_pPanel->Arrange({60.0F, 20.0F});
    EXPECT_EQ(Canvas().DeviceGeneration(), 3U);
    ExpectWorkingFrame("after two losses");

    Device().LoseDeviceAtPresent(1);
    Device().LoseDeviceAtResize(1);
    Device().LoseDeviceAtPresent(2);
    Canvas().RenderViewer(client);
    EXPECT_EQ(Canvas().DeviceGeneration(), 6U);
    ExpectWorkingFrame("after three losses");
}

// After that each frame makes the device anew, and loses it again.
TEST_F(DeviceLossTest, ThreeRecoveriesInARowAreTriedAndThenTheFailureIsTold) {
    Start();
    TestClient client;
    for (int nRound = 0; nRound < 8; ++nRound) { // a good present starts the count anew
        Device().LoseDeviceAtPresent(1);
        ASSERT_NO_THROW(Canvas().RenderViewer(client)) << "round " << nRound;
    }
    EXPECT_EQ(Canvas().DeviceGeneration(), 8U);

    Device().ClearCalls();
    Device().LoseDeviceAtPresent(1, true);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "the device is lost again and again");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(Presents(), 4U + 3U);
    EXPECT_EQ(Device().Count(GraphicsCall::D3D11CreateDevice), 3U + 3U);
    EXPECT_FALSE(Canvas().IsLoadingComplete());
    EXPECT_EQ(Canvas().CopyTarget(Canvas().TargetBitmap()), nullptr);
    m_pPanel->Arrange({20.0F, 20.0F}); // without a device only noted

    Device().ClearFaults();
    ExpectWorkingFrame("once the device holds");
}

TEST_F(DeviceLossTest, AfterAnotherFailureOfAPresentTheFrameComesAllTheSame) {
    Start();
    TestClient client;
    Device().FailCallOf(GraphicsCall::Present1, 1, Platform::E_OUTOFMEMORY);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "Present1");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(client.nFrames, 2) << "nobody asked for it again";
    EXPECT_EQ(Presents(), 2U);
    EXPECT_EQ(Canvas().DeviceGeneration(), 0U);
    Device().FailCallOf(GraphicsCall::Present1, 1, Platform::E_OUTOFMEMORY);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "Present1");
}

// One call after another fails, over a life with resizes, a loss and a frame.
TEST_F(DeviceLossTest, WhateverCallFailsTheNextFrameIsWhole) {
    std::uint32_t nCalls = 1; // of a life in which nothing fails, once it is known
    for (std::uint32_t nCall = 0; nCall <= nCalls; ++nCall) {
        m_pPanel = std::make_shared<SwapChainPanel>();
        m_pCanvas = std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
        Device().ClearCalls();
        if (nCall > 0) {
            Device().FailCall(nCall);
        }
        if (CodeRaisedBy([&] { Canvas().Initialize(); }) != Platform::S_OK) {
            Canvas().Initialize(); // without its factories a canvas is not made: now it is
        }
        TestClient client;
        const std::vector<std::function<void()>> steps = {
            [&] {
                m_pPanel->Arrange({40.0F, 30.0F});
            },
            [&] { Canvas().RenderViewer(client); },
            [&] {
                Device().LoseDeviceAtPresent(1);
                Canvas().RenderViewer(client);
            },
            [&] { m_pPanel->CompositionScale(2.0F, 2.0F); },
            [&] { Canvas().ClearAndPresent(); },
            [&] { Canvas().CopyTarget(Canvas().TargetBitmap()); },
        };
        for (const auto& fnStep : steps) {
            CodeRaisedBy(fnStep);
        }
        nCalls = nCall == 0 ? static_cast<std::uint32_t>(Device().CountAll()) : nCalls;
        Device().ClearFaults();
        ExpectWorkingFrame("call " + std::to_string(nCall));
    }
    EXPECT_GT(nCalls, 60U) << "the calls of a life were not reached";
}

}
}
