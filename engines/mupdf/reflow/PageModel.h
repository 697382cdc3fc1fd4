// A page's text as it is read: paragraphs in reading order, pictures between them.
//
// Nothing here knows the width that the text is set for. Made by `ModelBuilder`.
// Threads: immutable once made; may be read by several threads.
// Units: points of the page's upright space, Y down.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/Guard.h"

namespace velko::engines::mupdf::reflow {

using FontHandle = Handle<fz_font, fz_drop_font>;

inline constexpr char32_t kCellGap = 0x2003; // between the cells of a table's row
inline constexpr char32_t kWideGap = 0x2002; // a space that may be one

// What neighbouring glyphs share. A run is a stretch of glyphs with one style.
struct Style {
    std::size_t nFont = 0;    // of the model's fonts
    float fSize = 10.0F;      // as it is seen
    float fToFont = 1.0F;     // from that to the size that the font's glyphs are drawn at
    float fStretch = 1.0F;    // width to height
    float fSlant = 0.0F;      // sideways shift per height, beyond the font's own
    float fRise = 0.0F;       // above the line; negative below it
    std::uint32_t nColor = 0; // 0xRRGGBB

    bool operator==(const Style&) const = default;
};

struct Glyph {
    static constexpr std::int32_t kNone = -1; // takes its room without a drawing
    static constexpr std::int16_t kOwnRoom = INT16_MIN;
    static constexpr std::uint32_t kNoSource = UINT32_MAX;

    char32_t nUnicode = 0;
    std::int32_t nGlyph = kNone; // in the font of its style
    std::uint32_t nStyle = 0;
    bool bNoRoom = false; // a further character of the glyph before it
    // To what stands to its right, in thousandths of its size: as on the page, where
    // glyphs of a word reach over each other; else what its font says.
    std::int16_t nRoom = kOwnRoom;
    std::uint32_t nSource = kNoSource; // the character's number in the extraction
};

using Glyphs = std::vector<Glyph>;

enum class Align { kStart, kCentre };

struct Paragraph {
    Glyphs glyphs;            // in logical order, one space between words
    float fIndent = 0.0F;     // of all lines but the first, from the column's edge
    float fFirstLine = 0.0F;  // of the first line, from there; negative for a hanging one
    float fSpaceAbove = 0.0F; // beyond what stands between any two paragraphs
    Align eAlign = Align::kStart;
    bool bRightToLeft = false;
    float fTableWidth = 0.0F; // of the table that it is a row of; 0 for none
    bool bFixedPitch = false; // all of it
    bool bClose = false;      // to the one above, as lines of one text
};

// A region of the page that is shown as it is.
struct Figure {
    fz_rect rcRegion = fz_empty_rect; // of the page, not turned upright
    bool bIsText = false;             // text that cannot be set: shown without pictures too
};

// One of both.
struct Block {
    Paragraph paragraph;
    Figure figure;
    bool bIsFigure = false;
    bool bInPicture = false; // a paragraph that the picture before it shows
    bool bInText = false;    // one that a figure of text shows
};

// Its bytes are its own; those of the lists are not among them. Cut short is one
// that is made of a drawing that is not all there.
struct PageModel : CacheItem {
    std::vector<Block> blocks; // in reading order
    std::vector<Style> styles;
    std::vector<FontHandle> fonts;
    float fBodySize = 10.0F; // of most of the text

    // The lists that the figures are drawn from and the fonts live in.
    std::shared_ptr<const Drawing> pContent;
    std::shared_ptr<const Drawing> pAnnots;
};

// Calls `fnRun` for each list that takes part in the page.
template <class Run>
void ForEachList(const PageModel& model, Run&& fnRun) {
    for (const auto& pDrawing : {model.pContent, model.pAnnots}) {
        if (!pDrawing) {
            continue;
        }
        for (const Drawing::Part& part : pDrawing->parts) {
            if (part.list) {
                fnRun(part.list.Get());
            }
        }
    }
}

std::size_t BytesOf(const PageModel& model);

// The text in UTF-8, ligatures taken apart: a line for each paragraph.
std::string TextOf(const PageModel& model);
std::string TextOf(const Paragraph& paragraph);

}
