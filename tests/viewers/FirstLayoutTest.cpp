// Layouts from the start: opening, going to a page, new sizes and turns.
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class FirstLayoutTest : public ViewerTest {};

TEST_F(FirstLayoutTest, TheDesktopTakesTheControlsFitWhateverScaleIsAsked) {
    w.Make(MakePages(5, 100, 200), 300, 500);
    w.pOwner->dbFit = 1.5;
    w.Viewer().InitLayOut(1, 3.0, 0.0, 0.0);
    EXPECT_EQ(w.pOwner->askedModes, std::vector<std::int32_t>{1});
    EXPECT_EQ(w.Viewer().GetScale(), 1.5F);
    EXPECT_EQ(w.Laid().front(), (Place{1, 75, 0, 150, 300}));
    EXPECT_EQ(w.host.CountDebug("InitLayOut\n"), 1U);

    w.pOwner->dbFit = 9.0; // above the limit
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);

    w.pOwner.reset(); // the control is gone: the scale stays
    w.Viewer().InitLayOut(0, 2.0, 0.0, 0.0);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
}

TEST_F(FirstLayoutTest, TheMobileFitsThePageAtScaleOne) {
    w.SetFamily("Windows.Mobile");
    // 400 x 200 on 300 x 500: the width decides, 300 x 150.
    w.Open(MakePages(5, 400, 200), 300, 500);
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    EXPECT_EQ(w.Laid().front(), (Place{0, 0, 0, 300, 150}));
    // 100 x 500 on 300 x 500: fit page is 1, fit width 3.
    w.Open(MakePages(5, 100, 500), 300, 500);
    EXPECT_EQ(w.Viewer().GetScale(), 3.0F);
    EXPECT_EQ(w.Laid().front(), (Place{0, 0, 0, 300, 1500}));
    // A scale that is asked for stands; offsets too.
    w.Viewer().InitLayOut(2, 2.0, 0.0, -40.0);
    EXPECT_EQ(w.Laid().front(), (Place{2, 50, -40, 200, 1000}));
    // Turned, the quotient is at most 1, so the default is 1.
    w.Viewer().SetRotate(1);
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    EXPECT_EQ(w.Laid().front(), (Place{0, 0, 0, 300, 60}));
}

TEST_F(FirstLayoutTest, OtherFamiliesKeepTheScaleAndTheirOwnLimits) {
    w.SetFamily("Windows.Holographic");
    w.Make(MakePages(5, 100, 200), 300, 500);
    w.Viewer().SetScale(5.5F);
    w.Viewer().InitLayOut(0, 2.0, 0.0, 0.0);
    EXPECT_EQ(w.Laid().front().nWidth, 550);
    EXPECT_TRUE(w.pOwner->askedModes.empty());
    EXPECT_EQ(w.Viewer().GetMinScale(), 1.0F);
    EXPECT_EQ(w.Viewer().GetMaxScale(), 6.0F);
    w.Viewer().SetScale(0.1F);
    EXPECT_EQ(w.Viewer().GetScale(), 0.1F);
    w.Viewer().SetScale(5.5F);
    w.SetFamily("Windows.Desktop"); // the limit comes down
    EXPECT_EQ(w.Viewer().GetMinScale(), 0.5F);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
    w.SetFamily("Windows.Mobile");
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
}

TEST_F(FirstLayoutTest, TheLogicalDpiIsPartOfTheSize) {
    w.host.Environment().SetLogicalDpi(96.0F);
    w.Open(MakePages(2, 612, 792), 1000, 800);
    EXPECT_EQ(w.Laid().front(), (Place{0, 92, 0, 816, 1056}));
    // A scale of 0 asks for the one that fits: 792 points shown on 800 pixels.
    w.pOwner->dbFit = 0.0;
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    EXPECT_EQ(w.Laid().front().nHeight, 800);
    w.Viewer().SetRotate(1);
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    // A turned page takes the width for the height there: 612 * (1000 / 792).
    EXPECT_EQ(w.Laid().front().nWidth, 772);
    EXPECT_EQ(w.Laid().front().nHeight, 597);
}

