// The arithmetic that viewers of whole pages share: how large a page is shown,
// into how many blocks it is cut, and rectangles in 32-bit floats.
//
// Units: device pixels, points where it is said. Threads: pure functions, but
// the display size asks for the device family and the logical DPI (UI thread).
#pragma once

#include <cmath>
#include <cstdint>

#include "document/PageTable.h"
#include "platform/foundation/Geometry.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

// The part of a canvas that a layout works against.
struct ScreenSize {
    double dbWidth = 0.0;
    double dbHeight = 0.0;
};

struct DisplaySize {
    float fWidth = 0.0F;
    float fHeight = 0.0F;
};

// The size of a page of `size` points. A scale of 0 asks for the scale at
// which the page fits the screen; it is worked out and stored in `dbScale`
// (not on the mobile family, whose scale 1.0 is the fit). 0 by 0 for a page
// without a size.
DisplaySize CalcPageDisplaySize(const VLK_PageSize& size, std::int32_t nRotate,
                                const ScreenSize& screen, double& dbScale);

// How much larger than at the scale that shows a whole page of `size` points it
// shows at the one that fills the screen's width; at least 1. For a page turned
// by a quarter the quotient is the other way round, and at most 1. 1 where there
// is nothing to compare.
double CalcWidthRatio(const VLK_PageSize& size, std::int32_t nRotate, const ScreenSize& screen);

// The grid whose blocks are between one and two screens on each side; at
// least 1 by 1.
Render_PageDavidBlock CalcBlockGrid(const Render_ScreenOffsetInfo& rc, const ScreenSize& screen);

// Truncates a side to whole pixels; never negative, and bounded.
std::int32_t TruncateSide(float fSide);

inline double FiniteOrZero(double dbValue) {
    return std::isfinite(dbValue) ? dbValue : 0.0;
}

inline bool IsTurned(std::int32_t nRotate) {
    return nRotate == 1 || nRotate == 3;
}

// Raises `InvalidArgumentException` for a negative size.
inline Windows::Foundation::Rect ToRect(const Render_ScreenOffsetInfo& rc) {
    return {static_cast<float>(rc.dbOffsetX), static_cast<float>(rc.dbOffsetY),
            static_cast<float>(rc.nWidth), static_cast<float>(rc.nHeight)};
}

}
