// What glyphs ink.
//
// The library keeps bounds of glyphs in tables that it fills without a lock, and
// whoever interprets another page may be at it. So the bounds are not asked of
// these: an outline is made for the asker.
//
// Threads: any. May raise `LibraryError`.
#pragma once

#include <mupdf/fitz.h>

#include <cstdint>

namespace velko::engines::mupdf::reflow {

// The glyph's own bounds; empty where it inks nothing.
fz_rect InkOf(fz_font* pFont, std::int32_t nGlyph, const fz_matrix& shape);

// At least that, and cheap: what a font says of all its glyphs, if it can be true.
fz_rect InkRoom(fz_font* pFont, std::int32_t nGlyph, const fz_matrix& shape);

}
