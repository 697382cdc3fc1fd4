// Draws what lies in a bitmap of a page that was set.
//
// Threads: one at a time; several drawers may run at once.
#pragma once

#include <cstdint>

#include "engines/mupdf/Operation.h"
#include "engines/mupdf/reflow/Layout.h"

namespace velko::engines::mupdf::reflow {

// Pixels (blue, green, red, alpha) that hold what is drawn over.
struct DrawTarget {
    std::uint32_t* pPixels = nullptr;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    fz_matrix toBitmap = fz_identity; // from the layout's space; it has an inverse

    // Of the same size, or null: how much of a picture each pixel is (255: wholly).
    // Filled in where the matrix is a shift by whole pixels.
    std::uint8_t* pPictures = nullptr;
};

// Draws until the operation is aborted or out of time. Raises `EngineException`
// for want of memory, `task_canceled`.
void DrawLayout(const Layout& layout, const DrawTarget& target, Operation& operation);

}
