// Between the engine's numbers and the platform's.
//
// Threads: pure functions.
#pragma once

#include <cstdint>
#include <limits>

#include "document/engine/Geometry.h"
#include "platform/foundation/Geometry.h"

namespace velko::vkit::detail {

// Toward zero; what does not fit becomes the nearest limit, no number becomes 0.
inline std::int32_t Truncate(double dbValue) {
    constexpr double dbLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double dbHighest = std::numeric_limits<std::int32_t>::max();
    if (!(dbValue > dbLowest)) {
        return dbValue <= dbLowest ? std::numeric_limits<std::int32_t>::min() : 0;
    }
    return dbValue < dbHighest ? static_cast<std::int32_t>(dbValue)
                               : std::numeric_limits<std::int32_t>::max();
}

// X and Y become the left and the bottom of the engine's rectangle.
inline velko::common::vxbase::RectF ToEngineRect(const Windows::Foundation::Rect& rc) {
    return {rc.X, rc.Y, rc.X + rc.Width, rc.Y + rc.Height};
}

// The way back; edges in the wrong order are exchanged.
inline Windows::Foundation::Rect ToPlatformRect(const velko::common::vxbase::RectF& rc) {
    const float fWidth = rc.Right - rc.Left;
    const float fHeight = rc.Top - rc.Bottom;
    return {fWidth < 0.0F ? rc.Left + fWidth : rc.Left,
            fHeight < 0.0F ? rc.Bottom + fHeight : rc.Bottom, fWidth < 0.0F ? -fWidth : fWidth,
            fHeight < 0.0F ? -fHeight : fHeight};
}

}
