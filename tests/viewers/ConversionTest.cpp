// Points and rectangles between the screen and the pages laid out.
#include "settings/AppConfig.h"
#include "tests/viewers/ViewerFixture.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"

namespace velko::testing {

namespace {

// Pages of 100 x 200 at scale 2.0 on a canvas of 150 x 250 logical units whose
// composition scale is 2 by 4: a screen of 300 x 1000 pixels.
class ConversionTest : public ViewerTest {
protected:
    void SetUp() override {
        w.Make(MakePages(9, 100, 200), 150, 250, 2.0F, 4.0F);
        w.pOwner->dbFit = 2.0;
        w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
        ASSERT_EQ(w.Laid(),
                  (Places{{0, 50, 0, 200, 400}, {1, 50, 415, 200, 400}, {2, 50, 830, 200, 400}}));
    }
    void ExpectPoint(Point pt, float fX, float fY) {
        EXPECT_NEAR(pt.X, fX, 1e-3F);
        EXPECT_NEAR(pt.Y, fY, 1e-3F);
    }
};

TEST_F(ConversionTest, PointsOnPagesEdgesIncluded) {
    const auto pInside = w.Viewer().DevicePointToPagePoint({50, 50}); // device 100, 200
    EXPECT_EQ(pInside->nPageIndex, 0);
    ExpectPoint(pInside->pt, 25, 100);
    const auto pCorner = w.Viewer().DevicePointToPagePoint({125, 100}); // device 250, 400
    EXPECT_EQ(pCorner->nPageIndex, 0);
    ExpectPoint(pCorner->pt, 100, 0);
    EXPECT_TRUE(w.Viewer().IsPointInPage({125, 100}));
    EXPECT_EQ(w.Viewer().GetPageIndexAtPoint({125, 110}), 1);

    const auto pGap = w.Viewer().DevicePointToPagePoint({50, 102}); // between pages
    EXPECT_EQ(pGap->nPageIndex, 0);
    ExpectPoint(pGap->pt, 100, 408);
    EXPECT_FALSE(w.Viewer().IsPointInPage({50, 102}));
    EXPECT_EQ(w.Viewer().GetPageIndexAtPoint({50, 102}), -1);
    EXPECT_FALSE(w.Viewer().IsPointInPage({24, 50}));

    // Outside of pages the page named is the current one.
    w.Viewer().MoveScreen(300, 0);
    EXPECT_EQ(w.Viewer().DevicePointToPagePoint({0, 0})->nPageIndex, 1);
}

TEST_F(ConversionTest, PagePointsAndRectangles) {
    const auto pPoint = w.Viewer().PagePointToDevicePoint(1, {25, 100});
    EXPECT_TRUE(pPoint->bIsValid);
    EXPECT_EQ(pPoint->nPageIndex, 1);
    ExpectPoint(pPoint->pt, 50, (415 + 200) / 4.0F);

    const auto pLogical = w.Viewer().PageRectToDeviceRect(0, {10, 20, 30, 40});
    EXPECT_EQ(pLogical->rc, Rect(35, 70, 30, 20));
    EXPECT_EQ(pLogical->pPageScreenOffset->nHeight, 400);
    EXPECT_EQ(pLogical->pPageScreenOffset->dbOffsetX, 50.0);
    const auto pRaw = w.Viewer().PageRectToScreenRect(0, {10, 20, 30, 40});
    EXPECT_EQ(pRaw->rc, Rect(70, 280, 60, 80));
    EXPECT_EQ(w.Viewer().ScreenRectToPageRect(0, pRaw->rc)->rc, Rect(10, 20, 30, 40));
    // On the way back the height goes by the X scale: 20 becomes 40, not 80.
    EXPECT_EQ(w.Viewer().DeviceRectToPageRect(0, pLogical->rc)->rc, Rect(10, 40, 30, 20));
    EXPECT_TRUE(w.Viewer().PageRectToDeviceRect(0, Rect::Empty())->bIsValid);
}

TEST_F(ConversionTest, PagesThatAreNotLaidOutAreNotValid) {
    const auto pPoint = w.Viewer().PagePointToDevicePoint(7, {25, 100});
    EXPECT_FALSE(pPoint->bIsValid);
    EXPECT_EQ(pPoint->nPageIndex, 7);
    ExpectPoint(pPoint->pt, 0, 0);
    for (const auto& pRect : {w.Viewer().PageRectToDeviceRect(7, {1, 1, 1, 1}),
                              w.Viewer().DeviceRectToPageRect(7, {1, 1, 1, 1}),
                              w.Viewer().PageRectToScreenRect(7, {1, 1, 1, 1}),
                              w.Viewer().ScreenRectToPageRect(7, {1, 1, 1, 1})}) {
        EXPECT_FALSE(pRect->bIsValid);
        EXPECT_EQ(pRect->nPageIndex, 7);
        EXPECT_EQ(pRect->rc, Rect::Empty());
        ASSERT_NE(pRect->pPageScreenOffset, nullptr);
        EXPECT_EQ(pRect->pPageScreenOffset->nWidth, 0);
    }
    EXPECT_EQ(w.Viewer().GetPageScreenOffset(7), nullptr);
    EXPECT_EQ(w.Viewer().GetDisplayMatrix(7), (std::array<double, 6>{1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(w.Viewer().GetDisplayMatrix(1), (std::array<double, 6>{2, 0, 0, -2, 50, 815}));
    w.Viewer().GetPageScreenOffset(0)->dbOffsetY = 77.0; // a copy
    EXPECT_EQ(w.Laid().front().dbY, 0.0);
    // Without the document what is laid out still tells its place.
    w.pDocument->Dispose();
    EXPECT_EQ(w.Viewer().GetVisiblePages().size(), 3U);
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 0);
    EXPECT_EQ(w.Viewer().GetPageIndexAtPoint({50, 50}), 0);
    EXPECT_FALSE(w.Viewer().PagePointToDevicePoint(0, {1, 1})->bIsValid);
    w.Viewer().MoveScreen(500, 0);
    EXPECT_EQ(w.Laid().front().dbY, 0.0);
}

TEST_F(ConversionTest, TurnedPagesConvertWithTheirTurn) {
    w.Viewer().SetRotate(1);
    w.pOwner->dbFit = 1.0;
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    ASSERT_EQ(w.Laid().front(), (Place{0, 50, 0, 200, 100}));
    ExpectPoint(w.Viewer().PagePointToDevicePoint(0, {0, 0})->pt, 25, 0);
    ExpectPoint(w.Viewer().PagePointToDevicePoint(0, {100, 200})->pt, 125, 25);
}

TEST_F(ConversionTest, AnIconIsKeptFromTheRightAndTheBottomOnly) {
    // A side of 48 pixels: 24 logical units across, 12 down.
    ExpectPoint(w.Viewer().AdjustPointInPage({50, 50}, 0), 50, 50);
    ExpectPoint(w.Viewer().AdjustPointInPage({110, 50}, 0), 101, 50);
    ExpectPoint(w.Viewer().AdjustPointInPage({50, 95}, 0), 50, 88);
    ExpectPoint(w.Viewer().AdjustPointInPage({-10, -10}, 0), -10, -10);
    ExpectPoint(w.Viewer().AdjustPointInPage({50, 50}, 8), -1, -1);
}

TEST_F(ConversionTest, ThePagesRectangleInLogicalUnits) {
    EXPECT_EQ(w.Viewer().GetPageRectAtPoint({0, 0}, 1), Rect(25, 103.75F, 100, 100));
    EXPECT_EQ(w.Viewer().GetPageRectAtPoint({50, 150}, -1), Rect(25, 103.75F, 100, 100));
    EXPECT_EQ(w.Viewer().GetPageRectAtPoint({0, 0}, -1), Rect());
    EXPECT_EQ(w.Viewer().GetPageRectAtPoint({0, 0}, 8), Rect());
}

TEST_F(ConversionTest, ColoursAreStoredOnlyWhenTheyChange) {
    using vkit::AppConfig;
    const Windows::UI::Color sepia{255, 240, 230, 200};
    EXPECT_EQ(w.Viewer().GetPageBackgroundColor(), Windows::UI::Colors::White);
    w.Viewer().SetPageBackgroundColor(sepia);
    EXPECT_EQ(AppConfig::PageBackgroundColor(), sepia);
    AppConfig::PageBackgroundColor(Windows::UI::Colors::Black);
    w.Viewer().SetPageBackgroundColor(sepia); // held already
    EXPECT_EQ(AppConfig::PageBackgroundColor(), Windows::UI::Colors::Black);
    w.Viewer().SetPageForegroundColor(sepia);
    EXPECT_EQ(AppConfig::PageForegroundColor(), sepia);
    w.Settle();
    EXPECT_EQ(w.Renders(), 3); // of the first layout: a colour alone renders nothing
    const vkit::PDFConuiunePagesViewer next(w.pOwner, w.pDocument, nullptr);
    EXPECT_EQ(next.RenderColors().nForeground, sepia.ToArgb());
}

}

}
