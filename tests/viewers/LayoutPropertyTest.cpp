// What holds for every layout of either viewer, whatever led to it: commands,
// gestures, new sizes, and a change of the layout mode in the middle of them.
#include <algorithm>
#include <cmath>
#include <random>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

constexpr double kRounding = 1e-6;

bool IsOnScreen(const Place& place, const Rect& rcScreen) {
    return place.dbX < rcScreen.Width && place.dbX + place.nWidth > 0.0 &&
           place.dbY < rcScreen.Height && place.dbY + place.nHeight + 15 > 0.0;
}

// Contiguous but for what truncation takes, in page order, each page once.
void CheckColumn(const Places& places) {
    for (std::size_t n = 1; n < places.size(); ++n) {
        EXPECT_EQ(places[n].nPage, places[n - 1].nPage + 1);
        const double dbGap = places[n].dbY - (places[n - 1].dbY + places[n - 1].nHeight);
        EXPECT_LT(std::abs(dbGap - 15.0), 1.0 + kRounding);
    }
}

void CheckStrip(const Places& places) {
    ASSERT_LE(places.size(), 2U);
    if (places.size() == 2) {
        EXPECT_EQ(places[1].nPage, places[0].nPage + 1);
    }
}

// A page that fits stands in the middle, a larger one leaves no gap.
void CheckStanding(double dbOffset, std::int32_t nSide, double dbScreen) {
    if (nSide < dbScreen) {
        EXPECT_NEAR(dbOffset, (dbScreen - nSide) * 0.5, 1.0); // a neighbour by its exact size
    } else {
        EXPECT_LE(dbOffset, kRounding);
        EXPECT_GE(dbOffset + nSide, dbScreen - 1.0);
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
            EXPECT_EQ(block.bIsDisplay,
                      rc.Width > 0 && rc.Height > 0 && rc.IntersectsWith(rcScreen));
            EXPECT_TRUE(block.bIsDisplay || !block.bIsRendering);
        }
        EXPECT_EQ(dbArea, double(item.screenRect.nWidth) * item.screenRect.nHeight);
        EXPECT_EQ(static_cast<std::int32_t>(item.blocks.size()), item.grid.nRows * item.grid.nCols);
    }
}

// One reader, who does anything at any moment.
class Reader {
public:
    explicit Reader(unsigned nSeed) : m_random(nSeed) {
        static const char* const s_families[] = {"Windows.Desktop", "Windows.Mobile",
                                                 "Windows.Holographic"};
        static const int s_counts[] = {1, 2, 3, 500, 25};
        m_bLarge = nSeed % 8 == 0; // too large to paint in a test
        w.host.Environment().SetDesignMode(m_bLarge);
        w.SetFamily(s_families[nSeed % 3]);
        w.SetLayout(nSeed % 2 == 0 ? Layout::Continuous : Layout::Single);
        m_nPages = s_counts[Any(5)];
        w.Open(MixedPages(), 150, 220, Any(m_nPages));
        Resize();
    }

    void Step() {
        const int nAction = Any(20);
        SCOPED_TRACE(::testing::Message() << "action " << nAction);
        if (nAction < 8) {
            Drag(nAction == 0 ? 4000 : 300);
        } else if (nAction < 12) {
            Pinch();
        } else if (nAction == 12) {
            w.Viewer().GotoPage(Any(m_nPages));
        } else if (nAction == 13) {
            w.Viewer().RotateViewer(Any(4));
        } else if (nAction == 14) {
            Resize();
        } else if (nAction == 15) {
            w.Viewer().GotoDestination(Any(m_nPages), 1 + Any(8), {10, 100, 90, 20});
        } else if (nAction == 16) {
            w.Viewer().PageSizeChanged(Around(300), Around(300));
        } else if (nAction == 17) {
            ChangeLayout();
        } else if (nAction == 18) {
            w.Viewer().GetPagePosition(); // may take a page away; a release settles it
            Release(0.0, 0.0);
        } else {
            w.Settle();
            EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsRendering; }), 0U);
        }
        Check();
    }

    void Finish() {
        w.pPanel->ArrangeAtScale({150, 220}, 1.0F, 1.0F);
        w.Viewer().InvaildateLayout();
        Check();
        w.Settle();
        w.Viewer().PageScaled({1, 1}, 1.0, false, true);
        w.Settle();
        EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsRendering; }), 0U);
        if (!m_bLarge) {
            EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsDisplay && !b.bHasBitmap; }),
                      0U);
        }
        EXPECT_EQ(static_cast<std::size_t>(w.Device().LiveBitmaps()),
                  w.CountBlocks([](const auto& b) { return b.bHasBitmap; }));
        EXPECT_FALSE(w.host.DebugContains("unobserved"));
        EXPECT_FALSE(w.host.DebugContains("unhandled"));
    }

