// Which regions of a page are shown as they are, and the text within them.
//
// Threads: pure functions.
#pragma once

#include <vector>

#include "engines/mupdf/reflow/Capture.h"

namespace velko::engines::mupdf::reflow {

struct FoundFigure {
    Figure figure;
    std::vector<std::size_t> lines; // of the page's, which the region shows
};

// Pictures, drawings, and text that runs along a curve.
std::vector<FoundFigure> FindFigures(const CapturedPage& page, const fz_rect& rcPage);

}
