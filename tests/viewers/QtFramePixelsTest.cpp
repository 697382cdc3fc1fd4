// The painted canvas against the page's pattern: blocks, stand-ins, colours, losses.
#include <cmath>

#include "platform/qt/QtGraphicsFactory.h"
#include "platform/qt/QtSwapChain.h"
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

constexpr std::uint32_t kBlank = 0xFFFFFFFFU;
constexpr std::uint32_t kSurround = 0xFFE0E0E0U;

class FramePixelsTest : public ::testing::Test {
protected:
    QImage Frame() const {
        return std::dynamic_pointer_cast<Platform::Qt::QtSwapChain>(w.pPanel->SwapChain())
            ->FrontImage();
    }
    std::uint32_t Shown(int nX, int nY) const { return Frame().pixel(nX, nY); }

    // Pages of 400 x 600 on 400 x 500, rendered, page 1 across the screen.
    void OpenAcross() {
        w.Open(MakePages(9, 400, 600), 400, 500);
        w.Viewer().MoveScreen(700, 0);
        w.Settle();
    }

    // Every pixel of the canvas is the page point's colour under it, or grey.
    // Points on the border of two squares of the pattern are left out.
    void ExpectPattern() {
        const QImage frame = Frame();
        int nWrong = 0;
        int nChecked = 0;
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                const auto wanted = Wanted(x, y);
                nChecked += wanted ? 1 : 0;
                nWrong += wanted && frame.pixel(x, y) != *wanted ? 1 : 0;
            }
        }
        EXPECT_EQ(nWrong, 0);
        EXPECT_GT(nChecked, frame.width() * frame.height() / 2);
    }

    const std::shared_ptr<Platform::Qt::QtGraphicsFactory> pDevice =
        std::make_shared<Platform::Qt::QtGraphicsFactory>();
    ViewerWorld w{pDevice};

private:
    std::optional<std::uint32_t> Wanted(int x, int y) {
        for (const vkit::PageItemState& item : w.State().items) {
            const vkit::Render_ScreenOffsetInfo& rc = item.screenRect;
            // Blocks land on whole pixels, page and all.
            const double dbX = x + 0.5 - std::floor(rc.dbOffsetX + 0.5);
            const double dbY = y + 0.5 - std::floor(rc.dbOffsetY + 0.5);
            if (dbX < 0 || dbY < 0 || dbX >= rc.nWidth || dbY >= rc.nHeight) {
                continue;
            }
            return PageColor(item, dbX, dbY);
        }
        return kSurround;
    }
    std::optional<std::uint32_t> PageColor(const vkit::PageItemState& item, double dbX,
                                           double dbY) {
        const vkit::Render_ScreenOffsetInfo& rc = item.screenRect;
        const auto pt = w.pDocument->DevicePointToPagePoint(
            item.nPageIndex, 0, 0, rc.nWidth, rc.nHeight, item.nRotate,
            {static_cast<float>(dbX), static_cast<float>(dbY)});
        const auto fnNearBorder = [](float f) {
            return std::abs(f / 8.0F - std::round(f / 8.0F)) < 0.001F;
        };
        if (fnNearBorder(pt.X) || fnNearBorder(pt.Y)) {
            return std::nullopt;
        }
        return PatternColor(item.nPageIndex, {pt.X, pt.Y});
    }
};

TEST_F(FramePixelsTest, BlocksJoinToThePageWithoutSeams) {
    for (const std::int32_t nTurn : {0, 1, 2, 3}) {
        for (const double dbScale : {0.7, 1.0, 1.37, 2.9}) {
            w.Make(std::vector<ScriptedPage>(5, MakePage(151, 233, nTurn == 2 ? 1 : 0)), 160, 120);
            w.pOwner->dbFit = dbScale;
            w.Viewer().SetRotate(nTurn);
            w.Viewer().InitLayOut(1, 0.0, 0.0, 0.0);
            w.Viewer().MoveScreen(101, 37);
            w.Settle();
            SCOPED_TRACE(::testing::Message() << "turn " << nTurn << " scale " << dbScale);
            ExpectPattern();
        }
    }
}

