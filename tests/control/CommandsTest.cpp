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
    // What every command answers as one line, and what it asks of a viewer.
    Strings AnswersOfAll() {
        auto& c = *pControl;
        const auto fnNumber = [](double db) {
            char sz[32];
            std::snprintf(sz, sizeof sz, "%g", db);
            return std::string(sz);
        };
        const auto fnRect = [&](const Rect& rc) {
            return rc.IsEmpty() ? "empty" : fnNumber(rc.X) + ";" + fnNumber(rc.Width);
        };
        const auto fnPoint = [&](Point pt) { return fnNumber(pt.X) + ";" + fnNumber(pt.Y); };
        c.GotoPage(2);
        c.GotoDestination(nullptr);
        c.SetRenderFlags(1);
        c.SetDeleteFileOnClose(true);
        c.AddHiddenAnnotType(9);
        c.RotateViewer(1);
        c.SetScale(2.0F);
        c.ZoomAtPoint({1, 2}, 2.0, true, false);
        c.MoveScreen(10, 20);
        c.SetPageColors({255, 9, 9, 9}, {255, 8, 8, 8});
        c.RedrawScreen();
        c.UpdatePageAfterAnnotEdit(1);
        c.UpdateViewer();
        c.CancelRender();
        const auto pagePoint = c.DevicePointToPagePoint({3, 4});
        return {
            "first " + std::to_string(c.GotoFirstPage()),
            "last " + std::to_string(c.GotoLastPage()),
            "prev " + std::to_string(c.GotoPrevPage()),
            "next " + std::to_string(c.GotoNextPage()),
            "page " + std::to_string(c.GetCurrentPageIndex()),
            "at " + std::to_string(c.GetPageIndexAtPoint({1, 1})),
            "visible " + std::to_string(c.GetVisiblePages().size()),
            "count " + std::to_string(c.GetPageCount()),
            "delete " + std::to_string(c.GetDeleteFileOnClose()),
            "flags " + std::to_string(c.GetRenderFlags()),
            "scale " + fnNumber(c.GetScale()),
            "limits " + fnNumber(c.GetMinScale()) + " " + fnNumber(c.GetMaxScale()),
            "rotate " + std::to_string(c.GetRotate()),
            "bg " + std::to_string(c.PageBgColor().R) + " fg " + std::to_string(c.PageFgColor().R),
            "night " + std::to_string(c.NightMode()),
            "matrix " + fnNumber(c.GetDisplayMatrix(3, 5)[0]) + " " +
                fnNumber(c.GetDisplayMatrix(3)[4]),
            "topage " + std::to_string(pagePoint->nPageIndex) + " " + fnPoint(pagePoint->pt),
            "todevice " + fnPoint(c.PagePointToDevicePoint(1, {5, 5})),
            "rects " + fnRect(c.DeviceRectToPageRect(1, Rect(1, 1, 2, 2))) + " " +
                fnRect(c.PageRectToDeviceRect(1, Rect(1, 1, 2, 2))),
            "pagerect " + fnRect(c.GetPageRectAtPoint({1, 1}, -1)),
            "pdf " + std::to_string(c.GetPDFDoc() != nullptr) + " file " +
                std::to_string(c.GetDocumentFile() != nullptr)};
    }
};

TEST_F(CommandsTest, WithoutTemplateAndDocument) {
    const Strings expected = {"first 0",      "last 0",       "prev 0",        "next 0",
                              "page 0",       "at -1",        "visible 0",     "count 0",
                              "delete 0",     "flags 0",      "scale 0",       "limits 0 0",
                              "rotate 0",     "bg 0 fg 0",    "night 0",       "matrix 1 0",
                              "topage 0 3;4", "todevice 0;0", "rects 0;0 0;0", "pagerect 0;0",
                              "pdf 0 file 0"};
    EXPECT_EQ(AnswersOfAll(), expected);
    EXPECT_EQ(pControl->GetPageLayoutMode(), 0);
    EXPECT_EQ(pControl->CompositionScaleX(), 1.0F);
    EXPECT_EQ(pControl->GetCanvasSize(), (Size{0, 0}));
    EXPECT_EQ(pControl->Layout(), nullptr);
    pControl->SetPageLayoutMode(2);
    pControl->SetZoomMode(2);
    pControl->GotoExactlyPage(0, {1, 1});
    EXPECT_EQ(pControl->GetZoomMode(), 2);
    EXPECT_TRUE(events.empty());
    Windows::Foundation::Collections::PropertySet values;
    EXPECT_THROW(pControl->SaveViewState(values), Platform::NullReferenceException);
}

