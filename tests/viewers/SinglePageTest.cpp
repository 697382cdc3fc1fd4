// The viewer of single pages at rest: layouts, zoom, destinations.
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class SinglePageTest : public ViewerTest {
protected:
    SinglePageTest() { w.SetLayout(Layout::Single); }
    void Zoom(Point pt, double dbScale, bool bComplete) {
        w.Viewer().PageScaled(pt, dbScale, false, bComplete);
    }
    void ExpectSharp() {
        w.Settle();
        for (const vkit::PageItemState& item : w.State().items) {
            for (const vkit::BlockState& block : item.blocks) {
                EXPECT_TRUE(!block.bIsDisplay || block.nBitmapWidth == block.screenRect.nWidth);
            }
        }
        EXPECT_FALSE(w.State().bShowScaleSnapshot);
        EXPECT_EQ(w.State().nScaleCacheEntries, 0U);
    }
};

TEST_F(SinglePageTest, TheFamiliesFirstLayouts) {
    const auto pages = MakePages(5, 100, 400); // page fit 1.25, width fit 3, ratio 2.4
    struct Case {
        const char* szFamily;
        double dbScale;
        std::int32_t nRotate;
        float fScale;
        Place expected;
        std::size_t nAsked;
    };
    const Case cases[] = {
        {"Windows.Desktop", 2.0, 0, 1.5F, {3, 75, -20, 150, 600}, 1},
        {"Windows.Desktop", 0.0, 0, 1.5F, {3, 75, -20, 150, 600}, 2},
        {"Windows.Mobile", 0.0, 0, 2.4F, {3, 0, -20, 300, 1200}, 0},
        {"Windows.Mobile", 0.0, 1, 1.0F, {3, 0, 212.5, 300, 75}, 0},
        {"Windows.Mobile", 9.0, 0, 6.0F, {3, -7, -20, 750, 3000}, 0},
        {"Windows.Holographic", 0.0, 0, 2.4F, {3, 30, -20, 240, 960}, 0},
        {"Windows.Holographic", 1.0, 0, 1.0F, {3, 100, 50, 100, 400}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.szFamily << c.dbScale);
        w.SetFamily(c.szFamily);
        w.Make(pages, 300, 500);
        w.pOwner->dbFit = 1.5;
        w.pOwner->askedModes.clear();
        w.Viewer().SetRotate(c.nRotate);
        w.Viewer().InitLayOut(3, c.dbScale, -7, -20);
        EXPECT_EQ(w.Viewer().GetScale(), c.fScale);
        EXPECT_EQ(w.Laid(), (Places{c.expected}));
        EXPECT_EQ(w.pOwner->askedModes.size(), c.nAsked);
        w.Viewer().InitLayOut(3, c.dbScale, 1e9, -1e9); // never off the screen
        const Place far = w.Laid().front();
        EXPECT_TRUE(far.dbX <= std::max(0.0, (300.0 - far.nWidth) / 2));
        EXPECT_TRUE(far.dbY + far.nHeight >= std::min(500.0, double(far.nHeight)));
        ExpectSharp();
    }
}

TEST_F(SinglePageTest, GoingToPages) {
    w.Open(MakePages(5, 100, 200), 300, 500, 1);
    w.Viewer().GotoPage(5);
    w.Viewer().GotoPage(-1);
    EXPECT_EQ(w.Laid().front().nPage, 1);
    const std::size_t nFrames = w.Frames();
    w.Viewer().GotoPage(1);
    EXPECT_EQ(w.Frames(), nFrames + 1);
    Zoom({150, 250}, 2.0, true);
    w.Viewer().GotoPage(3);
    EXPECT_EQ(w.Laid(), (Places{{3, 50, 50, 200, 400}})); // the desktop keeps the scale
    w.SetFamily("Windows.Holographic");
    w.Viewer().GotoPage(3); // shown already: only the stored scale goes
    EXPECT_EQ(w.Laid(), (Places{{3, 50, 50, 200, 400}}));
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    w.Viewer().GotoPage(4);
    EXPECT_EQ(w.Laid(), (Places{{4, 100, 150, 100, 200}}));
    ExpectSharp();
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
    ExpectSharp();
}

