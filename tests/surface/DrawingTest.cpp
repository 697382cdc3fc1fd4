// The canvas's drawing operations: units, colours, brushes, bitmaps.
#include <gmock/gmock.h>

#include "tests/surface/SurfaceFixture.h"

namespace velko::testing {
namespace {

using ::testing::ElementsAre;

class DrawingTest : public SurfaceTest {
protected:
    // Runs `fnDraw` within one frame.
    void InFrame(const std::function<void()>& fnDraw) {
        TestClient client([&](Graphics::ID2D1DeviceContext&) { fnDraw(); });
        Canvas().RenderViewer(client);
    }
};

TEST_F(DrawingTest, LogicalRectanglesCoverTheirDevicePixels) {
    m_pPanel->CompositionScale(1.5F, 1.5F);
    Start(40.0F, 40.0F);
    InFrame([&] { Canvas().FillRect({10.0F, 10.0F, 10.0F, 10.0F}, 0xFF00FF00U); });

    EXPECT_EQ(LastCall(GraphicsCall::FillRectangle).rcDestination,
              (Graphics::D2D_RECT_F{15.0F, 15.0F, 30.0F, 30.0F}));
    for (const std::uint32_t nInside : {15U, 29U}) {
        EXPECT_EQ(Shown(nInside, nInside), 0xFF00FF00U);
    }
    for (const std::uint32_t nOutside : {14U, 30U}) {
        EXPECT_EQ(Shown(nOutside, nOutside), 0xFF808080U);
    }
}

TEST_F(DrawingTest, ColoursAreUnpackedFromAlphaToBlue) {
    Start();
    InFrame([&] { Canvas().FillRect({0.0F, 0.0F, 8.0F, 8.0F}, 0x80FF0040U); });
    const Graphics::D2D_COLOR_F color = LastCall(GraphicsCall::FillRectangle).color;
    EXPECT_EQ(color.r, 1.0F);
    EXPECT_EQ(color.g, 0.0F);
    EXPECT_FLOAT_EQ(color.b, 64.0F / 255.0F);
    EXPECT_FLOAT_EQ(color.a, 128.0F / 255.0F);
}

TEST_F(DrawingTest, OutlinesHaveTheirWidthAndTheSelectionItsOwnBrush) {
    Start();
    InFrame([&] {
        Canvas().DrawRect({1.0F, 2.0F, 3.0F, 4.0F}, 0xFF000000U);
        EXPECT_EQ(LastCall(GraphicsCall::DrawRectangle).fStrokeWidth, 1.0F);
        Canvas().DrawRectWidth({1.0F, 2.0F, 3.0F, 4.0F}, 0xFF000000U, 2.5F);
        EXPECT_EQ(LastCall(GraphicsCall::DrawRectangle).fStrokeWidth, 2.5F);
        Canvas().FillSelection({1.0F, 2.0F, 3.0F, 4.0F});
    });
    const RecordedCall selection = LastCall(GraphicsCall::FillRectangle);
    EXPECT_EQ(selection.color, (Graphics::D2D_COLOR_F{0.0F, 0.0F, 1.0F, 1.0F}));
    EXPECT_EQ(selection.fOpacity, 0.5F);
    EXPECT_EQ(selection.rcDestination, (Graphics::D2D_RECT_F{1.0F, 2.0F, 4.0F, 6.0F}));
}

TEST_F(DrawingTest, AnEngineBitmapIsDrawnAndReleasedAtOnce) {
    m_pPanel->CompositionScale(2.0F, 2.0F);
    Start(40.0F, 30.0F);
    CountingBitmap bitmap(6, 4);
    InFrame([&] {
        Canvas().DrawEngineBitmap(bitmap, {0.0F, 0.0F, 3.0F, 2.0F}, {5.0F, 5.0F, 3.0F, 2.0F});
        EXPECT_EQ(Device().LiveBitmaps(), 0);
    });
    const RecordedCall made = LastCall(GraphicsCall::CreateBitmap);
    EXPECT_EQ(made.size, (Graphics::D2D_SIZE_U{6, 4}));
    EXPECT_THAT(made.values, ElementsAre(24U, 87U, 1U, 0U));
    const RecordedCall drawn = LastCall(GraphicsCall::DrawBitmap);
    EXPECT_EQ(drawn.rcSource, (Graphics::D2D_RECT_F{0, 0, 6, 4}));
    EXPECT_EQ(drawn.rcDestination, (Graphics::D2D_RECT_F{10, 10, 16, 14}));
    EXPECT_EQ(drawn.fOpacity, 1.0F);
    EXPECT_EQ(drawn.eInterpolation, Graphics::D2D1_INTERPOLATION_MODE::LINEAR);
    EXPECT_EQ(Shown(10, 10), 0xFF000000U);
    EXPECT_EQ(Shown(15, 13), 0xFF171717U) << "the 24th pixel, unscaled";
}

TEST_F(DrawingTest, WhatLiesOnTheBitmapFillsTheWholeDestination) {
    Start(40.0F, 30.0F);
    const auto pBitmap = MakeBitmap(5, 5, 0xFFFF0000U);
    InFrame([&] {
        // A source larger than the bitmap, and one that lies beside it.
        Canvas().GetDeviceContext()->DrawBitmap(pBitmap, {2, 2, 22, 12}, 1.0F,
                                                Graphics::D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR,
                                                {0, 0, 20, 10});
        Canvas().GetDeviceContext()->DrawBitmap(pBitmap, {25, 2, 35, 12}, 1.0F,
                                                Graphics::D2D1_INTERPOLATION_MODE::LINEAR,
                                                {5, 0, 20, 10});
    });
    EXPECT_EQ(Shown(2, 2), 0xFFFF0000U);
    EXPECT_EQ(Shown(21, 11), 0xFFFF0000U);
    EXPECT_EQ(Shown(22, 12), 0xFF808080U);
    EXPECT_EQ(Shown(30, 5), 0xFF808080U);
}

TEST_F(DrawingTest, TheColoursOfPaperAndSurroundAreKeptForEveryDevice) {
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

}
}