TEST_F(FramePixelsTest, AFewMovesLaterStill) {
    w.Open(MakePages(5, 151, 233), 160, 120);
    for (const double dbMove : {33.3, 77.7, -12.5, 140.25, 200.0, -60.6}) {
        w.Viewer().MoveScreen(dbMove, 0);
        w.Settle();
        ExpectPattern();
    }
    w.Viewer().PageScaled({80, 60}, 2.2, false, false);
    w.Viewer().PageScaled({80, 60}, 2.2, false, true);
    w.Settle();
    ExpectPattern();
}

TEST_F(FramePixelsTest, ALossStartsOneRenderABlock) {
    w.Open(MakePages(5, 151, 233), 160, 120);
    w.Settle();
    w.pEngine->ClearLog();
    pDevice->State()->nPresentsUntilLoss = 0;
    for (int n = 0; n < 3; ++n) {
        w.Viewer().UpdateViewer();
    }
    w.host.Dispatcher().RunOne(); // shows the chain of the fresh device
    EXPECT_EQ(Shown(80, 60), kBlank);
    w.Settle();
    EXPECT_EQ(w.Renders(), 1);
    ExpectPattern();
}

// --- stand-ins ---

// Three gestures in a row, each before the last one is sharp, in and out again:
// nothing that was shown turns blank, and nothing is kept in the end.
TEST_F(FramePixelsTest, GesturesInARowHandOnWhatTheyShow) {
    OpenAcross();
    const auto fnBlank = [&] {
        int nBlank = 0;
        for (int nX = 10; nX < 400; nX += 20) {
            for (int nY = 10; nY < 500; nY += 20) {
                nBlank += Shown(nX, nY) == kBlank ? 1 : 0;
            }
        }
        return nBlank;
    };
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        w.Exchange(eLayout);
        w.Settle();
        ASSERT_EQ(fnBlank(), 0);
        w.Zoom({200, 250}, 4.0, true);
        EXPECT_EQ(fnBlank(), 0);
        for (const double dbScale : {1.2, 3.0, 1.0}) {
            for (const bool bComplete : {false, true}) {
                w.Zoom({200, 250}, dbScale, bComplete);
                EXPECT_EQ(fnBlank(), 0) << dbScale;
            }
            for (int n = 0; n < 9; ++n) { // some of its blocks come
                w.host.Pool().RunOne();
                w.host.Dispatcher().RunOne();
                EXPECT_EQ(fnBlank(), 0);
            }
            EXPECT_LE(pDevice->State()->nLiveBitmaps, 24);
        }
        w.ExpectSharp();
        EXPECT_EQ(pDevice->State()->nLiveBitmaps, static_cast<std::int64_t>(w.Displayed()));
    }
}

// One gesture takes a page off the screen, the next one brings it back before the
// first is sharp.
TEST_F(FramePixelsTest, APageThatAGestureTookAwayComesBackAsItWas) {
    OpenAcross();
    w.Viewer().MoveScreen(300, 0);
    w.Settle();
    w.Zoom({200, 100}, 4.0, true);
    ASSERT_EQ(w.Laid().size(), 1U);
    w.Zoom({200, 100}, 1.0, false);
    EXPECT_NE(Shown(200, 400), kBlank);
}

// A page that was seen whole shows that where it is not rendered yet, as long as
// it still looks so.
TEST_F(FramePixelsTest, WhatComesInAtALargeScaleIsNotBlank) {
    OpenAcross();
    w.Zoom({200, 250}, 4.0, true);
    w.Settle();
    EXPECT_GE(w.State().nOverviews, 1U);
    w.Viewer().MoveScreen(600, 300);
    EXPECT_NE(Shown(350, 450), kBlank);
    w.Settle();
    w.Viewer().RedrawScreen();
    w.ExpectSharp();
    EXPECT_EQ(w.State().nOverviews, 0U);
}

