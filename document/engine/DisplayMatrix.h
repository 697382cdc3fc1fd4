// The display matrix of a page, for engines to share.
#pragma once

#include <cstdint>

#include "document/engine/Geometry.h"

namespace velko::pdf {

// Maps `rcBox` of page space (sides above 0), turned clockwise by the sum of
// both rotations (quarter turns, any integer), onto the device rectangle.
// Threads: a pure function.
common::vxbase::Matrix2D MakeDisplayMatrix(const common::vxbase::RectF& rcBox,
                                           std::int32_t nPageRotation, std::int32_t nLeft,
                                           std::int32_t nTop, std::int32_t nWidth,
                                           std::int32_t nHeight, std::int32_t nRotate);

}
