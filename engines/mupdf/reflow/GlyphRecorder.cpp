#include "engines/mupdf/reflow/GlyphRecorder.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace velko::engines::mupdf::reflow {

namespace {

struct RecorderDevice {
    fz_device base;
    GlyphRecorder* pRecorder;
    fz_cookie* pCookie;
};

void Note(fz_device* pDevice, const fz_text* pText, const fz_matrix& ctm, bool bVisible) {
    auto* const pOwn = reinterpret_cast<RecorderDevice*>(pDevice);
    pOwn->pRecorder->Note(*pText, ctm, bVisible);
    if (pOwn->pRecorder->IsFull()) {
        pOwn->pCookie->abort = 1;
    }
}

void FillText(fz_context*, fz_device* pDevice, const fz_text* pText, fz_matrix ctm, fz_colorspace*,
              const float*, float, fz_color_params) {
    Note(pDevice, pText, ctm, true);
}

void StrokeText(fz_context*, fz_device* pDevice, const fz_text* pText, const fz_stroke_state*,
                fz_matrix ctm, fz_colorspace*, const float*, float, fz_color_params) {
    Note(pDevice, pText, ctm, true);
}

void ClipText(fz_context*, fz_device* pDevice, const fz_text* pText, fz_matrix ctm, fz_rect) {
    Note(pDevice, pText, ctm, true);
}

void ClipStrokeText(fz_context*, fz_device* pDevice, const fz_text* pText, const fz_stroke_state*,
                    fz_matrix ctm, fz_rect) {
    Note(pDevice, pText, ctm, true);
}

void IgnoreText(fz_context*, fz_device* pDevice, const fz_text* pText, fz_matrix ctm) {
    Note(pDevice, pText, ctm, false);
}

// `rc` as far as the clips leave it visible.
void NoteMark(fz_context* ctx, fz_device* pDevice, const fz_rect& rc, bool bPicture) {
    reinterpret_cast<RecorderDevice*>(pDevice)->pRecorder->Note(
        {fz_intersect_rect(rc, fz_device_current_scissor(ctx, pDevice)), bPicture});
}

// `rc` of a path, without what the stroke adds at sharp corners it may not have.
void NoteBar(fz_device* pDevice, const fz_rect& rc) {
    reinterpret_cast<RecorderDevice*>(pDevice)->pRecorder->NoteBar(rc);
}

bool TakesMarks(fz_device* pDevice) {
    return reinterpret_cast<RecorderDevice*>(pDevice)->pRecorder->TakesMarks();
}

// White on a page is its paper.
bool IsPaper(fz_context* ctx, fz_colorspace* pColors, const float* pColor, float fAlpha) {
    constexpr float kNearly = 0.98F;
    float rgb[3] = {0.0F, 0.0F, 0.0F};
    fz_convert_color(ctx, pColors, pColor, fz_device_rgb(ctx), rgb, nullptr,
                     fz_default_color_params);
    return fAlpha < 1.0F - kNearly || (rgb[0] > kNearly && rgb[1] > kNearly && rgb[2] > kNearly);
}

void FillPath(fz_context* ctx, fz_device* pDevice, const fz_path* pPath, int, fz_matrix ctm,
              fz_colorspace* pColors, const float* pColor, float fAlpha, fz_color_params) {
    if (TakesMarks(pDevice) && !IsPaper(ctx, pColors, pColor, fAlpha)) {
        const fz_rect rc = fz_bound_path(ctx, pPath, nullptr, ctm);
        NoteMark(ctx, pDevice, rc, false);
        NoteBar(pDevice, rc);
    }
}

void StrokePath(fz_context* ctx, fz_device* pDevice, const fz_path* pPath,
                const fz_stroke_state* pStroke, fz_matrix ctm, fz_colorspace* pColors,
                const float* pColor, float fAlpha, fz_color_params) {
    if (TakesMarks(pDevice) && !IsPaper(ctx, pColors, pColor, fAlpha)) {
        NoteMark(ctx, pDevice, fz_bound_path(ctx, pPath, pStroke, ctm), false);
        NoteBar(pDevice, fz_bound_path(ctx, pPath, nullptr, ctm));
    }
}

void FillShade(fz_context* ctx, fz_device* pDevice, fz_shade* pShade, fz_matrix ctm, float,
               fz_color_params) {
    NoteMark(ctx, pDevice, fz_bound_shade(ctx, pShade, ctm), false);
}

void FillImage(fz_context* ctx, fz_device* pDevice, fz_image*, fz_matrix ctm, float,
               fz_color_params) {
    NoteMark(ctx, pDevice, fz_transform_rect(fz_unit_rect, ctm), true);
}

void FillImageMask(fz_context* ctx, fz_device* pDevice, fz_image*, fz_matrix ctm, fz_colorspace*,
                   const float*, float, fz_color_params) {
    NoteMark(ctx, pDevice, fz_transform_rect(fz_unit_rect, ctm), true);
}

}

