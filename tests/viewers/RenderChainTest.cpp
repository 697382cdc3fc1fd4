// The way of blocks to the screen: what is started when, in which order, and
// what becomes of it when the reader moves on or something fails.
#include <algorithm>

#include "platform/fake/OffUiScope.h"
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

using vkit::BlockState;

constexpr const char* kScreenCanceled =
    "PDFConuiunePagesViewer::RenderScreenBitmapSync concurrency::task_canceled...\n";
constexpr const char* kPageFailed =
    "ContinueViewerPageItem::RenderViewerPage Platform::Exception...\n";
constexpr const char* kPageCanceled =
    "ContinueViewerPageItem::RenderViewerPage concurrency::task_canceled...\n";
constexpr const char* kBlockFailed = "RenderViewerPageBlock Error...\n";

class RenderChainTest : public ViewerTest {
protected:
    RenderChainTest() { w.ShowPixels(); }

    Platform::Fake::ManualScheduler& Pool() { return w.host.Pool(); }
    Platform::Fake::ManualDispatcher& Ui() { return w.host.Dispatcher(); }

    std::vector<std::int32_t> RenderedPages() const {
        std::vector<std::int32_t> pages;
        for (const EngineCall& call : w.pEngine->Calls(EngineOp::StartRender)) {
            pages.push_back(call.nPage);
        }
        return pages;
    }
    std::size_t Rendering() const {
        return w.CountBlocks([](const BlockState& b) { return b.bIsRendering; });
    }
    std::size_t Sharp() const {
        return w.CountBlocks([](const BlockState& b) { return b.bIsDisplay && b.bHasBitmap; });
    }
    std::size_t Displayed() const {
        return w.CountBlocks([](const BlockState& b) { return b.bIsDisplay; });
    }
    std::int32_t UseCount(std::int32_t nPage) const {
        return w.pDocument->ReLoadPageIndex(nPage)->m_nUseCount;
    }
    std::uint32_t Shown(std::uint32_t nX, std::uint32_t nY) {
        return w.Device().FrontImage().At(nX, nY);
    }
};

// --- the common way ---

TEST_F(RenderChainTest, PaintsBlankAtOnceAndSharpAsBlocksArrive) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    EXPECT_EQ(w.Frames(), 1U);
    EXPECT_EQ(Shown(150, 100), 0xFFFFFFFFU);
    EXPECT_EQ(Shown(50, 100), 0xFFE0E0E0U);
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_EQ(w.pOwner->drawn, (std::vector<std::int32_t>{0, 1, 2}));

    Pool().RunAll(); // the page loads
    Ui().RunAll();
    EXPECT_EQ(Rendering(), 3U);
    EXPECT_EQ(UseCount(0), 1);
    ASSERT_TRUE(Pool().RunOne());
    EXPECT_EQ(UseCount(0), 0);
    EXPECT_EQ(Sharp(), 0U); // the bitmap is made on the UI thread
    EXPECT_EQ(Ui().Pending(concurrency::priority::high), 1U);
    EXPECT_EQ(w.pEngine->LiveBitmaps(), 1);
    Ui().RunAll();
    EXPECT_EQ(w.pEngine->LiveBitmaps(), 0);
    EXPECT_EQ(Sharp(), 1U);
    EXPECT_EQ(w.Frames(), 2U);
    EXPECT_EQ(Shown(150, 100), PatternColor(0, {50.5F, 99.5F}));
    EXPECT_EQ(Shown(150, 300), 0xFFFFFFFFU);

    w.Settle();
    EXPECT_EQ(RenderedPages(), (std::vector<std::int32_t>{0, 1, 2}));
    EXPECT_EQ(w.Frames(), 4U); // two more blocks, and nothing after them
    EXPECT_EQ(Rendering(), 0U);
}

