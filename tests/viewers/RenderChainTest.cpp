// The way of blocks to the screen: what is started when, in which order, and
// what becomes of it when the reader moves on or something fails.
#include <algorithm>

#include "platform/fake/OffUiScope.h"
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

constexpr const char* kScreenCanceled =
    "PDFConuiunePagesViewer::RenderScreenBitmapSync concurrency::task_canceled...\n";
constexpr const char* kPageFailed =
    "ContinueViewerPageItem::RenderViewerPage Platform::Exception...\n";
constexpr const char* kPageCanceled =
    "ContinueViewerPageItem::RenderViewerPage concurrency::task_canceled...\n";
constexpr const char* kBlockFailed = "RenderViewerPageBlock Error...\n";

class RenderChainTest : public ViewerTest {
protected:
    Platform::Fake::ManualScheduler& Pool() { return w.host.Pool(); }
    Platform::Fake::ManualDispatcher& Ui() { return w.host.Dispatcher(); }

    std::vector<std::int32_t> RenderedPages() const {
        std::vector<std::int32_t> pages;
        for (const EngineCall& call : w.pEngine->Calls(EngineOp::StartRender)) {
            pages.push_back(call.nPage);
        }
        return pages;
    }
    std::int32_t UseCount(std::int32_t nPage) const {
        return w.pDocument->ReLoadPageIndex(nPage)->m_nUseCount;
    }
};

// --- the common way ---

TEST_F(RenderChainTest, PaintsBlankAtOnceAndSharpAsBlocksArrive) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    EXPECT_EQ(w.Frames(), 1U);
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_EQ(w.pOwner->drawn, (std::vector<std::int32_t>{0, 1, 2}));

    Pool().RunAll(); // the page loads
    Ui().RunAll();
    EXPECT_EQ(w.Rendering(), 3U);
    EXPECT_EQ(UseCount(0), 1);
    ASSERT_TRUE(Pool().RunOne());
    EXPECT_EQ(UseCount(0), 0);
    EXPECT_EQ(w.Drawn(), 0U); // the bitmap is made on the UI thread
    EXPECT_EQ(Ui().Pending(concurrency::priority::high), 1U);
    EXPECT_EQ(w.pEngine->LiveBitmaps(), 1);
    Ui().RunAll();
    EXPECT_EQ(w.pEngine->LiveBitmaps(), 0);
    EXPECT_EQ(w.Drawn(), 1U);
    EXPECT_EQ(w.Frames(), 2U);

    w.Settle();
    EXPECT_EQ(RenderedPages(), (std::vector<std::int32_t>{0, 1, 2}));
    EXPECT_EQ(w.Frames(), 4U); // two more blocks, and nothing after them
    EXPECT_EQ(w.Rendering(), 0U);
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
    EXPECT_EQ(w.Rendering(), 3U);
    for (int n = 0; n < 5; ++n) { // while the blocks render
        w.Viewer().MoveScreen(-5, 0);
        Ui().RunAll();
    }
    w.Settle();
    EXPECT_EQ(w.Renders(), 3);
    EXPECT_EQ(w.Drawn(), 3U);
    EXPECT_EQ(w.Device().LiveBitmaps(), 3);
}

// --- moving on ---

