// The manager's page events and its change of viewers.

#include <set>
#include <stdexcept>

#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

class ManagerTest : public ControlFixture {
protected:
    ManagerTest() {
        Show();
        Open();
        pViewer = UseScriptedViewer();
        pManager = Parts().PageViewMgr();
        events.clear();
    }
    std::shared_ptr<ScriptedViewer> pViewer;
    std::shared_ptr<vkit::PDFViewerManager> pManager;
};

// The host's own list, kept by the events alone, is the truth after any of them.
TEST_F(ManagerTest, AStepFromWithinAStepLeavesTheHostKnowingWhatShows) {
    std::set<std::int32_t> known;
    pControl->PageVisibleEvent.add([&](auto&, auto& pArgs) { known.insert(pArgs->PageIndex); });
    pControl->PageInvisibleEvent.add([&](auto&, auto& pArgs) { known.erase(pArgs->PageIndex); });
    for (const char* szEvent : {"PageInvisible", "PageVisible", "PageChanged", "in the step"}) {
        SCOPED_TRACE(szEvent);
        known = {1, 2};
        pViewer->visiblePages = {1, 2};
        const auto fnNested = [&] {
            pViewer->fnDuringMove = [&] { pViewer->visiblePages = {2, 9}; };
            pManager->GotoPage(9);
        };
        InEvent(szEvent, fnNested);
        pViewer->fnDuringMove = [&] {
            pViewer->visiblePages = {5, 6};
            Hook("in the step");
        };
        pManager->MoveScreen(1, 0);
        EXPECT_EQ(known, (std::set<std::int32_t>{2, 9}));
    }
}

TEST_F(ManagerTest, WhatAViewerPutOffHasItsPageEvents) {
    pViewer->visiblePages = {1};
    Parts().PageViewMgr()->RunOperation([&] { pViewer->visiblePages = {2}; });
    EXPECT_EQ(events, (Strings{"PageInvisible 1", "PageVisible 2", "PageChanged [1]->[2]"}));
}

TEST_F(ManagerTest, AFailingStepRaisesNothing) {
    pViewer->fnDuringMove = [] { throw std::runtime_error("engine"); };
    EXPECT_THROW(pManager->GotoPage(1), std::runtime_error);
    EXPECT_TRUE(events.empty());
}

TEST_F(ManagerTest, AHandlerThatClosesEndsTheStepsEvents) {
    pViewer->visiblePages = {1, 2};
    pViewer->fnDuringMove = [&] { pViewer->visiblePages = {3}; };
    InEvent("PageInvisible", [&] { pControl->CloseDocument(); });
    pManager->MoveScreen(1, 0);
    EXPECT_EQ(events.front(), "PageInvisible 1");
    EXPECT_EQ(events.back(), "CloseDoc 0 0");
    EXPECT_EQ(pViewer->calls, (Strings{"MoveScreen 1 0", "ClearScreen", "CloseViewer"}));
}

TEST_F(ManagerTest, AViewerThatIsClosedAtWorkEndsItsStepQuietly) {
    pViewer->fnDuringMove = [&] {
        pControl->CloseDocument();
        throw Platform::ObjectDisposedException();
    };
    EXPECT_NO_THROW(pManager->GotoPage(1));
    EXPECT_EQ(events.back(), "CloseDoc 0 0");
    const auto pOther = UseScriptedViewer();
    pOther->fnDuringMove = [] { throw Platform::ObjectDisposedException(); };
    EXPECT_THROW(pManager->GotoPage(1), Platform::ObjectDisposedException);
}

TEST_F(ManagerTest, UnloadingTakesTheManagerAndEndsItsViewer) {
    pManager.reset();
    pControl->RaiseUnloaded();
    EXPECT_EQ(Parts().PageViewMgr(), nullptr);
    EXPECT_EQ(Parts().ViewControl()->PageViewMgr(), nullptr);
    EXPECT_EQ(pControl->GetPageIndexAtPoint({1, 1}), -1);
    host.Drain();
    EXPECT_EQ(pViewer->calls, (Strings{"Dispose"}));
    EXPECT_THROW(Open("b.pdf"), Platform::NullReferenceException);
    pControl->ReapplyTemplate();
    pControl->RaiseLoaded();
    EXPECT_EQ(Open("b.pdf"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->GetVisiblePages().front(), 0);
}

}
}
