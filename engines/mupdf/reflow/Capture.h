// A page's characters in lines, as they stand on the page.
//
// Lines and words are those of the library's text extraction; each character
// gets the glyph that the page draws for it, or one of another font where the
// page's own does not serve. Characters off the page are left out.
//
// Threads: one at a time; no lock of the document is needed.
#pragma once

#include <vector>

#include "engines/mupdf/Operation.h"
#include "engines/mupdf/reflow/GlyphRecorder.h"
#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

// Which way a line runs on the page.
enum class Direction { kRight, kDown, kLeft, kUp, kOblique };

// A line's box lies in the space where the line runs to the right: the page
// turned by its direction.
struct TextLine {
    Glyphs glyphs; // in reading order
    fz_rect rc = fz_empty_rect;
    fz_rect rcOnPage = fz_empty_rect;
    float fBaseline = 0.0F;
    float fSize = 0.0F; // of most of its glyphs
    Direction eDirection = Direction::kRight;
    bool bRightToLeft = false;
    bool bFixedPitch = false;       // its letters are all as wide
    std::vector<fz_rect> operators; // what the signs of its sums and the like ink
};

struct CapturedPage {
    std::vector<TextLine> lines; // in the order of the content
    std::vector<ArtworkMark> artwork;
    std::vector<fz_rect> bars; // thin lines across the page
    bool bTooMuch = false;     // of text to set: there are no lines
};

// Turns the page so that lines of the direction run to the right; `dir` is used for
// oblique ones only.
fz_matrix Upright(Direction eDirection, fz_point dir);

// Fills the model's styles and fonts. Raises `EngineException` for want of
// memory, `task_canceled` when the operation is aborted.
CapturedPage CapturePage(PageModel& model, const fz_rect& rcPage, Operation& operation);

}
