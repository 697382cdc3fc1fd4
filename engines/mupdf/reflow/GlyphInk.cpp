#include "engines/mupdf/reflow/GlyphInk.h"

#include "engines/mupdf/Guard.h"

namespace velko::engines::mupdf::reflow {

namespace {

// A font's box that is believed, in its size.
constexpr float kDeepest = 1.5F;
constexpr float kHighest = 2.5F;
constexpr float kLeastHeight = 0.3F;

void DropPath(fz_context* ctx, fz_path* pPath) {
    fz_drop_path(ctx, pPath);
}
using PathHandle = Handle<fz_path, DropPath>;

}

fz_rect InkOf(fz_font* pFont, std::int32_t nGlyph, const fz_matrix& shape) {
    fz_context* const ctx = ThreadContext();
    fz_rect rc = fz_empty_rect;
    PathHandle path;
    Guard(ctx, [&] {
        if (pFont->t3procs != nullptr) { // a drawing; its bounds were taken with the font
            rc = fz_bound_glyph(ctx, pFont, nGlyph, shape);
            return;
        }
        path.Out() = fz_outline_glyph(ctx, pFont, nGlyph, shape);
        if (path) {
            rc = fz_bound_path(ctx, path.Get(), nullptr, fz_identity);
        }
    });
    return rc;
}

fz_rect InkRoom(fz_font* pFont, std::int32_t nGlyph, const fz_matrix& shape) {
    const fz_rect& rcFont = pFont->bbox;
    const bool bBelieved = pFont->t3procs == nullptr && rcFont.y0 >= -kDeepest &&
                           rcFont.y1 <= kHighest && rcFont.y1 > kLeastHeight;
    return bBelieved ? fz_transform_rect(rcFont, shape) : InkOf(pFont, nGlyph, shape);
}

}
