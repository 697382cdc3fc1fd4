// What the canvas draws, in pixels: units, colours, brushes, bitmaps, snapshots.
#include <stdexcept>

#include "platform/qt/QtGraphicsFactory.h"
#include "platform/qt/QtSwapChain.h"
#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

class QtDrawingTest : public CanvasTest<Platform::Qt::QtGraphicsFactory> {
protected:
    // One frame, on grey.
    void Draw(const TestClient::Draw& fnDraw) {
        TestClient client(fnDraw);
        Canvas().RenderViewer(client);
    }
    QImage Frame() {
        return std::dynamic_pointer_cast<Platform::Qt::QtSwapChain>(m_pPanel->SwapChain())
            ->FrontImage();
    }
    // Premultiplied 0xAARRGGBB.
    std::uint32_t Shown(int nX, int nY) { return Frame().pixel(nX, nY); }
};

constexpr std::uint32_t kGround = 0xFF808080U;

TEST_F(QtDrawingTest, LogicalRectanglesCoverTheirDevicePixelsInTheirColours) {
    m_pPanel->CompositionScale(1.5F, 1.5F);
    Start(60.0F, 40.0F);
    Draw([&](auto&) {
        Canvas().FillRect({10, 10, 10, 10}, 0xFF0840F0U);
        Canvas().FillRect({30, 10, 10, 10}, 0x80FF0040U);
        Canvas().FillSelection({50, 10, 4, 4});
        Canvas().DrawRect({4, 30, 10, 6}, 0xFF000000U);
        Canvas().DrawRectWidth({30, 30, 10, 6}, 0xFF000000U, 4.0F);
    });
    EXPECT_EQ(Shown(14, 14), kGround);
    EXPECT_EQ(Shown(15, 15), 0xFF0840F0U);
    EXPECT_EQ(Shown(29, 29), 0xFF0840F0U);
    EXPECT_EQ(Shown(30, 30), kGround);
    EXPECT_NEAR(qRed(Shown(50, 20)), 0xBF, 1) << "half of it";
    EXPECT_NEAR(qGreen(Shown(50, 20)), 0x40, 1);
    EXPECT_NEAR(qBlue(Shown(50, 20)), 0x60, 1);
    EXPECT_NEAR(qBlue(Shown(76, 16)), 0xC0, 1) << "the selection's blue, half of it";
    EXPECT_NEAR(qRed(Shown(76, 16)), 0x40, 1);
    EXPECT_EQ(Shown(6, 48), 0xFF000000U);
    EXPECT_EQ(Shown(8, 48), kGround) << "a pixel wide";
    EXPECT_EQ(Shown(46, 48), 0xFF000000U);
    EXPECT_EQ(Shown(48, 48), kGround) << "two on either side";
}

TEST_F(QtDrawingTest, AnEngineBitmapIsDrawnUnscaledAndReleasedAtOnce) {
    m_pPanel->CompositionScale(2.0F, 2.0F);
    Start(40.0F, 30.0F);
    NumberedBitmap bitmap(6, 4);
    Draw([&](auto&) {
        Canvas().DrawEngineBitmap(bitmap, {0, 0, 3, 2}, {5, 5, 3, 2});
        EXPECT_EQ(Device().State()->nLiveBitmaps, 0);
    });
    EXPECT_EQ(Shown(9, 9), kGround);
    for (int nPixel = 0; nPixel < 24; ++nPixel) {
        EXPECT_EQ(qRed(Shown(10 + nPixel % 6, 10 + nPixel / 6)), nPixel);
    }
    EXPECT_EQ(Shown(16, 13), kGround);
}

