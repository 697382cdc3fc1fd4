// Zooming: the anchor, the stand-ins during a gesture, and its end.
#include <cmath>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class ZoomTest : public ViewerTest {
protected:
    // Pages of 400 x 600 on 400 x 500, rendered, page 1 across the screen.
    void SetUp() override {
        w.Open(MakePages(9, 400, 600), 400, 500);
        w.Viewer().MoveScreen(700, 0);
        w.Settle();
        w.pEngine->ClearLog();
        w.host.ClearDebug();
    }
    void Zoom(Point pt, double dbScale, bool bComplete) { w.Zoom(pt, dbScale, bComplete); }
    // The page point under a screen point, through the viewer itself.
    vkit::PDFPagePoint Under(Point pt) { return *w.Viewer().DevicePointToPagePoint(pt); }
};

TEST_F(ZoomTest, ThePointUnderTheCentreStays) {
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        w.Exchange(eLayout);
        for (const Point pt : {Point{200, 250}, Point{40, 400}, Point{399, 10}}) {
            for (const double dbScale : {1.1, 1.7, 2.6, 4.0, 9.0, 3.0, 1.3}) {
                const vkit::PDFPagePoint before = Under(pt);
                Zoom(pt, dbScale, false);
                const vkit::PDFPagePoint after = Under(pt);
                EXPECT_EQ(after.nPageIndex, before.nPageIndex);
                const float fPixel = 1.01F / w.Viewer().GetScale();
                EXPECT_NEAR(after.pt.X, before.pt.X, fPixel);
                EXPECT_NEAR(after.pt.Y, before.pt.Y, fPixel);
                EXPECT_EQ(w.Viewer().GetScale(), std::min(4.0F, static_cast<float>(dbScale)));
            }
            Zoom(pt, 1.0, true);
        }
    }
    Zoom({10, 10}, 0.5, true); // fits: in the middle, whatever the centre was
    EXPECT_EQ(w.Laid(), (Places{{1, 100, 100, 200, 300}}));
}

TEST_F(ZoomTest, AGestureRendersNothingAndKeepsTheGrid) {
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        w.Exchange(eLayout);
        w.Settle();
        w.pEngine->ClearLog();
        const vkit::Render_PageDavidBlock grid = w.ItemOf(1).grid;
        for (const double dbScale : {1.3, 1.8, 2.5, 8.0, 3.0}) {
            Zoom({200, 250}, dbScale, false);
            EXPECT_EQ(w.ItemOf(1).grid, grid);
            EXPECT_EQ(w.Drawn(), w.Displayed());
            EXPECT_EQ(w.State().nScaleCacheEntries, 1U); // one a block, however many steps
            w.Settle();
        }
        EXPECT_EQ(w.Renders() + w.pEngine->Count(EngineOp::StartParse), 0);
        EXPECT_FALSE(w.State().bShowScaleSnapshot);

        Zoom({200, 250}, 3.0, true);
        EXPECT_EQ(w.State().nScaleCacheEntries, 0U);
        EXPECT_TRUE(w.State().bShowScaleSnapshot);
        EXPECT_EQ(w.ItemOf(1).grid, (vkit::Render_PageDavidBlock{3, 3}));
        w.ExpectSharp();
        EXPECT_EQ(w.Renders(1), static_cast<std::int32_t>(w.Displayed()));
    }
}

TEST_F(ZoomTest, TheEndRendersAlsoWithoutAChange) {
    Zoom({200, 250}, 1.0, true);
    w.Settle();
    EXPECT_EQ(w.Renders(), static_cast<std::int32_t>(w.Displayed()));
}

TEST_F(ZoomTest, AMoveRightAfterThePinchStillEndsSharp) {
    Zoom({200, 250}, 1.5, false);
    Zoom({200, 250}, 1.5, true);
    w.Viewer().MoveScreen(3, 0); // before the page load of the zoom's end
    EXPECT_FALSE(w.State().bShowScaleSnapshot);
    w.ExpectSharp();
    const std::int32_t nRenders = w.Renders();
    w.Viewer().MoveScreen(3, 0);
    w.Settle();
    EXPECT_EQ(w.Renders(), nRenders);
}

TEST_F(ZoomTest, ASecondGestureBeforeTheFirstIsSharp) {
    Zoom({200, 250}, 1.5, false);
    Zoom({200, 250}, 1.5, true);
    Zoom({200, 250}, 1.8, false);
    EXPECT_EQ(w.Drawn(), w.Displayed());
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
    Zoom({200, 250}, 1.8, true);
    w.ExpectSharp();
}