void GlyphRecorder::Run(fz_context* ctx, fz_display_list* pList, fz_cookie* pCookie) {
    auto* const pDevice = fz_new_derived_device(ctx, RecorderDevice);
    pDevice->pRecorder = this;
    pDevice->pCookie = pCookie;
    pDevice->base.fill_text = &FillText;
    pDevice->base.stroke_text = &StrokeText;
    pDevice->base.clip_text = &ClipText;
    pDevice->base.clip_stroke_text = &ClipStrokeText;
    pDevice->base.ignore_text = &IgnoreText;
    pDevice->base.fill_path = &FillPath;
    pDevice->base.stroke_path = &StrokePath;
    pDevice->base.fill_shade = &FillShade;
    pDevice->base.fill_image = &FillImage;
    pDevice->base.fill_image_mask = &FillImageMask;
    fz_try(ctx) {
        fz_run_display_list(ctx, pList, &pDevice->base, fz_identity, fz_infinite_rect, pCookie);
        fz_close_device(ctx, &pDevice->base);
    }
    fz_always(ctx) {
        fz_drop_device(ctx, &pDevice->base);
    }
    fz_catch(ctx) {
        fz_rethrow(ctx);
    }
    if (m_bOutOfMemory) {
        fz_throw(ctx, FZ_ERROR_MEMORY, "no memory for the page's text");
    }
}

// A place in 32nds of a point: the extraction computes it the same way.
std::uint64_t GlyphRecorder::KeyOf(fz_point pt) {
    const auto fnPart = [](float f) {
        const float fScaled = std::isfinite(f) ? f * 32.0F : 0.0F;
        const float fKept = std::fmin(std::fmax(fScaled, -1.0E9F), 1.0E9F);
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(fKept)));
    };
    return std::uint64_t{fnPart(pt.x)} << 32U | fnPart(pt.y);
}

void GlyphRecorder::Note(const fz_text& text, const fz_matrix& toList, bool bVisible) noexcept {
    try {
        for (const fz_text_span* pSpan = text.head; pSpan != nullptr; pSpan = pSpan->next) {
            for (int i = 0; i < pSpan->len && !IsFull(); ++i) {
                const fz_text_item& item = pSpan->items[i];
                ++m_nGlyphs;
                if (item.gid < 0) {
                    continue;
                }
                fz_matrix shape = pSpan->trm;
                shape.e = item.x;
                shape.f = item.y;
                shape = fz_concat(shape, toList);
                const fz_point pt = {shape.e, shape.f};
                shape.e = shape.f = 0.0F;
                m_glyphs.push_back({KeyOf(pt), 0, {pSpan->font, shape, item.gid, bVisible}});
            }
        }
    } catch (const std::bad_alloc&) {
        m_bOutOfMemory = true;
    }
}

void GlyphRecorder::Note(const ArtworkMark& mark) noexcept {
    try {
        if (TakesMarks()) {
            m_marks.push_back(mark);
        }
    } catch (const std::bad_alloc&) {
        m_bOutOfMemory = true;
    }
}

void GlyphRecorder::NoteBar(const fz_rect& rc) noexcept {
    constexpr float kThick = 1.5F; // points
    constexpr float kLeastLength = 3.0F;
    try {
        if (m_bars.size() < kMostBars && rc.y1 - rc.y0 <= kThick && rc.x1 - rc.x0 >= kLeastLength) {
            m_bars.push_back(rc);
        }
    } catch (const std::bad_alloc&) {
        m_bOutOfMemory = true;
    }
}

void GlyphRecorder::Sort() {
    std::stable_sort(m_glyphs.begin(), m_glyphs.end(),
                     [](const Placed& one, const Placed& two) { return one.nPlace < two.nPlace; });
}

GlyphRecorder::Glyphs::const_iterator GlyphRecorder::FirstAt(std::uint64_t nPlace) const {
    return std::lower_bound(
        m_glyphs.begin(), m_glyphs.end(), nPlace,
        [](const Placed& placed, std::uint64_t nWanted) { return placed.nPlace < nWanted; });
}

const RecordedGlyph* GlyphRecorder::Take(fz_point pt) {
    const std::uint64_t nPlace = KeyOf(pt);
    const auto nFirst = static_cast<std::size_t>(FirstAt(nPlace) - m_glyphs.begin());
    if (nFirst == m_glyphs.size()) {
        return nullptr;
    }
    const std::size_t nNext = nFirst + m_glyphs[nFirst].nTaken;
    if (nNext == m_glyphs.size() || m_glyphs[nNext].nPlace != nPlace) {
        return nullptr;
    }
    ++m_glyphs[nFirst].nTaken;
    return &m_glyphs[nNext].glyph;
}

bool GlyphRecorder::HasAt(fz_point pt) const {
    const auto it = FirstAt(KeyOf(pt));
    return it != m_glyphs.end() && it->nPlace == KeyOf(pt);
}

}
