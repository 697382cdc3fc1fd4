// Text set anew: where its pages stand, what is measured when, and the bands.
#include "tests/viewers/ViewerFixture.h"
#include "viewers/reflow/PDFReflowPagesViewer.h"

namespace velko::testing {

namespace {

using namespace std::chrono_literals;

// On a screen of 300 x 500, that is 240 beside the margins, at scale 1.0.
class ReflowColumnTest : public ViewerTest {
protected:
    ReflowColumnTest() { w.SetLayout(Layout::Reflow); }

    static std::vector<ScriptedPage> Texts(const std::vector<int>& heights) {
        std::vector<ScriptedPage> pages;
        for (const int nHeight : heights) {
            pages.push_back(MakePage(100, 100));
            pages.back().nTextHeight = nHeight;
        }
        return pages;
    }
    void OpenTexts(const std::vector<int>& heights, std::int32_t nPage = 0) {
        w.Make(Texts(heights), 300, 500);
        w.Viewer().SetScale(1.0F);
        w.Viewer().InitLayOut(nPage, 7.0, 99.0, 0.0);
    }
    vkit::PDFReflowPagesViewer& Text() {
        return dynamic_cast<vkit::PDFReflowPagesViewer&>(w.Viewer());
    }
    int Measured(std::int32_t nPage = ScriptedEngine::kAnyPage) const {
        return w.pEngine->Count(EngineOp::Reflow, nPage);
    }
    Places After(double dbMove) {
        w.Viewer().MoveScreen(dbMove, 0);
        return w.Laid();
    }
    // Measuring a page takes that long.
    void TakeTime(std::chrono::milliseconds span) {
        w.pEngine->OnCall(EngineOp::Reflow,
                          [this, span](const auto&) { w.host.Clock().Pass(span); });
    }
};

TEST_F(ReflowColumnTest, StandsInAColumnBetweenMarginsAndSkipsEmptyPages) {
    OpenTexts({0, 200, 0, 0, 100, 400, 0});
    EXPECT_EQ(w.Laid(),
              (Places{{1, 30, 0, 240, 200}, {4, 30, 205, 240, 100}, {5, 30, 310, 240, 400}}));
    EXPECT_EQ(After(-1), w.Laid());
    After(101);
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 4); // the next that shows
    EXPECT_EQ(After(1e6).back(), (Place{5, 30, 100, 240, 400}));
    EXPECT_FALSE(Text().CanScrollDown());
    EXPECT_TRUE(Text().CanScrollUp());
    EXPECT_EQ(After(-1e6).front(), (Place{1, 30, 0, 240, 200}));
    // The last screen, also for pages after which nothing comes.
    w.Viewer().GotoPage(6);
    EXPECT_EQ(w.Laid().back(), (Place{5, 30, 100, 240, 400}));
    // Its end is none of the document's: what cannot be seen does not count.
    EXPECT_EQ(w.Viewer().GetVisiblePages(), (std::vector<std::int32_t>{4, 5}));
    w.Viewer().InitLayOut(6, 1.0, 0, 0);
    EXPECT_EQ(w.Laid().back().nPage, 5);
    Text().PageUp();
    EXPECT_EQ(w.Laid().front(), (Place{1, 30, 0, 240, 200}));
}

TEST_F(ReflowColumnTest, HasNothingToShowOfADocumentWithoutText) {
    OpenTexts({0, 0, 0});
    After(100);
    w.Viewer().GotoPage(1);
    w.Viewer().InvaildateLayout();
    w.Settle();
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_EQ(w.Viewer().GetCurrentPageIndex(), 2);
    EXPECT_FALSE(Text().CanScrollDown() || Text().CanScrollUp());
    EXPECT_EQ(Measured(), 3); // each once
}

TEST_F(ReflowColumnTest, PicturesThatComeBackDoSoAtThePageThatWasRead) {
    std::vector<ScriptedPage> pages = Texts({0, 0, 0, 0});
    for (ScriptedPage& page : pages) {
        page.nPictureHeight = 400;
    }
    w.Make(pages, 300, 500);
    w.Viewer().InitLayOut(2, 1.0, 0, 0);
    for (const bool bShow : {false, true}) {
        Text().Style({.bShowPicture = bShow});
        w.Viewer().InvaildateLayout();
        EXPECT_EQ(w.Laid().empty(), !bShow);
    }
    EXPECT_EQ(w.Laid().front().nPage, 2);
}

TEST_F(ReflowColumnTest, AnOnlyPageEndsTheColumnWhereItsTextEnds) {
    OpenTexts({180});
    EXPECT_EQ(After(50), (Places{{0, 30, 0, 240, 180}}));
    EXPECT_EQ(w.State().items.front().grid, (vkit::Render_PageDavidBlock{1, 1}));
    EXPECT_EQ(Measured(), 2); // the page, and its item's text
    OpenTexts({1200});
    EXPECT_EQ(After(1e5), (Places{{0, 30, -700, 240, 1200}}));
}

TEST_F(ReflowColumnTest, ScaleAndPicturesMeasureAnew) {
    std::vector<ScriptedPage> pages = Texts({200, 200, 200, 200});
    pages[1].nPictureHeight = 60;
    w.Make(pages, 300, 500);
    EXPECT_EQ(w.Viewer().GetScale(), 2.5F);
    w.Viewer().InitLayOut(1, 1.0, 0, 0);
    EXPECT_EQ(w.Laid(), (Places{{1, 30, 0, 240, 650}}));
    w.Zoom({10, 10}, 9.0, true);
    EXPECT_EQ(w.Viewer().GetScale(), 4.0F);
    EXPECT_EQ(w.Laid(), (Places{{1, 30, 0, 240, 1040}}));
    Text().Style({.bShowPicture = false});
    EXPECT_EQ(w.Laid().front().nHeight, 1040); // takes effect with the next layout
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid(), (Places{{1, 30, 0, 240, 800}}));
    // Lines no longer than can be read, in the middle of a wide screen.
    Text().Style({.dbWidestLine = 40.0});
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid().front(), (Place{1, 70, 0, 160, 1040}));
    Windows::Foundation::Collections::PropertySet values;
    w.Viewer().SaveViewerState(values);
    EXPECT_EQ(values.Lookup("ReflowScale").Get<double>(), 4.0);
    EXPECT_TRUE(values.Lookup("IsReflowShowPicture").Get<bool>());
    EXPECT_EQ(values.Lookup("CurrentPageIndex").Get<std::int32_t>(), 1);
}

