// Finds formulas that stand in several storeys: fractions, sums with their limits.
// Set as lines they would fall apart, so they are shown as they are.
//
// Threads: pure functions.
#pragma once

#include <cstddef>
#include <vector>

#include "engines/mupdf/reflow/Capture.h"

namespace velko::engines::mupdf::reflow {

struct Formula {
    fz_rect rc = fz_empty_rect; // on the page
    std::vector<std::size_t> lines;
};

// Lines in `taken` belong elsewhere.
std::vector<Formula> FindFormulas(const CapturedPage& page, const std::vector<bool>& taken);

}
