// Moves of the layout: where pages stand afterwards.
#include <string>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

struct Move {
    double dbY;
    double dbX;
};

// Pages of 100 x 200 on a screen of 300 x 500: centred at X 100, each 215
// below the one before.
class MoveTest : public ViewerTest {
protected:
    void OpenTen() { w.Open(MakePages(10, 100, 200), 300, 500); }

    Places After(std::vector<Move> moves) {
        for (const Move& move : moves) {
            w.Viewer().MoveScreen(move.dbY, move.dbX);
        }
        return w.Laid();
    }
};

TEST_F(MoveTest, FillsFromTheTopAndTrimsWhatLeaves) {
    OpenTen();
    EXPECT_EQ(w.Laid(),
              (Places{{0, 100, 0, 100, 200}, {1, 100, 215, 100, 200}, {2, 100, 430, 100, 200}}));
    // A page stays until its gap has left too.
    EXPECT_EQ(After({{214, 0}}), (Places{{0, 100, -214, 100, 200},
                                         {1, 100, 1, 100, 200},
                                         {2, 100, 216, 100, 200},
                                         {3, 100, 431, 100, 200}}));
    EXPECT_EQ(After({{1, 0}}),
              (Places{{1, 100, 0, 100, 200}, {2, 100, 215, 100, 200}, {3, 100, 430, 100, 200}}));
    EXPECT_EQ(After({{-10, 0}}), (Places{{0, 100, -205, 100, 200},
                                         {1, 100, 10, 100, 200},
                                         {2, 100, 225, 100, 200},
                                         {3, 100, 440, 100, 200}}));
}

TEST_F(MoveTest, LessThanAPixelDoesNothing) {
    OpenTen();
    w.Settle();
    const std::size_t nFrames = w.Frames();
    EXPECT_EQ(After({{0.99, -0.99}, {0.5, 0.0}}).front().dbY, 0.0);
    w.Settle();
    EXPECT_EQ(w.Frames(), nFrames);
}

TEST_F(MoveTest, LongMovesLoseNoPage) {
    OpenTen();
    const Places slow = [&] {
        for (int n = 0; n < 120; ++n) {
            w.Viewer().MoveScreen(10, 0);
        }
        return w.Laid();
    }();
    After({{-1e9, 0}});
    EXPECT_EQ(After({{1200, 0}}), slow);
    // Upwards the pages below are trimmed only as they leave.
    After({{-700, 0}});
    EXPECT_EQ(w.Laid().front(), (Place{2, 100, -70, 100, 200}));
}

TEST_F(MoveTest, TheLastPageNeverEndsAboveTheBottom) {
    // The last page is short: it enters the screen with a move that the page
    // before allowed.
    std::vector<ScriptedPage> pages = MakePages(3, 100, 600);
    pages.push_back(MakePage(100, 20));
    w.Open(pages, 300, 500);
    After({{1e5, 0}});
    EXPECT_EQ(w.Laid().back(), (Place{3, 100, 480, 100, 20}));
    for (const double dbStep : {450.0, 440.0, 430.0, 470.0}) {
        After({{-1e5, 0}, {1200, 0}, {dbStep, 0}, {dbStep, 0}});
        EXPECT_GE(w.Laid().back().dbY + w.Laid().back().nHeight, 500.0) << dbStep;
    }
}

TEST_F(MoveTest, PagesWithoutASizeAreSkippedOver) {
    w.Open({MakePage(100, 200), MakePage(0, 0), MakePage(100, 200)}, 300, 500);
    EXPECT_EQ(w.Laid(), (Places{{0, 100, 0, 100, 200}, {2, 100, 230, 100, 200}}));
    EXPECT_EQ(w.Viewer().GetVisiblePages(), (std::vector<std::int32_t>{0, 2}));

    w.Open(MakePages(3, 0, 0), 300, 500);
    After({{100, 0}});
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 0);
    EXPECT_EQ(w.Viewer().GetPagePosition(), nullptr);
}

TEST_F(MoveTest, ABrokenPageDoesNotKeepTheReaderFromTheOthers) {
    w.Make(MakePages(10, 100, 200), 300, 500);
    w.pEngine->FailPage(EngineOp::GetPage, 3);
    w.Viewer().InitLayOut(0, 0, 0, 0);
    After({{400, 0}});
    EXPECT_EQ(w.Viewer().GetVisiblePages(), (std::vector<std::int32_t>{1, 2, 4, 5}));
}

TEST_F(MoveTest, TheCurrentPageChangesHalfWay) {
    OpenTen();
    const auto fnPageAt = [&](double dbY) {
        w.Viewer().MoveScreen(-1e6, 0);
        w.Viewer().MoveScreen(dbY, 0);
        return w.Viewer().GetCurrentPageIndex();
    };
    EXPECT_EQ(fnPageAt(99), 0);
    EXPECT_EQ(fnPageAt(100), 1); // half of it is above the screen
    EXPECT_EQ(fnPageAt(216), 1);
    // A page taller than the screen: by what it still covers of the screen.
    w.Open(MakePages(3, 100, 800), 300, 500);
    EXPECT_EQ(fnPageAt(549), 0);
    EXPECT_EQ(fnPageAt(550), 1);
    EXPECT_EQ(fnPageAt(1e6), 2);
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 2);
}

