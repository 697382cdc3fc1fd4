// From the order in which characters stand on a line to the one they are read in.
//
// Pages with right-to-left text keep it in either order; where the characters
// stand is what can be trusted.
//
// Threads: pure functions.
#pragma once

#include <cstddef>
#include <vector>

namespace velko::engines::mupdf::reflow {

struct PlacedCharacter {
    char32_t nUnicode = 0;
    float fMiddle = 0.0F;   // along the line
    std::size_t nIndex = 0; // of the caller's
};

// Reorders the characters of one line when some of them run right to left;
// returns whether most do.
bool ToLogicalOrder(std::vector<PlacedCharacter>& line);

}
