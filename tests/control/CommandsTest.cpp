// The command surface: guards and fallbacks, and what each command asks of the
// viewer.

#include "document/VLK_Document.h"
#include "platform/ui/SwapChainPanel.h"
#include "tests/control/ControlFixture.h"
#include "tests/support/scripted_engine/ScriptedDestination.h"

namespace velko::testing {
namespace {

using Windows::Foundation::Point;
using Windows::Foundation::Rect;
using Windows::Foundation::Size;

class CommandsTest : public ControlFixture {
protected:
    // Each command without an answer, once.
    void AskForAll() {
        auto& c = *pControl;
        c.GotoPage(2);
        c.GotoDestination(nullptr);
        c.SetRenderFlags(1);
        c.SetDeleteFileOnClose(true);
        c.AddHiddenAnnotType(9);
        c.RotateViewer(1);
        c.SetScale(2.0F);
        c.ZoomAtPoint({1, 2}, 2.0, true, false);
        c.MoveScreen(10, 20);
        c.AlignPageAfterScroll(30, 40);
        c.SetPageColors({255, 9, 9, 9}, {255, 8, 8, 8});
        c.RedrawScreen();
        c.UpdatePageAfterAnnotEdit(1);
        c.UpdateViewer();
        c.CancelRender();
    }
};

using Control = vkit::PDFViewCtrl;

// A question, and its answers without template and document, with a document
// alone, with a viewer alone, with both.
struct Question {
    const char* szName;
    double (*fnAsk)(Control&);
    double answers[4];
};

constexpr Question kQuestions[] = {
    {"first", [](Control& c) { return double(c.GotoFirstPage()); }, {0, 1, 0, 1}},
    {"last", [](Control& c) { return double(c.GotoLastPage()); }, {0, 1, 0, 1}},
    {"prev", [](Control& c) { return double(c.GotoPrevPage()); }, {0, 1, 0, 0}},
    {"next", [](Control& c) { return double(c.GotoNextPage()); }, {0, 0, 0, 0}},
    {"page", [](Control& c) { return double(c.GetCurrentPageIndex()); }, {0, 0, 0, 3}},
    {"page at",
     [](Control& c) {
         return double(c.GetPageIndexAtPoint({1, 1}));
     },
     {-1, 0, 7, 7}},
    {"visible", [](Control& c) { return double(c.GetVisiblePages().size()); }, {0, 0, 2, 2}},
    {"count", [](Control& c) { return double(c.GetPageCount()); }, {0, 5, 0, 5}},
    {"delete", [](Control& c) { return double(c.GetDeleteFileOnClose()); }, {0, 1, 0, 1}},
    {"flags", [](Control& c) { return double(c.GetRenderFlags()); }, {0, 1, 0, 1}},
    {"scale", [](Control& c) { return double(c.GetScale()); }, {0, 1, 0, 2}},
    {"least", [](Control& c) { return double(c.GetMinScale()); }, {0, 1, 0, 0.5}},
    {"most", [](Control& c) { return double(c.GetMaxScale()); }, {0, 3, 0, 4}},
    {"rotate", [](Control& c) { return double(c.GetRotate()); }, {0, 0, 0, 2}},
    {"paper", [](Control& c) { return double(c.PageBgColor().R); }, {0, 0, 1, 9}},
    {"ink", [](Control& c) { return double(c.PageFgColor().R); }, {0, 0, 4, 8}},
    {"matrix", [](Control& c) { return c.GetDisplayMatrix(3, 5)[4]; }, {0, 0, 3, 3}},
    {"to page",
     [](Control& c) {
         return double(c.DevicePointToPagePoint({3, 4})->pt.X);
     },
     {3, 3, 4, 4}},
    {"rect",
     [](Control& c) { return double(c.PageRectToDeviceRect(1, Rect()).IsEmpty()); },
     {0, 0, 1, 1}},
    {"on screen",
     [](Control& c) { return double(c.GetPageScreenRect(6).has_value()); },
     {0, 0, 1, 1}},
    {"file", [](Control& c) { return double(c.GetDocumentFile() != nullptr); }, {0, 1, 0, 1}},
    {"engine", [](Control& c) { return double(c.GetPDFDoc() != nullptr); }, {0, 1, 0, 1}},
};

TEST_F(CommandsTest, EachAnswersItsFallbackWithoutWhatItWorksOn) {
    const auto fnExpect = [&](int nState) {
        AskForAll();
        for (const Question& question : kQuestions) {
            EXPECT_EQ(question.fnAsk(*pControl), question.answers[nState])
                << question.szName << " " << nState;
        }
    };
    fnExpect(0);
    EXPECT_EQ(pControl->GetPageLayoutMode(), 0);
    EXPECT_EQ(pControl->CompositionScaleX(), 1.0F);
    EXPECT_EQ(pControl->GetCanvasSize(), (Size{0, 0}));
    pControl->SetPageLayoutMode(2);
    pControl->SetZoomMode(2);
    pControl->GotoExactlyPage(0, {1, 1});
    EXPECT_EQ(pControl->GetZoomMode(), 2);
    EXPECT_TRUE(events.empty());

    Show();
    const auto fnUseViewer = [&] {
        const auto pViewer = UseScriptedViewer();
        pViewer->visiblePages = {0, 1};
        pViewer->nCurrentPage = 3;
        pViewer->nRotate = 2;
        pViewer->pRectResult.reset(); // an empty result
        return pViewer;
    };
    const auto pAlone = fnUseViewer();
    fnExpect(2);
    EXPECT_EQ(pAlone->calls, (Strings{"MoveScreen 10 20", "Align 30 40", "RedrawScreen",
                                      "AnnotEdit 1", "CancelRender"}));
    Open();
    Parts().PageViewMgr()->SetViewer(nullptr);
    fnExpect(1);
    const auto pViewer = fnUseViewer();
    fnExpect(3);
    EXPECT_EQ(pViewer->calls,
              (Strings{"GotoPage 2", "RotateViewer 1", "InitLayOut 3 2 0 0", "PageScaled 1 2 2 1 0",
                       "RedrawScreen", "MoveScreen 10 20", "Align 30 40", "SetPageColors",
                       "RedrawScreen", "AnnotEdit 1", "UpdateViewer", "CancelRender", "GotoPage 0",
                       "GotoPage 4", "GotoPage 2", "GotoPage 4"}));
    EXPECT_EQ(Parts().Document()->HiddenAnnotTypes(), (std::vector<std::int32_t>{9}));
}

TEST_F(CommandsTest, AHostCanAskWhatLiesOnTheScreenAndWhetherItIsSharp) {
    Show(1000, 800);
    Open();
    EXPECT_FALSE(pControl->IsSharp());
    host.Drain();
    EXPECT_TRUE(pControl->HasInk());
    EXPECT_TRUE(pControl->IsSharp());
    pControl->ZoomAtPoint({0, 0}, 2.0, true, false);
    EXPECT_TRUE(pControl->HasInk()); // blurred
    EXPECT_FALSE(pControl->IsSharp());
    pControl->ZoomAtPoint({0, 0}, 2.0, false, true);
    host.Drain();
    EXPECT_TRUE(pControl->IsSharp());
    const auto place = pControl->GetPageScreenRect(0);
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->nWidth, 1600); // 600 points at 96 dpi and 200 %
    EXPECT_FALSE(pControl->GetPageScreenRect(4).has_value());
    pControl->MoveScreen(100, 30);
    EXPECT_EQ(pControl->GetPageScreenRect(0)->dbOffsetY, place->dbOffsetY - 100);
    pControl->CloseDocument();
    EXPECT_FALSE(pControl->HasViewer());
    EXPECT_FALSE(pControl->HasInk() || pControl->IsSharp());
}

TEST_F(CommandsTest, PrevAndNextAnswerTrueWhenTheyStay) {
    Show();
    Open();
    const auto pViewer = UseScriptedViewer();
    EXPECT_TRUE(pControl->GotoPrevPage());
    pViewer->nCurrentPage = 4;
    EXPECT_TRUE(pControl->GotoNextPage());
    EXPECT_TRUE(pViewer->calls.empty());
}

TEST_F(CommandsTest, NumbersThatAreNoneAreRefused) {
    Show();
    Open();
    const double dbNan = std::numeric_limits<double>::quiet_NaN();
    const float fInfinity = std::numeric_limits<float>::infinity();
    EXPECT_THROW(pControl->MoveScreen(dbNan, 0), Platform::InvalidArgumentException);
    EXPECT_THROW(pControl->ZoomAtPoint({fInfinity, 0}, 1, false, true),
                 Platform::InvalidArgumentException);
    EXPECT_THROW(pControl->SetScale(static_cast<float>(dbNan)), Platform::InvalidArgumentException);
    pControl->SetScale(fInfinity); // a number above the limit
    EXPECT_FALSE(pControl->GetVisiblePages().empty());
    pControl->CloseDocument();
    EXPECT_NO_THROW(pControl->SetScale(static_cast<float>(dbNan)));
}

TEST_F(CommandsTest, ScrollingSwitchedOffBeforeTheTemplateHoldsForIt) {
    pControl->SetIsCanScrollPageViewEnabled(false);
    Show();
    EXPECT_EQ(Parts().ViewControl()->CanvasPanel()->ManipulationMode,
              Windows::UI::Xaml::Input::ManipulationMode::System);
}

TEST_F(CommandsTest, ADestinationGivesFourNumbersWithAbsentOnesZero) {
    Show();
    Open();
    const auto pViewer = UseScriptedViewer();
    auto pDestination = std::make_shared<ScriptedDestination>();
    pDestination->nPageIndex = 3;
    pDestination->nZoomMode = 5;
    pDestination->fLeft = 10;
    pDestination->fTop = 20;
    pDestination->fRight = 30;
    pDestination->fBottom = 40;
    pControl->GotoDestination(std::make_shared<ScriptedAction>(pDestination));
    pDestination->bLeftAbsent = pDestination->bTopAbsent = true;
    pControl->GotoDestination(std::make_shared<ScriptedAction>(pDestination));
    pControl->GotoDestination(std::make_shared<ScriptedAction>(nullptr));
    EXPECT_EQ(pViewer->calls,
              (Strings{"GotoDestination 3 5 10 20 30 40", "GotoDestination 3 5 0 0 30 40"}));
}

TEST_F(CommandsTest, ExactMovesPutThePointIntoTheMiddleUnlessItShows) {
    Show(1000, 800);
    Open();
    const auto pViewer = UseScriptedViewer();
    const auto pPanel = Parts().ViewControl()->CanvasPanel();
    pPanel->ArrangeAtScale({1000, 800}, 2.0F, 1.5F);
    struct Case {
        std::int32_t nPage;
        Rect rcPage;
        Point ptDevice;
        Strings calls;
        std::string strLog;
    };
    const Case cases[] = {
        {0, Rect(), {10, 20}, {"UpdateViewer"}, "GotoExactlyPage: 0, Pt: 10, 20, Not Moveto\n"},
        // laid out: not jumped to; horizontal first, each in device pixels
        {1,
         Rect(0, 0, 5, 5),
         {1200, 1000},
         {"PageSizeChanged 1400 900"},
         "GotoExactlyPage: 1, Pt: 1200, 1000, MoveTo: 700, 600\n"},
        {1,
         Rect(0, 0, 5, 0),
         {-2.5F, 0},
         {"GotoPage 1", "PageSizeChanged -1005 -600"},
         "GotoExactlyPage: 1, Pt: -2.5, 0, MoveTo: -502.5, -400\n"},
    };
    for (const Case& test : cases) {
        pViewer->calls.clear();
        host.ClearDebug();
        pViewer->rcPage = test.rcPage;
        pViewer->ptDevice = test.ptDevice;
        pControl->GotoExactlyPage(test.nPage, {1, 1});
        EXPECT_EQ(pViewer->calls, test.calls);
        EXPECT_EQ(host.CountDebug(test.strLog), 1U) << test.strLog;
    }
    pViewer->calls.clear();
    pControl->GotoExactlyPage(-1, {1, 1});
    pControl->GotoExactlyPage(5, {1, 1});
    EXPECT_TRUE(pViewer->calls.empty());
}

TEST_F(CommandsTest, OtherLayoutsJumpToALaidOutPageToo) {
    Show();
    Open();
    pControl->SetPageLayoutMode(2);
    const auto pViewer = UseScriptedViewer();
    pViewer->rcPage = Rect(0, 0, 5, 5);
    pControl->GotoExactlyPage(1, {1, 1});
    EXPECT_EQ(pViewer->calls.front(), "GotoPage 1");
}

TEST_F(CommandsTest, TheVisibleCanvasIsClippedAtTheWindowsTopLeft) {
    Show(1000, 800);
    Open();
    const auto pViewer = UseScriptedViewer();
    pControl->PositionInParent({-400, 100});
    pViewer->ptDevice = {700, 500};
    pControl->GotoExactlyPage(0, {1, 1});
    // 0 .. 600 is to be seen, and 100 .. 900: the point is right of it
    EXPECT_EQ(pViewer->calls, (Strings{"PageSizeChanged 400 100"}));
    pControl->PositionInParent({-2000, 0});
    EXPECT_THROW(pControl->GotoExactlyPage(0, {1, 1}), Platform::InvalidArgumentException);
}

TEST_F(CommandsTest, NightIsTwoColoursExactly) {
    Show();
    Open();
    const auto pViewer = UseScriptedViewer();
    pControl->NightMode(true);
    EXPECT_EQ(pViewer->background.ToArgb(), 0xFF00001BU);
    EXPECT_EQ(pViewer->foreground.ToArgb(), 0xFF5D5B71U);
    EXPECT_TRUE(pControl->NightMode());
    pViewer->background.B = 28;
    EXPECT_FALSE(pControl->NightMode());
    pControl->NightMode(false);
    EXPECT_EQ(pViewer->background, Windows::UI::Colors::White);
    EXPECT_EQ(pViewer->foreground, Windows::UI::Colors::Black);
}

TEST_F(CommandsTest, AModeChangeKeepsThePageAndTells) {
    Show();
    Open();
    pControl->SetScale(2.0F);
    const auto pOld = UseScriptedViewer();
    pOld->nCurrentPage = 2;
    events.clear();
    for (const int nNoChange : {1, 0, 3, 9, -1}) { // the same, none, those without a viewer
        pControl->SetPageLayoutMode(nNoChange);
    }
    EXPECT_TRUE(events.empty());
    EXPECT_TRUE(pOld->calls.empty());
    EXPECT_EQ(pControl->GetPageLayoutMode(), 1);
    pControl->SetPageLayoutMode(2);
    EXPECT_EQ(pOld->calls, (Strings{"CloseViewer"}));
    EXPECT_EQ(DocEvents(), (Strings{"Mode 1->2"}));
    EXPECT_EQ(pControl->GetPageLayoutMode(), 2);
    EXPECT_EQ(pControl->GetCurrentPageIndex(), 2);
}

TEST_F(CommandsTest, AViewerWithoutADocumentIsBorne) {
    Show();
    pControl->SetPageLayoutMode(1);
    ASSERT_NE(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_EQ(DocEvents(), (Strings{"Mode 0->1"}));
    pControl->MoveScreen(100, 0);
    pControl->Arrange({300, 900});
    pControl->RedrawScreen();
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
}

}
}
