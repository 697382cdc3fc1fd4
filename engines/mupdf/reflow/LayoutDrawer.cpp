#include "engines/mupdf/reflow/LayoutDrawer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/Guard.h"
#include "engines/mupdf/PictureProbe.h"
#include "engines/mupdf/TileLimit.h"

namespace velko::engines::mupdf::reflow {

namespace {

void DropText(fz_context* ctx, fz_text* pText) {
    fz_drop_text(ctx, pText);
}
using TextHandle = Handle<fz_text, DropText>;
using ImageHandle = Handle<fz_image, fz_drop_image>;

constexpr float kLargestOffset = 8.0E6F;

// A shift by whole pixels becomes the place of the pixels in the layout: what
// is drawn then has the same numbers whatever band it is drawn for.
struct View {
    fz_irect rcPixels; // of the bitmap, in the space that is drawn in
    fz_matrix toPixels;
    bool bWholeShift = false;
};

bool IsWholeShift(const fz_matrix& m) {
    return m.a == 1.0F && m.b == 0.0F && m.c == 0.0F && m.d == 1.0F && m.e == std::round(m.e) &&
           m.f == std::round(m.f) && std::abs(m.e) < kLargestOffset &&
           std::abs(m.f) < kLargestOffset;
}

View ViewOf(const DrawTarget& target) {
    View view{fz_make_irect(0, 0, target.nWidth, target.nHeight), target.toBitmap, false};
    if (IsWholeShift(target.toBitmap)) {
        view.rcPixels = fz_translate_irect(view.rcPixels, -static_cast<int>(target.toBitmap.e),
                                           -static_cast<int>(target.toBitmap.f));
        view.toPixels = fz_identity;
        view.bWholeShift = true;
    }
    return view;
}

class Drawer {
public:
    Drawer(const Layout& layout, const DrawTarget& target, Operation& operation)
        : m_layout(layout), m_target(target), m_operation(operation), m_view(ViewOf(target)) {}

    void Draw() {
        OpenDevice();
        const fz_rect rcVisible = fz_transform_rect(fz_rect_from_irect(m_view.rcPixels),
                                                    fz_invert_matrix(m_view.toPixels));
        for (const SetLine& line : m_layout.lines) {
            if (static_cast<float>(line.nInkBottom) >= rcVisible.y0 &&
                static_cast<float>(line.nInkTop) <= rcVisible.y1 && !IsStopped()) {
                DrawLine(line);
            }
        }
        for (const SetFigure& figure : m_layout.figures) {
            if (static_cast<float>(figure.rc.y1) > rcVisible.y0 &&
                static_cast<float>(figure.rc.y0) < rcVisible.y1 && !IsStopped()) {
                DrawFigure(figure);
            }
        }
        fz_context* const ctx = ThreadContext();
        Guard(ctx, [&] { fz_close_device(ctx, m_device.Get()); });
    }

private:
    bool IsStopped() const {
        Operation::Poll();
        return m_operation.Cookie()->abort != 0;
    }

    void OpenDevice() {
        fz_context* const ctx = ThreadContext();
        Guard(ctx, [&] {
            m_pixmap.Out() = fz_new_pixmap_with_data(
                ctx, fz_device_bgr(ctx), m_target.nWidth, m_target.nHeight, nullptr, 1,
                m_target.nWidth * 4, reinterpret_cast<unsigned char*>(m_target.pPixels));
            m_pixmap.Get()->x = m_view.rcPixels.x0;
            m_pixmap.Get()->y = m_view.rcPixels.y0;
            m_device.Out() = fz_new_draw_device(ctx, fz_identity, m_pixmap.Get());
        });
    }

    // A run at a time: glyphs of one style.
    void DrawLine(const SetLine& line) {
        for (std::size_t i = line.nFirst; i < line.nEnd;) {
            std::size_t nEnd = i + 1;
            while (nEnd < line.nEnd && m_layout.glyphs[nEnd].nStyle == m_layout.glyphs[i].nStyle) {
                ++nEnd;
            }
            DrawRun(i, nEnd);
            i = nEnd;
        }
    }

    void DrawRun(std::size_t nFirst, std::size_t nEnd) {
        fz_context* const ctx = ThreadContext();
        const std::uint32_t nStyle = m_layout.glyphs[nFirst].nStyle;
        const Style& style = m_layout.pModel->styles[nStyle];
        fz_font* const pFont = m_layout.pModel->fonts[style.nFont].Get();
        const float color[3] = {static_cast<float>(style.nColor >> 16U & 0xFFU) / 255.0F,
                                static_cast<float>(style.nColor >> 8U & 0xFFU) / 255.0F,
                                static_cast<float>(style.nColor & 0xFFU) / 255.0F};
        fz_matrix shape = m_layout.shapes[nStyle];
        TextHandle text;
        Guard(ctx, [&] {
            text.Out() = fz_new_text(ctx);
            for (std::size_t i = nFirst; i < nEnd; ++i) {
                const SetGlyph& glyph = m_layout.glyphs[i];
                shape.e = glyph.x;
                shape.f = static_cast<float>(glyph.y);
                fz_show_glyph(ctx, text.Get(), pFont, shape, glyph.nGlyph,
                              static_cast<int>(glyph.nUnicode), 0, 0, FZ_BIDI_LTR, FZ_LANG_UNSET);
            }
            fz_fill_text(ctx, m_device.Get(), text.Get(), m_view.toPixels, fz_device_rgb(ctx),
                         color, 1.0F, fz_default_color_params);
        });
    }

