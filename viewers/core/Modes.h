// The numbers by which hosts, the control, the viewers and the stored settings
// name layouts and fits, and what stands in where no viewer gives its own.
//
// They travel as plain `std::int32_t`: a stored or a host's number may be none
// of these. Threads: constants.
#pragma once

#include <cstdint>

#include "platform/foundation/Color.h"

namespace velko::vkit {

namespace LayoutMode {

inline constexpr std::int32_t kNone = 0; // before the first document
inline constexpr std::int32_t kContinuous = 1;
inline constexpr std::int32_t kSinglePage = 2;
inline constexpr std::int32_t kReflow = 3;

}

// What a page is fitted by. The kinds of a destination have numbers of their own.
namespace ZoomMode {

inline constexpr std::int32_t kNone = 0; // a scale of 1.0, as has any other number
inline constexpr std::int32_t kFitPage = 1;
inline constexpr std::int32_t kFitWidth = 2;
inline constexpr std::int32_t kFitHeight = 3;

}

struct ScaleLimits {
    float fLeast = 0.0F;
    float fMost = 0.0F;
};

// The limits while there is no viewer to ask.
inline constexpr ScaleLimits kNoViewerLimits = {1.0F, 3.0F};

struct PaperAndInk {
    Windows::UI::Color background;
    Windows::UI::Color foreground;
};

// What the control's night mode puts on, and knows it by.
inline constexpr PaperAndInk kNightColors = {{255, 0, 0, 27}, {255, 93, 91, 113}};

}
