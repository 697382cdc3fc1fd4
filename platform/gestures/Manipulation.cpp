#include "platform/gestures/Manipulation.h"

#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace Input = Windows::UI::Xaml::Input;
using Panel = PanelEvents::Panel;

bool Manipulation::Begin(Device eDevice, Point ptAt) {
    if (m_bOpen || !m_events.WantsManipulations()) {
        return false;
    }
    m_bOpen = true;
    m_bScaled = false;
    m_bInertial = false;
    m_eDevice = eDevice;
    m_ptAt = m_ptTold = ptAt;
    m_cumulative = {};
    const std::uint64_t nThis = ++m_nBegun;
    Input::ManipulationStartedRoutedEventArgs args;
    args.Position = ptAt;
    args.PointerDeviceType = eDevice;
    m_events.Raise(&Panel::ManipulationStarted, args);
    return m_bOpen && m_nBegun == nThis;
}

bool Manipulation::IsVisible(Point ptStep) const {
    return std::fabs(ptStep.X) * m_events.Target().CompositionScaleX() >= 1.0F ||
           std::fabs(ptStep.Y) * m_events.Target().CompositionScaleY() >= 1.0F;
}

void Manipulation::Accumulate(const Input::ManipulationDelta& delta) {
    m_cumulative.Translation.X += delta.Translation.X;
    m_cumulative.Translation.Y += delta.Translation.Y;
    m_cumulative.Scale *= delta.Scale;
    m_bScaled = m_bScaled || delta.Scale != 1.0F;
    if (m_bScaled && m_cumulative.Scale == 1.0F) {
        m_cumulative.Scale = std::nextafter(1.0F, 2.0F);
    }
}

bool Manipulation::MoveTo(Point ptTo, float fScale, bool bInertial) {
    if (!m_bOpen) {
        return false;
    }
    if (!m_events.WantsManipulations()) {
        End();
        return false;
    }
    m_ptAt = ptTo;
    Input::ManipulationDeltaRoutedEventArgs args;
    args.Delta.Translation = {ptTo.X - m_ptTold.X, ptTo.Y - m_ptTold.Y};
    args.Delta.Scale = fScale;
    if (fScale == 1.0F && !IsVisible(args.Delta.Translation)) {
        return true;
    }
    Accumulate(args.Delta);
    m_ptTold = ptTo;
    m_bInertial = bInertial;
    args.Position = ptTo;
    args.Cumulative = m_cumulative;
    args.PointerDeviceType = m_eDevice;
    args.IsInertial = bInertial;
    const std::uint64_t nThis = m_nBegun;
    m_events.Raise(&Panel::ManipulationDelta, args);
    return m_bOpen && m_nBegun == nThis;
}

void Manipulation::End() {
    if (!std::exchange(m_bOpen, false)) {
        return;
    }
    Input::ManipulationCompletedRoutedEventArgs args;
    args.Position = m_ptTold;
    args.Cumulative = m_cumulative;
    args.PointerDeviceType = m_eDevice;
    args.IsInertial = m_bInertial;
    m_events.Raise(&Panel::ManipulationCompleted, args);
}

}