TEST_F(QtDrawingTest, TheColoursOfPaperAndSurroundAreKeptForEveryDevice) {
    EXPECT_FLOAT_EQ(Canvas().Surround().r, 0.8784314F);
    Canvas().SetSurround(0xFF1E1E27U);
    Canvas().SetPageColor(0xFF336699U); // before there is a device
    EXPECT_EQ(Canvas().PageBrush(), nullptr);
    Start();
    EXPECT_FLOAT_EQ(Canvas().PageBrush()->GetColor().g, 0.4F);
    Canvas().SetPageColor(0x80FFFFFFU);
    EXPECT_FLOAT_EQ(Canvas().PageBrush()->GetColor().a, 128.0F / 255.0F);
    EXPECT_FLOAT_EQ(Canvas().Surround().b, 39.0F / 255.0F);
}

TEST_F(QtDrawingTest, TheSnapshotHoldsTheLastFrame) {
    Start();
    Canvas().ClearAndPresent(); // what the other buffer holds
    EXPECT_EQ(Shown(39, 29), 0xFFFFFFFFU);
    Draw([&](auto&) { Canvas().FillRect({3, 2, 1, 1}, 0xFF0000FFU); });
    const QImage frame = Frame();
    const auto pSnapshot = Canvas().CopyTarget(Canvas().TargetBitmap());
    ASSERT_NE(pSnapshot, nullptr);
    const auto pixels = pSnapshot->ReadPixels();
    ASSERT_EQ(pixels.size(), static_cast<std::size_t>(frame.sizeInBytes()));
    EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), frame.constBits()));

    m_pPanel->Arrange({50.0F, 40.0F});
    const auto pLarger = Canvas().CopyTarget(Canvas().TargetBitmap());
    EXPECT_EQ(pLarger->GetPixelSize(), (Graphics::D2D_SIZE_U{50, 40}));
    EXPECT_EQ(pLarger->ReadPixels()[(2 * 50 + 3) * 4], 0xFF) << "the last frame's blue pixel";
    EXPECT_EQ(Canvas().CopyTarget(nullptr), nullptr);
}

TEST_F(QtDrawingTest, TheTransformOfAFrameThatFailedGoesWithIt) {
    Start();
    TestClient bad([](Graphics::ID2D1DeviceContext& context) {
        context.SetTransform({2.0F, 0.0F, 0.0F, 2.0F, 5.0F, 5.0F});
        throw std::runtime_error("the host's handler");
    });
    Canvas().RenderViewer(bad);
    Draw([&](auto&) { Canvas().FillRect({1, 1, 1, 1}, 0xFF0000FFU); });
    EXPECT_EQ(Shown(1, 1), 0xFF0000FFU);
    EXPECT_EQ(Shown(7, 7), kGround);
}

// A script sets them on the real device: a loss, whose bitmaps draw nothing any
// more, and a present that fails and is tried again.
TEST_F(QtDrawingTest, TheCanvasSurvivesTheFaultsThatAScriptSets) {
    Start(); // no hardware device: the raster one stands in
    const auto pBitmap = Canvas().GetDeviceContext()->CreateBitmap({1, 1}, {}, 0, {});
    Device().State()->nPresentsUntilLoss = 1;
    Canvas().ClearAndPresent();
    EXPECT_TRUE(pBitmap->IsDeviceAlive());
    Draw([&](Graphics::ID2D1DeviceContext& context) {
        Canvas().FillRect({20, 0, 9, 9}, 0xFF00FF00U);
        if (!pBitmap->IsDeviceAlive()) {
            context.DrawBitmap(pBitmap, {20, 0, 29, 9}, 1.0F,
                               Graphics::D2D1_INTERPOLATION_MODE::LINEAR, {0, 0, 1, 1});
        }
    });
    EXPECT_FALSE(pBitmap->IsDeviceAlive());
    m_host.Dispatcher().RunAll();
    EXPECT_EQ(Frame().size(), QSize(40, 30));
    EXPECT_EQ(Shown(25, 5), 0xFF00FF00U);
    EXPECT_EQ(Device().State()->nDevicesLost, 1U);

    const auto nPresents = Device().State()->nPresents;
    Device().State()->nPresentsUntilFailure = 0;
    Canvas().ClearAndPresent();
    EXPECT_EQ(Device().State()->nPresents, nPresents + 1) << "tried again";
}

}
}