// Moved on before its new blocks are rendered, a page still shows what it looked
// like, in its new size and place.
TEST_F(FramePixelsTest, APageCutAnewShowsItsOldBitmapsUntilItIsRendered) {
    OpenAcross();
    w.Zoom({200, 250}, 3.0, false);
    const QImage before = Frame().copy();
    w.Zoom({200, 250}, 3.0, true);
    EXPECT_EQ(w.Drawn(), 0U);
    EXPECT_EQ(Frame(), before) << "the last frame stands behind what is not sharp yet";
    w.Viewer().MoveScreen(37, 11);
    EXPECT_EQ(w.Drawn(), 0U);
    int nNear = 0;
    for (int nAt = 20; nAt < 400; nAt += 20) {
        const auto pPoint = w.Viewer().DevicePointToPagePoint({nAt + 0.5F, nAt + 0.5F});
        const std::uint32_t nWanted = PatternColor(1, {pPoint->pt.X, pPoint->pt.Y});
        EXPECT_NE(Shown(nAt, nAt), kBlank) << "blank at " << nAt;
        nNear += ((Shown(nAt, nAt) ^ nWanted) & 0xF8F8F8F8U) == 0 ? 1 : 0;
    }
    EXPECT_GE(nNear, 12); // stretched, so not to the last bit
    w.ExpectSharp();
    ExpectPattern();
}

// --- what is drawn beside and under pages ---

TEST_F(FramePixelsTest, AGapIsDrawnThatTheLayoutDoesNotKnow) {
    w.SetLayout(Layout::Single);
    w.Open(MakePages(5, 300, 500), 300, 500, 1);
    w.Viewer().MoveScreen(0, 10);
    w.Viewer().MoveScreen(0, 90);
    w.Settle();
    EXPECT_EQ(Shown(199, 100), PatternColor(1, {299.5F, 399.5F}));
    EXPECT_EQ(Shown(212, 100), kSurround); // between the pages
    EXPECT_EQ(Shown(224, 100), kSurround); // page 2 stands at 210 and is drawn at 225
    EXPECT_EQ(Shown(225, 100), PatternColor(2, {0.5F, 399.5F}));
    EXPECT_EQ(w.Viewer().GetPageIndexAtPoint({212, 100}), 2);
}

// Blank pages have the colour that they will have; a redraw keeps the old
// bitmaps until the new ones come, also when the reader moves meanwhile.
TEST_F(FramePixelsTest, ColoursOfPages) {
    w.Make(MakePages(9, 100, 200), 300, 500);
    w.Viewer().SetNightMode(true);
    w.Viewer().InitLayOut(0, 0, 0, 0);
    EXPECT_EQ(Shown(150, 100), 0xFF000000U);
    w.Viewer().SetNightMode(false);
    w.Viewer().SetPageBackgroundColor({255, 240, 230, 200});
    w.Viewer().UpdateViewer();
    EXPECT_EQ(Shown(150, 100), 0xFFF0E6C8U);

    w.Viewer().SetPageBackgroundColor({255, 255, 255, 255});
    w.Settle();
    const std::uint32_t nDay = Shown(150, 100);
    EXPECT_EQ(nDay, PatternColor(0, {50.5F, 99.5F}));
    w.Viewer().SetNightMode(true);
    w.Viewer().RedrawScreen();
    w.host.Pool().RunAll();
    w.host.Dispatcher().RunAll();
    EXPECT_EQ(w.Rendering(), 3U);
    w.Viewer().UpdateViewer();
    EXPECT_EQ(Shown(150, 100), nDay);
    w.Settle();
    EXPECT_EQ(Shown(150, 100), MapColor(nDay, 0xFF000000U, 0xFFFFFFFFU));

    w.Viewer().SetNightMode(false);
    w.Viewer().SetPageColors({255, 10, 20, 30}, {255, 200, 210, 220});
    w.Viewer().MoveScreen(3, 0); // before the page load of the redraw
    w.pEngine->ClearLog();
    w.ExpectSharp();
    EXPECT_EQ(w.Renders(), 3);
    EXPECT_EQ(Shown(150, 100), MapColor(PatternColor(0, {50.5F, 96.5F}), 0xFF0A141EU, 0xFFC8D2DCU));
    w.Viewer().ClearScreen();
    EXPECT_EQ(Shown(150, 100), kSurround);
}

}

}
