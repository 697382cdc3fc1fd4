// The viewer of single pages at rest: pages, sizes, turns.
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

}

}
