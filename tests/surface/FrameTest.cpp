// Frames: their order, failures within them, and what a host does inside one.
#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

using ::testing::ElementsAre;

class FrameTest : public SurfaceTest {
protected:
    void SetUp() override {
        Start();
        Device().ClearCalls();
    }

    // Frames never overlap in the record, and none is left open.
    void ExpectBalancedFrames() const {
        int nOpen = 0;
        for (const RecordedCall& call : m_pFactory->Calls()) {
            nOpen += call.eCall == GraphicsCall::BeginDraw ? 1 : 0;
            nOpen -= call.eCall == GraphicsCall::EndDraw ? 1 : 0;
            ASSERT_GE(nOpen, 0);
            ASSERT_LE(nOpen, 1);
        }
        EXPECT_EQ(nOpen, 0);
    }
};

TEST_F(FrameTest, AFrameIsDrawnAndPresentedOnce) {
    TestClient client;
    Canvas().RenderViewer(client);
    EXPECT_THAT(CallNames(), ElementsAre("BeginDraw", "Clear", "EndDraw", "Present1"));
    EXPECT_THAT(LastCall(GraphicsCall::Present1).values, ElementsAre(1U, 0U));
    Canvas().ClearViewer(client);
    EXPECT_EQ(client.nClears, 1);

    Device().ClearCalls();
    Canvas().ClearAndPresent();
    EXPECT_THAT(CallNames(), ElementsAre("BeginDraw", "Clear", "EndDraw", "Present1"));
    EXPECT_EQ(LastCall(GraphicsCall::Clear).color, (Graphics::D2D_COLOR_F{1, 1, 1, 1}));
}

TEST_F(FrameTest, AFailingClientLeavesLastFrameShownAndTheContextUsable) {
    TestClient good;
    Canvas().RenderViewer(good);
    TestClient bad([](Graphics::ID2D1DeviceContext& context) {
        context.SetTransform({2.0F, 0.0F, 0.0F, 2.0F, 5.0F, 5.0F});
        context.Clear({1.0F, 0.0F, 0.0F, 1.0F});
        throw std::runtime_error("the host's handler");
    });
    ExpectTold([&] { Canvas().RenderViewer(bad); }, "the host's handler");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(bad.nFrames, 4) << "tried again three times";
    ExpectBalancedFrames();
    EXPECT_EQ(Device().Count(GraphicsCall::Present1), 1U);
    EXPECT_EQ(Shown(5, 5), 0xFF808080U);
    EXPECT_EQ(LastCall(GraphicsCall::SetTransform).matrix, Graphics::D2D_MATRIX_3X2_F{});
    // The lock is free: another thread's suspension goes through.
    std::thread([this] { m_host.Environment().Suspending.raise(); }).join();
    EXPECT_EQ(Device().Count(GraphicsCall::Trim), 1U);
    Canvas().RenderViewer(good);
    EXPECT_EQ(good.nFrames, 2);
}

TEST_F(FrameTest, AFrameThatItsClientLeftOpenIsEnded) {
    TestClient client;
    client.bLeavesFrameOpen = true;
    Canvas().RenderViewer(client);
    Canvas().RenderViewer(client);
    ExpectBalancedFrames();
    EXPECT_EQ(Device().Count(GraphicsCall::Present1), 2U);
}

TEST_F(FrameTest, AClientThatDrawsNothingKeepsTheFrameShown) {
    class IdleClient final : public vkit::ICanvasClient {
        void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {}
        void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {}
    };
    Canvas().ClearAndPresent();
    TestClient client;
    Canvas().RenderViewer(client);
    IdleClient idle;
    Canvas().RenderViewer(idle);
    EXPECT_EQ(Shown(5, 5), 0xFF808080U) << "an older buffer is shown";
}

TEST_F(FrameTest, AFrameAskedForWithinAFrameFollowsIt) {
    TestClient inner;
    TestClient outer;
    outer.SetDraw([&](Graphics::ID2D1DeviceContext&) {
        Canvas().ClearViewer(outer);
        Canvas().RenderViewer(inner); // the latest wins
        EXPECT_EQ(inner.nFrames, 0);
        Canvas().FillRect({0.0F, 0.0F, 5.0F, 5.0F}, 0xFF00FF00U); // still the outer frame
    });
    Canvas().RenderViewer(outer);
    EXPECT_THAT(CallNames(),
                ElementsAre("BeginDraw", "Clear", "CreateSolidColorBrush", "FillRectangle",
                            "EndDraw", "Present1", "BeginDraw", "Clear", "EndDraw", "Present1"));
    EXPECT_EQ(inner.nFrames, 1);
    EXPECT_EQ(outer.nClears, 0);
    EXPECT_EQ(m_host.Dispatcher().Pending(), 0U);
}

TEST_F(FrameTest, AHandlerThatAlwaysPaintsDoesNotHoldTheThread) {
    TestClient client;
    client.SetDraw([&](Graphics::ID2D1DeviceContext&) { Canvas().RenderViewer(client); });
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nFrames, 2);
    EXPECT_EQ(m_host.Dispatcher().Pending(concurrency::priority::low), 1U);
    m_host.Dispatcher().RunOne();
    EXPECT_EQ(client.nFrames, 4);
    ExpectBalancedFrames();
    client.SetDraw({});
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(client.nFrames, 5);
}

