// The manipulation of a panel that is open, at most one, and its events.
//
// Each one that was begun raises `ManipulationStarted` and later
// `ManipulationCompleted`, both once. Once its scale has changed, its cumulative
// scale is never exactly 1 again, so that handlers can tell a pinch from a pan.
// Handlers may call back: state is set before each raise, and the results of
// `Begin` and `MoveTo` tell whether this manipulation is still the open one.
//
// Units: logical. Threads: UI thread only.
#pragma once

#include <cstdint>

#include "platform/gestures/PanelEvents.h"
#include "platform/gestures/RawInput.h"

namespace Platform::Gestures {

class Manipulation {
public:
    explicit Manipulation(PanelEvents& events) : m_events(events) {}

    bool IsOpen() const { return m_bOpen; }
    // Where the open one has been moved to, told or not; else the last one.
    Point Position() const { return m_ptAt; }

    // None is open. Refused when the panel leaves gestures to the system.
    bool Begin(Device eDevice, Point ptAt);

    // Raises a delta. A movement of less than a device pixel waits until more of
    // it has gathered, because handlers that place pixels would drop it. A panel that has come to
    // leave gestures to the system ends it instead. `fScale` is above 0.
    bool MoveTo(Point ptTo, float fScale = 1.0F, bool bInertial = false);

    // Nothing when none is open.
    void End();

private:
    bool IsVisible(Point ptStep) const;
    void Accumulate(const Windows::UI::Xaml::Input::ManipulationDelta& delta);

    PanelEvents& m_events;
    std::uint64_t m_nBegun = 0;
    bool m_bOpen = false;
    bool m_bScaled = false;
    bool m_bInertial = false;
    Device m_eDevice = Device::Touch;
    Point m_ptAt;
    Point m_ptTold; // by the last event
    Windows::UI::Xaml::Input::ManipulationDelta m_cumulative;
};

}