TEST_F(ReflowColumnTest, MarginsLeaveRoomForTextOnNarrowScreens) {
    OpenTexts({200, 200, 200});
    for (const float fWidth : {2.0F, 20.0F, 61.0F, 100.0F}) {
        w.Resize(fWidth, 500);
        w.Viewer().InvaildateLayout();
        ASSERT_FALSE(w.Laid().empty());
        EXPECT_EQ(w.Laid().front().nWidth, static_cast<int>(fWidth / 2)) << fWidth;
    }
    w.Resize(300, 500);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.Laid().front(), (Place{0, 30, 0, 240, 200}));
}

TEST_F(ReflowColumnTest, IsCutIntoBandsOfAScreenAtMost) {
    OpenTexts({500, 501, 1700});
    EXPECT_EQ(w.ItemOf(0).grid, (vkit::Render_PageDavidBlock{1, 1}));
    After(505);
    const auto item = w.ItemOf(1);
    EXPECT_EQ(item.grid, (vkit::Render_PageDavidBlock{2, 1}));
    EXPECT_EQ(item.blocks[0].nBlockId, 0);
    EXPECT_EQ(item.blocks[0].screenRect.nHeight, 250);
    EXPECT_EQ(item.blocks[1].screenRect.nHeight, 251);
    EXPECT_EQ(item.blocks[1].screenRect.dbOffsetY, 250.0);
    After(700);
    w.ExpectSharp();
    // The second band is drawn from its own place of the text, into its own size.
    EXPECT_EQ(w.ItemOf(2).grid.nRows, 4);
    const auto renders = w.pEngine->Calls(EngineOp::StartRender);
    const auto it = std::find_if(renders.begin(), renders.end(), [](const EngineCall& call) {
        return call.nPage == 2 && call.matrix.F == -425.0F;
    });
    ASSERT_NE(it, renders.end());
    EXPECT_EQ(it->nWidth, 240);
    EXPECT_EQ(it->nHeight, 425);
    EXPECT_EQ(it->matrix.A, 1.0F);
}

TEST_F(ReflowColumnTest, AScreenOfAFewPixelsMakesFewBands) {
    OpenTexts({9000, 100});
    w.Resize(300, 2);
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.ItemOf(0).grid.nRows, w.ItemOf(0).screenRect.nHeight / 64);
    // A page that there is not is never laid out, from whichever end.
    w.Viewer().InitLayOut(99, 1.0, 0, 0);
    w.Viewer().PageSizeChanged(0, -50);
    EXPECT_EQ(w.Viewer().GetVisiblePages(), (std::vector<std::int32_t>{1}));
}

