// The viewer with real pool threads under it; for the thread sanitizer.
#include <random>

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

}

}