TEST_F(FirstLayoutTest, APlaceOffTheScreenIsBroughtBack) {
    w.Make(MakePages(9, 100, 200), 300, 500);
    for (const double dbY : {-5000.0, -1200.0, 500.0, 9000.0, -1e300, 1e300}) {
        w.Viewer().InitLayOut(4, 0.0, 0.0, dbY);
        EXPECT_EQ(w.Laid().front(), (Place{4, 100, 0, 100, 200})) << dbY;
    }
    w.Viewer().InitLayOut(4, 0.0, 0.0, -214.0);
    EXPECT_EQ(w.Laid().front(), (Place{4, 100, -214, 100, 200}));
    w.Viewer().InitLayOut(4, 0.0, 0.0, -215.0); // gone with its gap: the next is first
    EXPECT_EQ(w.Laid().front(), (Place{5, 100, 0, 100, 200}));
    // Sideways too, for a page wider than the screen.
    w.Open(MakePages(3, 700, 200), 300, 500);
    w.Viewer().InitLayOut(0, 0.0, -900.0, 0.0);
    EXPECT_EQ(w.Laid().front().dbX, -400.0);
    w.Viewer().InitLayOut(0, 0.0, 30.0, 0.0);
    EXPECT_EQ(w.Laid().front().dbX, 0.0);
    w.Viewer().InitLayOut(0, 0.0, -399.0, 0.0);
    EXPECT_EQ(w.Laid().front().dbX, -399.0);
}

TEST_F(FirstLayoutTest, DegenerateScreensAndDocuments) {
    for (const char* szFamily : {"Windows.Desktop", "Windows.Mobile", "Windows.Holographic"}) {
        w.SetFamily(szFamily);
        for (const float fSide : {0.0F, 1.0F}) {
            w.Open(MakePages(3, 612, 792), fSide, fSide);
            w.Viewer().MoveScreen(100, 100);
            w.Viewer().PageScaled({0, 0}, 2.0, false, true);
            w.Viewer().GotoPage(2);
            w.Viewer().RotateViewer(1);
            w.Resize(300, 500);
            w.Viewer().InvaildateLayout();
            w.Settle();
            EXPECT_FALSE(w.Laid().empty()) << szFamily << fSide;
            EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsDisplay && !b.bHasBitmap; }),
                      0U);
        }
        // A page of a given scale on a screen of one pixel keeps few blocks.
        w.Open(MakePages(1, 612, 792), 1, 1);
        EXPECT_LT(w.CountBlocks([](const auto&) { return true; }), 5000U);
    }
    w.Make({}, 300, 500);
    w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
    w.Viewer().GotoPage(3);
    w.Viewer().MoveScreen(10, 10);
    w.Viewer().InvaildateLayout();
    w.Viewer().GotoDestination(0, 2, {});
    EXPECT_TRUE(w.Viewer().GetVisiblePages().empty());
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 0);
}

TEST_F(FirstLayoutTest, IndexesOutOfTheDocument) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    for (const std::int32_t nPage : {-1, 9, 400}) {
        w.Viewer().InitLayOut(nPage, 0.0, 0.0, 0.0);
        EXPECT_TRUE(w.Laid().empty());
    }
    w.Viewer().GotoPage(-7);
    EXPECT_EQ(w.Laid().front().nPage, 0);
    w.Viewer().GotoPage(1000);
    EXPECT_EQ(w.Laid().back(), (Place{8, 100, 300, 100, 200}));
    w.Viewer().GotoDestination(9, 2, {});
    EXPECT_EQ(w.Laid().back().nPage, 8);
}

// --- going to a page ---

TEST_F(FirstLayoutTest, GoingToAPageShowsItsTop) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Viewer().GotoPage(4);
    EXPECT_EQ(w.Laid(),
              (Places{{4, 100, 0, 100, 200}, {5, 100, 215, 100, 200}, {6, 100, 430, 100, 200}}));
    // The page that is first already goes to its top.
    w.Viewer().MoveScreen(60, 0);
    w.Viewer().GotoPage(4);
    EXPECT_EQ(w.Laid().front(), (Place{4, 100, 0, 100, 200}));
}

