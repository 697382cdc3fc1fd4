// The device goes, or calls to it fail, at every point; the surface comes back.
#include <algorithm>

#include "surface/D2DBitmapSource.h"
#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

constexpr Platform::HRESULT kInjected = Platform::MakeHResult(0x8000BEEFU);
constexpr std::uint32_t kRed = 0xFFFF0000U;

class DeviceLossTest : public SurfaceTest {
protected:
    void ExpectWorkingFrame(const std::string& strWhere) {
        TestClient client([this](Graphics::ID2D1DeviceContext&) {
            Canvas().FillRect({0.0F, 0.0F, 10.0F, 10.0F}, kRed);
        });
        Canvas().RenderViewer(client);
        m_host.Dispatcher().RunAll();
        EXPECT_EQ(client.nFrames, 1) << strWhere;
        EXPECT_EQ(Shown(2, 2), kRed) << strWhere;
        EXPECT_TRUE(Canvas().IsLoadingComplete()) << strWhere;
        EXPECT_EQ(Device().LiveSwapChains(), 1) << strWhere;
        EXPECT_EQ(Device().LiveDevices(), 1) << strWhere;
        const float fWidth = Canvas().GetScaledWidth();
        EXPECT_EQ(static_cast<float>(Device().FrontImage().Size().width), fWidth) << strWhere;
    }
};

TEST_F(DeviceLossTest, APresentThatLosesTheDeviceEndsWithAFrameOnAFreshOne) {
    Start(40.0F, 30.0F);
    TestClient client;
    Canvas().RenderViewer(client);
    Canvas().SetPageColor(0xFF102030U);
    const auto pOldBrush = Canvas().PageBrush();
    const auto pOldChain = m_pPanel->SwapChain();
    vkit::D2DBitmapSource source;
    source.m_pD2DBitmap = MakeBitmap(4, 4, kRed);
    ASSERT_TRUE(source.HasBitmap());
    Device().ClearCalls();

    Device().LoseDeviceAtPresent(1);
    Canvas().RenderViewer(client);

    EXPECT_FALSE(source.HasBitmap());
    EXPECT_EQ(client.nFrames, 3) << "one before, the lost one, and once more";
    EXPECT_EQ(client.nDevicesRemade, 1);
    EXPECT_NE(Canvas().PageBrush(), pOldBrush);
    EXPECT_EQ(Canvas().PageBrush()->GetColor().g, 32.0F / 255.0F);
    EXPECT_EQ(Device().Count(GraphicsCall::CreateSolidColorBrush), 9U);
    EXPECT_EQ(Device().FrontImage().Size(), (Graphics::D2D_SIZE_U{40, 30}));
    EXPECT_EQ(Shown(39, 29), 0xFF808080U);
    m_host.Dispatcher().RunAll();
    EXPECT_NE(m_pPanel->SwapChain(), pOldChain);
    EXPECT_NE(m_pPanel->SwapChain(), nullptr);

    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nDevicesRemade, 1) << "told once";
}

TEST_F(DeviceLossTest, ABitmapOfALostDeviceDrawsNothing) {
    Start();
    const auto pOld = MakeBitmap(10, 10, kRed);
    TestClient client([&](Graphics::ID2D1DeviceContext& context) {
        context.DrawBitmap(pOld, {0, 0, 10, 10}, 1.0F, Graphics::D2D1_INTERPOLATION_MODE::LINEAR,
                           {0, 0, 10, 10});
    });
    Device().LoseDeviceAtPresent(1);
    Canvas().RenderViewer(client);
    EXPECT_EQ(Shown(5, 5), 0xFF808080U);
    EXPECT_FALSE(LastCall(GraphicsCall::DrawBitmap).bAlive);
}

TEST_F(DeviceLossTest, AResizeThatLosesTheDeviceEndsAtTheNewSize) {
    Start(40.0F, 30.0F);
    Device().LoseDeviceAtResize(1);
    m_pPanel->Arrange({50.0F, 20.0F});
    EXPECT_EQ(Canvas().DeviceGeneration(), 1U);
    EXPECT_EQ(Canvas().TargetBitmap()->GetPixelSize(), (Graphics::D2D_SIZE_U{50, 20}));
    TestClient client;
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nDevicesRemade, 1) << "also of a loss outside of a frame";
    ExpectWorkingFrame("after a loss in a resize");
}

