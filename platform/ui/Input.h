// The arguments of input events, with the members that handlers read.
//
// Units: positions logical, relative to the panel. Threads: UI thread only;
// the arguments live for the event's length.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Geometry.h"

namespace Windows::UI::Xaml {
class FrameworkElement;
}

namespace Windows::UI::Xaml::Input {

enum class ManipulationMode : std::uint32_t { None = 0, All = 65535, System = 65536 };

enum class PointerDeviceType { Touch = 0, Pen = 1, Mouse = 2 };

// Movement and scaling since the last event, or since the gesture began.
struct ManipulationDelta {
    Foundation::Point Translation;
    float Scale = 1.0F; // exactly 1 when the fingers' distance did not change
};

struct ManipulationStartedRoutedEventArgs {
    Foundation::Point Position;
    Xaml::Input::PointerDeviceType PointerDeviceType = Xaml::Input::PointerDeviceType::Touch;
    bool Handled = false;
};

struct ManipulationDeltaRoutedEventArgs {
    Foundation::Point Position;
    ManipulationDelta Delta;
    ManipulationDelta Cumulative;
    Xaml::Input::PointerDeviceType PointerDeviceType = Xaml::Input::PointerDeviceType::Touch;
    bool IsInertial = false;
    bool Handled = false;
};

struct ManipulationCompletedRoutedEventArgs {
    Foundation::Point Position;
    ManipulationDelta Cumulative;
    Xaml::Input::PointerDeviceType PointerDeviceType = Xaml::Input::PointerDeviceType::Touch;
    bool IsInertial = false;
    bool Handled = false;
};

struct PointerRoutedEventArgs {
    std::uint32_t PointerId = 0;
    Foundation::Point Position;
    Xaml::Input::PointerDeviceType PointerDeviceType = Xaml::Input::PointerDeviceType::Mouse;
    std::int32_t MouseWheelDelta = 0; // 120 a notch, positive away from the user
    bool IsHorizontalMouseWheel = false;
    bool Handled = false;
};

struct HoldingRoutedEventArgs {
    Foundation::Point Position;
    bool Handled = false;
};

struct TappedRoutedEventArgs {
    Foundation::Point Position;
    bool Handled = false;
    std::shared_ptr<FrameworkElement> OriginalSource; // empty over a swap chain panel
};

}