TEST_F(SinglePageTest, DegenerateScreensAndDocuments) {
    for (const char* szFamily : {"Windows.Desktop", "Windows.Mobile", "Windows.Holographic"}) {
        w.SetFamily(szFamily);
        for (const float fSide : {0.0F, 1.0F}) {
            w.Open(MakePages(3, 612, 792), fSide, fSide);
            w.Viewer().MoveScreen(100, 100);
            w.Viewer().AlignPageAfterScroll(100, 100);
            Zoom({0, 0}, 2.0, true);
            w.Viewer().GotoPage(2);
            w.Viewer().RotateViewer(1);
            w.Resize(300, 500);
            w.Viewer().InvaildateLayout();
            EXPECT_EQ(w.Laid().size(), 1U) << szFamily << fSide;
            ExpectSharp();
        }
    }
    w.Make({}, 300, 500);
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    w.Viewer().InvaildateLayout();
    w.Viewer().RotateViewer(1);
    w.Viewer().GotoDestination(0, 6, {});
    EXPECT_TRUE(w.Laid().empty());
}

// --- zoom ---

TEST_F(SinglePageTest, ThePointUnderTheCentreStays) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    for (const Point pt : {Point{150, 250}, Point{40, 400}, Point{299, 10}}) {
        for (const double dbScale : {1.7, 2.6, 4.0, 3.0, 1.3}) {
            const vkit::PDFPagePoint before = *w.Viewer().DevicePointToPagePoint(pt);
            Zoom(pt, dbScale, false);
            const vkit::PDFPagePoint after = *w.Viewer().DevicePointToPagePoint(pt);
            EXPECT_NEAR(after.pt.X, before.pt.X, 1.01 / dbScale);
            EXPECT_NEAR(after.pt.Y, before.pt.Y, 1.01 / dbScale);
        }
        Zoom(pt, 1.0, true);
        EXPECT_EQ(w.Laid(), (Places{{2, 0, 0, 300, 500}}));
    }
    Zoom({10, 10}, 0.5, true); // fits: in the middle, whatever the centre was
    EXPECT_EQ(w.Laid(), (Places{{2, 75, 125, 150, 250}}));
}

TEST_F(SinglePageTest, AGestureRendersNothingUntilItsEnd) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    w.Settle();
    w.pEngine->ClearLog();
    for (const double dbScale : {1.3, 1.8, 2.5, 8.0}) {
        Zoom({150, 250}, dbScale, false);
        EXPECT_EQ(w.State().nScaleCacheEntries, 1U);
        EXPECT_EQ(w.ItemOf(2).grid, (vkit::Render_PageDavidBlock{1, 1}));
        EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bHasBitmap; }), 1U);
        w.Settle();
    }
    EXPECT_EQ(w.Renders() + w.pEngine->Count(EngineOp::StartParse), 0);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F); // the limit is the viewer's, not the page's
    EXPECT_EQ(w.Laid().front().nWidth, 2400);
    Zoom({150, 250}, 3.0, true);
    EXPECT_TRUE(w.State().bShowScaleSnapshot);
    EXPECT_EQ(w.ItemOf(2).grid, (vkit::Render_PageDavidBlock{3, 3}));
    ExpectSharp();
    Zoom({150, 250}, 3.1, false);
    w.Viewer().MoveScreen(2, 2); // a drag before the gesture's end
    ExpectSharp();
}

TEST_F(SinglePageTest, AZoomInTheMiddleOfATurnKeepsTheNearerPage) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    w.Viewer().MoveScreen(0, 10);
    w.Viewer().MoveScreen(0, 145); // -155 and 155: as near as the other
    Zoom({10, 10}, 1.0, true);
    EXPECT_EQ(w.Laid().front().nPage, 2);
    w.Viewer().MoveScreen(0, 10);
    w.Viewer().MoveScreen(0, 146);
    Zoom({200, 10}, 1.0, true);
    EXPECT_EQ(w.Laid(), (Places{{3, 0, 0, 300, 500}}));
    ExpectSharp();
}

TEST_F(SinglePageTest, TheLogOfAZoomComesInOnePiece) {
    w.Open(MakePages(5, 300, 500), 300, 500, 2);
    w.Viewer().PageScaled({150, 250}, 2.0, true, false);
    EXPECT_EQ(w.host.CountDebug(
                  "PDFSinglePagesViewer::ZoomTo -- dbScale: 2, bIsInertial: true, "
                  "isScrollComplete: false, ScreenRect: [0, 0, 300, 500], _pdfPt: [150,250], "
                  "pCentrePt: [150,250], devicePt: [300,500], ScreenRect: [-150, -250, 600, 1000], "
                  "OffsetX: 150, OffsetY: 250, PageScaled End...\n"),
              1U);
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
        ExpectSharp();
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
