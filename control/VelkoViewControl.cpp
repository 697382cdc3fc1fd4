#include "control/VelkoViewControl.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include "control/Markup.h"
#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "platform/foundation/Exception.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "platform/ui/Markup.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::Point;
namespace Input = Windows::UI::Xaml::Input;

constexpr std::chrono::milliseconds kWheelZoomSettles{500};
constexpr double kWheelZoomStep = 0.5;

void LogSwipe(float fX, float fY) {
    char szLine[96];
    std::snprintf(szLine, sizeof szLine, "m_pPageViewContext LoadCurViewPage: [%g, %g]...\n",
                  static_cast<double>(fX), static_cast<double>(fY));
    Platform::Debug::OutputDebugString(szLine);
}

}

std::shared_ptr<VelkoViewControl> VelkoViewControl::Create() {
    RegisterControlMarkup();
    const std::shared_ptr<VelkoViewControl> pControl(new VelkoViewControl);
    pControl->Initialize();
    return pControl;
}

VelkoViewControl::~VelkoViewControl() {
    StopWheelZoom();
}

void VelkoViewControl::Initialize() {
    const auto pSelf = std::static_pointer_cast<VelkoViewControl>(shared_from_this());
    const std::weak_ptr<VelkoViewControl> wkSelf = pSelf;
    const auto fnCall = [wkSelf](void (VelkoViewControl::*fnHandler)()) {
        return [wkSelf, fnHandler] {
            if (const auto pControl = wkSelf.lock()) {
                (pControl.get()->*fnHandler)();
            }
        };
    };
    m_pPageViewMgr = std::make_shared<PDFViewerManager>(wkSelf);
    m_pWheelZoomTimer = Platform::Environment()->CreateTimer();
    m_pWheelZoomTimer->Interval(kWheelZoomSettles);
    m_pWheelZoomTimer->Tick.add(fnCall(&VelkoViewControl::OnWheelZoomTick));
    Loaded.add(fnCall(&VelkoViewControl::FindBaseViewContorl));
    Unloaded.add(fnCall(&VelkoViewControl::OnUnloaded));
    LoadParts();
    ConnectEvents();
}

void VelkoViewControl::LoadParts() {
    const auto pContent = Windows::UI::Xaml::Markup::LoadMarkup(kVelkoViewControlPage);
    m_pPanel = std::dynamic_pointer_cast<Panel>(pContent);
    if (!m_pPanel) {
        throw Platform::InvalidCastException("the page of the view control is no canvas panel");
    }
    Content(m_pPanel);
    m_pViewCtrl = std::make_shared<PDFViewCanvas>(m_pPanel);
    m_pViewCtrl->Initialize();
}

// After the canvas has subscribed, so that it knows of a new size before the
// viewer lays out for it.
void VelkoViewControl::ConnectEvents() {
    const std::weak_ptr<VelkoViewControl> wkSelf =
        std::static_pointer_cast<VelkoViewControl>(shared_from_this());
    const auto fnConnect = [&wkSelf](auto& event, auto fnHandler) {
        event.add([wkSelf, fnHandler](auto& args) {
            if (const auto pControl = wkSelf.lock()) {
                (pControl.get()->*fnHandler)(args);
            }
        });
    };
    fnConnect(m_pPanel->ManipulationStarted, &VelkoViewControl::OnManipulationStarted);
    fnConnect(m_pPanel->ManipulationDelta, &VelkoViewControl::OnManipulationDelta);
    fnConnect(m_pPanel->ManipulationCompleted, &VelkoViewControl::OnManipulationCompleted);
    fnConnect(m_pPanel->PointerWheelChanged, &VelkoViewControl::OnPointerWheelChanged);
    fnConnect(m_pPanel->SizeChanged, &VelkoViewControl::OnViewControlSizeChanged);
}

void VelkoViewControl::FindBaseViewContorl() {
    for (auto pParent = Parent(); pParent; pParent = pParent->Parent()) {
        if (const auto pControl = std::dynamic_pointer_cast<PDFViewCtrl>(pParent)) {
            m_wkBaseViewContorl = pControl;
            return;
        }
    }
}

void VelkoViewControl::OnUnloaded() {
    m_pPageViewMgr.reset();
    m_gesture.reset();
    StopWheelZoom();
}

