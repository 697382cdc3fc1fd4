// Turning pages in the viewer of single pages: drags, neighbours, releases.
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

struct Drag {
    double dbX;
    double dbY = 0.0;
};

struct Turn {
    const char* szWhat;
    const char* szFamily;
    float fPageWidth; // points; a scale of 1.0 shows them as pixels but on the mobile
    float fPageHeight;
    std::int32_t nPage; // of five
    std::vector<Drag> drags;
    std::optional<double> dbRelease; // the whole drag
    Places expected;
};

constexpr const char* kDesktop = "Windows.Desktop";
constexpr const char* kMobile = "Windows.Mobile";
constexpr const char* kOther = "Windows.Holographic";

Turn T(const char* szWhat, const char* szFamily, float fPageWidth, float fPageHeight,
       std::int32_t nPage, std::vector<Drag> drags, std::optional<double> dbRelease,
       Places expected) {
    return {szWhat, szFamily,         fPageWidth, fPageHeight,
            nPage,  std::move(drags), dbRelease,  std::move(expected)};
}

const Turn kTurns[] = {
    T("a gap brings the next page", kDesktop, 300, 500, 1, {{10}}, {},
      {{1, -10, 0, 300, 500}, {2, 300, 0, 300, 500}}),
    T("the strip moves as one", kDesktop, 300, 500, 1, {{10}, {40}}, {},
      {{1, -50, 0, 300, 500}, {2, 260, 0, 300, 500}}),
    T("the page before stands outside on the left", kOther, 300, 500, 2, {{-10}, {-90}}, {},
      {{1, -210, 0, 300, 500}, {2, 100, 0, 300, 500}}),
    T("one step back is a screen at most", kDesktop, 300, 500, 2, {{-10}, {-900}}, {},
      {{1, 0, 0, 300, 500}, {2, 300, 0, 300, 500}}),
    T("nothing before the first page", kDesktop, 300, 500, 0, {{-30}}, -30, {{0, 0, 0, 300, 500}}),
    T("nothing beyond the last page", kOther, 300, 500, 4, {{30}}, 30, {{4, 0, 0, 300, 500}}),
    T("a narrow last page stays centred", kDesktop, 100, 200, 4, {{30}}, {},
      {{4, 100, 150, 100, 200}}),
    T("a narrow page turns once its left edge is reached", kDesktop, 100, 200, 1, {{99}, {1}}, {},
      {{1, 0, 150, 100, 200}, {2, 300, 150, 100, 200}}),
    T("a narrow page turns back once its right edge is", kDesktop, 100, 200, 1, {{-99}, {-1}}, {},
      {{0, -100, 150, 100, 200}, {1, 200, 150, 100, 200}}),
    T("several pages in one drag", kDesktop, 300, 500, 0,
      {{100}, {200}, {100}, {200}, {100}, {250}}, {},
      {{2, -300, 0, 300, 500}, {3, 0, 0, 300, 500}}),
    T("a move longer than the page brings the next one in", kDesktop, 300, 500, 1, {{5000}}, {},
      {{1, -5000, 0, 300, 500}, {2, 0, 0, 300, 500}}),
    T("a page of its own height moves down, not off", kDesktop, 300, 700, 1,
      {{0, 150}, {0, 900}, {0, -30}}, {}, {{1, 0, -170, 300, 700}}),

    T("more than half of the page turns", kDesktop, 300, 500, 1, {{10}, {141}}, 151,
      {{2, 0, 0, 300, 500}}),
    T("exactly half of it does not", kDesktop, 300, 500, 1, {{10}, {140}}, 150,
      {{1, 0, 0, 300, 500}}),
    T("a whole screen's drag turns wherever the pages are", kDesktop, 300, 500, 1, {{10}}, 300,
      {{2, 0, 0, 300, 500}}),
    T("and back", kMobile, 300, 500, 2, {{-10}, {-5}}, -300, {{1, 0, 0, 300, 500}}),
    T("half of the screen turns back", kOther, 300, 500, 2, {{-10}, {-150}}, -160,
      {{1, 0, 0, 300, 500}}),
    T("a neighbour that has not come in goes", kDesktop, 300, 500, 2, {{-10}}, -10,
      {{2, 0, 0, 300, 500}}),
    T("on the mobile too", kMobile, 300, 500, 2, {{-10}}, -10, {{2, 0, 0, 300, 500}}),
    T("a narrow page goes back to the middle", kOther, 100, 200, 1, {{30}}, 30,
      {{1, 90, 130, 120, 240}}),
    T("a page fitted to the width turns as it stands", kMobile, 100, 500, 1, {{150}, {200}}, 350,
      {{2, 0, 0, 300, 1500}}),

    T("a wide page turns at its right edge only", kDesktop, 700, 500, 1, {{400}}, 400,
      {{1, -400, 0, 700, 500}}),
    T("there a gap brings the next one", kDesktop, 700, 500, 1, {{400}, {50}}, {},
      {{1, -450, 0, 700, 500}, {2, 300, 0, 700, 500}}),
    T("which leaves with the edge pinned", kDesktop, 700, 500, 1, {{400}, {50}, {20}, {-80}}, {},
      {{1, -400, 0, 700, 500}, {2, 300, 0, 700, 500}}),
    T("and is gone after", kDesktop, 700, 500, 1, {{400}, {50}, {20}, {-80}, {-30}}, {},
      {{1, -370, 0, 700, 500}}),
    T("what moved it to its edge turns no wide page", kOther, 700, 500, 1, {{400}, {50}}, 450,
      {{1, -400, 0, 700, 500}}),
    T("nor does what hangs over the left edge", kDesktop, 600, 500, 1, {{300}, {20}, {20}}, 340,
      {{1, -300, 0, 600, 500}}),
    T("the next wide page stands at its left edge", kOther, 700, 500, 1, {{400}, {50}, {160}}, 610,
      {{2, 0, 0, 700, 500}}),
    T("the one before at its right edge", kOther, 700, 500, 2, {{-50}, {-160}}, -210,
      {{1, -400, 0, 700, 500}}),
    T("a wide last page stops at its right edge", kOther, 700, 500, 4, {{300}, {300}}, 300,
      {{4, -400, 0, 700, 500}}),
    T("a wide first page returns to its left edge", kDesktop, 700, 500, 0, {{50}, {-90}}, -40,
      {{0, 0, 0, 700, 500}}),
};

