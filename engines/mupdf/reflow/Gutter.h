// Finding the strip between two columns, see ReadingOrder.h.
//
// Threads: pure functions.
#pragma once

#include <optional>
#include <span>

#include "engines/mupdf/reflow/ReadingOrder.h"

namespace velko::engines::mupdf::reflow {

struct Gutter {
    float fLeft = 0.0F;
    float fRight = 0.0F;

    float Middle() const { return (fLeft + fRight) / 2.0F; }
    bool IsCrossedBy(const fz_rect& rc) const { return rc.x0 < Middle() && rc.x1 > Middle(); }
};

std::optional<Gutter> FindGutter(std::span<const Piece> pieces);

}
