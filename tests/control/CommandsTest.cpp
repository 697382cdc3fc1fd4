// The command surface: guards and fallbacks, and what each command asks of the
// viewer.

#include <map>

#include "document/VLK_Document.h"
#include "tests/control/ControlFixture.h"
#include "tests/support/scripted_engine/ScriptedDestination.h"

namespace velko::testing {
namespace {

using Windows::Foundation::Rect;

class CommandsTest : public ControlFixture {};

// A question, and its answers without template and document, and with both and a
// viewer on the last page.
struct Question {
    const char* szName;
    std::function<double(vkit::PDFViewCtrl&)> fnAsk;
    double dbNone;
    double dbShown;
};

const Question kQuestions[] = {
    {"first", [](auto& c) { return c.GotoFirstPage(); }, 0, 1},
    {"last", [](auto& c) { return c.GotoLastPage(); }, 0, 1},
    {"prev", [](auto& c) { return c.GotoPrevPage(); }, 0, 0},
    {"next, which answers true when it stays", [](auto& c) { return c.GotoNextPage(); }, 0, 1},
    {"page", [](auto& c) { return c.GetCurrentPageIndex(); }, 0, 4},
    {"page at",
     [](auto& c) {
         return c.GetPageIndexAtPoint({1, 1});
     },
     -1, 7},
    {"scale", [](auto& c) { return c.GetScale(); }, 0, 2},
    {"least", [](auto& c) { return c.GetMinScale(); }, 0, 0.5},
    {"paper", [](auto& c) { return c.PageBgColor().R; }, 0, 1},
    {"to page",
     [](auto& c) {
         return c.DevicePointToPagePoint({3, 4})->pt.X;
     },
     3, 4},
    {"no rect", [](auto& c) { return c.PageRectToDeviceRect(1, Rect()).IsEmpty(); }, 0, 1},
    {"on screen", [](auto& c) { return c.GetPageScreenRect(6).has_value(); }, 0, 1},
};

TEST_F(CommandsTest, EachBearsThatAnyOfWhatItWorksOnIsMissing) {
    const auto fnActAndAsk = [&] {
        auto& c = *pControl;
        c.GotoPage(2);
        c.GotoExactlyPage(0, {1, 1});
        c.GotoDestination(nullptr);
        c.SetRenderFlags(1);
        c.SetDeleteFileOnClose(true);
        c.AddHiddenAnnotType(9);
        c.RotateViewer(1);
        c.SetScale(2.0F);
        c.ZoomAtPoint({1, 2}, 2.0, true, false);
        c.MoveScreen(10, 20);
        c.AlignPageAfterScroll(30, 40);
        c.NightMode(true);
        c.RedrawScreen();
        c.UpdatePageAfterAnnotEdit(1);
        c.UpdateViewer();
        c.CancelRender();
        std::map<std::string, double> answers;
        for (const Question& question : kQuestions) {
            answers[question.szName] = question.fnAsk(c);
        }
        return answers;
    };
    const auto fnUseViewer = [&] {
        const auto pViewer = UseScriptedViewer();
        pViewer->nCurrentPage = 4;
    };
    const auto none = fnActAndAsk();
    pControl->SetPageLayoutMode(2);
    pControl->SetZoomMode(2);
    EXPECT_EQ(pControl->GetPageLayoutMode(), 0);
    EXPECT_TRUE(events.empty());
    Show();
    fnUseViewer();
    fnActAndAsk(); // a viewer without a document
    Open();
    Parts().PageViewMgr()->SetViewer(nullptr);
    fnActAndAsk(); // a document without a viewer
    fnUseViewer();
    const auto shown = fnActAndAsk();
    for (const Question& question : kQuestions) {
        EXPECT_EQ(none.at(question.szName), question.dbNone) << question.szName;
        EXPECT_EQ(shown.at(question.szName), question.dbShown) << question.szName;
    }
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
    struct Case {
        std::int32_t nLayout;
        std::int32_t nPage;
        Rect rcPage;
        Point ptInParent;
        Point ptDevice;
        Strings calls;
    };
    const Rect rcLaidOut(0, 0, 5, 5);
    const Case cases[] = {
        {1, 0, Rect(), {}, {10, 20}, {"UpdateViewer"}},
        // A page of a column that is laid out is not jumped to; in device pixels.
        {1, 1, rcLaidOut, {}, {1200, 1000}, {"PageSizeChanged 1400 900"}},
        {1, 1, Rect(), {}, {-2.5F, 0}, {"GotoPage 1", "PageSizeChanged -1005 -600"}},
        {2, 1, rcLaidOut, {}, {10, 20}, {"GotoPage 1", "UpdateViewer"}},
        // What stands left of the window is not seen: 0 .. 600 and 100 .. 900 is.
        {1, 0, Rect(), {-400, 100}, {700, 500}, {"PageSizeChanged 800 150"}},
        {1, -1, Rect(), {}, {-1, -1}, {}},
        {1, 5, Rect(), {}, {-1, -1}, {}},
    };
    for (const Case& test : cases) {
        pControl->SetPageLayoutMode(test.nLayout);
        const auto pViewer = UseScriptedViewer();
        Panel().ArrangeAtScale({1000, 800}, 2.0F, 1.5F);
        pControl->PositionInParent(test.ptInParent);
        pViewer->calls.clear();
        pViewer->rcPage = test.rcPage;
        pViewer->ptDevice = test.ptDevice;
        pControl->GotoExactlyPage(test.nPage, {1, 1});
        EXPECT_EQ(pViewer->calls, test.calls);
    }
    EXPECT_EQ(host.CountDebug("GotoExactlyPage: 0, Pt: 10, 20, Not Moveto\n"), 1U);
    EXPECT_EQ(host.CountDebug("GotoExactlyPage: 1, Pt: -2.5, 0, MoveTo: -502.5, -400\n"), 1U);
    pControl->PositionInParent({-2000, 0});
    EXPECT_THROW(pControl->GotoExactlyPage(0, {1, 1}), Platform::InvalidArgumentException);
}

TEST_F(CommandsTest, AModeChangeKeepsThePageAndTells) {
    Show();
    Open();
    pControl->SetScale(2.0F);
    const auto pOld = UseScriptedViewer();
    pOld->nCurrentPage = 2;
    events.clear();
    for (const int nNoChange : {1, 0, 4, 9, -1}) { // the same, none, those without a viewer
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

}
}
