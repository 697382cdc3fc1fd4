// A page's model set for a width: where each glyph and each figure stands.
//
// Lines stand on whole pixels and glyphs on quarters of one, so that a band
// that is drawn alone has the pixels that it has in the whole.
//
// Threads: immutable once made; may be drawn by several threads.
// Units: pixels, the content's first at the top left.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engines/mupdf/reflow/PageModel.h"
#include "engines/mupdf/reflow/SetParameters.h"

namespace velko::engines::mupdf::reflow {

struct SetGlyph {
    float x = 0.0F;
    std::int32_t y = 0; // of its own baseline
    std::uint32_t nStyle = 0;
    std::int32_t nGlyph = 0;
    char32_t nUnicode = 0;
};

struct SetLine {
    std::size_t nFirst = 0; // of the glyphs
    std::size_t nEnd = 0;
    std::int32_t nInkTop = 0;
    std::int32_t nInkBottom = 0;
};

struct SetFigure {
    fz_irect rc = fz_empty_irect;
    fz_rect rcRegion = fz_empty_rect; // of the page
};

// The room of a character on its line, in the order of the setting.
struct SetPlace {
    std::uint32_t nSource = 0; // `Glyph::nSource`
    std::int32_t nLine = 0;    // from the top down
    float fLeft = 0.0F;
    float fRight = 0.0F;
    std::int32_t nTop = 0; // of the line
    std::int32_t nBottom = 0;
    bool bRunsLeft = false;
};

// Its bytes are its own; the model's are not among them.
struct Layout : CacheItem {
    static constexpr std::int32_t kMaxWidth = SetParameters::kMostSide;
    static constexpr std::int32_t kMaxHeight = 4'000'000;

    std::shared_ptr<const PageModel> pModel;
    std::vector<fz_matrix> shapes; // of each style's glyphs, without the place
    std::vector<SetGlyph> glyphs;
    std::vector<SetLine> lines; // from the top down
    std::vector<SetFigure> figures;
    std::int32_t nWidth = 0; // 0 by 0 where there is nothing to show
    std::int32_t nHeight = 0;
};

// The parameters are bounded ones; sizes of letters are brought within what can be read.
// Appends the places of the characters of the page where they are wanted.
std::shared_ptr<const Layout> SetModel(std::shared_ptr<const PageModel> pModel,
                                       const SetParameters& parameters,
                                       std::vector<SetPlace>* pPlaces = nullptr);

}