TEST_F(FirstLayoutTest, NearTheEndTheDocumentsEndFillsTheScreen) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    const Places end = {{6, 100, -130, 100, 200}, {7, 100, 85, 100, 200}, {8, 100, 300, 100, 200}};
    for (const std::int32_t nPage : {7, 8}) {
        w.Viewer().GotoPage(nPage);
        EXPECT_EQ(w.Laid(), end) << nPage;
        w.Viewer().GotoPage(0);
    }
    // From page 6 on the pages still fill it.
    w.Viewer().GotoPage(6);
    EXPECT_EQ(w.Laid().front(), (Place{6, 100, 0, 100, 200}));

    // A document lower than the screen starts at its first page.
    w.Open(MakePages(2, 100, 200), 300, 500);
    w.Viewer().GotoPage(1);
    EXPECT_EQ(w.Laid().front(), (Place{0, 100, 0, 100, 200}));
    // Heights count before they are truncated.
    w.Open(MakePages(3, 100, 249.75F), 300, 500);
    w.Viewer().GotoPage(2);
    EXPECT_EQ(w.Laid().front().dbY, -14.5);
}

// --- sizes and turns ---

TEST_F(FirstLayoutTest, AResizeInTheSameOrientationKeepsThePlace) {
    w.Open(MakePages(9, 100, 600), 300, 500);
    w.Viewer().MoveScreen(700, 0);
    const Place first = w.Laid().front();
    w.Resize(320, 560);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid().front(), (Place{1, 110, first.dbY, 100, 600}));
    EXPECT_EQ(w.host.CountDebug("InvaildateLayout - UpdateViewer\n"), 1U);
}

TEST_F(FirstLayoutTest, AChangedOrientationFitsThePageAnew) {
    w.Open(MakePages(9, 100, 600), 300, 500);
    w.Viewer().MoveScreen(700, 0);
    w.pOwner->dbFit = 0.5;
    w.Resize(500, 300);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid().front(), (Place{1, 225, 0, 50, 300}));
    w.Resize(300, 300); // a square counts as changed
    w.Viewer().MoveScreen(100, 0);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid().front().dbY, 0.0);
}

TEST_F(FirstLayoutTest, TheEndOfTheDocumentLimitsWhatAResizeKeeps) {
    w.Open(MakePages(4, 100, 400), 300, 500);
    w.Viewer().GotoPage(3);
    EXPECT_EQ(w.Laid().front(), (Place{2, 100, -315, 100, 400}));
    w.Resize(300, 1100);
    w.Viewer().InvaildateLayout();
    // Pages 2 and 3 do not fill the screen: from page 1 on, whose overhang of
    // 130 is reckoned against the offset that was.
    EXPECT_EQ(w.Laid().front().nPage, 1);
    EXPECT_EQ(w.Laid().front().dbY, 185.0);
}

TEST_F(FirstLayoutTest, TurningKeepsThePage) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Viewer().MoveScreen(700, 0);
    ASSERT_EQ(w.Viewer().GetCurrentPageIndex(), 3);
    for (const auto& [nTurn, nStored] : {std::pair{1, 1}, {-1, 1}, {5, 1}, {4, 0}, {-6, 2}}) {
        w.Viewer().RotateViewer(nTurn);
        EXPECT_EQ(w.Viewer().GetRotate(), nStored);
        EXPECT_EQ(w.Laid().front().nPage, 3) << nTurn;
        EXPECT_EQ(w.Laid().front().nWidth, nStored == 1 ? 200 : 100);
    }
    w.Viewer().SetRotate(2);
    EXPECT_EQ(w.Laid().front().nHeight, 200); // no layout
    // Also in a square window, where the fit starts anew.
    w.Open(MakePages(9, 100, 200), 400, 400);
    w.Viewer().GotoPage(4);
    w.Viewer().RotateViewer(1);
    EXPECT_EQ(w.Laid().front(), (Place{4, 100, 0, 200, 100}));
}