TEST_F(RenderChainTest, BlocksRenderFromTheTopRowByRow) {
    w.Open(MakePages(3, 240, 360), 100, 100);
    w.Viewer().MoveScreen(50, 50);
    w.Settle();
    std::vector<std::pair<float, float>> order;
    for (const EngineCall& call : w.pEngine->Calls(EngineOp::StartRender)) {
        order.emplace_back(call.matrix.F, call.matrix.E);
    }
    ASSERT_EQ(order.size(), 4U);
    EXPECT_GT(order[0].first, order[2].first);   // the upper row first
    EXPECT_GT(order[0].second, order[1].second); // the left block first
}

TEST_F(RenderChainTest, FinishedBlocksOfASmallGridOvertakeOtherWork) {
    w.Open(MakePages(1, 300, 300), 100, 100); // 9 blocks
    Pool().RunAll();
    Ui().RunAll();
    ASSERT_TRUE(Pool().RunOne());
    EXPECT_EQ(Ui().Pending(concurrency::priority::high), 0U);
    EXPECT_EQ(Ui().Pending(concurrency::priority::normal), 1U);
}

TEST_F(RenderChainTest, ScrollingRendersOnlyWhatCameIn) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.pEngine->ClearLog();
    w.Viewer().MoveScreen(100, 0); // page 2 was on the screen in part already
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
    w.Viewer().MoveScreen(99, 0); // a pixel of page 0 is left
    w.Settle();
    EXPECT_EQ(RenderedPages(), std::vector<std::int32_t>{3});
    w.Viewer().MoveScreen(-199, 0);
    w.Settle();
    EXPECT_EQ(w.Renders(), 1);
}

TEST_F(RenderChainTest, ABlockIsStartedOnceWhateverMovesComeBetween) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    for (int n = 0; n < 5; ++n) { // while the page loads
        w.Viewer().MoveScreen(5, 0);
    }
    Pool().RunAll();
    Ui().RunAll();
    EXPECT_EQ(Rendering(), 3U);
    for (int n = 0; n < 5; ++n) { // while the blocks render
        w.Viewer().MoveScreen(-5, 0);
        Ui().RunAll();
    }
    w.Settle();
    EXPECT_EQ(w.Renders(), 3);
    EXPECT_EQ(Sharp(), 3U);
    EXPECT_EQ(w.Device().LiveBitmaps(), 3);
}

// --- moving on ---

TEST_F(RenderChainTest, ABlockScrolledAwayNeverReachesTheEngine) {
    w.Open(MakePages(30, 100, 200), 300, 500);
    Pool().RunAll();
    Ui().RunAll();
    ASSERT_EQ(Rendering(), 3U); // waiting for their turn
    w.Viewer().MoveScreen(3000, 0);
    w.Settle();
    const auto pages = RenderedPages();
    EXPECT_TRUE(std::all_of(pages.begin(), pages.end(), [](auto n) { return n > 10; }));
    EXPECT_EQ(Sharp(), Displayed());
    EXPECT_EQ(UseCount(0), 0);
    // A return renders them again.
    w.Viewer().MoveScreen(-3000, 0);
    w.Settle();
    EXPECT_EQ(Sharp(), 3U);
    EXPECT_EQ(w.Renders(0), 1);
}

TEST_F(RenderChainTest, APageThatLeftWhileItWasLoadedRendersNothing) {
    w.Open(MakePages(30, 100, 200), 300, 500);
    Pool().RunAll(); // loaded, and the UI thread does not know yet
    w.Viewer().GotoPage(20);
    w.Settle();
    EXPECT_EQ(RenderedPages(), (std::vector<std::int32_t>{20, 21, 22}));
}

TEST_F(RenderChainTest, ABlockThatLeavesWhileTheEngineDrawsIsDropped) {
    w.Open(MakePages(3, 100, 600), 100, 200); // three blocks a page
    int nAborted = 0;
    w.pEngine->OnCall(EngineOp::StartRender, [&](const EngineCall&) {
        if (nAborted++ == 0) {
            const Platform::Fake::OnUiScope ui(w.host.Environment().MainDispatcher());
            w.Viewer().MoveScreen(200, 0);
        }
    });
    w.Settle();
    EXPECT_EQ(w.pEngine->AbortedRenders(), 1);
    EXPECT_EQ(Sharp(), Displayed());
    const auto item = w.ItemOf(0);
    EXPECT_FALSE(item.blocks[0].bHasBitmap);
    EXPECT_TRUE(item.blocks[1].bHasBitmap);
    EXPECT_EQ(UseCount(0), 0);
}

