// A row of a column as one line of text, with what its place says about it.
//
// Threads: pure functions.
// Units: points of upright space.
#pragma once

#include <cstddef>
#include <vector>

#include "engines/mupdf/reflow/Capture.h"
#include "engines/mupdf/reflow/ReadingOrder.h"

namespace velko::engines::mupdf::reflow {

struct RowText {
    Glyphs glyphs;
    fz_rect rc = fz_empty_rect;
    float fBaseline = 0.0F;
    float fSize = 0.0F;
    std::size_t nMarker = 0;   // glyphs of the list's marker that it begins with
    float fAfterMarker = 0.0F; // where the text behind the marker begins
    std::size_t nWideGaps = 0;
    bool bCells = false; // of a table, wide gaps between them
    bool bBold = false;  // all of it
    bool bFixedPitch = false;
    bool bRightToLeft = false;

    char32_t First() const { return glyphs.front().nUnicode; }
    char32_t Last() const { return glyphs.back().nUnicode; }
    bool IsNumbered() const;      // the marker is a number or a letter
    bool EndsSentence() const;    // closing quotes and brackets set aside
    float FirstWordWidth() const; // an estimate
};

// Takes the glyphs out of the lines.
RowText MakeRowText(const Row& row, std::vector<TextLine>& lines, const PageModel& model);

}
