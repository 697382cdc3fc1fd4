// What holds for every layout, whatever led to it.
#include <cmath>
#include <random>
#include <set>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

std::vector<ScriptedPage> MixedPages(std::mt19937& random, int nPages) {
    std::vector<ScriptedPage> pages;
    for (int n = 0; n < nPages; ++n) {
        pages.push_back(MakePage(40.0F + static_cast<float>(random() % 700) / 3,
                                 30.0F + static_cast<float>(random() % 900) / 3,
                                 static_cast<std::int32_t>(random() % 4)));
    }
    return pages;
}

// Contiguous but for what truncation takes, in page order, each page once.
void CheckItems(const Places& places) {
    for (std::size_t n = 1; n < places.size(); ++n) {
        EXPECT_EQ(places[n].nPage, places[n - 1].nPage + 1);
        const double dbGap = places[n].dbY - (places[n - 1].dbY + places[n - 1].nHeight);
        EXPECT_LT(std::abs(dbGap - 15.0), 1.0 + 1e-6);
    }
}

// Blocks cover their page exactly, and only displayed ones are at work.
void CheckBlocks(const vkit::ViewerState& state, const Rect& rcScreen) {
    for (const vkit::PageItemState& item : state.items) {
        double dbArea = 0.0;
        for (const vkit::BlockState& block : item.blocks) {
            dbArea += double(block.screenRect.nWidth) * block.screenRect.nHeight;
            const Rect rc(static_cast<float>(block.screenRect.dbOffsetX),
                          static_cast<float>(block.screenRect.dbOffsetY),
                          static_cast<float>(block.screenRect.nWidth),
                          static_cast<float>(block.screenRect.nHeight));
            EXPECT_EQ(block.bIsDisplay, rc.IntersectsWith(rcScreen));
            EXPECT_TRUE(block.bIsDisplay || !block.bIsRendering);
        }
        EXPECT_EQ(dbArea, double(item.screenRect.nWidth) * item.screenRect.nHeight);
        EXPECT_EQ(static_cast<std::int32_t>(item.blocks.size()), item.grid.nRows * item.grid.nCols);
    }
}

class LayoutPropertyTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(LayoutPropertyTest, HoldsAfterAnySeriesOfMoves) {
    std::mt19937 random(GetParam());
    ViewerWorld w;
    const int nPages = 1 + static_cast<int>(random() % 25);
    const char* const families[] = {"Windows.Desktop", "Windows.Mobile", "Windows.Holographic"};
    w.SetFamily(families[random() % 3]);
    auto fWidth = 150.0F;
    auto fHeight = 220.0F;
    w.Open(MixedPages(random, nPages), fWidth, fHeight,
           static_cast<std::int32_t>(random() % nPages));
    const auto fnAny = [&](int nRange) {
        return static_cast<double>(random() % nRange) - nRange / 2;
    };
    for (int nStep = 0; nStep < 150; ++nStep) {
        const unsigned nAction = random() % 16;
        if (nAction < 8) {
            w.Viewer().MoveScreen(fnAny(nAction == 0 ? 4000 : 300), fnAny(100));
            const Places places = w.Laid();
            ASSERT_FALSE(places.empty());
            EXPECT_TRUE(places.front().nPage > 0 || places.front().dbY <= 0.001);
            const Place& last = places.back();
            const bool bTaller = places.front().nPage > 0 || places.front().dbY < -0.001;
            EXPECT_TRUE(last.nPage < nPages - 1 || !bTaller ||
                        last.dbY + last.nHeight >= fHeight - 1.0)
                << "the last page ends at " << last.dbY + last.nHeight;
        } else if (nAction < 11) {
            const Point pt{static_cast<float>(random() % 150), static_cast<float>(random() % 220)};
            w.Viewer().PageScaled(pt, 0.5 + static_cast<double>(random() % 50) / 10, false,
                                  random() % 2 == 0);
        } else if (nAction == 11) {
            w.Viewer().GotoPage(static_cast<std::int32_t>(random() % nPages));
        } else if (nAction == 12) {
            w.Viewer().RotateViewer(static_cast<std::int32_t>(random() % 4));
        } else if (nAction == 13) {
            fWidth = 100.0F + static_cast<float>(random() % 100);
            fHeight = 100.0F + static_cast<float>(random() % 150);
            w.Resize(fWidth, fHeight);
            w.Viewer().InvaildateLayout();
        } else if (nAction == 14) {
            w.Viewer().GotoDestination(static_cast<std::int32_t>(random() % nPages),
                                       1 + static_cast<std::int32_t>(random() % 8),
                                       {10, 100, 90, 20});
        } else {
            w.Settle();
            EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsRendering; }), 0U);
        }
        const Places places = w.Laid();
        ASSERT_FALSE(places.empty()) << "step " << nStep << " action " << nAction;
        CheckItems(places);
        CheckBlocks(w.State(), {0, 0, fWidth, fHeight});
        const std::int32_t nCurrent = w.Viewer().GetCurrentPageIndex();
        EXPECT_GE(nCurrent, places.front().nPage);
        EXPECT_LE(nCurrent, std::min(places.front().nPage + 1, nPages - 1));
        ASSERT_FALSE(HasFailure()) << "step " << nStep << " action " << nAction;
    }
    w.Settle();
    w.Viewer().PageScaled({1, 1}, 1.0, false, true);
    w.Settle();
    EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsDisplay && !b.bHasBitmap; }), 0U);
    EXPECT_EQ(static_cast<std::size_t>(w.Device().LiveBitmaps()),
              w.CountBlocks([](const auto& b) { return b.bHasBitmap; }));
    EXPECT_FALSE(w.host.DebugContains("unobserved"));
    EXPECT_FALSE(w.host.DebugContains("unhandled"));
}

INSTANTIATE_TEST_SUITE_P(Seeds, LayoutPropertyTest, ::testing::Range(1U, 25U));

}

}