// Pages of several widths: each stands between its own edges, from the first
// layout on, and the one with most room left decides how far a move goes.
TEST_F(MoveTest, PagesOfSeveralWidthsKeepToTheirOwnEdges) {
    std::vector<ScriptedPage> pages = MakePages(6, 200, 100);
    pages[1] = MakePage(500, 100);
    pages[2] = MakePage(800, 100);
    w.Open(pages, 300, 500);
    const auto fnX = [&] {
        std::vector<double> places;
        for (const Place& place : w.Laid()) {
            places.push_back(place.dbX);
        }
        return places;
    };
    EXPECT_EQ(fnX(), (std::vector<double>{50, 0, 0, 50, 50}));
    w.Viewer().MoveScreen(0, 350);
    EXPECT_EQ(fnX(), (std::vector<double>{50, -200, -350, 50, 50}));
    w.Viewer().MoveScreen(0, -400);
    EXPECT_EQ(fnX(), (std::vector<double>{50, 0, 0, 50, 50}));
    w.Viewer().MoveScreen(0, 9000);
    EXPECT_EQ(fnX(), (std::vector<double>{50, -200, -500, 50, 50}));
    w.Viewer().MoveScreen(150, 0); // what comes in is brought between its edges too
    w.Viewer().MoveScreen(-150, -100);
    EXPECT_EQ(fnX(), (std::vector<double>{50, -100, -400, 50, 50}));
}

TEST_F(MoveTest, TheResizeMoveTakesTheHorizontalPartFirst) {
    w.Open(MakePages(9, 400, 200), 300, 500);
    w.Viewer().PageSizeChanged(50, 20);
    EXPECT_EQ(w.Laid().front(), (Place{0, -50, -20, 400, 200}));
}

TEST_F(MoveTest, WithoutALayoutOnlyTheResizeMoveAndAZoomMakeOne) {
    w.Make(MakePages(9, 100, 200), 300, 500);
    w.Viewer().MoveScreen(100, 0);
    w.Viewer().InvaildateLayout();
    w.Viewer().RedrawScreen();
    w.Viewer().UpdatePageAfterAnnotEdit(0);
    EXPECT_TRUE(w.Laid().empty());
    w.Viewer().PageSizeChanged(0, 0);
    EXPECT_EQ(w.Laid().front().dbY, 0.0);
    w.Viewer().ClearPagesBitmap();
    w.Zoom({1, 1}, 2.0, true);
    EXPECT_EQ(w.Laid().front(), (Place{0, 50, 0, 200, 400}));
}

// What handlers of the host do while a step measures a page it has not seen.
TEST_F(MoveTest, AHandlerMayMoveWithinAStep) {
    OpenTen();
    bool bMoved = false;
    w.pDocumentOwner->fnLoaded = [&](std::int32_t) {
        if (!std::exchange(bMoved, true)) {
            w.Viewer().MoveScreen(20, 0);
        }
    };
    w.Viewer().MoveScreen(200, 0);
    EXPECT_TRUE(bMoved);
    EXPECT_EQ(w.Laid().front(), (Place{0, 100, -200, 100, 200}));
    EXPECT_EQ(w.pOwner->nOperations, 0);
    w.Settle();
    EXPECT_EQ(w.pOwner->nOperations, 1); // with what the owner puts around a command
    EXPECT_EQ(w.Laid().front(), (Place{1, 100, -5, 100, 200}));
}

// A handler with an event loop of its own, as that of a dialog: what is put off
// waits until the asking ends, and does not keep the loop awake.
TEST_F(MoveTest, AHandlerWithALoopOfItsOwnDoesNotSpin) {
    OpenTen();
    int nTurns = 0;
    w.pDocumentOwner->fnLoaded = [&](std::int32_t) {
        w.Viewer().MoveScreen(20, 0);
        while (nTurns < 1000 && w.host.Dispatcher().RunOne()) {
            ++nTurns;
        }
    };
    w.Viewer().MoveScreen(600, 0); // the second page is asked for with a move waiting
    EXPECT_LT(nTurns, 1000);
    w.pDocumentOwner->fnLoaded = nullptr;
    w.Settle();
    EXPECT_EQ(w.Laid().front().nPage, 3);
}

TEST_F(MoveTest, AHandlerMayCloseOrFailWithinAStep) {
    OpenTen();
    w.pDocumentOwner->fnLoaded = [&](std::int32_t) { throw std::runtime_error("host"); };
    EXPECT_THROW(w.Viewer().MoveScreen(200, 0), std::runtime_error);
    w.pDocumentOwner->fnLoaded = nullptr;
    EXPECT_EQ(After({{1, 0}}).back().nPage, 3);

    w.pDocumentOwner->fnLoaded = [&](std::int32_t) { w.Viewer().CloseViewer(); };
    EXPECT_THROW(w.Viewer().MoveScreen(300, 0), Platform::ObjectDisposedException);
    EXPECT_TRUE(w.Laid().empty());
    w.Settle();
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
}

}

}