class PageTurnTest : public ViewerTest {
protected:
    PageTurnTest() { w.SetLayout(Layout::Single); }
    void MoveX(double dbX) { w.Viewer().MoveScreen(0.0, dbX); }
};

TEST_F(PageTurnTest, WhereDragsAndReleasesLeadTo) {
    for (const Turn& turn : kTurns) {
        SCOPED_TRACE(turn.szWhat);
        w.SetFamily(turn.szFamily);
        w.Open(MakePages(5, turn.fPageWidth, turn.fPageHeight), 300, 500, turn.nPage);
        for (const Drag& drag : turn.drags) {
            w.Viewer().MoveScreen(drag.dbY, drag.dbX);
        }
        if (turn.dbRelease) {
            w.Viewer().AlignPageAfterScroll(0.0, *turn.dbRelease);
        }
        EXPECT_EQ(w.Laid(), turn.expected);
        w.ExpectSharp();
    }
}

TEST_F(PageTurnTest, AReleaseOfPagesAtExactlyHalfKeepsTheNearer) {
    std::vector<ScriptedPage> pages = MakePages(4, 300, 500);
    pages[1] = MakePage(250, 500);
    w.Open(pages, 300, 500, 2);
    MoveX(-10);
    MoveX(-140);
    ASSERT_EQ(w.Laid(), (Places{{1, -110, 0, 250, 500}, {2, 150, 0, 300, 500}}));
    w.Viewer().AlignPageAfterScroll(0, -150);
    EXPECT_EQ(w.Laid(), (Places{{1, 25, 0, 250, 500}}));
}