private:
    bool IsSingle() const { return w.LaidOutAs() == Layout::Single; }
    int Any(int nRange) { return static_cast<int>(m_random() % nRange); }
    double Around(int nRange) { return Any(nRange) - nRange / 2; }
    Rect Screen() const {
        return {0, 0, w.pCanvas->GetScaledWidth(), w.pCanvas->GetScaledHeight()};
    }

    std::vector<ScriptedPage> MixedPages() {
        std::vector<ScriptedPage> pages;
        for (int n = 0; n < m_nPages; ++n) {
            pages.push_back(MakePage(40.0F + static_cast<float>(Any(700)) / 3,
                                     30.0F + static_cast<float>(Any(900)) / 3, Any(4)));
        }
        return pages;
    }

    void Resize() {
        static const float s_scales[] = {1.0F, 1.25F, 1.5F, 2.0F};
        static const Windows::Foundation::Size s_large[] = {{4000, 3000}, {1080, 1920}};
        Windows::Foundation::Size size = {static_cast<float>(50 + Any(100)),
                                          static_cast<float>(50 + Any(100))};
        if (m_bLarge) {
            size = s_large[Any(2)];
        } else if (Any(12) == 0) {
            size = {1, 1};
        }
        w.pPanel->ArrangeAtScale(size, s_scales[Any(4)], s_scales[Any(4)]);
        w.Viewer().InvaildateLayout();
    }

    void Drag(int nRange) {
        double dbX = 0.0;
        double dbY = 0.0;
        for (int nLeft = 1 + Any(6); nLeft > 0; --nLeft) {
            const double dbStepX = Around(nRange);
            const double dbStepY = Around(nRange);
            w.Viewer().MoveScreen(dbStepY, dbStepX);
            dbX += dbStepX;
            dbY += dbStepY;
            Check();
            CheckEnds();
        }
        if (Any(4) > 0) { // else the finger stays
            Release(dbX, dbY);
        }
    }

    void CheckEnds() const {
        const Places places = w.Laid();
        if (IsSingle() || places.empty()) {
            return;
        }
        EXPECT_TRUE(places.front().nPage > 0 || places.front().dbY <= 0.001);
        const Place& last = places.back();
        const bool bTaller = places.front().nPage > 0 || places.front().dbY < -0.001;
        EXPECT_TRUE(last.nPage < m_nPages - 1 || !bTaller ||
                    last.dbY + last.nHeight >= Screen().Height - 1.0)
            << "the last page ends at " << last.dbY + last.nHeight;
    }

    void Release(double dbX, double dbY) {
        const Places before = w.Laid();
        w.Viewer().AlignPageAfterScroll(dbY, dbX);
        const Places after = w.Laid();
        if (!IsSingle()) {
            EXPECT_EQ(after, before);
            return;
        }
        const double dbHalf = Screen().Width * 0.5;
        if (after.size() == 2) {
            EXPECT_TRUE(before[0].dbX == dbHalf || before[1].dbX == dbHalf ||
                        (before[0].dbX <= 0.0 && before[1].dbX < 0.0));
        } else if (w.ItemOf(after[0].nPage).dbScale >= 1.0 || !IsMobile()) {
            CheckStanding(after[0].dbX, after[0].nWidth, Screen().Width);
        }
    }

    bool IsMobile() const { return w.host.Environment().DeviceFamily() == "Windows.Mobile"; }

    void Pinch() {
        const Rect rcScreen = Screen();
        const Point pt{rcScreen.Width * static_cast<float>(Any(100)) / 100,
                       rcScreen.Height * static_cast<float>(Any(100)) / 100};
        const bool bComplete = Any(2) == 0;
        const std::int32_t nRenders = w.Renders();
        const bool bHasPages = !w.Laid().empty(); // else the zoom lays out anew
        w.Viewer().PageScaled(pt, 0.5 + Any(50) / 10.0, false, bComplete);
        if (IsSingle()) {
            ASSERT_EQ(w.Laid().size(), 1U);
            CheckStanding(w.Laid()[0].dbX, w.Laid()[0].nWidth, rcScreen.Width);
        }
        if (!bComplete && bHasPages && Any(2) == 0) {
            w.Settle();
            EXPECT_EQ(w.Renders(), nRenders); // fingers never wait for the engine
        }
    }

    void ChangeLayout() {
        const std::int32_t nPage = w.Viewer().GetCurrentPageIndex();
        w.Exchange(IsSingle() ? Layout::Continuous : Layout::Single);
        if (!w.Laid().empty()) {
            EXPECT_EQ(w.Laid().front().nPage, nPage);
        }
    }

    void Check() {
        const Places places = w.Laid();
        if (places.empty()) { // pages of less than a pixel are passed over in a column
            EXPECT_TRUE(!IsSingle() && Screen().Width <= 2.0F);
            return;
        }
        if (IsSingle()) {
            CheckStrip(places);
            EXPECT_TRUE(
                std::any_of(places.begin(), places.end(),
                            [&](const Place& place) { return IsOnScreen(place, Screen()); }))
                << ::testing::PrintToString(places) << Screen().Width;
        } else {
            CheckColumn(places);
        }
        CheckBlocks(w.State(), Screen());
        const std::int32_t nCurrent = w.Viewer().GetCurrentPageIndex();
        EXPECT_GE(nCurrent, places.front().nPage);
        EXPECT_LE(nCurrent, std::min(places.front().nPage + 1, m_nPages - 1));
    }

    ViewerWorld w;
    std::mt19937 m_random;
    bool m_bLarge = false;
    int m_nPages = 0;
};

class LayoutPropertyTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(LayoutPropertyTest, HoldsAfterAnySeriesOfSteps) {
    Reader reader(GetParam());
    for (int nStep = 0; nStep < 160 && !HasFailure(); ++nStep) {
        SCOPED_TRACE(::testing::Message() << "step " << nStep);
        reader.Step();
    }
    reader.Finish();
}

INSTANTIATE_TEST_SUITE_P(Seeds, LayoutPropertyTest, ::testing::Range(1U, 65U));

}

}