// A command in the middle of a zoom ends it: the pages are rendered in blocks of
// their true size, also where the command moves nothing.
TEST_F(ZoomTest, ACommandEndsAnOpenZoom) {
    const std::function<void()> commands[] = {
        [&] { w.Viewer().MoveScreen(0, 0); },
        [&] { w.Viewer().GotoPage(3); },
        [&] {
            w.Viewer().GotoDestination(2, 1, {0, 500, 3.9F});
        },
        [&] { w.Viewer().RedrawScreen(); },
        [&] { w.Viewer().PageSizeChanged(0, 0); },
        [&] { w.Viewer().InvaildateLayout(); },
        [&] { w.Viewer().UpdatePageAfterAnnotEdit(w.Viewer().GetVisiblePages().front()); }};
    for (const auto& fnCommand : commands) {
        w.Settle();
        Zoom({200, 250}, 1.0, true);
        w.Settle();
        Zoom({200, 250}, 3.9, false);
        fnCommand();
        w.Settle();
        const vkit::PageItemState item = w.State().items.front();
        EXPECT_EQ(w.State().nScaleCacheEntries, 0U);
        EXPECT_EQ(item.grid, vkit::CalcBlockGrid(item.screenRect, {400, 500}));
        for (const vkit::BlockState& block : item.blocks) {
            EXPECT_TRUE(block.bIsSharp || !block.bIsDisplay);
        }
    }
}

// An edit on a page off the screen leaves what is under way as it is.
TEST_F(ZoomTest, AnEditElsewhereDoesNotKeepTheSnapshot) {
    Zoom({200, 250}, 2.0, true);
    w.Viewer().UpdatePageAfterAnnotEdit(8);
    w.ExpectSharp();
}

TEST_F(ZoomTest, TheFrameFromBeforeIsNoBackdropForAnotherPlace) {
    const std::function<void()> changes[] = {
        [&] { w.Viewer().GotoPage(3); }, [&] { w.Viewer().MoveScreen(700, 0); },
        [&] { w.Viewer().InitLayOut(0, 0, 0, 0); }, [&] { w.Viewer().RotateViewer(1); }};
    for (const auto& fnChange : changes) {
        Zoom({200, 250}, 1.5, true);
        EXPECT_TRUE(w.State().bShowScaleSnapshot);
        fnChange();
        EXPECT_FALSE(w.State().bShowScaleSnapshot);
    }
}

// What comes free is filled, and neither end of the document leaves its edge.
TEST_F(ZoomTest, OutStandsAtTheEndsOfTheDocument) {
    w.Viewer().GotoPage(0);
    Zoom({200, 400}, 3.0, true);
    Zoom({200, 400}, 0.5, true);
    EXPECT_EQ(w.Laid(), (Places{{0, 100, 0, 200, 300}, {1, 100, 315, 200, 300}}));
    for (const float fY : {499.0F, 300.0F, 120.0F, 10.0F}) {
        w.Open(MakePages(9, 400, 400), 400, 500);
        w.Viewer().GotoPage(8);
        Zoom({200, fY}, 0.5, true);
        EXPECT_EQ(
            w.Laid(),
            (Places{{6, 100, -130, 200, 200}, {7, 100, 85, 200, 200}, {8, 100, 300, 200, 200}}))
            << "around " << fY;
    }
    w.Open(MakePages(2, 400, 100), 400, 500); // lower than the screen
    Zoom({200, 165}, 0.5, true);
    EXPECT_EQ(w.Laid(), (Places{{0, 100, 0, 200, 50}, {1, 100, 65, 200, 50}}));
}

TEST_F(ZoomTest, ACentreInAGapKeepsThePagesNextToIt) {
    // Page 0 ends at 5, page 1 starts at 20: the centre lies between.
    w.Viewer().MoveScreen(-1e6, 0);
    w.Viewer().MoveScreen(595, 0);
    ASSERT_EQ(w.Laid().front(), (Place{0, 0, -595, 400, 600}));
    Zoom({200, 18}, 4.0, true);
    ASSERT_FALSE(w.Laid().empty());
    EXPECT_EQ(w.Laid().front().nPage, 1);
    // 13 points below the page's end lie 52 pixels below it now.
    EXPECT_NEAR(w.Laid().front().dbY, 18 - 52 + 15, 1.0);
}

TEST_F(ZoomTest, ScalesThatAreNoneKeepTheScale) {
    for (const double dbScale : {0.0, -1.0, std::nan(""), -1e300}) {
        Zoom({200, 250}, dbScale, true);
        EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
        EXPECT_FALSE(w.Laid().empty());
    }
    Zoom({200, 250}, 1e300, true);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
}

}

}
