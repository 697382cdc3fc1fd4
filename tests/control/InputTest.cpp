// Gestures, wheel and size changes over the canvas, and the host's sink beside.

#include <functional>
#include <stdexcept>

#include "tests/control/ControlFixture.h"
#include "tests/support/scripted_engine/ScriptedDestination.h"

namespace velko::testing {
namespace {

using namespace std::chrono_literals;

class InputTest : public ControlFixture {
protected:
    InputTest() {
        Show();
        Open();
        pViewer = UseScriptedViewer();
        Panel().CompositionScale(2.0F, 3.0F);
        pViewer->calls.clear();
    }
    void Wheel(int nDelta, bool bControl = false, bool bHorizontal = false) {
        ControlFixture::Wheel({10, 10}, nDelta, bControl, bHorizontal);
    }
    std::shared_ptr<ScriptedViewer> pViewer;
};

TEST_F(InputTest, APanMovesInDevicePixelsAndEndsWithItsWholeDrag) {
    Start({100, 100});
    EXPECT_TRUE(Delta({90, 70}));
    EXPECT_TRUE(Delta({85, 71}));
    EXPECT_TRUE(Delta({80, 71}, 1, 1, true)); // inertia of a pan goes on
    Complete({80, 71});
    EXPECT_EQ(pViewer->calls,
              (Strings{"MoveScreen 90 20", "MoveScreen -3 10", "MoveScreen 0 10", "Align 87 40"}));
    EXPECT_EQ(host.CountDebug("m_pPageViewContext LoadCurViewPage: [40, 87]...\n"), 1U);
}

TEST_F(InputTest, APinchZoomsNeverPansAndEndsSharp) {
    Start({100, 100});
    EXPECT_TRUE(Delta({100, 100}, 1.5F, 1.5F));
    EXPECT_TRUE(Delta({110, 100}, 1, 1.5F));           // fingers move together: no pan
    EXPECT_FALSE(Delta({120, 100}, 1.1F, 1.6F, true)); // inertia of a pinch is dropped
    EXPECT_TRUE(Delta({100, 100}, 100.0F, 150.0F));    // up to the limit
    EXPECT_TRUE(Delta({100, 100}, 2.0F, 300.0F));      // already there
    Complete({100, 100}, 300.0F);
    EXPECT_EQ(pViewer->calls, (Strings{"PageScaled 200 300 1.5 1 0", "PageScaled 200 300 4 1 0",
                                       "PageScaled 200 300 4 0 1"}));
}

TEST_F(InputTest, ASheetThatFitsBelowTheLimitZoomsOutToWhereItStood) {
    pViewer->fScale = 0.125F; // the least that is offered is 0.5
    Wheel(-120, true);
    EXPECT_TRUE(pViewer->calls.empty());
    Start({10, 10});
    Delta({10, 10}, 1.5F, 1.5F);
    Delta({10, 10}, 0.5F, 0.75F);
    EXPECT_EQ(pViewer->fScale, 0.125F);
    Complete({10, 10}, 0.75F);
    Wheel(120, true);
    EXPECT_EQ(pViewer->fScale, 0.625F);
    Start({10, 10}); // a gesture from above the limit ends there
    Delta({10, 10}, 0.01F, 0.01F);
    EXPECT_EQ(pViewer->fScale, 0.5F);
    Complete({10, 10}, 0.01F);
    pControl->Arrange({100.0F, 100.0F}); // the page fits far below, and can be had so
    const auto fFit = static_cast<float>(pControl->GetFitScale(1));
    Start({10, 10});
    Delta({10, 10}, 0.01F, 0.01F);
    EXPECT_EQ(pViewer->fScale, fFit);
}

TEST_F(InputTest, TheWheelScrollsAndTurnsPages) {
    Wheel(120);
    Wheel(-120);
    Wheel(120, false, true);
    EXPECT_EQ(pViewer->calls, (Strings{"MoveScreen -120 0", "MoveScreen 120 0", "MoveScreen 0 0"}));
    pControl->SetPageLayoutMode(2);
    pViewer = UseScriptedViewer();
    pViewer->nCurrentPage = 4;
    Wheel(-120);
    pViewer->nCurrentPage = 0;
    Wheel(120);
    EXPECT_EQ(pViewer->calls, (Strings{"GotoPage 5", "GotoPage 0"}));
}

TEST_F(InputTest, WheelZoomsSettleOnceHalfASecondAfterTheLast) {
    for (int nStep = 0; nStep < 5; ++nStep) {
        Wheel(120, true);
        host.Clock().Advance(400ms);
    }
    EXPECT_EQ(pViewer->calls, (Strings{"PageScaled 20 30 1.5 1 0", "PageScaled 20 30 2 1 0",
                                       "PageScaled 20 30 2.5 1 0", "PageScaled 20 30 3 1 0",
                                       "PageScaled 20 30 3.5 1 0"}));
    host.Clock().Advance(99ms);
    EXPECT_EQ(pViewer->calls.size(), 5U);
    host.Clock().Advance(1ms);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 3.5 0 1");
    host.Clock().Advance(5s);
    EXPECT_EQ(pViewer->calls.size(), 6U);
    InEvent("PageChanged", [] { throw std::runtime_error("host"); });
    EXPECT_THROW(Wheel(120, true), std::runtime_error);
    host.Clock().Advance(1s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 4 0 1");
}

TEST_F(InputTest, WhatGoesElsewhereOrZoomsEndsTheWaitOfAWheelZoom) {
    const auto pDestination = std::make_shared<ScriptedDestination>();
    pViewer->ptDevice = {-1000, 0};
    const std::function<void()> acts[] = {
        [&] { pControl->GotoPage(3); },
        [&] {
            pControl->GotoExactlyPage(0, {1, 1});
        },
        [&] { pControl->GotoDestination(std::make_shared<ScriptedAction>(pDestination)); },
        [&] { pControl->MoveScreen(1, 1); },
        [&] { pControl->SetScale(3.5F); },
        [&] {
            pControl->ZoomAtPoint({1, 1}, 1.5, false, true);
        },
        [&] { pControl->RotateViewer(1); },
        [&] {
            pControl->Arrange({400.0F, 400.0F});
        },
        [&] { Wheel(-120); },
        [&] {
            Delta({1, 1}, 1.25F, 1.25F);
        },
        [&] { InEvent("PageChanged", [&] { pControl->GotoPage(2); }), Wheel(120, true); },
    };
    for (const auto& fnAct : acts) {
        SCOPED_TRACE(&fnAct - acts);
        pViewer->fScale = 1.0F;
        Wheel(120, true);
        EXPECT_EQ(host.Clock().RunningTimers(), 1U);
        fnAct();
        EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    }
}

TEST_F(InputTest, AWheelZoomSettlesBeforeADragAndNeverWithinOne) {
    Wheel(120, true);
    Start({100, 100});
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 1.5 0 1");
    Delta({90, 100});
    Wheel(120, true);
    host.Clock().Advance(3s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 2 1 0");
    Complete({90, 100});
    host.Clock().Advance(1s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 2 0 1");
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
}

TEST_F(InputTest, AWheelZoomAtItsLimitDoesNothing) {
    pViewer->fScale = 3.8F;
    Wheel(120, true);
    host.Clock().Advance(1s);
    pViewer->calls.clear();
    Wheel(120, true);
    EXPECT_TRUE(pViewer->calls.empty());
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    pViewer->fScale = 0.7F;
    Wheel(-120, true);
    Wheel(0, true); // no turn counts as one towards the reader
    EXPECT_EQ(pViewer->calls, (Strings{"PageScaled 20 30 0.5 1 0"}));
}

TEST_F(InputTest, AWaitingWheelZoomGoesWithItsViewer) {
    const std::function<void()> ends[] = {
        [&] { Open("b.pdf"); },
        [&] { pControl->CloseDocument(); },
        [&] { pControl->RaiseUnloaded(); },
    };
    for (const auto& fnEnd : ends) {
        Open();
        pViewer = UseScriptedViewer();
        Wheel(120, true);
        EXPECT_EQ(host.Clock().RunningTimers(), 1U);
        fnEnd();
        EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    }
    Wheel(120, true); // unloaded: no manager
    Delta({1, 1});
    Complete({1, 1});
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
}

TEST_F(InputTest, AReaderMayPlayWithAViewerWhoseDocumentIsGone) {
    Open("good.pdf");
    host.Drain();
    pEngine->QueueLoadResult(ErrorCode::e_ErrFormat);
    Open("bad.pdf");
    ASSERT_NE(Parts().PageViewMgr()->GetViewer(), nullptr);
    Start({10, 10});
    Delta({20, 20});
    Delta({20, 20}, 1.2F, 1.2F);
    Complete({20, 20}, 1.2F);
    Wheel(-120);
    Wheel(120, true);
    host.Clock().Advance(1s);
    pControl->Arrange({500, 700});
    pControl->UpdateViewer();
    host.Drain();
    EXPECT_EQ(Open("good.pdf"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->GetVisiblePages().front(), 0);
}

struct Sink final : vkit::IUIExtensionsEvents {
    Strings calls;
    Windows::UI::Xaml::FrameworkElement* pLastSender = nullptr;
    bool bFail = false;
    void Note(const Sender& p, const char* szName) {
        calls.emplace_back(szName);
        pLastSender = p.get();
        if (bFail) {
            throw Platform::InvalidArgumentException("sink");
        }
    }
    using Started = ManipulationStartedArgs;
    using Completed = ManipulationCompletedArgs;
    using Sized = Windows::UI::Xaml::SizeChangedEventArgs;
    void OnManipulationStarted(const Sender& p, Started&) override { Note(p, "Started"); }
    void OnManipulationDelta(const Sender& p, ManipulationDeltaArgs&) override { Note(p, "Delta"); }
    void OnManipulationCompleted(const Sender& p, Completed&) override { Note(p, "Completed"); }
    void OnPointerPressed(const Sender& p, PointerArgs&) override { Note(p, "Pressed"); }
    void OnPointerMoved(const Sender& p, PointerArgs&) override { Note(p, "Moved"); }
    void OnPointerReleased(const Sender& p, PointerArgs&) override { Note(p, "Released"); }
    void OnPointerEntered(const Sender& p, PointerArgs&) override { Note(p, "Entered"); }
    void OnPointerExited(const Sender& p, PointerArgs&) override { Note(p, "Exited"); }
    void OnPointerCaptureLost(const Sender& p, PointerArgs&) override { Note(p, "CaptureLost"); }
    void OnPointerCanceled(const Sender& p, PointerArgs&) override { Note(p, "Canceled"); }
    void OnPointerWheelChanged(const Sender& p, PointerArgs&) override { Note(p, "Wheel"); }
    void OnHolding(const Sender& p, HoldingArgs&) override { Note(p, "Holding"); }
    void OnTapped(const Sender& p, TappedArgs&) override { Note(p, "Tapped"); }
    void OnCompositionScaleChanged(const Sender& p) override { Note(p, "Scale"); }
    void OnSizeChanged(const Sender& p, const Sized&) override { Note(p, "Size"); }
};

class SinkTest : public InputTest {
protected:
    SinkTest() { pControl->ExtensionsManager(pSink); }
    const std::shared_ptr<Sink> pSink = std::make_shared<Sink>();
};

TEST_F(SinkTest, HearsEverythingAndStartsTwice) {
    Start({1, 1});
    EXPECT_TRUE(Delta({2, 2}));
    Complete({2, 2});
    Input::PointerRoutedEventArgs pointer;
    for (auto* pEvent : {&Panel().PointerPressed, &Panel().PointerMoved, &Panel().PointerReleased,
                         &Panel().PointerEntered, &Panel().PointerExited,
                         &Panel().PointerCaptureLost, &Panel().PointerCanceled}) {
        pEvent->raise(pointer);
    }
    EXPECT_FALSE(pointer.Handled);
    Wheel(120);
    Input::HoldingRoutedEventArgs holding;
    Panel().Holding.raise(holding);
    Input::TappedRoutedEventArgs tapped;
    Panel().Tapped.raise(tapped);
    Panel().CompositionScale(1, 1);
    EXPECT_EQ(pSink->pLastSender, &Panel());
    pControl->Arrange({123, 45});
    EXPECT_EQ(pSink->pLastSender, pControl.get());
    EXPECT_EQ(pSink->calls, (Strings{"Started", "Started", "Delta", "Completed", "Pressed", "Moved",
                                     "Released", "Entered", "Exited", "CaptureLost", "Canceled",
                                     "Wheel", "Holding", "Tapped", "Scale", "Size"}));
}

TEST_F(SinkTest, OneThatFailsIsHeardByWhoeverRaised) {
    pSink->bFail = true;
    EXPECT_THROW(Delta({1, 1}), Platform::InvalidArgumentException);
    EXPECT_EQ(pViewer->calls.size(), 1U); // the control's own handling came first
    pControl->ExtensionsManager(nullptr);
    EXPECT_NO_THROW(Delta({1, 1}));
}

TEST_F(SinkTest, ASecondLoadingAttachesAgainAndANewTemplateIsHeardToo) {
    pControl->RaiseUnloaded();
    pControl->RaiseLoaded();
    Start({1, 1});
    EXPECT_EQ(pSink->calls.size(), 4U);
    pSink->calls.clear();
    pControl->ReapplyTemplate();
    Start({1, 1});
    EXPECT_EQ(pSink->calls, (Strings{"Started", "Started"}));
    EXPECT_EQ(pSink->pLastSender, &Panel());
}

TEST_F(SinkTest, WithScrollingOffOnlyTheSinkHears) {
    const auto pOther = vkit::PDFViewCtrl::Create();
    pOther->SetIsCanScrollPageViewEnabled(false); // before its template
    pOther->ApplyTemplate();
    EXPECT_EQ(vkit::ControlParts(*pOther).ViewControl()->CanvasPanel()->ManipulationMode,
              Input::ManipulationMode::System);
    pControl->SetIsCanScrollPageViewEnabled(false);
    EXPECT_EQ(Panel().ManipulationMode, Input::ManipulationMode::System);
    Start({1, 1});
    EXPECT_FALSE(Delta({5, 5}));
    Complete({5, 5}, 2);
    Wheel(120);
    Wheel(120, true);
    EXPECT_TRUE(pViewer->calls.empty());
    EXPECT_EQ(pSink->calls.size(), 6U);
    pControl->Arrange({500, 500}); // the window is as it is
    EXPECT_EQ(pViewer->calls, (Strings{"InvaildateLayout"}));
    pControl->SetIsCanScrollPageViewEnabled(true);
    EXPECT_EQ(Panel().ManipulationMode, Input::ManipulationMode::All);
    EXPECT_TRUE(Delta({5, 5}));
}

TEST_F(InputTest, SwitchingScrollingOffCompletesTheOpenGesture) {
    Start({100, 100});
    Delta({100, 90}, 1.5F, 1.5F);
    pControl->SetIsCanScrollPageViewEnabled(false);
    pControl->IsCanScrollPageViewEnabled(false); // once
    EXPECT_EQ(pViewer->calls,
              (Strings{"PageScaled 200 270 1.5 1 0", "PageScaled 200 270 1.5 0 1"}));
    pControl->SetIsCanScrollPageViewEnabled(true);
    pViewer->calls.clear();
    Start({100, 100});
    Delta({90, 100});
    pControl->IsCanScrollPageViewEnabled(false);
    pControl->IsCanScrollPageViewEnabled(true);
    Delta({50, 100}); // the finger is still down: goes on from here, without a leap
    Delta({45, 100});
    Complete({45, 100});
    EXPECT_EQ(pViewer->calls, (Strings{"MoveScreen 0 20", "Align 0 20", "MoveScreen 0 0",
                                       "MoveScreen 0 10", "Align 0 10"}));
    // By a handler within the gesture's own step.
    Start({100, 100});
    InEvent("PageChanged", [&] { pControl->SetIsCanScrollPageViewEnabled(false); });
    Delta({100, 100}, 2.0F, 2.0F);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 200 300 3 0 1");
}

}
}