bool VelkoViewControl::IsInputOff() const {
    if (!m_pPageViewMgr) {
        return true; // unloaded
    }
    const auto pControl = BaseViewContorl();
    return pControl && !pControl->IsCanScrollPageViewEnabled();
}

Point VelkoViewControl::ToDevice(Point pt) const {
    return {pt.X * m_pPanel->CompositionScaleX(), pt.Y * m_pPanel->CompositionScaleY()};
}

std::shared_ptr<IPDFViewer> VelkoViewControl::Viewer() const {
    return m_pPageViewMgr ? m_pPageViewMgr->GetViewer() : nullptr;
}

float VelkoViewControl::Scale() const {
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetScale() : 1.0F;
}

// A large sheet that fits stands below the limit: from there it zooms in and out
// evenly, and what was zoomed in finds back to the fit.
float VelkoViewControl::LeastScale() const {
    const auto pViewer = Viewer();
    const float fLimit = pViewer ? pViewer->GetMinScale() : kNoViewerLimits.fLeast;
    const float fScale = Scale();
    const auto pControl = BaseViewContorl();
    if (fScale > fLimit || !pControl) {
        return fLimit;
    }
    return std::min(fScale, static_cast<float>(pControl->GetFitScale(ZoomMode::kFitPage)));
}

float VelkoViewControl::MostScale() const {
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetMaxScale() : kNoViewerLimits.fMost;
}

// --- gestures ---

VelkoViewControl::Gesture& VelkoViewControl::OpenGesture(Point ptPosition) {
    if (!m_gesture) {
        m_gesture = Gesture{ptPosition, ptPosition, std::nullopt, LeastScale()};
    }
    return *m_gesture;
}

void VelkoViewControl::OnManipulationStarted(Input::ManipulationStartedRoutedEventArgs& args) {
    if (IsInputOff()) {
        return;
    }
    m_gesture.reset();
    OpenGesture(args.Position);
    SettleWheelZoom(); // not later, when a page may be half turned
}

void VelkoViewControl::OnManipulationDelta(Input::ManipulationDeltaRoutedEventArgs& args) {
    if (IsInputOff()) {
        return;
    }
    const bool bHasPinched = args.Cumulative.Scale != 1.0F;
    if (args.IsInertial && bHasPinched) {
        return;
    }
    if (args.Delta.Scale == 1.0F) {
        PanBy(args.Position, bHasPinched);
    } else if (m_pPageViewMgr->LayoutMode() == LayoutMode::kReflow) {
        return;
    } else {
        PinchAt(args.Position, args.Delta.Scale);
    }
    args.Handled = true;
}

void VelkoViewControl::PanBy(Point ptPosition, bool bHasPinched) {
    const auto pManager = m_pPageViewMgr;
    Gesture& gesture = OpenGesture(ptPosition);
    const Point ptLast = std::exchange(gesture.ptLast, ptPosition);
    if (!bHasPinched) {
        pManager->MoveScreen((ptLast.Y - ptPosition.Y) * m_pPanel->CompositionScaleY(),
                             (ptLast.X - ptPosition.X) * m_pPanel->CompositionScaleX());
    }
}

void VelkoViewControl::PinchAt(Point ptPosition, float fScale) {
    const auto pManager = m_pPageViewMgr;
    Gesture& gesture = OpenGesture(ptPosition);
    gesture.ptPinched = ptPosition;
    const float fCurrent = Scale();
    const float fTarget = std::min(std::max(fCurrent * fScale, gesture.fLeastScale), MostScale());
    if (fTarget != fCurrent) {
        pManager->PageScaled(ToDevice(ptPosition), fTarget, true, false);
    }
}

void VelkoViewControl::OnManipulationCompleted(Input::ManipulationCompletedRoutedEventArgs& args) {
    if (!IsInputOff()) {
        OpenGesture(args.Position);
        EndGesture(args.Position, args.Cumulative.Scale != 1.0F);
    }
}

void VelkoViewControl::CompleteGesture() {
    if (m_gesture && m_pPageViewMgr) {
        const bool bHasPinched = m_gesture->ptPinched.has_value();
        EndGesture(m_gesture->ptPinched.value_or(m_gesture->ptLast), bHasPinched);
    }
}

