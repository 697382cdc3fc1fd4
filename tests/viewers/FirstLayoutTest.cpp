// Layouts from the start: opening, going to a page, new sizes and turns.
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class FirstLayoutTest : public ViewerTest {};

TEST_F(FirstLayoutTest, TheControlsFitIsLimitedAndMayBeGone) {
    w.Make(MakePages(5, 100, 200), 300, 500);
    w.pOwner->dbFit = 9.0; // above the limit
    w.Viewer().InitLayOut(0, 3.0, 0.0, 0.0);
    EXPECT_EQ(w.pOwner->askedModes, std::vector<std::int32_t>{1});
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);

    w.pOwner.reset(); // the control is gone: the scale stays
    w.Viewer().InitLayOut(0, 2.0, 0.0, 0.0);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
}

TEST_F(FirstLayoutTest, EachFamilyHasItsOwnFirstScale) {
    struct Case {
        Layout eLayout;
        const char* szFamily;
        float fWidth; // of each page
        float fHeight;
        double dbScale;
        std::int32_t nRotate;
        double dbY;
        float fScale;
        Place expected;
    };
    constexpr auto kColumn = Layout::Continuous;
    constexpr auto kSingle = Layout::Single;
    constexpr const char* kDesktop = "Windows.Desktop";
    constexpr const char* kMobile = "Windows.Mobile";
    constexpr const char* kOther = "Windows.Holographic";
    const Case cases[] = {
        // The mobile fits the page at a scale of 1.0; what is asked for stands.
        {kColumn, kMobile, 400, 200, 0.0, 0, 0, 1.0F, {0, 0, 0, 300, 150}},
        {kColumn, kMobile, 100, 500, 0.0, 0, 0, 3.0F, {0, 0, 0, 300, 1500}},
        {kColumn, kMobile, 100, 500, 2.0, 0, -40, 2.0F, {2, 50, -40, 200, 1000}},
        {kColumn, kMobile, 100, 500, 0.0, 1, 0, 1.0F, {0, 0, 0, 300, 60}},
        {kSingle, kMobile, 100, 400, 0.0, 0, -20, 2.4F, {3, 0, -20, 300, 1200}},
        {kSingle, kMobile, 100, 400, 0.0, 1, -20, 1.0F, {3, 0, 212.5, 300, 75}},
        {kSingle, kMobile, 100, 400, 9.0, 0, -20, 6.0F, {3, -7, -20, 750, 3000}},
        // The desktop takes the control's fit, whatever is asked for.
        {kColumn, kDesktop, 100, 200, 3.0, 0, 0, 1.5F, {1, 75, 0, 150, 300}},
        {kSingle, kDesktop, 100, 400, 2.0, 0, -20, 1.5F, {3, 75, -20, 150, 600}},
        {kSingle, kDesktop, 100, 400, 0.0, 0, -20, 1.5F, {3, 75, -20, 150, 600}},
        {kSingle, kOther, 100, 400, 0.0, 0, -20, 2.4F, {3, 30, -20, 240, 960}},
        {kSingle, kOther, 100, 400, 1.0, 0, -20, 1.0F, {3, 100, 50, 100, 400}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.szFamily << " " << c.expected);
        w.SetLayout(c.eLayout);
        w.SetFamily(c.szFamily);
        w.Make(MakePages(5, c.fWidth, c.fHeight), 300, 500);
        w.pOwner->dbFit = 1.5;
        w.Viewer().SetRotate(c.nRotate);
        w.Viewer().InitLayOut(c.expected.nPage, c.dbScale, -7, c.dbY);
        EXPECT_EQ(w.Viewer().GetScale(), c.fScale);
        EXPECT_EQ(w.Laid().front(), c.expected);
        w.Viewer().InitLayOut(c.expected.nPage, c.dbScale, 1e9, -1e9); // never off the screen
        const Place far = w.Laid().front();
        EXPECT_TRUE(far.dbX <= std::max(0.0, (300.0 - far.nWidth) / 2));
        EXPECT_TRUE(far.dbY + far.nHeight >= std::min(500.0, double(far.nHeight)));
        w.ExpectSharp();
    }
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

TEST_F(FirstLayoutTest, ADocumentWithoutPages) {
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        w.SetLayout(eLayout);
        w.Make({}, 300, 500);
        w.Viewer().InitLayOut(0, 0.0, 0.0, 0.0);
        w.Viewer().GotoPage(3);
        w.Viewer().MoveScreen(10, 10);
        w.Viewer().InvaildateLayout();
        w.Viewer().RotateViewer(1);
        w.Viewer().GotoDestination(0, 6, {});
        EXPECT_TRUE(w.Viewer().GetVisiblePages().empty());
        EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 0);
    }
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

// Closed, it answers as without pages; after its end it refuses what would lay
// out, draw or render.
TEST_F(FirstLayoutTest, OperationsEndWithTheViewer) {
    w.Open(MakePages(9, 100, 200), 300, 500);
    vkit::PageViewerBase& viewer = w.Viewer();
    viewer.CloseViewer();
    EXPECT_TRUE(viewer.GetVisiblePages().empty());
    EXPECT_FALSE(viewer.PagePointToDevicePoint(0, {1, 1})->bIsValid);
    viewer.Dispose();
    viewer.Dispose();
    Windows::Foundation::Collections::PropertySet values;
    const std::vector<std::function<void()>> operations = {
        [&] { viewer.PageScaled({}, 1, false, true); },
        [&] { viewer.MoveScreen(1, 1); },
        [&] { viewer.AlignPageAfterScroll(0, 0); },
        [&] { viewer.PageSizeChanged(0, 0); },
        [&] { viewer.RotateViewer(1); },
        [&] { viewer.InvaildateLayout(); },
        [&] { viewer.InitLayOut(0, 0, 0, 0); },
        [&] { viewer.GotoPage(0); },
        [&] { viewer.GotoDestination(0, 2, {}); },
        [&] { viewer.UpdateViewer(); },
        [&] { viewer.OnRenderCanvas(nullptr); },
        [&] { viewer.ClearCanvas(nullptr); },
        [&] { viewer.ClearScreen(); },
        [&] { viewer.CloseViewer(); },
        [&] { viewer.SetNightMode(true); },
        [&] { viewer.SetPageColors({}, {}); },
        [&] { viewer.RedrawScreen(); },
        [&] { viewer.UpdatePageAfterAnnotEdit(0); },
        [&] { viewer.CancelRender(); },
        [&] { viewer.ClearPagesBitmap(); },
        [&] { viewer.GetPagePosition(); },
        [&] { viewer.DevicePointToPagePoint({}); },
        [&] { viewer.GetDisplayMatrix(0); },
        [&] { viewer.SaveViewerState(values); },
        [&] { viewer.GetVisiblePages(); },
    };
    for (std::size_t n = 0; n < operations.size(); ++n) {
        EXPECT_THROW(operations[n](), Platform::ObjectDisposedException) << n;
    }
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

}

}