TEST_F(DeviceLossTest, ALossWithinTheRecoveryIsRecoveredToo) {
    Start(40.0F, 30.0F);
    Device().LoseDeviceAtResize(1);
    Device().LoseDeviceAtResize(2); // the one that fits the fresh chain to the panel
    m_pPanel->Arrange({50.0F, 20.0F});
    EXPECT_EQ(Canvas().DeviceGeneration(), 2U);
    ExpectWorkingFrame("after two losses");

    Device().LoseDeviceAtPresent(1);
    Device().LoseDeviceAtResize(1);
    Device().LoseDeviceAtPresent(2);
    TestClient client;
    Canvas().RenderViewer(client);
    EXPECT_EQ(Canvas().DeviceGeneration(), 5U);
    ExpectWorkingFrame("after three losses");
}

// After that each frame makes the device anew, and loses it again.
TEST_F(DeviceLossTest, ThreeRecoveriesInARowAreTriedAndThenTheFailureIsTold) {
    Start();
    TestClient client;
    Device().ClearCalls();
    Device().LoseDeviceAtPresent(1, true);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "the device is lost again and again");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(Device().Count(GraphicsCall::Present1), 4U + 3U);
    EXPECT_EQ(Device().Count(GraphicsCall::D3D11CreateDevice), 3U + 3U);
    EXPECT_FALSE(Canvas().IsLoadingComplete());
    EXPECT_EQ(Canvas().CopyTarget(Canvas().TargetBitmap()), nullptr);
    m_pPanel->Arrange({20.0F, 20.0F}); // without a device only noted

    Device().ClearFaults();
    ExpectWorkingFrame("once the device holds");
}

TEST_F(DeviceLossTest, AGoodPresentStartsTheCountAnew) {
    Start();
    TestClient client;
    for (int nRound = 0; nRound < 8; ++nRound) {
        Device().LoseDeviceAtPresent(1);
        ASSERT_NO_THROW(Canvas().RenderViewer(client)) << "round " << nRound;
    }
    EXPECT_EQ(Canvas().DeviceGeneration(), 8U);
}

TEST_F(DeviceLossTest, AfterAnotherFailureOfAPresentTheFrameComesAllTheSame) {
    Start();
    TestClient client;
    Device().FailCallOf(GraphicsCall::Present1, 1, Platform::E_OUTOFMEMORY);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "Present1");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(client.nFrames, 2);
    EXPECT_EQ(Shown(2, 2), 0xFF808080U) << "nobody asked for it again";
    EXPECT_EQ(Canvas().DeviceGeneration(), 0U);
    Device().FailCallOf(GraphicsCall::Present1, 1, Platform::E_OUTOFMEMORY);
    ExpectTold([&] { Canvas().RenderViewer(client); }, "Present1");
}

TEST_F(DeviceLossTest, AFailingBrushIsLeftOutAndTheRestIsDrawn) {
    Device().FailCallOf(GraphicsCall::CreateSolidColorBrush, 4); // that of the selection
    Start();
    TestClient client([this](Graphics::ID2D1DeviceContext&) {
        Canvas().FillSelection({0.0F, 0.0F, 10.0F, 10.0F});
        Canvas().FillRect({20.0F, 0.0F, 10.0F, 10.0F}, kRed);
    });
    Canvas().RenderViewer(client);
    EXPECT_EQ(Shown(5, 5), 0xFF808080U);
    EXPECT_EQ(Shown(25, 5), kRed);
}

// One call after another fails, over a life with resizes, a loss and a frame.
TEST_F(DeviceLossTest, WhateverCallFailsTheNextFrameIsWhole) {
    std::uint32_t nCall = 0;
    for (bool bFailed = true; bFailed;) {
        ++nCall;
        ASSERT_LT(nCall, 500U) << "the failures never end";
        m_pPanel = std::make_shared<SwapChainPanel>();
        m_pCanvas = std::make_shared<vkit::PDFViewCanvas>(m_pPanel);
        Device().ClearCalls();
        Device().FailCall(nCall, kInjected);
        TestClient client;
        const std::vector<std::function<void()>> steps = {
            [&] { Canvas().Initialize(); },
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
        bool bInitialised = true;
        for (std::size_t nStep = 0; nStep < steps.size(); ++nStep) {
            const bool bRaised = CodeRaisedBy(steps[nStep]) != Platform::S_OK;
            // Without its factories a canvas is not made: the next attempt is.
            bInitialised = bInitialised && !(bRaised && nStep == 0);
            if (!bInitialised) {
                CodeRaisedBy(steps[0]);
                bInitialised = true;
            }
        }
        bFailed = std::any_of(Device().Calls().begin(), Device().Calls().end(),
                              [](const RecordedCall& call) { return call.nResult == kInjected; });
        Device().ClearFaults();
        ExpectWorkingFrame("call " + std::to_string(nCall));
    }
    EXPECT_GT(nCall, 60U) << "the calls of a life were not reached";
}

}
}
