// The order in which the pieces of a page are read.
//
// A gutter is a strip that hardly any piece crosses, with text on both sides.
// The pieces that do cross it (titles, wide pictures) part the page into bands;
// within a band one side is read after the other, each by the same rule. What
// has no gutter is a column, read row by row from the top. The cells of a table
// stand in strips as well, but they are short, and the file draws them row by
// row: such a strip is no gutter.
//
// Threads: pure functions.
// Units: points of upright space, Y down.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <vector>

namespace velko::engines::mupdf::reflow {

// A line of text, or a figure.
struct Piece {
    fz_rect rc = fz_empty_rect;
    float fSize = 0.0F;       // of its letters; 0 for a figure
    std::size_t nLetters = 0; // 0 for a figure
    std::size_t nIndex = 0;   // of the caller's; grows in the content's order
    bool bRightToLeft = false;

    bool IsFigure() const { return nLetters == 0; }
};

// Pieces side by side, in reading order.
using Row = std::vector<Piece>;

struct Column {
    std::vector<Row> rows;
    float fLeft = 0.0F;
    float fRight = 0.0F;
    bool bAside = false; // a running head, a page number: no part of the text's flow
};

// Every piece stands in one row of one column.
std::vector<Column> OrderPieces(std::vector<Piece> pieces, const fz_rect& rcPage);

}