TEST_F(RenderChainTest, ABlockScrolledAwayNeverReachesTheEngine) {
    w.Open(MakePages(30, 100, 200), 300, 500);
    Pool().RunAll();
    Ui().RunAll();
    ASSERT_EQ(w.Rendering(), 3U); // waiting for their turn
    w.Viewer().MoveScreen(3000, 0);
    w.Settle();
    const auto pages = RenderedPages();
    EXPECT_TRUE(std::all_of(pages.begin(), pages.end(), [](auto n) { return n > 10; }));
    EXPECT_EQ(w.Drawn(), w.Displayed());
    EXPECT_EQ(UseCount(0), 0);
    // A return renders them again.
    w.Viewer().MoveScreen(-3000, 0);
    w.Settle();
    EXPECT_EQ(w.Drawn(), 3U);
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
    EXPECT_EQ(w.Drawn(), w.Displayed());
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

// A load in flight ends with the next step, whose own chain takes over; a cancel
// ends all of it.
TEST_F(RenderChainTest, WhatIsCancelledStartsAgainWithTheNextStep) {
    w.Open(MakePages(30, 100, 200), 300, 500);
    w.Viewer().MoveScreen(5, 0);
    w.Settle();
    EXPECT_EQ(w.host.CountDebug(kPageCanceled), 3U);
    EXPECT_EQ(w.Renders(), 3);

    w.Viewer().GotoPage(20);
    Pool().RunAll();
    Ui().RunAll();
    w.pEngine->ClearLog();
    w.Viewer().CancelRender();
    w.Settle();
    EXPECT_EQ(w.Renders(), 0);
    EXPECT_EQ(w.Rendering(), 0U);
    EXPECT_GE(w.host.CountDebug(kScreenCanceled), 1U);
    w.Viewer().MoveScreen(5, 0);
    w.ExpectSharp();
}

// --- failures ---

TEST_F(RenderChainTest, AFailedLoadOrRenderLeavesTheOthersAlone) {
    for (const auto& [eFailing, szWords] : {std::pair{EngineOp::StartParse, kPageFailed},
                                            std::pair{EngineOp::StartRender, kBlockFailed}}) {
        SCOPED_TRACE(szWords);
        w.Open(MakePages(9, 100, 200), 300, 500);
        w.pEngine->FailPage(eFailing, 1);
        w.Settle();
        EXPECT_EQ(w.host.CountDebug(szWords), 1U);
        EXPECT_EQ(w.Drawn(), 2U);
        EXPECT_EQ(w.Rendering(), 0U);
        EXPECT_EQ(UseCount(1), 0);
        w.pEngine->ClearFailures();
        w.Viewer().UpdateViewer(); // a frame renders nothing
        w.Settle();
        EXPECT_EQ(w.Drawn(), 2U);
        w.Viewer().MoveScreen(5, 0); // a layout tries it again
        w.ExpectSharp();
        EXPECT_EQ(w.Renders(1), eFailing == EngineOp::StartRender ? 2 : 1);
    }
}

// Fails the N-th call of each kind for N = 1, 2, ... until none fails, and
// expects the viewer to be whole after the next layout.
TEST_F(RenderChainTest, EveryDeviceCallMayFailOnce) {
    for (const GraphicsCall eCall :
         {GraphicsCall::CreateBitmap, GraphicsCall::EndDraw, GraphicsCall::Present1,
          GraphicsCall::CopyFromRenderTarget, GraphicsCall::CreateSolidColorBrush}) {
        bool bFailed = true;
        for (std::uint32_t nCall = 1; bFailed; ++nCall) {
            SCOPED_TRACE(::testing::Message() << static_cast<int>(eCall) << ", " << nCall);
            ASSERT_LT(nCall, 100U);
            w.Make(MakePages(5, 151, 233), 160, 120);
            const std::uint32_t nFaultsBefore = w.Device().FaultsHappened();
            w.Device().FailCallOf(eCall, nCall);
            for (const auto& fnStep :
                 std::vector<std::function<void()>>{[&] { w.Viewer().InitLayOut(0, 0, 0, 0); },
                                                    [&] { w.Viewer().MoveScreen(60, 0); },
                                                    [&] {
                                                        w.Zoom({80, 60}, 2.0, true);
                                                    }}) {
                try {
                    fnStep();
                } catch (const Platform::Exception&) {
                    w.host.ClearDebug();
                }
                w.Settle();
            }
            bFailed = w.Device().FaultsHappened() > nFaultsBefore;
            w.Device().ClearFaults();
            w.Viewer().MoveScreen(20, 0);
            w.ExpectSharp();
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_F(RenderChainTest, ALostDeviceIsMadeUpForByItself) {
    for (std::uint32_t nPresent = 1; nPresent < 8; ++nPresent) {
        SCOPED_TRACE(nPresent);
        w.Make(MakePages(5, 151, 233), 160, 120);
        const std::uint32_t nFaultsBefore = w.Device().FaultsHappened();
        w.Device().LoseDeviceAtPresent(nPresent);
        w.Viewer().InitLayOut(0, 0, 0, 0);
        w.Settle();
        w.Viewer().MoveScreen(60, 0);
        w.Settle();
        for (int n = 0; n < 4; ++n) {
            w.Viewer().UpdateViewer(); // frames alone; the reader does nothing
            w.Settle();
        }
        ASSERT_EQ(w.Device().FaultsHappened(), nFaultsBefore + 1);
        w.ExpectSharp();
    }
    // No move and no further frame: the block that just arrived starts anew by itself.
    for (std::uint32_t nPresent = 1; nPresent < 4; ++nPresent) {
        w.Make(MakePages(1, 151, 233), 160, 240);
        w.Device().LoseDeviceAtPresent(nPresent);
        w.Viewer().InitLayOut(0, 0, 0, 0);
        w.ExpectSharp();
    }
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

TEST_F(RenderChainTest, AHandlerMayDisposeTheViewerWithinAFrame) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.pOwner->fnDrawn = [&](std::int32_t) { w.Viewer().Dispose(); };
    w.Viewer().UpdateViewer();
    w.Settle();
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
}

TEST_F(RenderChainTest, AChainThatIsReplacedOrWhoseHostFailsEndsQuietly) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Settle();
    w.host.ClearDebug();
    w.Viewer().RedrawScreen();
    w.Viewer().RedrawScreen();
    w.Settle();
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
