// What wheels and scrolling touchpads mean.
//
// A wheel's steps become `PointerWheelChanged` in whole notches. Fingers that
// scroll on a touchpad pan, from the place of the mouse pointer; what the
// system adds after they were lifted is inertial, and no inertia of ours follows.
// With the control key they turn the wheel instead, a notch for 120 pixels,
// and what follows their lift is dropped. A touchpad's gesture stays what it
// began as; one that falls silent without an end is ended.
//
// Units: logical. Threads: UI thread only. Handlers may call back in.
#pragma once

#include <memory>

#include "platform/gestures/Manipulation.h"
#include "platform/gestures/WheelNotches.h"
#include "platform/ui/CoreDispatcher.h"

namespace Platform::Gestures {

class ScrollGesture {
public:
    // `pSilenceTimer`: its owner passes each tick on to `Cancel`.
    ScrollGesture(PanelEvents& events, Manipulation& manipulation,
                  std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pSilenceTimer);

    void Apply(const ScrollRecord& record);

    // Ends a pan; what still comes of the touchpad's gesture is dropped.
    void Cancel();

private:
    enum class Use { None, Pan, Zoom, Dropped };

    void Begin(const ScrollRecord& record);
    void End();
    void Pan(const ScrollRecord& record);
    void Zoom(const ScrollRecord& record);
    void TurnWheel(const ScrollRecord& record);
    void Raise(Point ptAt, std::int32_t nNotches, bool bHorizontal);

    PanelEvents& m_events;
    Manipulation& m_manipulation;
    const std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> m_pSilenceTimer;
    Use m_eUse = Use::None;
    bool m_bPanOpen = false; // the open manipulation is this touchpad's
    WheelNotches m_vertical;
    WheelNotches m_horizontal;
    WheelNotches m_zoom;
    float m_fPixels = 0.0F; // short of a whole one
};

}