TEST_F(FrameTest, WhatAThrowingHandlerAskedForStillComes) {
    TestClient next;
    TestClient client([&](Graphics::ID2D1DeviceContext&) {
        Canvas().RenderViewer(next);
        throw std::runtime_error("the host's handler");
    });
    ExpectTold([&] { Canvas().RenderViewer(client); }, "the host's handler");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(next.nFrames, 1);
    EXPECT_EQ(client.nFrames, 1) << "in the place of a second try";
    ExpectBalancedFrames();
}

TEST_F(FrameTest, ARequestOfAClientThatIsGoneIsDropped) {
    TestClient client;
    client.SetDraw([&](Graphics::ID2D1DeviceContext&) {
        TestClient shortLived;
        Canvas().RenderViewer(shortLived);
    });
    Canvas().RenderViewer(client);
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(Device().Count(GraphicsCall::Present1), 1U);
}

TEST_F(FrameTest, AClientIsKeptForItsFrameEvenWhenItsOwnerLetsGo) {
    class SharedClient final : public vkit::ICanvasClient,
                               public std::enable_shared_from_this<SharedClient> {
    public:
        void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {
            pOwner->reset();
            nValue = 7; // a use after the end, were it not kept
        }
        void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {}
        std::shared_ptr<void> KeepAlive() override { return shared_from_this(); }
        std::shared_ptr<SharedClient>* pOwner = nullptr;
        int nValue = 0;
    };
    auto pClient = std::make_shared<SharedClient>();
    pClient->pOwner = &pClient;
    const std::weak_ptr<SharedClient> wkClient = pClient;
    Canvas().RenderViewer(*pClient);
    EXPECT_TRUE(wkClient.expired());
}

TEST_F(FrameTest, ASizeThatChangesWithinAFrameTakesEffectWithTheNext) {
    TestClient client;
    client.SetDraw([&](Graphics::ID2D1DeviceContext&) {
        if (client.nFrames == 1) {
            m_pPanel->ArrangeAtScale({20.0F, 10.0F}, 2.0F, 2.0F);
            EXPECT_EQ(Canvas().TargetBitmap()->GetPixelSize(), (Graphics::D2D_SIZE_U{40, 30}));
        }
    });
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nFrames, 2);
    EXPECT_EQ(Device().FrontImage().Size(), (Graphics::D2D_SIZE_U{40, 20}));
    EXPECT_EQ(Device().Count(GraphicsCall::ResizeBuffers), 1U);
    ExpectBalancedFrames();
}

TEST_F(FrameTest, ACanvasDisposedOrReleasedWithinItsFrameEndsQuietly) {
    TestClient client([&](Graphics::ID2D1DeviceContext& context) {
        Canvas().RenderViewer(client);
        Canvas().Dispose();
        m_pCanvas.reset();
        context.Clear(kGrey); // the client goes on with the context that it has
    });
    m_pCanvas->RenderViewer(client);
    m_host.Dispatcher().RunAll();
    ExpectBalancedFrames();
    EXPECT_EQ(Device().Count(GraphicsCall::Present1), 0U);
    EXPECT_EQ(Device().LiveDevices(), 0);
}

TEST_F(FrameTest, TheSnapshotHoldsTheLastFrame) {
    TestClient client([&](Graphics::ID2D1DeviceContext&) {
        Canvas().FillRect({3.0F, 2.0F, 1.0F, 1.0F}, 0xFF0000FFU);
    });
    Canvas().ClearAndPresent(); // what the other buffer holds
    Canvas().RenderViewer(client);
    const auto pSnapshot = Canvas().CopyTarget(Canvas().TargetBitmap());
    ASSERT_NE(pSnapshot, nullptr);
    EXPECT_EQ(pSnapshot->GetPixelSize(), (Graphics::D2D_SIZE_U{40, 30}));
    EXPECT_EQ(pSnapshot->ReadPixels(), Device().FrontImage().Bytes());
    EXPECT_THAT(LastCall(GraphicsCall::CreateBitmap).values, ElementsAre(0U, 87U, 1U, 0U));
    EXPECT_EQ(LastCall(GraphicsCall::CreateBitmap).fDpiX, 96.0F);

    m_pPanel->Arrange({50.0F, 40.0F});
    const auto pLarger = Canvas().CopyTarget(Canvas().TargetBitmap());
    EXPECT_EQ(pLarger->GetPixelSize(), (Graphics::D2D_SIZE_U{50, 40}));
    EXPECT_EQ(pLarger->ReadPixels()[(2 * 50 + 3) * 4], 0xFF) << "the last frame's blue pixel";
    EXPECT_EQ(Canvas().CopyTarget(nullptr), nullptr);
}

TEST_F(FrameTest, DrawingOutsideOfAFrameIsRefused) {
    EXPECT_EQ(CodeRaisedBy([&] {
                  Canvas().FillSelection({0.0F, 0.0F, 1.0F, 1.0F});
              }),
              Graphics::D2DERR_WRONG_STATE);
    TestClient client;
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nFrames, 1);
}

}
}
