// Where a step of the keyboard comes to from a place in the text.
//
// Threads: pure functions. Units: page space; indexes of `PageText::chars`.
#pragma once

#include <cstdint>
#include <optional>

#include "document/engine/PageText.h"

namespace velko::vkit {

enum class TextStep { Char, Word, Line, LineEdge };

// A place between characters, of the line that it ends or of the one that it begins.
struct TextSpot {
    std::int32_t nPlace = 0;
    bool bEnds = false; // belongs to what lies before it
};

// The line that it stands on; -1 for a page without text.
std::int32_t LineOfSpot(const velko::pdf::PageText& text, TextSpot spot);

// Whether the line is read to the left of its letters.
bool RunsBack(const velko::pdf::PageText& text, std::int32_t nLine);

// On in the order of reading (`nDirection` 1) or back (-1). `ptGoal` is where a step to
// another line aims. Empty where the page has no such place.
std::optional<TextSpot> SpotAfter(const velko::pdf::PageText& text, TextSpot spot,
                                  velko::common::vxbase::PointF ptGoal, TextStep eStep,
                                  int nDirection);

// Where such a step enters a page from the one before (1) or behind (-1) it.
TextSpot SpotOnEntering(const velko::pdf::PageText& text, TextStep eStep, int nDirection,
                        velko::common::vxbase::PointF ptGoal);

// The middle of the place's edge.
velko::common::vxbase::PointF PointOf(const velko::pdf::PageText& text, TextSpot spot);

}
