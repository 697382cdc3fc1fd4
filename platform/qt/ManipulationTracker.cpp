#include "platform/qt/ManipulationTracker.h"

#include <cmath>
#include <utility>

namespace Platform::Qt {

namespace Input = Windows::UI::Xaml::Input;

namespace {

float Distance(Windows::Foundation::Point a, Windows::Foundation::Point b) {
    return std::hypot(a.X - b.X, a.Y - b.Y);
}

Windows::Foundation::Point Between(Windows::Foundation::Point from, Windows::Foundation::Point to) {
    return {to.X - from.X, to.Y - from.Y};
}

}

ManipulationTracker::ManipulationTracker(
    std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel, float fReach)
    : m_pPanel(std::move(pPanel)), m_fReach(fReach) {}

ManipulationTracker::Shape ManipulationTracker::Measure(const std::vector<Point>& pointers) {
    Shape shape;
    const auto fCount = static_cast<float>(pointers.size());
    for (const Point pt : pointers) {
        shape.ptCentre.X += pt.X / fCount;
        shape.ptCentre.Y += pt.Y / fCount;
    }
    if (pointers.size() > 1) {
        for (const Point pt : pointers) {
            shape.fSpread += Distance(pt, shape.ptCentre) / fCount;
        }
    }
    return shape;
}

void ManipulationTracker::Update(Device eDevice, const std::vector<Point>& pointers) {
    if (pointers.empty()) {
        Release();
    } else if (pointers.size() != m_nPointers || eDevice != m_eDevice) {
        Press(eDevice, pointers);
    } else {
        MoveTo(Measure(pointers));
    }
}

void ManipulationTracker::Press(Device eDevice, const std::vector<Point>& pointers) {
    const auto ending = TakeEnding();
    const bool bWasDown = m_nPointers > 0;
    m_nPointers = pointers.size();
    m_bMayTap = !bWasDown && m_nPointers == 1;
    m_bPinched = bWasDown && m_bPinched;
    m_pressed = m_last = Measure(pointers);
    m_eDevice = eDevice;
    Complete(ending);
}

void ManipulationTracker::MoveTo(const Shape& shape) {
    if (m_nPointers == 1 && m_bPinched) {
        return;
    }
    const bool bFar = Distance(shape.ptCentre, m_pressed.ptCentre) > m_fReach ||
                      std::fabs(shape.fSpread - m_pressed.fSpread) > m_fReach;
    if (!m_bStarted && !bFar) {
        return;
    }
    if (!m_bStarted) {
        m_bMayTap = false;
        m_bPinched = m_bPinched || m_nPointers > 1;
        Start(m_pressed.ptCentre);
    }
    Input::ManipulationDelta delta;
    delta.Translation = Between(m_last.ptCentre, shape.ptCentre);
    if (shape.fSpread > 0.0F && m_last.fSpread > 0.0F && shape.fSpread != m_last.fSpread) {
        delta.Scale = shape.fSpread / m_last.fSpread;
    }
    m_last = shape;
    if (delta.Translation != Point{} || delta.Scale != 1.0F) {
        RaiseDelta(delta, false);
    }
}

void ManipulationTracker::Release() {
    const auto ending = TakeEnding();
    const bool bTap = std::exchange(m_bMayTap, false);
    m_nPointers = 0;
    m_bPinched = false;
    Complete(ending);
    if (bTap) {
        Input::TappedRoutedEventArgs args;
        args.Position = m_pressed.ptCentre;
        m_pPanel->Tapped.raise(args);
    }
}

void ManipulationTracker::Cancel() {
    m_bMayTap = false;
    Release();
}

void ManipulationTracker::PanBy(Device eDevice, Point ptAt, Point ptStep, bool bInertial) {
    m_bMayTap = false;
    if (!m_bStarted) {
        m_eDevice = eDevice;
        m_last.ptCentre = ptAt;
        Start(ptAt);
    }
    m_last.ptCentre = {m_last.ptCentre.X + ptStep.X, m_last.ptCentre.Y + ptStep.Y};
    Input::ManipulationDelta delta;
    delta.Translation = ptStep;
    RaiseDelta(delta, bInertial);
}

void ManipulationTracker::Start(Point ptAt) {
    if (m_pPanel->ManipulationMode != Input::ManipulationMode::All) {
        return;
    }
    m_bStarted = true;
    m_cumulative = {};
    Input::ManipulationStartedRoutedEventArgs args;
    args.Position = ptAt;
    args.PointerDeviceType = m_eDevice;
    m_pPanel->ManipulationStarted.raise(args);
}

void ManipulationTracker::RaiseDelta(const Input::ManipulationDelta& delta, bool bInertial) {
    if (!m_bStarted) {
        return;
    }
    m_cumulative.Translation.X += delta.Translation.X;
    m_cumulative.Translation.Y += delta.Translation.Y;
    m_cumulative.Scale *= delta.Scale;
    if (delta.Scale != 1.0F && m_cumulative.Scale == 1.0F) {
        m_cumulative.Scale = std::nextafter(1.0F, 2.0F); // exactly 1 would tell of a pan
    }
    Input::ManipulationDeltaRoutedEventArgs args;
    args.Position = m_last.ptCentre;
    args.Delta = delta;
    args.Cumulative = m_cumulative;
    args.PointerDeviceType = m_eDevice;
    args.IsInertial = bInertial;
    m_pPanel->ManipulationDelta.raise(args);
}

std::optional<ManipulationTracker::Completed> ManipulationTracker::TakeEnding() {
    if (!std::exchange(m_bStarted, false)) {
        return std::nullopt;
    }
    Completed args;
    args.Position = m_last.ptCentre;
    args.Cumulative = m_cumulative;
    args.PointerDeviceType = m_eDevice;
    return args;
}

void ManipulationTracker::Complete(std::optional<Completed> ending) {
    if (ending) {
        m_pPanel->ManipulationCompleted.raise(*ending);
    }
}

}
