#include "platform/gestures/ScrollGesture.h"

#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace Input = Windows::UI::Xaml::Input;

namespace {

constexpr std::uint32_t kWheelPointer = 1; // the mouse's
constexpr std::chrono::seconds kSilence{2};

}

ScrollGesture::ScrollGesture(PanelEvents& events, Manipulation& manipulation,
                             std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pSilenceTimer)
    : m_events(events), m_manipulation(manipulation), m_pSilenceTimer(std::move(pSilenceTimer)) {
    m_pSilenceTimer->Interval(kSilence);
}

void ScrollGesture::Apply(const ScrollRecord& record) {
    const bool bTurns = record.nAngleX != 0 || record.nAngleY != 0;
    if (record.ePhase == ScrollPhase::None || (record.ptPixels == Point{} && bTurns)) {
        TurnWheel(record);
        return;
    }
    if (record.ePhase == ScrollPhase::End) {
        End();
        return;
    }
    const bool bAnew = record.ePhase == ScrollPhase::Begin ||
                       (record.ePhase == ScrollPhase::Update && m_eUse == Use::None);
    if (bAnew) {
        Begin(record);
    }
    if (m_eUse == Use::Pan) {
        Pan(record);
    } else if (m_eUse == Use::Zoom && record.ePhase != ScrollPhase::Momentum) {
        Zoom(record);
    }
}

void ScrollGesture::Begin(const ScrollRecord& record) {
    End();
    m_eUse = record.bControl ? Use::Zoom : Use::Pan;
    m_fPixels = 0.0F;
}

void ScrollGesture::End() {
    m_eUse = Use::None;
    m_pSilenceTimer->Stop();
    if (std::exchange(m_bPanOpen, false)) {
        m_manipulation.End();
    }
}

void ScrollGesture::Cancel() {
    const bool bWasUsed = m_eUse != Use::None;
    End();
    if (bWasUsed && m_eUse == Use::None) {
        m_eUse = Use::Dropped;
    }
}

// --- pan and zoom ----------------------------------------------------------

void ScrollGesture::Pan(const ScrollRecord& record) {
    if (record.ptPixels == Point{}) {
        return;
    }
    m_pSilenceTimer->Start();
    bool bOpen = m_bPanOpen;
    if (!bOpen) {
        m_bPanOpen = true; // before handlers run, so that a cancel in them ends it
        bOpen = m_manipulation.Begin(Device::Touch, record.ptAt);
    }
    const Point ptFrom = m_manipulation.Position();
    const Point ptTo{ptFrom.X + record.ptPixels.X, ptFrom.Y + record.ptPixels.Y};
    const bool bInertial = record.ePhase == ScrollPhase::Momentum;
    if (!bOpen || !m_manipulation.MoveTo(ptTo, 1.0F, bInertial)) {
        Cancel();
    }
}

void ScrollGesture::Zoom(const ScrollRecord& record) {
    m_fPixels += record.ptPixels.Y;
    const float fWhole = std::trunc(m_fPixels);
    m_fPixels -= fWhole;
    Raise(record.ptAt, m_zoom.Take(static_cast<std::int32_t>(fWhole), record.time), false);
}

// --- wheel -----------------------------------------------------------------

void ScrollGesture::TurnWheel(const ScrollRecord& record) {
    const std::int32_t nAcross = m_horizontal.Take(record.nAngleX, record.time);
    Raise(record.ptAt, m_vertical.Take(record.nAngleY, record.time), false);
    Raise(record.ptAt, nAcross, true);
}

void ScrollGesture::Raise(Point ptAt, std::int32_t nNotches, bool bHorizontal) {
    if (nNotches == 0) {
        return;
    }
    Input::PointerRoutedEventArgs args;
    args.PointerId = kWheelPointer;
    args.Position = ptAt;
    args.MouseWheelDelta = nNotches;
    args.IsHorizontalMouseWheel = bHorizontal;
    m_events.Raise(&PanelEvents::Panel::PointerWheelChanged, args);
}

}