    // Whole, whatever part of it is wanted, so that all bands show the same.
    void DrawFigure(const SetFigure& figure) {
        fz_context* const ctx = ThreadContext();
        PixmapHandle picture = RunLists(figure, fz_device_bgr(ctx), 0xFF, [&](fz_pixmap* pPixmap) {
            fz_device* const pDevice = fz_new_draw_device(ctx, fz_identity, pPixmap);
            LimitTiles(pDevice);
            return pDevice;
        });
        if (!m_view.bWholeShift) {
            PlaceScaled(figure, picture.Get());
            return;
        }
        CopyRows(*picture.Get(), reinterpret_cast<std::uint8_t*>(m_target.pPixels), 4);
        if (m_target.pPictures != nullptr) {
            const PixmapHandle mask = RunLists(figure, nullptr, 0, [&](fz_pixmap* pPixmap) {
                return NewPictureDevice(ctx, pPixmap);
            });
            CopyRows(*mask.Get(), m_target.pPictures, 1);
        }
    }

    template <class MakeDevice>
    PixmapHandle RunLists(const SetFigure& figure, fz_colorspace* pColors, int nGround,
                          MakeDevice&& fnMakeDevice) {
        fz_context* const ctx = ThreadContext();
        PixmapHandle pixmap;
        DeviceHandle device;
        Guard(ctx, [&] {
            pixmap.Out() = fz_new_pixmap_with_bbox(ctx, pColors, figure.rc, nullptr, 1);
            fz_clear_pixmap_with_value(ctx, pixmap.Get(), nGround);
            if (nGround == 0) {
                fz_clear_pixmap(ctx, pixmap.Get());
            }
            device.Out() = fnMakeDevice(pixmap.Get());
        });
        try {
            ForEachList(*m_layout.pModel, [&](fz_display_list* pList) {
                Guard(ctx, [&] {
                    fz_run_display_list(ctx, pList, device.Get(), ToFigure(figure),
                                        fz_rect_from_irect(figure.rc), m_operation.Cookie());
                });
            });
            Guard(ctx, [&] { fz_close_device(ctx, device.Get()); });
        } catch (const LibraryError&) {
            // What is broken in it is left out.
        }
        return pixmap;
    }

    static fz_matrix ToFigure(const SetFigure& figure) {
        const fz_rect& rc = figure.rcRegion;
        const fz_matrix scale =
            fz_scale(static_cast<float>(figure.rc.x1 - figure.rc.x0) / (rc.x1 - rc.x0),
                     static_cast<float>(figure.rc.y1 - figure.rc.y0) / (rc.y1 - rc.y0));
        const fz_matrix place =
            fz_translate(static_cast<float>(figure.rc.x0), static_cast<float>(figure.rc.y0));
        return fz_concat(fz_concat(fz_translate(-rc.x0, -rc.y0), scale), place);
    }

    void CopyRows(const fz_pixmap& source, std::uint8_t* pTarget, std::ptrdiff_t nBytes) {
        const fz_irect rcSource =
            fz_make_irect(source.x, source.y, source.x + source.w, source.y + source.h);
        const fz_irect rc = fz_intersect_irect(rcSource, m_view.rcPixels);
        for (int y = rc.y0; y < rc.y1 && rc.x0 < rc.x1; ++y) {
            std::memcpy(
                pTarget + (std::ptrdiff_t{y - m_view.rcPixels.y0} * m_target.nWidth + rc.x0 -
                           m_view.rcPixels.x0) *
                              nBytes,
                source.samples + (y - source.y) * source.stride + (rc.x0 - source.x) * nBytes,
                static_cast<std::size_t>((rc.x1 - rc.x0) * nBytes));
        }
    }

    void PlaceScaled(const SetFigure& figure, fz_pixmap* pPixmap) {
        fz_context* const ctx = ThreadContext();
        const fz_matrix place =
            fz_make_matrix(static_cast<float>(figure.rc.x1 - figure.rc.x0), 0.0F, 0.0F,
                           static_cast<float>(figure.rc.y1 - figure.rc.y0),
                           static_cast<float>(figure.rc.x0), static_cast<float>(figure.rc.y0));
        ImageHandle image;
        Guard(ctx, [&] {
            image.Out() = fz_new_image_from_pixmap(ctx, pPixmap, nullptr);
            fz_fill_image(ctx, m_device.Get(), image.Get(), fz_concat(place, m_view.toPixels), 1.0F,
                          fz_default_color_params);
        });
    }

    const Layout& m_layout;
    const DrawTarget& m_target;
    Operation& m_operation;
    View m_view;
    PixmapHandle m_pixmap;
    DeviceHandle m_device;
};

}

void DrawLayout(const Layout& layout, const DrawTarget& target, Operation& operation) {
    const AllocationWatch watch;
    operation.ThrowIfAborted();
    try {
        Drawer(layout, target, operation).Draw();
    } catch (const LibraryError&) {
        // A glyph that cannot be drawn leaves out the rest; want of memory shows below.
    }
    operation.ThrowIfAborted();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw common::EngineException(common::ErrorCode::e_ErrOutOfMemory,
                                      "no memory to draw the page");
    }
}

}
