// Input as a toolkit's window reports it, before anything is made of it.
//
// A window turns each native event into one of these records and leaves all
// judgement to `PanelInput`.
// Units: positions and distances logical, relative to the panel. Times count
// from a point of the source's own choice; only their differences are used,
// and a source that knows no times gives 0. Threads: values.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/ui/Input.h"

namespace Platform::Gestures {

using Windows::Foundation::Point;
using Device = Windows::UI::Xaml::Input::PointerDeviceType;
using InputTime = std::chrono::nanoseconds;

enum class PointerChange { Pressed, Moved, Released, Entered, Exited, Canceled };

struct PointerRecord {
    PointerChange eChange = PointerChange::Moved;
    std::uint32_t nId = 0; // unique among the pointers of all devices
    Device eDevice = Device::Mouse;
    Point ptAt;
    // Whether it touches: a finger, a pen's tip, the left button. Of a press or
    // release: whether it is that which changed (another button does not touch).
    bool bContact = true;
};

// What changed at one moment. Fingers that moved together belong in one frame.
struct PointerFrame {
    InputTime time{0};
    std::vector<PointerRecord> records;
};

enum class ScrollPhase {
    None,   // a wheel, which knows no beginning and no end
    Begin,  // of fingers on a touchpad, in this order
    Update, //
    Momentum,
    End,
};

struct ScrollRecord {
    InputTime time{0};
    ScrollPhase ePhase = ScrollPhase::None;
    Point ptAt;
    std::int32_t nAngleX = 0; // 120 a notch, positive away from the user
    std::int32_t nAngleY = 0;
    Point ptPixels; // how far the content is to move; zero where the device does not tell
    bool bControl = false;
};

// Two fingers on a touchpad that spread or close around the mouse pointer.
enum class PinchPhase { Begin, Zoom, End };

struct PinchRecord {
    PinchPhase ePhase = PinchPhase::Zoom;
    Point ptAt;
    float fFactor = 1.0F; // of this step
};

}