TEST_F(RenderChainTest, AFinishedBlockThatLeftBeforeItsHandOverIsDropped) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    Pool().RunAll();
    Ui().RunAll();
    ASSERT_TRUE(Pool().RunOne());
    w.Viewer().MoveScreen(300, 0);
    const std::size_t nFrames = w.Frames();
    ASSERT_EQ(Ui().Pending(concurrency::priority::high), 1U);
    Ui().RunOne();
    EXPECT_EQ(w.Frames(), nFrames);
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
    EXPECT_EQ(w.pEngine->LiveBitmaps(), 0);
}

TEST_F(RenderChainTest, BitmapsOffTheScreenGoWithTheNextFrame) {
    w.Open(MakePages(3, 100, 600), 100, 200);
    w.Settle();
    EXPECT_EQ(w.Device().LiveBitmaps(), 1);
    w.Viewer().MoveScreen(200, 0);
    EXPECT_EQ(w.host.CountDebug("Clear DisVisible Page: 0, ID: 1\n"), 1U);
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
}

TEST_F(RenderChainTest, ThreeLevelsOfCancelling) {
    // The whole screen: only the closing frame of the step before is lost.
    w.Open(MakePages(30, 100, 200), 300, 500);
    Pool().RunAll();
    Ui().RunAll();
    w.Viewer().MoveScreen(5, 0);
    w.Settle();
    EXPECT_GE(w.host.CountDebug(kScreenCanceled), 1U);
    EXPECT_EQ(w.Renders(), 3);

    // The page: a load in flight ends, and the move's own chain takes over.
    w.Viewer().GotoPage(9);
    w.host.ClearDebug();
    w.pEngine->ClearLog();
    w.Viewer().MoveScreen(5, 0);
    w.Settle();
    EXPECT_EQ(w.host.CountDebug(kPageCanceled), 3U);
    EXPECT_EQ(w.Renders(), 3);

    // All of it at once.
    w.Viewer().GotoPage(20);
    Pool().RunAll();
    Ui().RunAll();
    w.pEngine->ClearLog();
    w.Viewer().CancelRender();
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_EQ(Rendering(), 0U);
    w.Viewer().MoveScreen(5, 0);
    w.Settle();
    EXPECT_EQ(Sharp(), Displayed());
}

// --- failures ---

TEST_F(RenderChainTest, AFailedRenderLeavesTheOthersAlone) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.pEngine->FailPage(EngineOp::StartRender, 1);
    w.Settle();
    EXPECT_EQ(w.host.CountDebug(kBlockFailed), 1U);
    EXPECT_EQ(Sharp(), 2U);
    EXPECT_EQ(Rendering(), 0U);
    EXPECT_EQ(UseCount(1), 0);
    w.pEngine->ClearFailures();
    w.Viewer().UpdateViewer(); // a frame renders nothing
    w.Settle();
    EXPECT_EQ(Sharp(), 2U);
    w.Viewer().MoveScreen(5, 0); // a layout tries it again
    w.Settle();
    EXPECT_EQ(Sharp(), 3U);
    EXPECT_EQ(w.Renders(1), 2);
}

TEST_F(RenderChainTest, AFailedPageLoadLeavesTheOthersAlone) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.pEngine->FailPage(EngineOp::StartParse, 0);
    w.Settle();
    EXPECT_EQ(w.host.CountDebug(kPageFailed), 1U);
    EXPECT_EQ(Sharp(), 2U);
    w.pEngine->ClearFailures();
    w.Viewer().MoveScreen(5, 0);
    w.Settle();
    EXPECT_EQ(Sharp(), 3U);
}

