// The viewer with real pool threads under it; for the thread sanitizer.
#include <random>
#include <thread>

#include "tests/support/Effort.h"
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

TEST(ViewerStressTest, PagesReachTheEngineFromTheTopDown) {
    ViewerWorld w(Platform::Fake::TestHost::RealPool{4});
    for (int nRound = 0; nRound < Share(50, 200); ++nRound) {
        w.Open(MakePages(4, 60, 40), 64, 160);
        w.Settle();
        std::vector<std::int32_t> pages;
        for (const EngineCall& call : w.pEngine->Calls(EngineOp::StartRender)) {
            pages.push_back(call.nPage);
        }
        ASSERT_EQ(pages, (std::vector<std::int32_t>{0, 1, 2})) << "round " << nRound;
        w.Viewer().Dispose();
    }
}

TEST(ViewerStressTest, SettlesWithEveryDisplayedBlockSharp) {
    ViewerWorld w(Platform::Fake::TestHost::RealPool{4});
    w.Open(MakePages(40, 60, 90), 64, 128);
    std::mt19937 random(11);
    for (int nStep = 0; nStep < 300; ++nStep) {
        w.Viewer().MoveScreen(static_cast<double>(random() % 300) - 140, 0);
        w.host.Dispatcher().RunOne();
        if (nStep % 20 == 0) {
            w.Viewer().PageScaled({32, 64}, 0.6 + (nStep % 7) * 0.3, false, nStep % 40 == 0);
        }
    }
    w.Viewer().PageScaled({32, 64}, 1.5, false, true);
    w.ExpectSharp();
    EXPECT_EQ(w.pEngine->PeakRenders(), 1); // of one document, one after the other
}

// The UI thread leaves measuring to the pool after a page; some rounds end in the midst
// of it.
TEST(ViewerStressTest, TextIsMeasuredAndRenderedWhileTheReaderGoesOnAndCloses) {
    ViewerWorld w(Platform::Fake::TestHost::RealPool{4});
    w.SetLayout(Layout::Reflow);
    std::mt19937 random(12);
    const auto fnBelow = [&](unsigned n) { return static_cast<int>(random() % n); };
    for (int nRound = 0; nRound < Share(30, 120); ++nRound) {
        std::vector<ScriptedPage> pages = MakePages(60, 60, 90);
        for (ScriptedPage& page : pages) {
            page.nTextHeight = std::max(0, fnBelow(300) - 60);
        }
        pages.front().nTextHeight = 50;
        w.Make(std::move(pages), 96, 128);
        w.pEngine->OnCall(EngineOp::Reflow,
                          [&, idUi = std::this_thread::get_id()](const EngineCall&) {
                              if (std::this_thread::get_id() == idUi) {
                                  w.host.Clock().Pass(std::chrono::milliseconds(60));
                              }
                          });
        w.Viewer().InitLayOut(fnBelow(60), 1.0, 0, 0);
        const std::vector<std::function<void()>> acts = {
            [&] { w.Viewer().MoveScreen(fnBelow(600) - 280, 0); },
            [&] { w.Viewer().GotoPage(fnBelow(60)); },
            [&] {
                w.Viewer().PageScaled({0, 0}, 1.0 + fnBelow(4) * 0.5, false, true);
            },
            [&] {
                w.Resize(90.0F + static_cast<float>(fnBelow(20)), 128);
                w.Viewer().InvaildateLayout();
            },
            [&] { w.Viewer().MoveScreen(40, 0); }};
        for (int nStep = 0; nStep < 60; ++nStep) {
            acts[random() % acts.size()]();
            w.host.Dispatcher().RunOne();
        }
        if (nRound % 3 == 1) {
            w.Viewer().CloseViewer();
            w.Settle();
        } else if (nRound % 3 == 2) {
            w.pDocument->Dispose();
            w.Settle();
        } else {
            w.ExpectSharp();
            EXPECT_FALSE(w.Laid().empty());
        }
        EXPECT_LE(w.pEngine->PeakRenders(), 1);
    }
}

}

}
