#include "engines/mupdf/reflow/GlyphMetrics.h"

#include <algorithm>
#include <cmath>

#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/GlyphInk.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kSpace = 0.26F; // widths in the text's size
constexpr float kCells = 1.5F;
constexpr float kUnknown = 0.5F;
constexpr float kWidest = 3.0F;
constexpr float kFarthest = 6.0F;       // a glyph that reaches farther is not drawn
constexpr float kSmallestOfBody = 0.5F; // sizes beside that of most of the text
constexpr float kLargestOfBody = 4.0F;

float RoomWithoutDrawing(const Glyph& glyph) {
    if (glyph.bNoRoom) {
        return 0.0F;
    }
    if (glyph.nUnicode == kCellGap) {
        return kCells;
    }
    return IsSpace(glyph.nUnicode) ? kSpace : kUnknown;
}

}

GlyphMetrics::GlyphMetrics(const PageModel& model, float fScale, float fMostSize) : m_model(model) {
    for (const Style& style : model.styles) {
        const float fOnPage = std::clamp(style.fSize, kSmallestOfBody * model.fBodySize,
                                         kLargestOfBody * model.fBodySize);
        const float fSize = std::clamp(fOnPage * fScale, 1.0F, std::max(fMostSize, 1.0F));
        const float fHeight = fSize * style.fToFont;
        m_sizes.push_back(fSize);
        m_shapes.push_back(fz_make_matrix(fHeight * style.fStretch, 0.0F, fHeight * style.fSlant,
                                          -fHeight, 0.0F, 0.0F));
    }
}

float GlyphMetrics::RiseOf(std::uint32_t nStyle) const {
    const Style& style = m_model.styles[nStyle];
    return style.fRise / style.fSize * m_sizes[nStyle];
}

GlyphMetrics::Room GlyphMetrics::Of(const Glyph& glyph) {
    if (glyph.nGlyph == Glyph::kNone) {
        return {RoomWithoutDrawing(glyph) * m_sizes[glyph.nStyle], 0.0F, 0.0F, false};
    }
    const std::uint64_t nKey =
        std::uint64_t{glyph.nStyle} << 32U | static_cast<std::uint32_t>(glyph.nGlyph);
    const auto it = m_rooms.find(nKey);
    return it != m_rooms.end() ? it->second : m_rooms.emplace(nKey, Measure(glyph)).first->second;
}

GlyphMetrics::Room GlyphMetrics::Measure(const Glyph& glyph) const {
    fz_context* const ctx = ThreadContext();
    const float fSize = m_sizes[glyph.nStyle];
    const fz_matrix& shape = m_shapes[glyph.nStyle];
    fz_font* const pFont = m_model.fonts[m_model.styles[glyph.nStyle].nFont].Get();
    float fAdvance = 0.0F;
    fz_rect rcInk = fz_empty_rect;
    try {
        Guard(ctx, [&] { fAdvance = fz_advance_glyph(ctx, pFont, glyph.nGlyph, 0) * shape.a; });
        rcInk = InkRoom(pFont, glyph.nGlyph, shape);
        if (!(fAdvance > 0.0F) && IsLetter(glyph.nUnicode)) { // a font that does not tell
            fAdvance = InkOf(pFont, glyph.nGlyph, shape).x1;
        }
    } catch (const LibraryError&) {
        return {kUnknown * fSize, 0.0F, 0.0F, false};
    }
    Room room{fAdvance > 0.0F ? std::min(fAdvance, kWidest * fSize) : 0.0F, rcInk.y0, rcInk.y1,
              false};
    room.bDraws = rcInk.y0 >= -kFarthest * fSize && rcInk.y1 <= kFarthest * fSize;
    return room;
}

}