TEST_F(RenderChainTest, ClosingWhileRendering) {
    for (const int nStage : {0, 1, 2, 3}) {
        for (const bool bDocumentFirst : {false, true}) {
            w.Open(MakePages(9, 100, 200), 300, 500);
            if (nStage > 0) {
                Pool().RunAll();
            }
            if (nStage > 1) {
                Ui().RunAll();
            }
            if (nStage > 2) {
                Pool().RunAll();
            }
            if (bDocumentFirst) {
                w.pDocument->Dispose();
            }
            const std::size_t nFrames = w.Frames();
            if (nStage % 2 == 0) {
                w.Viewer().CloseViewer();
            } else {
                w.Viewer().Dispose();
            }
            std::weak_ptr<vkit::PageViewerBase> wkViewer = w.pViewer;
            w.pViewer.reset();
            w.Settle();
            EXPECT_EQ(w.Frames(), nFrames);
            EXPECT_EQ(w.Device().LiveBitmaps(), 0);
            EXPECT_EQ(w.pEngine->LiveBitmaps(), 0);
            EXPECT_TRUE(wkViewer.expired()) << nStage << bDocumentFirst;
        }
    }
}

TEST_F(RenderChainTest, ADocumentThatClosesUnderTheViewer) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.pDocument->Dispose();
    w.Settle();
    w.Viewer().RedrawScreen();
    w.Viewer().GotoPage(4);
    w.Viewer().GotoDestination(4, 6, {});
    w.Viewer().InvaildateLayout();
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
}

// --- handlers of the host ---

TEST_F(RenderChainTest, HandlersMayMoveCloseAndThrowWithinAFrame) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    int nMoves = 3;
    w.pOwner->fnDrawn = [&](std::int32_t) {
        if (nMoves-- > 0) {
            w.Viewer().MoveScreen(100, 0);
        }
    };
    w.Viewer().UpdateViewer();
    w.Settle();
    EXPECT_EQ(w.Laid().front().nPage, 1);
    EXPECT_EQ(Sharp(), Displayed());

    w.pOwner->fnDrawn = [](std::int32_t) { throw std::runtime_error("host"); };
    EXPECT_NO_THROW(w.Viewer().MoveScreen(10, 0)); // the frame failed, not the command
    EXPECT_NO_THROW(w.Viewer().PageScaled({150, 250}, 1.5, false, true));
    EXPECT_TRUE(w.host.DebugContains("a frame failed: host"));
    w.Settle();
    w.pOwner->fnDrawn = nullptr;
    w.Viewer().UpdateViewer();
    EXPECT_EQ(Sharp(), Displayed());
    EXPECT_EQ(Rendering(), 0U);

    w.pOwner->fnDrawn = [&](std::int32_t) { w.Viewer().Dispose(); };
    w.Viewer().UpdateViewer();
    w.Settle();
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
}

// --- rendering anew ---

TEST_F(RenderChainTest, ARedrawKeepsTheOldBitmapsUntilTheNewOnesCome) {
    w.Make(MakePages(9, 100, 200), 300, 500);
    w.Viewer().RedrawScreen(); // nothing before the first layout
    w.Viewer().InitLayOut(0, 0, 0, 0);
    w.Settle();
    w.Viewer().SetNightMode(true);
    w.Settle();
    EXPECT_EQ(w.Renders(), 3);
    const std::uint32_t nDay = Shown(150, 100);
    w.Viewer().RedrawScreen();
    Pool().RunAll();
    Ui().RunAll();
    EXPECT_EQ(Rendering(), 3U);
    EXPECT_EQ(Sharp(), 3U);
    w.Viewer().UpdateViewer();
    EXPECT_EQ(Shown(150, 100), nDay);
    w.Settle();
    EXPECT_EQ(w.Renders(), 6);
    EXPECT_EQ(Shown(150, 100), MapColor(nDay, 0xFF000000U, 0xFFFFFFFFU));
    const auto calls = w.pEngine->Calls(EngineOp::StartRender);
    EXPECT_EQ(calls.front().nColorMode, 0);
    EXPECT_EQ(calls.back().nBackColor, 0xFF000000U);
    EXPECT_EQ(calls.back().nForeColor, 0xFFFFFFFFU);
}

