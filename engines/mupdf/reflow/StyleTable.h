// The styles and fonts of a model while it is made.
//
// Threads: one at a time.
#pragma once

#include <cstdint>
#include <map>
#include <tuple>

#include "engines/mupdf/reflow/PageModel.h"

namespace velko::engines::mupdf::reflow {

class StyleTable {
public:
    explicit StyleTable(PageModel& model) : m_model(model) {}

    // A reference of the font is taken when it is new. Guard nothing: may raise
    // `std::bad_alloc` only.
    std::size_t FontIndex(fz_font* pFont);

    // The style's number; figures are rounded so that like glyphs share one.
    std::uint32_t Index(Style style);

    const Style& At(std::uint32_t nStyle) const { return m_model.styles[nStyle]; }
    fz_font* FontOf(const Style& style) const { return m_model.fonts[style.nFont].Get(); }

private:
    using Key = std::tuple<std::size_t, int, int, int, int, int, std::uint32_t>;

    PageModel& m_model;
    std::map<fz_font*, std::size_t> m_fonts;
    std::map<Key, std::uint32_t> m_styles;
    Key m_lastKey{};
    std::uint32_t m_nLast = 0;
};

// The font's own glyph for a character; 0 for none.
std::int32_t GlyphFor(fz_font* pFont, char32_t nUnicode);

// The glyph for a character from the fonts that come with the library, in a face
// like `pLike`. Kept fonts live as long as the process. `pFont` is null where no
// font has it.
struct StandIn {
    fz_font* pFont = nullptr;
    std::int32_t nGlyph = 0;
};
StandIn FindStandIn(fz_font* pLike, char32_t nUnicode);

}
