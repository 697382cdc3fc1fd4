// Zooming: the anchor, the stand-ins during a gesture, and its end.
#include <cmath>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

using vkit::BlockState;

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
    void Zoom(Point pt, double dbScale, bool bComplete) {
        w.Viewer().PageScaled(pt, dbScale, false, bComplete);
    }
    // The page point under a screen point, through the viewer itself.
    vkit::PDFPagePoint Under(Point pt) { return *w.Viewer().DevicePointToPagePoint(pt); }
    std::size_t Displayed() const {
        return w.CountBlocks([](const BlockState& b) { return b.bIsDisplay; });
    }
    // What is to be held at rest: blocks that are displayed, and overviews.
    std::int64_t Kept() const {
        return static_cast<std::int64_t>(WithBitmap() + w.State().nOverviews);
    }
    std::size_t WithBitmap() const {
        return w.CountBlocks([](const BlockState& b) { return b.bIsDisplay && b.bHasBitmap; });
    }
};

TEST_F(ZoomTest, ThePointUnderTheCentreStays) {
    for (const Point pt : {Point{200, 250}, Point{40, 400}, Point{399, 10}}) {
        for (const double dbScale : {1.1, 1.7, 2.6, 4.0, 9.0, 3.0, 1.3}) {
            const vkit::PDFPagePoint before = Under(pt);
            Zoom(pt, dbScale, false);
            const vkit::PDFPagePoint after = Under(pt);
            EXPECT_EQ(after.nPageIndex, before.nPageIndex);
            const float fHalfPixel = 0.5F / w.Viewer().GetScale();
            EXPECT_NEAR(after.pt.X, before.pt.X, fHalfPixel + 0.51F / w.Viewer().GetScale());
            EXPECT_NEAR(after.pt.Y, before.pt.Y, fHalfPixel + 0.51F / w.Viewer().GetScale());
            EXPECT_EQ(w.Viewer().GetScale(), std::min(4.0F, static_cast<float>(dbScale)));
        }
        Zoom(pt, 1.0, true);
    }
}

TEST_F(ZoomTest, AGestureRendersNothingAndKeepsTheGrid) {
    const vkit::Render_PageDavidBlock grid = w.ItemOf(1).grid;
    for (const double dbScale : {1.3, 1.8, 2.5, 3.0}) {
        Zoom({200, 250}, dbScale, false);
        EXPECT_EQ(w.ItemOf(1).grid, grid);
        EXPECT_EQ(WithBitmap(), Displayed());
        EXPECT_EQ(w.State().nScaleCacheEntries, 1U); // one a block, however many steps
        w.Settle();
    }
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_FALSE(w.State().bShowScaleSnapshot);

    Zoom({200, 250}, 3.0, true);
    EXPECT_EQ(w.State().nScaleCacheEntries, 0U);
    EXPECT_TRUE(w.State().bShowScaleSnapshot);
    EXPECT_EQ(w.ItemOf(1).grid, (vkit::Render_PageDavidBlock{3, 3}));
    w.Settle();
    EXPECT_FALSE(w.State().bShowScaleSnapshot);
    EXPECT_EQ(w.Renders(1), static_cast<std::int32_t>(Displayed()));
    EXPECT_EQ(WithBitmap(), Displayed());
    EXPECT_EQ(w.Device().LiveBitmaps(), Kept());
}

TEST_F(ZoomTest, TheEndRendersAlsoWithoutAChange) {
    Zoom({200, 250}, 1.0, true);
    w.Settle();
    EXPECT_EQ(w.Renders(), static_cast<std::int32_t>(Displayed()));
}

TEST_F(ZoomTest, TheLastFrameStandsBehindWhatIsNotSharpYet) {
    w.ShowPixels();
    SetUp();
    Zoom({200, 250}, 2.0, false);
    w.Settle();
    const auto before = w.Device().FrontImage();
    Zoom({200, 250}, 2.0, true);
    w.Viewer().UpdateViewer();
    EXPECT_EQ(w.Device().FrontImage().Bytes(), before.Bytes());
    EXPECT_EQ(WithBitmap(), 0U); // it is all that there is to see
}

TEST_F(ZoomTest, AMoveRightAfterThePinchStillEndsSharp) {
    Zoom({200, 250}, 1.5, false);
    Zoom({200, 250}, 1.5, true);
    w.Viewer().MoveScreen(3, 0); // before the page load of the zoom's end
    EXPECT_FALSE(w.State().bShowScaleSnapshot);
    w.Settle();
    for (const vkit::PageItemState& item : w.State().items) {
        for (const BlockState& block : item.blocks) {
            EXPECT_TRUE(!block.bIsDisplay || block.nBitmapWidth == block.screenRect.nWidth);
        }
    }
    const std::int32_t nRenders = w.Renders();
    w.Viewer().MoveScreen(3, 0);
    w.Settle();
    EXPECT_EQ(w.Renders(), nRenders);
}