TEST_F(FirstLayoutTest, TheStateToSave) {
    w.Make(MakePages(9, 400, 200), 300, 500);
    Windows::Foundation::Collections::PropertySet values;
    w.Viewer().SaveViewerState(values);
    EXPECT_EQ(values.Size(), 0U);
    w.Viewer().InitLayOut(1, 0.0, 0.0, 0.0);
    w.Viewer().MoveScreen(40, 30);
    w.Viewer().SaveViewerState(values);
    EXPECT_EQ(values.Lookup("CurrentPageIndex").Get<std::int32_t>(), 1);
    EXPECT_EQ(values.Lookup("OffsetX").Get<double>(), -30.0);
    EXPECT_EQ(values.Lookup("OffsetY").Get<double>(), -40.0);
    // Laid out from these it stands as before.
    const Places before = w.Laid();
    w.Viewer().InitLayOut(1, 0.0, -30.0, -40.0);
    EXPECT_EQ(w.Laid(), before);
}

TEST_F(FirstLayoutTest, EveryOperationEndsWithTheViewer) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    w.Viewer().CloseViewer();
    EXPECT_TRUE(w.Viewer().GetVisiblePages().empty());
    EXPECT_FALSE(w.Viewer().PagePointToDevicePoint(0, {1, 1})->bIsValid);
    w.Viewer().Dispose();
    w.Viewer().Dispose();
    Windows::Foundation::Collections::PropertySet values;
    vkit::PageViewerBase& viewer = w.Viewer();
    const std::vector<std::function<void()>> operations = {
        [&] { viewer.PageScaled({}, 1, false, true); },
        [&] { viewer.MoveScreen(1, 1); },
        [&] { viewer.RotateViewer(1); },
        [&] { viewer.InvaildateLayout(); },
        [&] { viewer.InitLayOut(0, 0, 0, 0); },
        [&] { viewer.UpdateViewer(); },
        [&] { viewer.OnRenderCanvas(nullptr); },
        [&] { viewer.CloseViewer(); },
        [&] { viewer.GotoPage(0); },
        [&] { viewer.GetCurrentPageIndex(); },
        [&] { viewer.GetScale(); },
        [&] { viewer.SetScale(1); },
        [&] { viewer.GetMinScale(); },
        [&] { viewer.GetMaxScale(); },
        [&] { viewer.GetRotate(); },
        [&] { viewer.SetRotate(0); },
        [&] { viewer.GetPagePosition(); },
        [&] { viewer.DevicePointToPagePoint({}); },
        [&] { viewer.GetPageScreenOffset(0); },
        [&] { viewer.PagePointToDevicePoint(0, {}); },
        [&] { viewer.PageRectToDeviceRect(0, {}); },
        [&] { viewer.AlignPageAfterScroll(0, 0); },
        [&] { viewer.ClearPagesBitmap(); },
        [&] { viewer.PageSizeChanged(0, 0); },
        [&] { viewer.GotoDestination(0, 2, {}); },
        [&] { viewer.SetNightMode(true); },
        [&] { viewer.RedrawScreen(); },
        [&] { viewer.UpdatePageAfterAnnotEdit(0); },
        [&] { viewer.PageRectToScreenRect(0, {}); },
        [&] { viewer.ScreenRectToPageRect(0, {}); },
        [&] { viewer.IsPointInPage({}); },
        [&] { viewer.GetPageIndexAtPoint({}); },
        [&] { viewer.AdjustPointInPage({}, 0); },
        [&] { viewer.GetPageRectAtPoint({}, 0); },
        [&] { viewer.ClearCanvas(nullptr); },
        [&] { viewer.ClearScreen(); },
        [&] { viewer.DeviceRectToPageRect(0, {}); },
        [&] { viewer.GetDisplayMatrix(0); },
        [&] { viewer.CancelRender(); },
        [&] { viewer.GetPageBackgroundColor(); },
        [&] { viewer.SetPageBackgroundColor({}); },
        [&] { viewer.GetPageForegroundColor(); },
        [&] { viewer.SetPageForegroundColor({}); },
        [&] { viewer.SetPageColors({}, {}); },
        [&] { viewer.SaveViewerState(values); },
        [&] { viewer.GetVisiblePages(); },
    };
    EXPECT_EQ(operations.size(), 46U);
    for (std::size_t n = 0; n < operations.size(); ++n) {
        EXPECT_THROW(operations[n](), Platform::ObjectDisposedException) << n;
    }
}

}

}