TEST_F(CommandsTest, WithADocumentButNoViewer) {
    Show();
    Open();
    pControl->PageViewMgr()->SetViewer(nullptr);
    const Strings expected = {"first 1",      "last 1",       "prev 1",        "next 0",
                              "page 0",       "at 0",         "visible 0",     "count 5",
                              "delete 1",     "flags 1",      "scale 1",       "limits 1 3",
                              "rotate 0",     "bg 0 fg 0",    "night 0",       "matrix 1 0",
                              "topage 0 3;4", "todevice 0;0", "rects 0;0 0;0", "pagerect 0;0",
                              "pdf 1 file 1"};
    EXPECT_EQ(AnswersOfAll(), expected);
}

TEST_F(CommandsTest, WithAViewerButNoDocument) {
    Show();
    const auto pViewer = UseScriptedViewer();
    pViewer->visiblePages = {0, 1};
    const Strings expected = {"first 0",
                              "last 0",
                              "prev 0",
                              "next 0",
                              "page 0",
                              "at 7",
                              "visible 2",
                              "count 0",
                              "delete 0",
                              "flags 0",
                              "scale 0",
                              "limits 0 0",
                              "rotate 0",
                              "bg 1 fg 4",
                              "night 0",
                              "matrix 2 3",
                              "topage 7 4;5",
                              "todevice 0;0",
                              "rects empty empty",
                              "pagerect 0;0",
                              "pdf 0 file 0"};
    EXPECT_EQ(AnswersOfAll(), expected);
    EXPECT_EQ(pViewer->calls,
              (Strings{"MoveScreen 10 20", "RedrawScreen", "AnnotEdit 1", "CancelRender"}));
}

TEST_F(CommandsTest, WithBoth) {
    Show();
    Open();
    const auto pViewer = UseScriptedViewer();
    pViewer->nCurrentPage = 3;
    pViewer->nRotate = 2;
    pViewer->pRectResult.reset(); // an empty result
    const Strings expected = {"first 1",
                              "last 1",
                              "prev 0",
                              "next 0",
                              "page 3",
                              "at 7",
                              "visible 0",
                              "count 5",
                              "delete 1",
                              "flags 1",
                              "scale 2",
                              "limits 0.5 4",
                              "rotate 2",
                              "bg 9 fg 8",
                              "night 0",
                              "matrix 2 3",
                              "topage 7 4;5",
                              "todevice 0;0",
                              "rects empty empty",
                              "pagerect 0;0",
                              "pdf 1 file 1"};
    EXPECT_EQ(AnswersOfAll(), expected);
    EXPECT_EQ(pViewer->calls,
              (Strings{"GotoPage 2", "RotateViewer 1", "InitLayOut 3 2 0 0", "PageScaled 1 2 2 1 0",
                       "RedrawScreen", "MoveScreen 10 20", "SetPageColors", "RedrawScreen",
                       "AnnotEdit 1", "UpdateViewer", "CancelRender", "GotoPage 0", "GotoPage 4",
                       "GotoPage 2", "GotoPage 4"}));
    EXPECT_EQ(pControl->Document()->HiddenAnnotTypes(), (std::vector<std::int32_t>{9}));
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
    EXPECT_EQ(pControl->ViewControl()->CanvasPanel()->ManipulationMode,
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
    const auto pPanel = pControl->ViewControl()->CanvasPanel();
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

TEST_F(CommandsTest, NightIsTwoColoursExactlyAndNothingInReflow) {
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
    pControl->SetPageLayoutMode(3);
    const auto pReflow = UseScriptedViewer();
    pControl->NightMode(true);
    EXPECT_TRUE(pReflow->calls.empty());
}

TEST_F(CommandsTest, AModeChangeKeepsThePageAndTells) {
    Show();
    Open();
    pControl->SetScale(2.0F);
    const auto pOld = UseScriptedViewer();
    pOld->nCurrentPage = 2;
    events.clear();
    pControl->SetPageLayoutMode(1);
    pControl->SetPageLayoutMode(0);
    EXPECT_TRUE(events.empty());
    pControl->SetPageLayoutMode(3);
    EXPECT_EQ(pOld->calls, (Strings{"CloseViewer"}));
    EXPECT_EQ(pControl->GetPageLayoutMode(), 3);
    pControl->SetPageLayoutMode(1);
    EXPECT_EQ(DocEvents(), (Strings{"Mode 1->3", "Mode 3->1"}));
    EXPECT_EQ(pControl->GetPageLayoutMode(), 1);
    EXPECT_EQ(pControl->GetCurrentPageIndex(), 0); // mode 3 has no viewer to tell a page
}

TEST_F(CommandsTest, AViewerWithoutADocumentIsBorne) {
    Show();
    pControl->SetPageLayoutMode(1);
    ASSERT_NE(pControl->PageViewMgr()->GetViewer(), nullptr);
    EXPECT_EQ(DocEvents(), (Strings{"Mode 0->1"}));
    pControl->MoveScreen(100, 0);
    pControl->Arrange({300, 900});
    pControl->RedrawScreen();
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
}

}
}
