// Keys by their numbers, and what handlers of keys are given.
//
// Threads: UI thread only; the arguments live for the event's length.
#pragma once

#include <cstdint>
#include <memory>

namespace Windows::UI::Xaml {
class FrameworkElement;
}

namespace Windows::System {

// Letters and digits are their capital's number.
struct VirtualKey {
    static constexpr std::int32_t Tab = 9;
    static constexpr std::int32_t Enter = 13;
    static constexpr std::int32_t Escape = 27;
    static constexpr std::int32_t D = 68;
};

}

namespace Windows::UI::Core {

struct KeyEventArgs {
    std::int32_t VirtualKey = 0;
};

}

namespace Windows::UI::Xaml::Input {

struct KeyRoutedEventArgs {
    std::int32_t Key = 0;
    std::shared_ptr<FrameworkElement> OriginalSource;
    bool Handled = false;
};

}
