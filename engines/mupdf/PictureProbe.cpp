#include "engines/mupdf/PictureProbe.h"

#include <algorithm>
#include <bitset>
#include <cstddef>

#include "engines/mupdf/Guard.h"

namespace velko::engines::mupdf {

namespace {

bool IsPicture(const fz_image* pImage) {
    return pImage->imagemask == 0 && pImage->bpc > 1;
}

// Which parts of a page are covered, in cells; a scan may come in strips or layers.
class Coverage {
public:
    explicit Coverage(const fz_rect& rcPage) : m_rcPage(rcPage) {}

    // Marks the cells whose middles lie in the unit square under `ctm` and in
    // `rcScissor`. Returns how many those are.
    int Mark(const fz_matrix& ctm, const fz_rect& rcScissor);

    int Marked() const { return static_cast<int>(m_cells.count()); }

    static constexpr int kSide = 32;
    static constexpr int kNearlyAll = kSide * kSide * 9 / 10;

private:
    static int First(float fFrom, float fPage, float fCell) {
        return std::clamp(static_cast<int>((fFrom - fPage) / fCell), 0, kSide);
    }

    const fz_rect m_rcPage;
    std::bitset<std::size_t{kSide} * kSide> m_cells;
};

int Coverage::Mark(const fz_matrix& ctm, const fz_rect& rcScissor) {
    const fz_rect rcBox = fz_intersect_rect(
        fz_intersect_rect(fz_transform_rect(fz_unit_rect, ctm), rcScissor), m_rcPage);
    fz_matrix toUnit;
    const bool bAny = rcBox.x0 < rcBox.x1 && rcBox.y0 < rcBox.y1; // false for what is no number
    if (!bAny || fz_try_invert_matrix(&toUnit, ctm) != 0) {
        return 0;
    }
    const float fCellX = (m_rcPage.x1 - m_rcPage.x0) / kSide;
    const float fCellY = (m_rcPage.y1 - m_rcPage.y0) / kSide;
    int nMarked = 0;
    for (int y = First(rcBox.y0, m_rcPage.y0, fCellY); y < kSide; ++y) {
        const float fY = m_rcPage.y0 + (static_cast<float>(y) + 0.5F) * fCellY;
        for (int x = First(rcBox.x0, m_rcPage.x0, fCellX); x < kSide && fY < rcBox.y1; ++x) {
            const float fX = m_rcPage.x0 + (static_cast<float>(x) + 0.5F) * fCellX;
            const fz_point pt = fz_transform_point_xy(fX, fY, toUnit);
            if (fX >= rcBox.x1) {
                break;
            }
            if (fY >= rcBox.y0 && fX >= rcBox.x0 && fz_is_point_inside_rect(pt, fz_unit_rect)) {
                m_cells.set(static_cast<std::size_t>(y * kSide + x));
                ++nMarked;
            }
        }
    }
    return nMarked;
}

struct Probe {
    Coverage coverage;
    int nMaskDepth = 0; // what defines a mask is not seen itself
    bool bPictures = false;
    bool bText = false; // on top of the pictures so far
};

struct ProbeDevice {
    fz_device base;
    Probe* pProbe;
};

Probe& ProbeOf(fz_device* pDevice) {
    return *reinterpret_cast<ProbeDevice*>(pDevice)->pProbe;
}

// What an opaque picture covers as a whole is not seen any more: some scans have
// the text that was read from them below.
void ProbeImage(fz_context* ctx, fz_device* pDevice, fz_image* pImage, fz_matrix ctm, float fAlpha,
                fz_color_params) {
    Probe& probe = ProbeOf(pDevice);
    if (!IsPicture(pImage)) {
        return;
    }
    probe.bPictures = true;
    if (probe.nMaskDepth == 0) {
        const int nCells = probe.coverage.Mark(ctm, fz_device_current_scissor(ctx, pDevice));
        const bool bOpaque = fAlpha == 1.0F && pImage->mask == nullptr;
        probe.bText = probe.bText && !(bOpaque && nCells >= Coverage::kNearlyAll);
    }
}

void SeeText(fz_device* pDevice, float fAlpha) {
    Probe& probe = ProbeOf(pDevice);
    probe.bText = probe.bText || (probe.nMaskDepth == 0 && fAlpha > 0.0F);
}

void ProbeText(fz_context*, fz_device* pDevice, const fz_text*, fz_matrix, fz_colorspace*,
               const float*, float fAlpha, fz_color_params) {
    SeeText(pDevice, fAlpha);
}

void ProbeStrokeText(fz_context*, fz_device* pDevice, const fz_text*, const fz_stroke_state*,
                     fz_matrix, fz_colorspace*, const float*, float fAlpha, fz_color_params) {
    SeeText(pDevice, fAlpha);
}

void ProbeClipText(fz_context*, fz_device* pDevice, const fz_text*, fz_matrix, fz_rect) {
    SeeText(pDevice, 1.0F);
}

void ProbeBeginMask(fz_context*, fz_device* pDevice, fz_rect, int, fz_colorspace*, const float*,
                    fz_color_params) {
    ++ProbeOf(pDevice).nMaskDepth;
}

void ProbeEndMask(fz_context*, fz_device* pDevice) {
    --ProbeOf(pDevice).nMaskDepth;
}

void SetProbeHooks(fz_device& device) {
    device.fill_image = &ProbeImage;
    device.fill_text = &ProbeText;
    device.stroke_text = &ProbeStrokeText;
    device.clip_text = &ProbeClipText;
    device.begin_mask = &ProbeBeginMask;
    device.end_mask = &ProbeEndMask;
}

// Forwards clips to a drawing device over the mask, and fills there what
// pictures cover. What lies inside a soft mask's definition is not seen; the
// soft mask itself counts as fully open.
struct PictureDevice {
    fz_device base;
    fz_device* pInner;
    int nMaskDepth;
};

PictureDevice* Of(fz_device* pDevice) {
    return reinterpret_cast<PictureDevice*>(pDevice);
}

void Fill(fz_context* ctx, PictureDevice* pDevice, const fz_rect& rc, const fz_matrix& ctm,
          bool bClip) {
    fz_path* pPath = fz_new_path(ctx);
    fz_try(ctx) {
        fz_rectto(ctx, pPath, rc.x0, rc.y0, rc.x1, rc.y1);
        if (bClip) {
            fz_clip_path(ctx, pDevice->pInner, pPath, 0, ctm, fz_infinite_rect);
        } else {
            fz_fill_path(ctx, pDevice->pInner, pPath, 0, ctm, nullptr, nullptr, 1.0F,
                         fz_default_color_params);
        }
    }
    fz_always(ctx) {
        fz_drop_path(ctx, pPath);
    }
    fz_catch(ctx) {
        fz_rethrow(ctx);
    }
}

void FillImage(fz_context* ctx, fz_device* pDevice, fz_image* pImage, fz_matrix ctm, float,
               fz_color_params) {
    if (Of(pDevice)->nMaskDepth == 0 && IsPicture(pImage)) {
        Fill(ctx, Of(pDevice), fz_unit_rect, ctm, false);
    }
}

void ClipPath(fz_context* ctx, fz_device* pDevice, const fz_path* pPath, int nEvenOdd,
              fz_matrix ctm, fz_rect rcScissor) {
    fz_clip_path(ctx, Of(pDevice)->pInner, pPath, nEvenOdd, ctm, rcScissor);
}

void ClipStrokePath(fz_context* ctx, fz_device* pDevice, const fz_path* pPath,
                    const fz_stroke_state* pStroke, fz_matrix ctm, fz_rect rcScissor) {
    fz_clip_stroke_path(ctx, Of(pDevice)->pInner, pPath, pStroke, ctm, rcScissor);
}

void ClipText(fz_context* ctx, fz_device* pDevice, const fz_text* pText, fz_matrix ctm,
              fz_rect rcScissor) {
    fz_clip_text(ctx, Of(pDevice)->pInner, pText, ctm, rcScissor);
}

void ClipStrokeText(fz_context* ctx, fz_device* pDevice, const fz_text* pText,
                    const fz_stroke_state* pStroke, fz_matrix ctm, fz_rect rcScissor) {
    fz_clip_stroke_text(ctx, Of(pDevice)->pInner, pText, pStroke, ctm, rcScissor);
}

void ClipImageMask(fz_context* ctx, fz_device* pDevice, fz_image* pImage, fz_matrix ctm,
                   fz_rect rcScissor) {
    fz_clip_image_mask(ctx, Of(pDevice)->pInner, pImage, ctm, rcScissor);
}

void PopClip(fz_context* ctx, fz_device* pDevice) {
    fz_pop_clip(ctx, Of(pDevice)->pInner);
}

void BeginMask(fz_context*, fz_device* pDevice, fz_rect, int, fz_colorspace*, const float*,
               fz_color_params) {
    ++Of(pDevice)->nMaskDepth;
}

// The mask acts as a clip from here on, until a `pop_clip`.
void EndMask(fz_context* ctx, fz_device* pDevice) {
    --Of(pDevice)->nMaskDepth;
    constexpr float kFar = 1.0E6F;
    Fill(ctx, Of(pDevice), fz_make_rect(-kFar, -kFar, kFar, kFar), fz_identity, true);
}

void CloseDevice(fz_context* ctx, fz_device* pDevice) {
    fz_close_device(ctx, Of(pDevice)->pInner);
}

void DropDevice(fz_context* ctx, fz_device* pDevice) {
    fz_drop_device(ctx, Of(pDevice)->pInner);
}

void SetHooks(fz_device& device) {
    device.fill_image = &FillImage;
    device.clip_path = &ClipPath;
    device.clip_stroke_path = &ClipStrokePath;
    device.clip_text = &ClipText;
    device.clip_stroke_text = &ClipStrokeText;
    device.clip_image_mask = &ClipImageMask;
    device.pop_clip = &PopClip;
    device.begin_mask = &BeginMask;
    device.end_mask = &EndMask;
    device.close_device = &CloseDevice;
    device.drop_device = &DropDevice;
}

}

PictureFacts ProbePictures(fz_display_list* pList, const fz_rect& rcPage) noexcept {
    try {
        fz_context* const ctx = ThreadContext();
        Probe probe{Coverage(rcPage)};
        DeviceHandle device;
        Guard(ctx, [&] {
            auto* const pDevice = fz_new_derived_device(ctx, ProbeDevice);
            SetProbeHooks(pDevice->base);
            pDevice->pProbe = &probe;
            device.Out() = &pDevice->base;
            fz_run_display_list(ctx, pList, device.Get(), fz_identity, fz_infinite_rect, nullptr);
            fz_close_device(ctx, device.Get());
        });
        return {probe.bPictures, !probe.bText && probe.coverage.Marked() >= Coverage::kNearlyAll};
    } catch (const std::exception&) {
        return {true, false};
    }
}

fz_device* NewPictureDevice(fz_context* ctx, fz_pixmap* pMask) {
    auto* const pDevice = fz_new_derived_device(ctx, PictureDevice);
    fz_try(ctx) {
        pDevice->pInner = fz_new_draw_device(ctx, fz_identity, pMask);
    }
    fz_catch(ctx) {
        fz_drop_device(ctx, &pDevice->base);
        fz_rethrow(ctx);
    }
    SetHooks(pDevice->base);
    return &pDevice->base;
}

}