TEST_F(ZoomTest, ASecondGestureBeforeTheFirstIsSharp) {
    Zoom({200, 250}, 1.5, false);
    Zoom({200, 250}, 1.5, true);
    Zoom({200, 250}, 1.8, false);
    EXPECT_EQ(WithBitmap(), Displayed());
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_EQ(w.host.CountDebug("PDFConuiunePagesViewer::RenderScreenBitmapSync "
                                "concurrency::task_canceled...\n"),
              1U);
    Zoom({200, 250}, 1.8, true);
    w.Settle();
    EXPECT_EQ(WithBitmap(), Displayed());
    EXPECT_FALSE(w.State().bShowScaleSnapshot);
}

// Three gestures in a row, each before the last one is sharp, in and out again:
// nothing that was shown turns blank, and nothing is kept in the end.
TEST_F(ZoomTest, GesturesInARowHandOnWhatTheyShow) {
    w.ShowPixels();
    SetUp();
    const auto fnBlank = [&] {
        int nBlank = 0;
        const auto image = w.Device().FrontImage();
        for (std::uint32_t nX = 10; nX < 400; nX += 20) {
            for (std::uint32_t nY = 10; nY < 500; nY += 20) {
                nBlank += image.At(nX, nY) == 0xFFFFFFFFU ? 1 : 0;
            }
        }
        return nBlank;
    };
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        w.Exchange(eLayout);
        w.Settle();
        ASSERT_EQ(fnBlank(), 0);
        Zoom({200, 250}, 4.0, true);
        EXPECT_EQ(fnBlank(), 0);
        for (const double dbScale : {1.2, 3.0, 1.0}) {
            for (const bool bComplete : {false, true}) {
                Zoom({200, 250}, dbScale, bComplete);
                EXPECT_EQ(fnBlank(), 0) << dbScale;
            }
            for (int n = 0; n < 9; ++n) { // some of its blocks come
                w.host.Pool().RunOne();
                w.host.Dispatcher().RunOne();
                EXPECT_EQ(fnBlank(), 0);
            }
            EXPECT_LE(w.Device().LiveBitmaps(), 24);
        }
        w.Settle();
        EXPECT_EQ(w.State().nStandIns + w.State().nOverviews, 0U);
        EXPECT_EQ(w.Device().LiveBitmaps(), Kept());
    }
}

// One gesture takes a page off the screen, the next one brings it back before the
// first is sharp.
TEST_F(ZoomTest, APageThatAGestureTookAwayComesBackAsItWas) {
    w.ShowPixels();
    SetUp();
    w.Viewer().MoveScreen(300, 0);
    w.Settle();
    Zoom({200, 100}, 4.0, true);
    ASSERT_EQ(w.Laid().size(), 1U);
    Zoom({200, 100}, 1.0, false);
    EXPECT_NE(w.Device().FrontImage().At(200, 400), 0xFFFFFFFFU);
}

// A page that was seen whole shows that where it is not rendered yet, as long as
// it still looks so.
TEST_F(ZoomTest, WhatComesInAtALargeScaleIsNotBlank) {
    w.ShowPixels();
    SetUp();
    Zoom({200, 250}, 4.0, true);
    w.Settle();
    EXPECT_GE(w.State().nOverviews, 1U);
    w.Viewer().MoveScreen(600, 300);
    EXPECT_NE(w.Device().FrontImage().At(350, 450), 0xFFFFFFFFU);
    w.Settle();
    w.Viewer().RedrawScreen();
    w.Settle();
    EXPECT_EQ(w.State().nStandIns + w.State().nOverviews, 0U);
    w.Viewer().GotoPage(7);
    w.Settle();
    EXPECT_EQ(w.Device().LiveBitmaps(), Kept());
}

// A command in the middle of a zoom ends it: the pages are rendered in blocks of
// their true size, also where the command moves nothing.
TEST_F(ZoomTest, ACommandEndsAnOpenZoom) {
    const std::function<void()> commands[] = {
        [&] { w.Viewer().MoveScreen(0, 0); }, [&] { w.Viewer().GotoPage(3); },
        [&] {
            w.Viewer().GotoDestination(2, 1, {0, 500, 3.9F});
        },
        [&] { w.Viewer().RedrawScreen(); },
        [&] { w.Viewer().UpdatePageAfterAnnotEdit(w.Viewer().GetVisiblePages().front()); }};
    for (const auto& fnCommand : commands) {
        w.Settle();
        Zoom({200, 250}, 1.0, true);
        w.Settle();
        Zoom({200, 250}, 3.9, false);
        fnCommand();
        w.Settle();
        const vkit::PageItemState item = w.State().items.front();
        EXPECT_EQ(item.grid, vkit::CalcBlockGrid(item.screenRect, {400, 500}));
        for (const BlockState& block : item.blocks) {
            EXPECT_TRUE(block.bIsSharp || !block.bIsDisplay);
        }
    }
}

