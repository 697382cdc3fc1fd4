// A touchpad's pinch: about the place of the mouse pointer where it began.
//
// Units: logical. Threads: UI thread only. Handlers may call back in.
#pragma once

#include "platform/gestures/Manipulation.h"

namespace Platform::Gestures {

class PinchGesture {
public:
    explicit PinchGesture(Manipulation& manipulation) : m_manipulation(manipulation) {}

    // The first step begins the manipulation; a beginning alone may become
    // a rotation or nothing.
    void Apply(const PinchRecord& record);
    // Ends it; what still comes of the touchpad's gesture is dropped.
    void Cancel();

private:
    void End();
    void Zoom(const PinchRecord& record);

    Manipulation& m_manipulation;
    bool m_bOpen = false; // the open manipulation is this one's
    bool m_bDropped = false;
};

}