void VelkoViewControl::EndGesture(Point ptPosition, bool bHasPinched) {
    const Gesture gesture = *std::exchange(m_gesture, std::nullopt);
    const auto pManager = m_pPageViewMgr;
    if (!pManager) {
        return;
    }
    if (bHasPinched) {
        if (pManager->LayoutMode() != LayoutMode::kReflow) {
            pManager->PageScaled(ToDevice(ptPosition), Scale(), false, true);
        }
        return;
    }
    const float fX = (gesture.ptStart.X - ptPosition.X) * m_pPanel->CompositionScaleX();
    const float fY = (gesture.ptStart.Y - ptPosition.Y) * m_pPanel->CompositionScaleY();
    LogSwipe(fX, fY);
    if (const auto pViewer = pManager->GetViewer()) {
        pViewer->AlignPageAfterScroll(fY, fX);
    }
}

// --- the wheel ---

void VelkoViewControl::OnPointerWheelChanged(Input::PointerRoutedEventArgs& args) {
    if (IsInputOff()) {
        return;
    }
    const auto pManager = m_pPageViewMgr;
    const std::int32_t nMode = pManager->LayoutMode();
    if (Platform::Environment()->IsControlKeyDown()) {
        if (nMode != LayoutMode::kReflow) {
            ZoomByWheel(ToDevice(args.Position), args.MouseWheelDelta);
        }
    } else if (nMode == LayoutMode::kSinglePage) {
        TurnPageByWheel(args.MouseWheelDelta);
    } else {
        // A horizontal wheel moves nothing, but is a step with its page events.
        const double dbDown = -static_cast<double>(args.MouseWheelDelta);
        pManager->MoveScreen(args.IsHorizontalMouseWheel ? 0.0 : dbDown, 0.0);
    }
}

// Only the first page ends the turning here; beyond the last the viewer answers.
void VelkoViewControl::TurnPageByWheel(int nDelta) {
    const auto pManager = m_pPageViewMgr;
    const auto pViewer = pManager->GetViewer();
    const std::int32_t nCurrent = pViewer ? pViewer->GetCurrentPageIndex() : 0;
    pManager->GotoPage(std::max(nCurrent + (nDelta >= 1 ? -1 : 1), 0));
}

void VelkoViewControl::ZoomByWheel(Point ptDevice, int nDelta) {
    const auto pManager = m_pPageViewMgr;
    const bool bOut = nDelta < 1;
    const double dbCurrent = Scale();
    const double dbLimit = bOut ? LeastScale() : MostScale();
    if (dbCurrent == dbLimit || !pManager->GetViewer()) {
        return;
    }
    m_ptWheelZoom = ptDevice;
    m_dbWheelZoomScale = bOut ? std::max(dbLimit, dbCurrent - kWheelZoomStep)
                              : std::min(dbLimit, dbCurrent + kWheelZoomStep);
    const std::uint64_t nOwnStop = m_nWheelStops + 1; // the zoom's own
    Platform::FirstFailure step;
    step.Run([&] { pManager->PageScaled(ptDevice, m_dbWheelZoomScale, true, false); });
    if (m_nWheelStops == nOwnStop) { // no handler has gone elsewhere since
        m_pWheelZoomTimer->Start();
    }
    step.Rethrow();
}

void VelkoViewControl::StopWheelZoom() {
    ++m_nWheelStops;
    if (m_pWheelZoomTimer && m_pWheelZoomTimer->IsEnabled()) {
        m_pWheelZoomTimer->Stop();
    }
}

void VelkoViewControl::OnWheelZoomTick() {
    if (!m_gesture) { // a page may be half turned: a later tick comes after its end
        SettleWheelZoom();
    }
}

void VelkoViewControl::SettleWheelZoom() {
    const auto pManager = m_pPageViewMgr;
    if (pManager && m_pWheelZoomTimer->IsEnabled()) {
        pManager->PageScaled(m_ptWheelZoom, m_dbWheelZoomScale, false, true);
    }
}

// --- sizes ---

// Also with the input off: the page is laid out for the window that there is.
void VelkoViewControl::OnViewControlSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs&) {
    if (const auto pManager = m_pPageViewMgr) {
        pManager->InvaildateLayout();
    }
}

}
