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
#include "engines/mupdf/reflow/ExtractedText.h"
#include "engines/mupdf/reflow/GlyphRecorder.h"
#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

struct TextLine : LineBox {
    Glyphs glyphs;                  // in reading order
    std::vector<fz_rect> operators; // what the signs of its sums and the like ink
};

struct CapturedPage {
    std::vector<TextLine> lines; // in the order of the content
    std::vector<ArtworkMark> artwork;
    std::vector<fz_rect> bars; // thin lines across the page
    bool bTooMuch = false;     // of text to set: there are no lines
};

// Fills the model's styles and fonts. Raises `EngineException` for want of
// memory, `task_canceled` when the operation is aborted.
CapturedPage CapturePage(PageModel& model, const fz_rect& rcPage, Operation& operation);

}
