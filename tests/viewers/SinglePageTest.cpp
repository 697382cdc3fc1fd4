// The viewer of single pages at rest: layouts, zoom, destinations.
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class SinglePageTest : public ViewerTest {
protected:
    SinglePageTest() { w.SetLayout(Layout::Single); }
};

TEST_F(SinglePageTest, GoingToPages) {
    w.Open(MakePages(5, 100, 200), 300, 500, 1);
    w.Viewer().GotoPage(5);
    w.Viewer().GotoPage(-1);
    EXPECT_EQ(w.Laid().front().nPage, 1);
    const std::size_t nFrames = w.Frames();
    w.Viewer().GotoPage(1);
    EXPECT_EQ(w.Frames(), nFrames + 1);
    w.Zoom({150, 250}, 2.0, true);
    w.Viewer().GotoPage(3);
    EXPECT_EQ(w.Laid(), (Places{{3, 50, 50, 200, 400}})); // the desktop keeps the scale
    w.SetFamily("Windows.Holographic");
    w.Viewer().GotoPage(3); // shown already: only the stored scale goes
    EXPECT_EQ(w.Laid(), (Places{{3, 50, 50, 200, 400}}));
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    w.Viewer().GotoPage(4);
    EXPECT_EQ(w.Laid(), (Places{{4, 100, 150, 100, 200}}));
    w.ExpectSharp();
}

TEST_F(SinglePageTest, NewSizesAndTurns) {
    w.Open(MakePages(5, 100, 200), 300, 500, 2);
    w.Resize(320, 700); // the same way up: the control's fit
    w.pOwner->dbFit = 4.0;
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid(), (Places{{2, 0, 0, 400, 800}})); // where it was, as far as it reaches
    w.Resize(900, 500);                                 // the other: what the page works out itself
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid(), (Places{{2, 325, 0, 250, 500}}));
    EXPECT_EQ(w.Viewer().GetScale(), 2.5F);
    w.Viewer().RotateViewer(-1);
    EXPECT_EQ(w.Viewer().GetRotate(), 1);
    EXPECT_EQ(w.Laid(), (Places{{2, 200, 125, 500, 250}}));
    w.SetFamily("Windows.Mobile");
    w.Resize(200, 500);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    EXPECT_EQ(w.Laid(), (Places{{2, 0, 200, 200, 100}}));
    w.ExpectSharp();
}

TEST_F(SinglePageTest, AZoomInTheMiddleOfATurnKeepsTheNearerPage) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    w.Viewer().MoveScreen(0, 10);
    w.Viewer().MoveScreen(0, 145); // -155 and 155: as near as the other
    w.Zoom({10, 10}, 1.0, true);
    EXPECT_EQ(w.Laid().front().nPage, 2);
    w.Viewer().MoveScreen(0, 10);
    w.Viewer().MoveScreen(0, 146);
    w.Zoom({200, 10}, 1.0, true);
    EXPECT_EQ(w.Laid(), (Places{{3, 0, 0, 300, 500}}));
    w.ExpectSharp();
}

// --- destinations ---

TEST_F(SinglePageTest, Destinations) {
    struct Case {
        std::int32_t nKind;
        std::vector<float> values;
        Place expected;
        float fScale;
    };
    ScriptedPage page = MakePage(200, 800);
    page.rcBox = {0, 0, 200, 800};
    const Case cases[] = {
        {1, {0, 700, 2}, {3, 50, -100, 200, 800}, 1.0F}, // the page comes up at 1.0
        {1, {50, 100, 0}, {3, 50, -300, 200, 800}, 1.0F},
        {2, {}, {3, 50, 0, 200, 800}, 1.0F},
        {3, {600}, {3, 50, -200, 200, 800}, 1.0F},
        {4, {150}, {3, 50, 0, 200, 800}, 1.0F},
        {5, {1, 2, 3, 4}, {3, 50, 0, 200, 800}, 1.0F},
        {6, {}, {3, 87.5, 0, 125, 500}, 0.625F}, // as large as the page: fits like it
        {7, {500}, {3, 0, -450, 300, 1200}, 1.5F},
        {8, {}, {3, 87.5, 0, 125, 500}, 0.625F}, // stored as it is shown
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.nKind);
        w.Open(std::vector<ScriptedPage>(5, page), 300, 500, 1);
        w.Viewer().GotoDestination(3, c.nKind, c.values);
        w.Settle();
        ASSERT_EQ(w.Laid().size(), 1U);
        const Place place = w.Laid().front();
        EXPECT_EQ(place.nPage, 3);
        EXPECT_NEAR(place.dbX, c.expected.dbX, 1.0);
        EXPECT_NEAR(place.dbY, c.expected.dbY, 1.0);
        EXPECT_EQ(place.nWidth, c.expected.nWidth);
        EXPECT_EQ(place.nHeight, c.expected.nHeight);
        EXPECT_NEAR(w.Viewer().GetScale(), c.fScale, 1e-5);
        w.ExpectSharp();
    }
    EXPECT_THROW(w.Viewer().GotoDestination(3, 1, {1, 2}), Platform::OutOfBoundsException);
    w.Viewer().GotoDestination(9, 2, {});
    EXPECT_EQ(w.Laid().front().nPage, 3);
    w.Viewer().GotoDestination(4, 6, {}); // who goes elsewhere meanwhile is not called back
    w.Viewer().GotoPage(0);
    w.Settle();
    EXPECT_EQ(w.Laid(), (Places{{0, 50, 0, 200, 800}}));
}

}

}