TEST_F(ReflowColumnTest, ShowsWhatItHadUntilTheNewTextIsRendered) {
    OpenTexts({200, 900, 400});
    w.ExpectSharp();
    After(150);
    w.ExpectSharp();
    for (const auto& fnChange : std::vector<std::function<void()>>{
             [&] {
                 w.Zoom({0, 0}, 2.0, true);
             },
             [&] { w.Resize(260, 480); }, [&] { w.Viewer().GotoPage(1); }}) {
        fnChange();
        w.Viewer().InvaildateLayout();
        for (const auto& item : w.State().items) {
            if (item.nPageIndex == 1) {
                EXPECT_FALSE(item.standIns.empty() && !item.blocks.front().bHasBitmap);
            }
        }
        w.ExpectSharp();
    }
}

TEST_F(ReflowColumnTest, InPageColorsOnlyWhenAHostWantsIt) {
    OpenTexts({400});
    w.Viewer().SetPageColors({255, 10, 20, 30}, {255, 200, 200, 200});
    w.ExpectSharp();
    EXPECT_EQ(w.pEngine->Calls(EngineOp::StartRender).back().nColorMode, 0);
    const auto nRenders = w.Renders();
    w.Viewer().RedrawScreen(); // paints only
    w.ExpectSharp();
    EXPECT_EQ(w.Renders(), nRenders);
    Text().Style({.bUsesPageColors = true});
    w.Viewer().RedrawScreen();
    w.ExpectSharp();
    EXPECT_EQ(w.pEngine->Calls(EngineOp::StartRender).back().nBackColor, 0xFF0A141EU);
}

// --- measuring ---

TEST_F(ReflowColumnTest, MeasuresNeighboursAheadAndNothingInBetween) {
    OpenTexts(std::vector<int>(400, 300));
    EXPECT_EQ(w.Laid().size(), 2U);
    w.Settle();
    const int nOpened = Measured();
    EXPECT_LT(nOpened, 20);
    EXPECT_EQ(Measured(4), 1); // three screens on
    w.pEngine->ClearLog();
    w.Viewer().GotoPage(399);
    EXPECT_EQ(w.Laid().back(), (Place{399, 30, 200, 240, 300}));
    w.Settle();
    EXPECT_EQ(Measured(200), 0);
    EXPECT_LT(Measured(), 20);
    // What is known is not measured on the UI thread again, but for the items' own.
    w.pEngine->ClearLog();
    w.Viewer().MoveScreen(-400, 0);
    EXPECT_EQ(Measured(), 1);
}

TEST_F(ReflowColumnTest, ScrollingGoesOnMeasuringAhead) {
    OpenTexts({300, 2500, 300, 0, 300, 300});
    w.Settle();
    EXPECT_EQ(Measured(2), 0);
    After(2000); // most of the long page lies behind
    EXPECT_EQ(Measured(2), 0);
    w.Settle();
    EXPECT_EQ(Measured(2), 1);
    EXPECT_EQ(Measured(4), 1);
    EXPECT_TRUE(w.host.DebugContains("index: 1, VOFFSET: -1695"));
}

TEST_F(ReflowColumnTest, AStepDoesNotMeasureForLong) {
    std::vector<int> heights(300, 0);
    heights[250] = 900;
    w.Make(Texts(heights), 300, 500);
    w.Viewer().SetScale(1.0F);
    TakeTime(20ms);
    w.Viewer().InitLayOut(10, 1.0, 0, 0);
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_LE(Measured(), 12);
    w.Settle(); // the pool finds the page
    EXPECT_EQ(w.Laid(), (Places{{250, 30, 0, 240, 900}}));
    w.ExpectSharp();
    EXPECT_EQ(Measured(100), 1);
    // With all of it known the ends hold.
    EXPECT_EQ(After(1e5), (Places{{250, 30, -400, 240, 900}}));
}

TEST_F(ReflowColumnTest, AColumnThatEndsUnknownIsNotTheDocumentsEnd) {
    OpenTexts({300, 60, 300, 300, 300, 300});
    w.Settle();
    TakeTime(60ms);
    w.Viewer().SetScale(2.0F);
    w.Viewer().InitLayOut(1, 1.0, 0, 0);
    EXPECT_EQ(w.Laid(), (Places{{1, 30, 0, 240, 120}})); // the others are not known yet
    EXPECT_TRUE(Text().CanScrollDown());
    w.Settle();
    EXPECT_EQ(w.Laid(), (Places{{1, 30, 0, 240, 120}, {2, 30, 125, 240, 600}}));
    // A step of the reader's measures one page at least.
    w.Viewer().SetScale(1.5F);
    w.Viewer().InitLayOut(1, 1.0, 0, 0);
    EXPECT_EQ(After(50), (Places{{1, 30, -50, 240, 90}, {2, 30, 45, 240, 450}}));
}

