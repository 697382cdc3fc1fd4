// Where a paragraph's lines end, and the order in which a line is drawn.
//
// Threads: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

// Glyphs of a paragraph from `nFirst` up to `nEnd`, the space at its end left out.
struct BrokenLine {
    std::size_t nFirst = 0;
    std::size_t nEnd = 0;
    float fWidth = 0.0F;
};

// The room that the widest word takes.
float WidestPart(const Glyphs& glyphs, const std::function<float(std::size_t)>& fnAdvance);

// Fills lines up to their room: `fnRoom(n)` is that of line `n`, `fnAdvance(i)`
// the width of glyph `i`. Lines break at spaces, behind hyphens and between
// ideographs, and within a word that no line holds.
std::vector<BrokenLine> BreakLines(const Glyphs& glyphs,
                                   const std::function<float(std::size_t)>& fnRoom,
                                   const std::function<float(std::size_t)>& fnAdvance);

// The levels of a text's characters: those of odd ones run to the left. Empty
// when all run to the right.
using Levels = std::vector<std::uint8_t>;
Levels LevelsOf(const Paragraph& paragraph);

// The line's glyphs from left to right.
std::vector<std::size_t> VisualOrder(const BrokenLine& line, const Levels& levels);

}