TEST_F(RenderChainTest, AMoveDuringARedrawStillBringsTheNewColours) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.Viewer().SetPageColors({255, 10, 20, 30}, {255, 200, 210, 220});
    w.Viewer().MoveScreen(3, 0); // before the page load of the redraw
    w.Settle();
    EXPECT_EQ(Shown(150, 100), MapColor(PatternColor(0, {50.5F, 96.5F}), 0xFF0A141EU, 0xFFC8D2DCU));
    EXPECT_EQ(w.Renders(), 6);
    w.Viewer().MoveScreen(3, 0);
    w.Settle();
    EXPECT_EQ(w.Renders(), 6);
}

TEST_F(RenderChainTest, BlankPagesHaveTheColourThatTheyWillHave) {
    w.Make(MakePages(9, 100, 200), 300, 500);
    w.Viewer().SetNightMode(true);
    w.Viewer().InitLayOut(0, 0, 0, 0);
    EXPECT_EQ(Shown(150, 100), 0xFF000000U);
    w.Viewer().SetNightMode(false);
    w.Viewer().SetPageBackgroundColor({255, 240, 230, 200});
    w.Viewer().UpdateViewer();
    EXPECT_EQ(Shown(150, 100), 0xFFF0E6C8U);
    w.Viewer().ClearScreen();
    EXPECT_EQ(Shown(150, 100), 0xFFE0E0E0U);
}

TEST_F(RenderChainTest, AnAnnotationEditRendersItsPageAlone) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.pEngine->ClearLog();
    w.Viewer().UpdatePageAfterAnnotEdit(1);
    EXPECT_EQ(w.host.CountDebug("RedrawScreen error\n"), 2U);
    w.Settle();
    EXPECT_EQ(RenderedPages(), std::vector<std::int32_t>{1});
    EXPECT_EQ(Sharp(), 3U);
    w.Viewer().UpdatePageAfterAnnotEdit(7); // not on the screen
    w.Settle();
    EXPECT_EQ(w.Renders(), 1);
    EXPECT_EQ(w.host.CountDebug("RedrawScreen error\n"), 5U);
}

TEST_F(RenderChainTest, EachChainTellsItsFailureInItsOwnWords) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.host.ClearDebug();
    w.pEngine->FailPage(EngineOp::GetAnnotCount, 0);
    w.pDocument->ClearPageInfoVector();
    w.pEngine->FailPage(EngineOp::StartParse, 1);
    w.Viewer().RedrawScreen();
    w.Settle();
    EXPECT_GE(w.host.CountDebug("ContinueViewerPageItem::Update() Platform::Exception...\n"), 1U);
    w.pEngine->ClearFailures();

    w.Viewer().RedrawScreen();
    w.Viewer().RedrawScreen();
    w.Settle();
    EXPECT_EQ(w.host.CountDebug("ContinueViewerPageItem::Update() task_canceled...\n"), 3U);
    EXPECT_EQ(
        w.host.CountDebug("PDFConuiunePagesViewer::RedrawScreen concurrency::task_canceled...\n"),
        1U);
    w.Viewer().UpdatePageAfterAnnotEdit(1);
    w.Viewer().CancelRender();
    w.Settle();
    EXPECT_EQ(w.host.CountDebug("PDFConuiunePagesViewer::UpdatePageAfterAnnotEdit "
                                "concurrency::task_canceled...\n"),
              1U);
    // A host that fails in their frames fails no chain.
    w.Viewer().RedrawScreen();
    w.pOwner->fnDrawn = [](std::int32_t) { throw std::runtime_error("host"); };
    w.Settle();
    EXPECT_FALSE(w.host.DebugContains("RedrawScreen Exception"));
    EXPECT_FALSE(w.host.DebugContains("unobserved"));
    EXPECT_FALSE(w.host.DebugContains("unhandled"));
}

}

}
