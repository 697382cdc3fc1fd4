// Destinations of the document, by their kinds.
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

enum Kind { kExplicit = 1, kPage, kWidth, kHeight, kRectangle, kBox, kBoxWidth, kBoxHeight };

// Pages of 200 x 400 on 300 x 500.
class DestinationTest : public ViewerTest {
protected:
    void SetUp() override {
        w.Open(MakePages(9, 200, 400), 300, 500);
        w.Settle();
    }
    void Go(std::int32_t nPage, Kind eKind, std::vector<float> values) {
        w.Viewer().GotoDestination(nPage, eKind, values);
        w.ExpectSharp();
    }
    Place Of(std::int32_t nPage) const {
        const vkit::Render_ScreenOffsetInfo rc = w.ItemOf(nPage).screenRect;
        return {nPage, rc.dbOffsetX, rc.dbOffsetY, rc.nWidth, rc.nHeight};
    }
};

TEST_F(DestinationTest, AnExplicitPlaceAndZoom) {
    Go(3, kExplicit, {0, 300, 0}); // 100 points below the top, the zoom stays
    EXPECT_EQ(Of(3), (Place{3, 50, -100, 200, 400}));
    Go(3, kExplicit, {60, 300, 2}); // wider than the screen: the left counts too
    EXPECT_EQ(Of(3), (Place{3, -100, -200, 400, 800}));
    EXPECT_EQ(w.Viewer().GetScale(), 2.0F);
    Go(2, kExplicit, {20, 400, 2});
    EXPECT_EQ(Of(2), (Place{2, -40, 0, 400, 800}));
    Go(8, kExplicit, {0, 10, 1}); // the document's end limits it
    EXPECT_EQ(Of(8).dbY, 100.0);
    EXPECT_THROW(w.Viewer().GotoDestination(3, kExplicit, {1, 2}), Platform::OutOfBoundsException);
    EXPECT_EQ(Of(8).dbY, 100.0);
}

TEST_F(DestinationTest, FitsOfThePage) {
    Go(4, kPage, {});
    EXPECT_EQ(Of(4), (Place{4, 50, 0, 200, 400}));
    Go(4, kWidth, {100, 100});
    EXPECT_EQ(w.Viewer().GetScale(), 1.5F);
    EXPECT_EQ(Of(4), (Place{4, 0, 0, 300, 600}));
    Go(2, kHeight, {40, 40});
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    EXPECT_EQ(Of(2), (Place{2, 50, 0, 200, 400}));
}

TEST_F(DestinationTest, ARectangleFillsTheScreen) {
    // 100 x 125 points, so 3 times across and 4 times down: 3 it is.
    Go(3, kRectangle, {50, 300, 150, 175});
    EXPECT_EQ(w.Viewer().GetScale(), 3.0F);
    EXPECT_EQ(Of(3), (Place{3, -150, -300, 600, 1200}));
    // At the page's corner nothing is left to move, and it renders all the same.
    Go(3, kRectangle, {0, 400, 100, 275});
    EXPECT_EQ(Of(3), (Place{3, 0, 0, 600, 1200}));
    Go(3, kRectangle, {10, 10, 10, 10}); // without an area: as far in as it goes
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
    Go(3, kRectangle, {-100, 500, 300, -100}); // beyond the page all around: like the page
    EXPECT_EQ(w.Viewer().GetScale(), 1.25F);
}

TEST_F(DestinationTest, TheBoxWaitsForItsPage) {
    // The box is at the origin, so that it always looks unloaded.
    w.Viewer().GotoDestination(5, kBox, {});
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    EXPECT_TRUE(w.pOwner->loaded.empty());
    w.Settle();
    EXPECT_EQ(w.pOwner->loaded, std::vector<std::int32_t>{5});
    // A box as large as the page fits like the page: 500 / 400.
    EXPECT_EQ(w.Viewer().GetScale(), 1.25F);
    Go(5, kBox, {});
    EXPECT_LE(Of(5).dbY, 15.0);

    // Who goes elsewhere meanwhile is not called back.
    w.Viewer().GotoDestination(1, kBox, {});
    w.Viewer().GotoPage(7);
    w.Settle();
    EXPECT_EQ(Of(7), (Place{7, 50, 0, 200, 400}));
    EXPECT_EQ(w.Viewer().GetScale(), 1.0F);
    w.Viewer().GotoDestination(1, kBox, {});
    w.Viewer().CloseViewer();
    w.Settle();
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_EQ(w.pOwner->loaded.size(), 2U);
}