TEST_F(ReflowColumnTest, APageThatTakesLongIsLeftToThePool) {
    w.Make(Texts({200, 200, 200}), 300, 500);
    w.Viewer().SetScale(1.0F);
    TakeTime(5s);
    w.Viewer().InitLayOut(1, 1.0, 0, 0);
    EXPECT_TRUE(w.Laid().empty());
    EXPECT_FALSE(w.pDocument->PageFailureOf(1).has_value());
    // While the pool is at it no step waits for the engine.
    w.host.Dispatcher().RunAll();
    const int nBefore = Measured();
    w.host.Clock().Advance(1s);
    After(100);
    w.Viewer().GotoPage(2);
    EXPECT_EQ(Measured(), nBefore);
    w.ExpectSharp();
    EXPECT_EQ(w.Laid(),
              (Places{{0, 30, -110, 240, 200}, {1, 30, 95, 240, 200}, {2, 30, 300, 240, 200}}));
}

// What goes before the last pages may be known only later: the document's last screen
// is whole all the same, also where a frame of it failed meanwhile.
TEST_F(ReflowColumnTest, TheLastScreenFillsFromAboveAsPagesBecomeKnown) {
    OpenTexts(std::vector<int>(30, 100));
    TakeTime(60ms);
    w.Viewer().GotoPage(29);
    EXPECT_EQ(w.Laid(), (Places{{29, 30, 0, 240, 100}}));
    w.pFactory->FailCallOf(GraphicsCall::Present1, 1);
    w.Settle();
    EXPECT_EQ(w.Laid().back(), (Place{29, 30, 400, 240, 100}));
    EXPECT_EQ(w.Laid().front(), (Place{25, 30, -20, 240, 100}));
    w.ExpectSharp();
}

TEST_F(ReflowColumnTest, APageThatCannotBeSetTakesAPlaceAndNoOtherWithIt) {
    w.Make(Texts({200, 200, 200, 200}), 300, 500);
    w.Viewer().SetScale(1.0F);
    w.pEngine->FailPage(EngineOp::Reflow, 1);
    w.Viewer().InitLayOut(0, 1.0, 0, 0);
    EXPECT_EQ(w.Laid(),
              (Places{{0, 30, 0, 240, 200}, {1, 30, 205, 240, 125}, {2, 30, 335, 240, 200}}));
    EXPECT_TRUE(w.pDocument->PageFailureOf(1).has_value());
    w.Settle();
    EXPECT_FALSE(w.pDocument->PageFailureOf(2).has_value());
    // It is tried again by what lays it out anew.
    w.pEngine->ClearFailures();
    w.Viewer().InvaildateLayout();
    EXPECT_EQ(w.ItemOf(1).screenRect.nHeight, 200);
    w.ExpectSharp();
    EXPECT_FALSE(w.pDocument->PageFailureOf(1).has_value());
}

TEST_F(ReflowColumnTest, ClosingEndsWhatIsMeasuredAhead) {
    OpenTexts(std::vector<int>(50, 300));
    const auto pGate = w.pEngine->Hold(EngineOp::Reflow);
    w.host.Dispatcher().RunAll(); // one is handed to the pool
    w.Viewer().CloseViewer();
    pGate->Open();
    w.Settle();
    EXPECT_LE(Measured(), 6);
    w.Viewer().InitLayOut(0, 1.0, 0, 0);
    w.ExpectSharp();
    w.Viewer().GotoPage(20);
    w.pDocument->Dispose();
    EXPECT_NO_THROW(w.Settle());
}

TEST_F(ReflowColumnTest, TheLastOfAViewerGoesOnTheUiThread) {
    w.Make(Texts(std::vector<int>(50, 300)), 300, 500);
    for (int nPage = 0; nPage < 10; ++nPage) { // so that nothing is rendered beside
        w.pEngine->FailPage(EngineOp::Reflow, nPage);
    }
    w.Viewer().InitLayOut(0, 1.0, 0, 0);
    w.host.Dispatcher().RunAll(); // a page is handed to the pool
    const std::weak_ptr<vkit::PageViewerBase> wkViewer = w.pViewer;
    w.pDocument->Dispose(); // so that measuring it fails
    std::exchange(w.pViewer, nullptr)->Dispose();
    w.host.Pool().RunAll();
    EXPECT_FALSE(wkViewer.expired());
    w.Settle();
    EXPECT_TRUE(wkViewer.expired());
}

}
}
