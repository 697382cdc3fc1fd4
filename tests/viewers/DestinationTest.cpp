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

TEST_F(DestinationTest, WhereEachKindLeads) {
    struct Case {
        Layout eLayout;
        Kind eKind;
        std::vector<float> values;
        float fScale;
        Place expected;
    };
    constexpr auto kColumn = Layout::Continuous;
    constexpr auto kSingle = Layout::Single;
    const Case cases[] = {
        // 100 points below the top, the zoom stays; wider than the screen, the
        // left counts too; the document's end limits both.
        {kColumn, kExplicit, {0, 300, 0}, 1.0F, {3, 50, -100, 200, 400}},
        {kColumn, kExplicit, {60, 300, 2}, 2.0F, {3, -100, -200, 400, 800}},
        {kColumn, kExplicit, {20, 400, 2}, 2.0F, {2, -40, 0, 400, 800}},
        {kColumn, kExplicit, {0, 10, 1}, 1.0F, {8, 50, 100, 200, 400}},
        {kColumn, kPage, {}, 1.0F, {4, 50, 0, 200, 400}},
        {kColumn, kWidth, {100, 100}, 1.5F, {4, 0, 0, 300, 600}},
        {kColumn, kHeight, {40, 40}, 1.0F, {2, 50, 0, 200, 400}},
        // 100 x 125 points, so 3 times across and 4 times down: 3 it is.
        {kColumn, kRectangle, {50, 300, 150, 175}, 3.0F, {3, -150, -300, 600, 1200}},
        {kColumn, kRectangle, {0, 400, 100, 275}, 3.0F, {3, 0, 0, 600, 1200}},
        {kColumn, kBoxWidth, {330, 330}, 1.5F, {4, 0, -150, 300, 600}}, // 100 below the box's top
        {kColumn, kBoxHeight, {0, 0}, 1.25F, {4, 25, 0, 250, 500}},
        {kColumn, kBoxHeight, {}, 1.25F, {8, 25, 0, 250, 500}},
        {kSingle, kExplicit, {0, 700, 2}, 1.0F, {3, 50, -100, 200, 800}}, // it comes up at 1.0
        {kSingle, kExplicit, {50, 100, 0}, 1.0F, {3, 50, -300, 200, 800}},
        {kSingle, kPage, {}, 1.0F, {3, 50, 0, 200, 800}},
        {kSingle, kWidth, {600}, 1.0F, {3, 50, -200, 200, 800}},
        {kSingle, kHeight, {150}, 1.0F, {3, 50, 0, 200, 800}},
        {kSingle, kRectangle, {1, 2, 3, 4}, 1.0F, {3, 50, 0, 200, 800}},
        {kSingle, kBox, {}, 0.625F, {3, 87.5, 0, 125, 500}}, // as large as the page: fits like it
        {kSingle, kBoxWidth, {500}, 1.5F, {3, 0, -450, 300, 1200}},
        {kSingle, kBoxHeight, {}, 0.625F, {3, 87.5, 0, 125, 500}}, // stored as it is shown
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "kind " << c.eKind << ", " << c.expected);
        ScriptedPage page = MakePage(200, c.eLayout == kSingle ? 800 : 400);
        if (c.eLayout == kSingle) {
            page.rcBox = {0, 0, 200, 800};
        } else if (c.eKind >= kBox) {
            page.rcBox = {20, 30, 220, 430};
        }
        w.SetLayout(c.eLayout);
        w.Open(std::vector<ScriptedPage>(9, page), 300, 500);
        w.Settle();
        Go(c.expected.nPage, c.eKind, c.values);
        const Place place = Of(c.expected.nPage);
        EXPECT_NEAR(place.dbX, c.expected.dbX, 1.0);
        EXPECT_NEAR(place.dbY, c.expected.dbY, 1.0);
        EXPECT_EQ(place.nWidth, c.expected.nWidth);
        EXPECT_EQ(place.nHeight, c.expected.nHeight);
        EXPECT_NEAR(w.Viewer().GetScale(), c.fScale, 1e-5);
        EXPECT_THROW(w.Viewer().GotoDestination(3, kExplicit, {1, 2}),
                     Platform::OutOfBoundsException);
        EXPECT_EQ(Of(c.expected.nPage), place);
    }
}

TEST_F(DestinationTest, RectanglesWithoutAnAreaAndBeyondThePage) {
    Go(3, kRectangle, {10, 10, 10, 10}); // as far in as it goes
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
    Go(3, kRectangle, {-100, 500, 300, -100}); // like the page
    EXPECT_EQ(w.Viewer().GetScale(), 1.25F);
    // An only page never hangs below the top.
    w.Open(MakePages(1, 200, 300), 300, 500);
    Go(0, kRectangle, {20, 250, 120, 150});
    EXPECT_LE(Of(0).dbY, 0.0);
    Go(0, kBoxHeight, {});
    EXPECT_LE(Of(0).dbY, 0.0);
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
