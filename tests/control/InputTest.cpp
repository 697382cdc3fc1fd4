// Gestures, wheel and size changes over the canvas, and the host's sink beside.

#include <functional>
#include <stdexcept>

#include "platform/ui/SwapChainPanel.h"
#include "tests/control/ControlFixture.h"
#include "tests/support/scripted_engine/ScriptedDestination.h"

namespace velko::testing {
namespace {

using namespace std::chrono_literals;
namespace Input = Windows::UI::Xaml::Input;
using Panel = Windows::UI::Xaml::Controls::SwapChainPanel;

class InputTest : public ControlFixture {
protected:
    InputTest() {
        Show();
        Open();
        pViewer = UseScriptedViewer();
        pPanel = Parts().ViewControl()->CanvasPanel();
        pPanel->CompositionScale(2.0F, 3.0F);
        pViewer->calls.clear();
    }
    void Start(float fX, float fY) {
        Input::ManipulationStartedRoutedEventArgs args;
        args.Position = {fX, fY};
        pPanel->ManipulationStarted.raise(args);
    }
    bool Delta(float fX, float fY, float fScale = 1, float fCumulative = 1,
               bool bInertial = false) {
        Input::ManipulationDeltaRoutedEventArgs args;
        args.Position = {fX, fY};
        args.Delta.Scale = fScale;
        args.Cumulative.Scale = fCumulative;
        args.IsInertial = bInertial;
        pPanel->ManipulationDelta.raise(args);
        return args.Handled;
    }
    void Complete(float fX, float fY, float fCumulative = 1) {
        Input::ManipulationCompletedRoutedEventArgs args;
        args.Position = {fX, fY};
        args.Cumulative.Scale = fCumulative;
        pPanel->ManipulationCompleted.raise(args);
    }
    void Wheel(int nDelta, bool bControl = false, bool bHorizontal = false) {
        host.Environment().SetControlKeyDown(bControl);
        Input::PointerRoutedEventArgs args;
        args.Position = {10, 10};
        args.MouseWheelDelta = nDelta;
        args.IsHorizontalMouseWheel = bHorizontal;
        pPanel->PointerWheelChanged.raise(args);
    }
    std::shared_ptr<ScriptedViewer> pViewer;
    std::shared_ptr<Panel> pPanel;
};

TEST_F(InputTest, APanMovesInDevicePixelsAndEndsWithItsWholeDrag) {
    Start(100, 100);
    EXPECT_TRUE(Delta(90, 70));
    EXPECT_TRUE(Delta(85, 71));
    EXPECT_TRUE(Delta(80, 71, 1, 1, true)); // inertia of a pan goes on
    Complete(80, 71);
    EXPECT_EQ(pViewer->calls,
              (Strings{"MoveScreen 90 20", "MoveScreen -3 10", "MoveScreen 0 10", "Align 87 40"}));
    EXPECT_EQ(host.CountDebug("m_pPageViewContext LoadCurViewPage: [40, 87]...\n"), 1U);
}

TEST_F(InputTest, APinchZoomsNeverPansAndEndsSharp) {
    Start(100, 100);
    EXPECT_TRUE(Delta(100, 100, 1.5F, 1.5F));
    EXPECT_TRUE(Delta(110, 100, 1, 1.5F));           // fingers move together: no pan
    EXPECT_FALSE(Delta(120, 100, 1.1F, 1.6F, true)); // inertia of a pinch is dropped
    EXPECT_TRUE(Delta(100, 100, 100.0F, 150.0F));    // up to the limit
    EXPECT_TRUE(Delta(100, 100, 2.0F, 300.0F));      // already there
    Complete(100, 100, 300.0F);
    EXPECT_EQ(pViewer->calls, (Strings{"PageScaled 200 300 1.5 1 0", "PageScaled 200 300 4 1 0",
                                       "PageScaled 200 300 4 0 1"}));
}

TEST_F(InputTest, ASheetThatFitsBelowTheLimitZoomsOutToWhereItStood) {
    pViewer->fScale = 0.125F; // the least that is offered is 0.5
    Wheel(-120, true);
    EXPECT_TRUE(pViewer->calls.empty());
    Start(10, 10);
    Delta(10, 10, 1.5F, 1.5F);
    Delta(10, 10, 0.5F, 0.75F);
    EXPECT_EQ(pViewer->fScale, 0.125F);
    Complete(10, 10, 0.75F);
    Wheel(120, true);
    EXPECT_EQ(pViewer->fScale, 0.625F);
    Start(10, 10); // a gesture from above the limit ends there
    Delta(10, 10, 0.01F, 0.01F);
    EXPECT_EQ(pViewer->fScale, 0.5F);
    Complete(10, 10, 0.01F);
    pControl->Arrange({100.0F, 100.0F}); // the page fits far below, and can be had so
    const auto fFit = static_cast<float>(pControl->GetFitScale(1));
    EXPECT_LT(fFit, 0.1F);
    Start(10, 10);
    Delta(10, 10, 0.01F, 0.01F);
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
        [&] { Delta(1, 1, 1.25F, 1.25F); },
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
    Start(100, 100);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 1.5 0 1");
    Delta(90, 100);
    Wheel(120, true);
    host.Clock().Advance(3s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 2 1 0");
    Complete(90, 100);
    host.Clock().Advance(1s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 2 0 1");
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
}

TEST_F(InputTest, AWheelZoomSettlesAlsoWhenAHostFailsInIt) {
    InEvent("PageChanged", [] { throw std::runtime_error("host"); });
    EXPECT_THROW(Wheel(120, true), std::runtime_error);
    host.Clock().Advance(1s);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 1.5 0 1");
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
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 20 30 0.5 1 0");
    Wheel(0, true); // no turn counts as one towards the reader
    EXPECT_EQ(pViewer->calls.size(), 1U);
}

TEST_F(InputTest, AWaitingWheelZoomGoesWithItsViewer) {
    Wheel(120, true);
    EXPECT_EQ(host.Clock().RunningTimers(), 1U);
    Open("b.pdf");
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    pViewer = UseScriptedViewer();
    Wheel(120, true);
    pControl->CloseDocument();
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    Open();
    pViewer = UseScriptedViewer();
    Wheel(120, true);
    pControl->RaiseUnloaded();
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    Wheel(120, true); // unloaded: no manager
    Delta(1, 1);
    Complete(1, 1);
    EXPECT_EQ(host.Clock().RunningTimers(), 0U);
}

TEST_F(InputTest, ASizeChangeLaysOutAfterTheCanvasKnows) {
    pControl->Arrange({500, 600});
    EXPECT_EQ(pViewer->calls, (Strings{"InvaildateLayout"}));
    pControl->Arrange({500, 600});
    EXPECT_EQ(pViewer->calls.size(), 1U);
}

TEST_F(InputTest, AReaderMayPlayWithAViewerWhoseDocumentIsGone) {
    pPanel->CompositionScale(1, 1);
    Open("good.pdf");
    host.Drain();
    pEngine->QueueLoadResult(ErrorCode::e_ErrFormat);
    Open("bad.pdf");
    ASSERT_NE(Parts().PageViewMgr()->GetViewer(), nullptr);
    Start(10, 10);
    Delta(20, 20);
    Delta(20, 20, 1.2F, 1.2F);
    Complete(20, 20, 1.2F);
    Wheel(-120);
    Wheel(120, true);
    host.Clock().Advance(1s);
    pControl->Arrange({700, 500});
    pControl->Arrange({500, 700});
    pControl->UpdateViewer();
    pControl->GotoPage(1);
    host.Drain();
    EXPECT_EQ(Open("good.pdf"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->GetVisiblePages().front(), 0);
}

struct Sink final : vkit::IUIExtensionsEvents {
    Strings calls;
    Windows::UI::Xaml::FrameworkElement* pLastSender = nullptr;
    bool bFail = false;
    void Note(const Sender& pSender, const char* szName) {
        calls.emplace_back(szName);
        pLastSender = pSender.get();
        if (bFail) {
            throw Platform::InvalidArgumentException("sink");
        }
    }
    void OnManipulationStarted(const Sender& p, ManipulationStartedArgs&) override {
        Note(p, "Started");
    }
    void OnManipulationDelta(const Sender& p, ManipulationDeltaArgs&) override { Note(p, "Delta"); }
    void OnManipulationCompleted(const Sender& p, ManipulationCompletedArgs&) override {
        Note(p, "Completed");
    }
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
    void OnSizeChanged(const Sender& p, const Windows::UI::Xaml::SizeChangedEventArgs&) override {
        Note(p, "Size");
    }
};

TEST_F(InputTest, TheSinkHearsEverythingAndStartsTwice) {
    const auto pSink = std::make_shared<Sink>();
    pControl->ExtensionsManager(pSink);
    Start(1, 1);
    EXPECT_TRUE(Delta(2, 2));
    Complete(2, 2);
    Input::PointerRoutedEventArgs pointer;
    for (auto* pEvent : {&pPanel->PointerPressed, &pPanel->PointerMoved, &pPanel->PointerReleased,
                         &pPanel->PointerEntered, &pPanel->PointerExited,
                         &pPanel->PointerCaptureLost, &pPanel->PointerCanceled}) {
        pEvent->raise(pointer);
    }
    Wheel(120);
    Input::HoldingRoutedEventArgs holding;
    pPanel->Holding.raise(holding);
    Input::TappedRoutedEventArgs tapped;
    pPanel->Tapped.raise(tapped);
    pPanel->CompositionScale(1, 1);
    EXPECT_EQ(pSink->pLastSender, pPanel.get());
    EXPECT_EQ(pSink->calls, (Strings{"Started", "Started", "Delta", "Completed", "Pressed", "Moved",
                                     "Released", "Entered", "Exited", "CaptureLost", "Canceled",
                                     "Wheel", "Holding", "Tapped", "Scale"}));
    pSink->calls.clear();
    pControl->Arrange({123, 45});
    EXPECT_EQ(pSink->calls, (Strings{"Size"}));
    EXPECT_EQ(pSink->pLastSender, pControl.get());
    EXPECT_FALSE(pointer.Handled);
    EXPECT_EQ(pControl->ExtensionsManager(), pSink);
}

TEST_F(InputTest, ASinkThatFailsIsHeardByWhoeverRaised) {
    const auto pSink = std::make_shared<Sink>();
    pSink->bFail = true;
    pControl->ExtensionsManager(pSink);
    EXPECT_THROW(Delta(1, 1), Platform::InvalidArgumentException);
    EXPECT_EQ(pViewer->calls.size(), 1U); // the control's own handling came first
    pControl->ExtensionsManager(nullptr);
    EXPECT_NO_THROW(Delta(1, 1));
}

TEST_F(InputTest, ASecondLoadingAttachesTheSinkAgain) {
    pControl->RaiseUnloaded();
    pControl->RaiseLoaded();
    const auto pSink = std::make_shared<Sink>();
    pControl->ExtensionsManager(pSink);
    Start(1, 1);
    EXPECT_EQ(pSink->calls.size(), 4U);
}

TEST_F(InputTest, ANewTemplateIsHeardToo) {
    const auto pSink = std::make_shared<Sink>();
    pControl->ExtensionsManager(pSink);
    pControl->ReapplyTemplate();
    pPanel = Parts().ViewControl()->CanvasPanel();
    Start(1, 1);
    EXPECT_EQ(pSink->calls, (Strings{"Started", "Started"}));
    EXPECT_EQ(pSink->pLastSender, pPanel.get());
}

TEST_F(InputTest, WithScrollingOffOnlyTheSinkHears) {
    const auto pSink = std::make_shared<Sink>();
    pControl->ExtensionsManager(pSink);
    pControl->SetIsCanScrollPageViewEnabled(false);
    EXPECT_EQ(pPanel->ManipulationMode, Input::ManipulationMode::System);
    Start(1, 1);
    EXPECT_FALSE(Delta(5, 5));
    Complete(5, 5, 2);
    Wheel(120);
    Wheel(120, true);
    EXPECT_TRUE(pViewer->calls.empty());
    EXPECT_EQ(pSink->calls.size(), 6U);
    pControl->Arrange({500, 500}); // the window is as it is
    EXPECT_EQ(pViewer->calls, (Strings{"InvaildateLayout"}));
    pControl->SetIsCanScrollPageViewEnabled(true);
    EXPECT_EQ(pPanel->ManipulationMode, Input::ManipulationMode::All);
    EXPECT_TRUE(Delta(5, 5));
    EXPECT_EQ(pViewer->calls.size(), 2U);
}

TEST_F(InputTest, SwitchingScrollingOffCompletesTheOpenGesture) {
    const auto fnSwitch = [&](bool bOn, bool bTellPanel) {
        bTellPanel ? pControl->SetIsCanScrollPageViewEnabled(bOn)
                   : pControl->IsCanScrollPageViewEnabled(bOn);
    };
    for (const bool bTellPanel : {true, false}) {
        pViewer->calls.clear();
        pViewer->fScale = 1.0F;
        Start(100, 100);
        Delta(100, 90, 1.5F, 1.5F);
        fnSwitch(false, bTellPanel);
        fnSwitch(false, bTellPanel); // once
        EXPECT_EQ(pViewer->calls,
                  (Strings{"PageScaled 200 270 1.5 1 0", "PageScaled 200 270 1.5 0 1"}));
        fnSwitch(true, bTellPanel);
        pViewer->calls.clear();
        Start(100, 100);
        Delta(90, 100);
        fnSwitch(false, bTellPanel);
        fnSwitch(true, bTellPanel);
        Delta(50, 100); // the finger is still down: goes on from here, without a leap
        Delta(45, 100);
        Complete(45, 100);
        EXPECT_EQ(pViewer->calls, (Strings{"MoveScreen 0 20", "Align 0 20", "MoveScreen 0 0",
                                           "MoveScreen 0 10", "Align 0 10"}));
    }
    // By a handler within the gesture's own step.
    Start(100, 100);
    InEvent("PageChanged", [&] { fnSwitch(false, true); });
    Delta(100, 100, 2.0F, 2.0F);
    EXPECT_EQ(pViewer->calls.back(), "PageScaled 200 300 3 0 1");
}

}
}
