#include "engines/mupdf/PictureProbe.h"

#include "engines/mupdf/Guard.h"

namespace velko::engines::mupdf {

namespace {

bool IsPicture(const fz_image* pImage) {
    return pImage->imagemask == 0 && pImage->bpc > 1;
}

struct ProbeDevice {
    fz_device base;
    bool* pFound;
};

void ProbeImage(fz_context*, fz_device* pDevice, fz_image* pImage, fz_matrix, float,
                fz_color_params) {
    if (IsPicture(pImage)) {
        *reinterpret_cast<ProbeDevice*>(pDevice)->pFound = true;
    }
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

bool HasPictures(fz_display_list* pList) noexcept {
    try {
        fz_context* const ctx = ThreadContext();
        bool bFound = false;
        DeviceHandle device;
        Guard(ctx, [&] {
            auto* const pProbe = fz_new_derived_device(ctx, ProbeDevice);
            pProbe->base.fill_image = &ProbeImage;
            pProbe->pFound = &bFound;
            device.Out() = &pProbe->base;
            fz_run_display_list(ctx, pList, device.Get(), fz_identity, fz_infinite_rect, nullptr);
            fz_close_device(ctx, device.Get());
        });
        return bFound;
    } catch (const std::exception&) {
        return true;
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
