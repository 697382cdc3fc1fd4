// The gap between two pages.
#pragma once

#include <cstdint>

namespace velko::vkit {

inline constexpr double kPageGap = 15.0; // device pixels
inline constexpr std::int32_t kPageGapPixels = 15;

}