TEST_F(PageTurnTest, TheCurrentPageIsTheOneInItsPlaceElseTheLast) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    MoveX(-10);
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 2);
    MoveX(-300);
    EXPECT_EQ(w.Viewer().GetVisiblePages(), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 1);
    MoveX(40);
    EXPECT_EQ(w.Viewer().GetPagePosition()->nPageIndex, 2); // page 1 hangs out, and goes
    EXPECT_EQ(w.Laid(), (Places{{2, 260, 0, 300, 500}}));
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 2);
}

// Asked in the middle of a frame, the place is told as if the page that hangs
// out had gone, and the frame shows both.
TEST_F(PageTurnTest, AQuestionWithinAFrameTakesNoPageAway) {
    w.Open(MakePages(5, 300, 500), 300, 500, 1);
    MoveX(10);
    std::int32_t nTold = -1;
    w.pOwner->fnDrawn = [&](std::int32_t) { nTold = w.Viewer().GetPagePosition()->nPageIndex; };
    w.pOwner->drawn.clear();
    MoveX(90);
    w.pOwner->fnDrawn = nullptr;
    EXPECT_EQ(w.pOwner->drawn, (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(nTold, 2);
    EXPECT_EQ(w.Laid().size(), 2U);
}

TEST_F(PageTurnTest, MovesThatAreNoneAndHandlersThatInterfere) {
    w.Open(MakePages(9, 300, 500), 300, 500, 4);
    for (const double dbX : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        w.Viewer().MoveScreen(-dbX, dbX);
        w.Viewer().AlignPageAfterScroll(dbX, dbX);
        EXPECT_EQ(w.Laid(), (Places{{4, 0, 0, 300, 500}}));
    }
    // A handler that turns on while the neighbour is first measured waits its turn.
    w.pDocumentOwner->fnLoaded = [this](std::int32_t) { w.Viewer().GotoPage(8); };
    MoveX(10);
    EXPECT_EQ(w.Laid().size(), 2U);
    w.pDocumentOwner->fnLoaded = nullptr;
    w.Settle();
    EXPECT_EQ(w.Laid(), (Places{{8, 0, 0, 300, 500}}));
    // One that closes the viewer in the frame of a release leaves nothing behind.
    MoveX(-10);
    w.pOwner->fnDrawn = [this](std::int32_t) { w.Viewer().CloseViewer(); };
    w.Viewer().AlignPageAfterScroll(0, -300);
    w.pOwner->fnDrawn = nullptr;
    w.Settle();
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_EQ(w.Device().LiveBitmaps(), 0);
    w.Viewer().MoveScreen(0, 10);
    w.Zoom({1, 1}, 2, true);
    w.Viewer().InvaildateLayout();
    w.Viewer().RotateViewer(1);
    EXPECT_TRUE(w.Laid().empty());
}

TEST_F(PageTurnTest, AScaledPageFollowsAPointWithinItsEdgesOnly) {
    w.Open(MakePages(5, 700, 900), 300, 500, 1);
    w.Zoom({0, 0}, 2.0, true);
    ASSERT_EQ(w.Laid(), (Places{{1, 0, 0, 1400, 1800}}));
    w.Viewer().PageSizeChanged(250, 100);
    EXPECT_EQ(w.Laid(), (Places{{1, -250, -100, 1400, 1800}}));
    w.Viewer().PageSizeChanged(4000, 9000);
    EXPECT_EQ(w.Laid(), (Places{{1, -1100, -1300, 1400, 1800}}));
    w.Viewer().GotoPage(3);
    w.Zoom({0, 0}, 1.0, true);
    w.Viewer().PageSizeChanged(250, 100); // at scale 1.0 too
    EXPECT_EQ(w.Laid(), (Places{{3, -250, -100, 700, 900}}));
    w.Viewer().PageSizeChanged(-270, 0); // beyond the left edge
    EXPECT_EQ(w.Laid(), (Places{{3, 0, -100, 700, 900}}));
    w.Zoom({150, 250}, 0.98, true); // never into the middle
    EXPECT_LE(w.Laid().front().dbX, 0.0);
    EXPECT_GE(w.Laid().front().dbX, -10.0);
}

}

}
