// Frames: their order, failures within them, and what a host does inside one.
#include <stdexcept>
#include <thread>

#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

class FrameTest : public SurfaceTest {
protected:
    void SetUp() override {
        Start();
        Device().ClearCalls();
    }

    // None is left open. One within another the device itself refuses.
    void ExpectFrames(std::size_t nBegun, std::size_t nPresented) {
        EXPECT_EQ(Device().Count(GraphicsCall::BeginDraw), nBegun);
        EXPECT_EQ(Device().Count(GraphicsCall::EndDraw), nBegun);
        EXPECT_EQ(Presents(), nPresented);
    }
};

TEST_F(FrameTest, AFailingClientLeavesLastFrameShownAndTheContextUsable) {
    TestClient good;
    Canvas().RenderViewer(good);
    TestClient bad([](auto&) { throw std::runtime_error("the host's handler"); });
    ExpectTold([&] { Canvas().RenderViewer(bad); }, "the host's handler");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(bad.nFrames, 4) << "tried again three times";
    ExpectFrames(5, 1);
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
    ExpectFrames(2, 2);
    Canvas().ClearViewer(client); // draws nothing, and is presented all the same
    EXPECT_EQ(client.nClears, 1);
    EXPECT_EQ(client.nFrames, 2);
}

TEST_F(FrameTest, AFrameAskedForWithinAFrameFollowsIt) {
    TestClient inner;
    TestClient outer;
    outer.fnDraw = [&](auto&) {
        Canvas().ClearViewer(outer);
        Canvas().RenderViewer(inner); // the latest wins
        EXPECT_EQ(inner.nFrames, 0);
        Canvas().FillRect({0.0F, 0.0F, 5.0F, 5.0F}, 0xFF00FF00U); // still the outer frame
    };
    Canvas().RenderViewer(outer);
    ExpectFrames(2, 2);
    EXPECT_EQ(inner.nFrames, 1);
    EXPECT_EQ(outer.nClears, 0);
    EXPECT_EQ(m_host.Dispatcher().Pending(), 0U);
}

TEST_F(FrameTest, AHandlerThatAlwaysPaintsDoesNotHoldTheThread) {
    TestClient client;
    client.fnDraw = [&](auto&) { Canvas().RenderViewer(client); };
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nFrames, 2);
    EXPECT_EQ(m_host.Dispatcher().Pending(concurrency::priority::low), 1U);
    m_host.Dispatcher().RunOne();
    ExpectFrames(4, 4);
    client.fnDraw = {};
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(client.nFrames, 5);
}

TEST_F(FrameTest, WhatAThrowingHandlerAskedForStillComes) {
    TestClient next;
    TestClient client([&](auto&) {
        Canvas().RenderViewer(next);
        throw std::runtime_error("the host's handler");
    });
    ExpectTold([&] { Canvas().RenderViewer(client); }, "the host's handler");
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(next.nFrames, 1);
    EXPECT_EQ(client.nFrames, 1) << "in the place of a second try";
    ExpectFrames(2, 1);
}

TEST_F(FrameTest, ARequestOfAClientThatIsGoneIsDropped) {
    TestClient client;
    client.fnDraw = [&](auto&) {
        TestClient shortLived;
        Canvas().RenderViewer(shortLived);
    };
    Canvas().RenderViewer(client);
    m_host.Dispatcher().RunAll();
    ExpectFrames(1, 1);
}

TEST_F(FrameTest, AClientIsKeptForItsFrameEvenWhenItsOwnerLetsGo) {
    struct SharedClient final : public vkit::ICanvasClient,
                                public std::enable_shared_from_this<SharedClient> {
        void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {
            const std::weak_ptr<SharedClient> wkSelf = weak_from_this();
            pOwner->reset();
            EXPECT_FALSE(wkSelf.expired()) << "gone within its own frame";
        }
        void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>& /*pDc*/) override {}
        std::shared_ptr<void> KeepAlive() override { return shared_from_this(); }
        std::shared_ptr<SharedClient>* pOwner = nullptr;
    };
    auto pClient = std::make_shared<SharedClient>();
    pClient->pOwner = &pClient;
    const std::weak_ptr<SharedClient> wkClient = pClient;
    Canvas().RenderViewer(*pClient);
    EXPECT_TRUE(wkClient.expired());
}

TEST_F(FrameTest, ASizeThatChangesWithinAFrameTakesEffectWithTheNext) {
    TestClient client;
    client.fnDraw = [&](auto&) {
        if (client.nFrames == 1) {
            m_pPanel->ArrangeAtScale({20.0F, 10.0F}, 2.0F, 2.0F);
            EXPECT_EQ(Canvas().TargetBitmap()->GetPixelSize(), (Graphics::D2D_SIZE_U{40, 30}));
        }
    };
    Canvas().RenderViewer(client);
    EXPECT_EQ(client.nFrames, 2);
    EXPECT_EQ(Canvas().TargetBitmap()->GetPixelSize(), (Graphics::D2D_SIZE_U{40, 20}));
    EXPECT_EQ(Device().Count(GraphicsCall::ResizeBuffers), 1U);
    ExpectFrames(2, 2);
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
    ExpectFrames(1, 0);
    EXPECT_EQ(Device().LiveDevices(), 0);
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