TEST_F(DestinationTest, ABoxThatIsKnownIsShownAtOnce) {
    ScriptedPage page = MakePage(200, 400);
    page.rcBox = {20, 30, 220, 430};
    w.Open(std::vector<ScriptedPage>(9, page), 300, 500);
    Go(4, kBoxWidth, {330, 330}); // 100 below the top of the box
    EXPECT_EQ(w.Viewer().GetScale(), 1.5F);
    EXPECT_EQ(Of(4).nWidth, 300);
    EXPECT_NEAR(Of(4).dbY, -150.0, 1.0);
    w.pOwner->loaded.clear();
    Go(4, kBoxHeight, {0, 0});
    EXPECT_TRUE(w.pOwner->loaded.empty());
    EXPECT_EQ(w.Viewer().GetScale(), 1.25F); // as high as the page
    EXPECT_EQ(Of(4), (Place{4, 25, 0, 250, 500}));
}

TEST_F(DestinationTest, ADocumentOfOnePageNeverHangsBelowTheTop) {
    w.Open(MakePages(1, 200, 300), 300, 500);
    Go(0, kRectangle, {20, 250, 120, 150});
    EXPECT_EQ(w.State().items.size(), 1U);
    EXPECT_LE(Of(0).dbY, 0.0);
    Go(0, kBoxHeight, {});
    EXPECT_LE(Of(0).dbY, 0.0);
}

TEST_F(DestinationTest, TheLastPageDoesNotEndAboveTheBottom) {
    Go(8, kBoxHeight, {});
    const Place last = Of(8);
    EXPECT_GE(last.dbY + last.nHeight, 500.0 - 1.0);
    EXPECT_LE(w.Laid().front().dbY, 0.0);
}

TEST_F(DestinationTest, AFailedPageLoadEndsQuietly) {
    w.pEngine->FailPage(EngineOp::StartParse, 5);
    w.Viewer().GotoDestination(5, kBoxWidth, {100});
    w.Settle();
    EXPECT_EQ(w.Viewer().GetVisiblePages().front(), 4);
    EXPECT_FALSE(w.host.DebugContains("unobserved"));
}

// A file may name any place and any zoom: the page comes up, visible, and the
// document is not walked for it.
TEST_F(DestinationTest, PlacesFarOffAndTinyZoomsStillShowTheirPage) {
    const std::vector<std::vector<float>> all = {
        {0, 9000, 0, 0},  {0, -9000, 0, 0},   {0, 2e9F, 0, 0},      {0, -2e9F, 0, 0},
        {9e9F, 50, 0, 0}, {0, 100, 1e-4F, 0}, {-9e9F, 50, 1e9F, 0}, {0, 100, 1e-30F, 0}};
    for (const auto& values : all) {
        for (std::int32_t nKind = 1; nKind <= 8; ++nKind) {
            w.Open(MakePages(100, 400, 600), 400, 500);
            w.pEngine->ClearLog();
            w.Viewer().GotoDestination(50, nKind, values);
            w.Settle();
            const Places places = w.Laid();
            EXPECT_TRUE(std::any_of(places.begin(), places.end(),
                                    [](const Place& place) {
                                        return place.nPage == 50 && place.nWidth > 0 &&
                                               place.dbY < 500 && place.dbY + place.nHeight >= 0;
                                    }))
                << "kind " << nKind << ", " << ::testing::PrintToString(values);
            EXPECT_LE(w.pEngine->Count(EngineOp::GetPage), 60) << "kind " << nKind;
            w.Viewer().MoveScreen(10, 0);
            EXPECT_FALSE(w.Laid().empty());
        }
    }
}

}

}