// An edit on a page off the screen leaves what is under way as it is.
TEST_F(ZoomTest, AnEditElsewhereDoesNotKeepTheSnapshot) {
    Zoom({200, 250}, 2.0, true);
    w.Viewer().UpdatePageAfterAnnotEdit(8);
    w.Settle();
    EXPECT_FALSE(w.State().bShowScaleSnapshot);
    EXPECT_EQ(w.State().nStandIns, 0U);
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

// Moved on before its new blocks are rendered, a page still shows what it looked
// like, in its new size and place, and nothing of that is kept longer.
TEST_F(ZoomTest, APageCutAnewShowsItsOldBitmapsUntilItIsRendered) {
    w.ShowPixels();
    SetUp();
    const auto fnPageAt = [&](std::uint32_t nX, std::uint32_t nY) {
        const vkit::PDFPagePoint pt = Under({nX + 0.5F, nY + 0.5F});
        return std::pair(w.Device().FrontImage().At(nX, nY), PatternColor(1, {pt.pt.X, pt.pt.Y}));
    };
    Zoom({200, 250}, 3.0, true);
    ASSERT_EQ(WithBitmap(), 0U);
    w.Viewer().MoveScreen(37, 11);
    ASSERT_EQ(WithBitmap(), 0U);
    int nNear = 0;
    for (std::uint32_t nAt = 20; nAt < 400; nAt += 20) {
        const auto [nShown, nWanted] = fnPageAt(nAt, nAt);
        EXPECT_NE(nShown, 0xFFFFFFFFU) << "blank at " << nAt;
        nNear += ((nShown ^ nWanted) & 0xF8F8F8F8U) == 0 ? 1 : 0;
    }
    EXPECT_GE(nNear, 12); // stretched, so not to the last bit
    w.Settle();
    EXPECT_EQ(WithBitmap(), Displayed());
    EXPECT_EQ(w.Device().LiveBitmaps(), Kept());
    for (std::uint32_t nAt = 20; nAt < 400; nAt += 20) {
        const auto [nShown, nWanted] = fnPageAt(nAt, nAt);
        EXPECT_EQ(nShown, nWanted);
    }
}

TEST_F(ZoomTest, OutOnTheFirstPageStandsAtTheTop) {
    w.Viewer().GotoPage(0);
    Zoom({200, 400}, 3.0, true);
    Zoom({200, 400}, 0.5, true);
    EXPECT_EQ(w.Laid().front(), (Place{0, 100, 0, 200, 300}));
    EXPECT_EQ(w.Laid().size(), 2U); // what came free below is filled
}

TEST_F(ZoomTest, ADocumentLowerThanTheScreenStaysAtTheTop) {
    w.Open(MakePages(2, 400, 100), 400, 500);
    Zoom({200, 165}, 0.5, true); // on the last page
    EXPECT_EQ(w.Laid(), (Places{{0, 100, 0, 200, 50}, {1, 100, 65, 200, 50}}));
}

TEST_F(ZoomTest, OutOnTheLastPageStandsAtTheBottom) {
    for (const float fY : {499.0F, 300.0F, 120.0F, 10.0F}) {
        w.Open(MakePages(9, 400, 400), 400, 500);
        w.Viewer().GotoPage(8);
        ASSERT_EQ(w.Laid().back(), (Place{8, 0, 100, 400, 400}));
        Zoom({200, fY}, 0.5, true);
        EXPECT_EQ(
            w.Laid(),
            (Places{{6, 100, -130, 200, 200}, {7, 100, 85, 200, 200}, {8, 100, 300, 200, 200}}))
            << "around " << fY;
    }
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

TEST_F(ZoomTest, TheLogOfAStepComesInOnePiece) {
    w.Viewer().PageScaled({200, 250}, 1.5, true, false);
    EXPECT_EQ(w.host.CountDebug("PageScaled Start...1.5true false......\n"
                                "m_pScaleBitmapCache->Size: 1m_pScaleBitmapCache->Size: 1"
                                "pPageViewer is NULL: falsePageScaled End...\n"),
              1U);
    w.Viewer().ClearPagesBitmap();
    w.Viewer().PageScaled({200, 250}, 2.0, false, true);
    EXPECT_EQ(w.host.CountDebug("PageScaled Start...2false true......\n"
                                "m_pScaleBitmapCache->Size: 1m_pScaleBitmapCache->Size: 0"
                                "pPageViewer is NULL: truePageScaled End...\n"),
              1U);
}

// What empties the stand-ins.
TEST_F(ZoomTest, StandInsEndWithTheirGesture) {
    const auto fnFill = [&] {
        w.Settle();
        Zoom({200, 250}, 1.2, false);
        ASSERT_GT(w.State().nScaleCacheEntries, 0U);
    };
    for (const auto& fnEnd : std::vector<std::function<void()>>{
             [&] { w.Viewer().MoveScreen(1, 0); }, [&] { w.Viewer().PageSizeChanged(0, 0); },
             [&] { w.Viewer().InvaildateLayout(); }, [&] { w.Viewer().CloseViewer(); }}) {
        fnFill();
        fnEnd();
        EXPECT_EQ(w.State().nScaleCacheEntries, 0U);
    }
}

}

}
