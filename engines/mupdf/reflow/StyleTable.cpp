#include "engines/mupdf/reflow/StyleTable.h"

#include <mupdf/ucdn.h>

#include <array>
#include <cmath>
#include <mutex>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

int Rounded(float f, float fSteps) {
    return static_cast<int>(std::lround(std::fmin(std::fmax(f, -1.0E4F), 1.0E4F) * fSteps));
}

constexpr float kSizeSteps = 10.0F;
constexpr float kShapeSteps = 50.0F;

// Looking a character up fills tables in the font, and fonts are shared.
std::mutex g_lookUpLock;

fz_font* PlainFont(fz_context* ctx, fz_font* pLike) {
    static constexpr std::array<const char*, 8> kNames = {
        "Helvetica",   "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique",
        "Times-Roman", "Times-Bold",     "Times-Italic",      "Times-BoldItalic"};
    static std::array<fz_font*, 8> fonts{}; // under the lock
    const std::size_t nFont = (fz_font_is_serif(ctx, pLike) != 0 ? 4U : 0U) +
                              (fz_font_is_italic(ctx, pLike) != 0 ? 2U : 0U) +
                              (fz_font_is_bold(ctx, pLike) != 0 ? 1U : 0U);
    if (fonts[nFont] == nullptr) {
        fonts[nFont] = fz_new_base14_font(ctx, kNames[nFont]);
    }
    return fonts[nFont];
}

// Signs that several scripts share are looked for where ideographs are.
int ScriptOf(char32_t c) {
    const int nScript = ucdn_get_script(c);
    return nScript == UCDN_SCRIPT_COMMON && IsIdeographic(c) ? UCDN_SCRIPT_HAN : nScript;
}

}

std::size_t StyleTable::FontIndex(fz_font* pFont) {
    const auto [it, bNew] = m_fonts.try_emplace(pFont, m_model.fonts.size());
    if (bNew) {
        m_model.fonts.emplace_back(fz_keep_font(ThreadContext(), pFont));
    }
    return it->second;
}

std::uint32_t StyleTable::Index(Style style) {
    const Key key{style.nFont,
                  Rounded(style.fSize, kSizeSteps),
                  Rounded(style.fToFont, kShapeSteps),
                  Rounded(style.fStretch, kShapeSteps),
                  Rounded(style.fSlant, kShapeSteps),
                  Rounded(style.fRise, kSizeSteps),
                  style.nColor};
    if (!m_model.styles.empty() && key == m_lastKey) {
        return m_nLast;
    }
    const auto [it, bNew] =
        m_styles.try_emplace(key, static_cast<std::uint32_t>(m_model.styles.size()));
    if (bNew) {
        m_model.styles.push_back(style);
    }
    m_lastKey = key;
    m_nLast = it->second;
    return m_nLast;
}

std::int32_t GlyphFor(fz_font* pFont, char32_t nUnicode) {
    fz_context* const ctx = ThreadContext();
    const std::scoped_lock lock(g_lookUpLock);
    int nGlyph = 0;
    Guard(ctx, [&] { nGlyph = fz_encode_character(ctx, pFont, static_cast<int>(nUnicode)); });
    return nGlyph;
}

StandIn FindStandIn(fz_font* pLike, char32_t nUnicode) {
    fz_context* const ctx = ThreadContext();
    const std::scoped_lock lock(g_lookUpLock);
    StandIn standIn;
    const int nScript = ScriptOf(nUnicode);
    try {
        Guard(ctx, [&] {
            standIn.nGlyph = fz_encode_character_with_fallback(ctx, PlainFont(ctx, pLike),
                                                               static_cast<int>(nUnicode), nScript,
                                                               FZ_LANG_UNSET, &standIn.pFont);
        });
    } catch (const LibraryError&) {
        standIn.nGlyph = 0;
    }
    return standIn.nGlyph > 0 ? standIn : StandIn();
}

}
