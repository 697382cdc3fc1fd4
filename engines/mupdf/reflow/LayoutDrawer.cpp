#include "engines/mupdf/reflow/LayoutDrawer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/Guard.h"

namespace velko::engines::mupdf::reflow {

namespace {

void DropText(fz_context* ctx, fz_text* pText) {
    fz_drop_text(ctx, pText);
}
using TextHandle = Handle<fz_text, DropText>;

constexpr float kLargestOffset = 8.0E6F;

// A shift by whole pixels becomes the place of the pixels in the layout: what
// is drawn then has the same numbers whatever band it is drawn for.
struct View {
    fz_irect rcPixels; // of the bitmap, in the space that is drawn in
    fz_matrix toPixels;
};

bool IsWholeShift(const fz_matrix& m) {
    return m.a == 1.0F && m.b == 0.0F && m.c == 0.0F && m.d == 1.0F && m.e == std::round(m.e) &&
           m.f == std::round(m.f) && std::abs(m.e) < kLargestOffset &&
           std::abs(m.f) < kLargestOffset;
}

View ViewOf(const DrawTarget& target) {
    View view{fz_make_irect(0, 0, target.nWidth, target.nHeight), target.toBitmap};
    if (IsWholeShift(target.toBitmap)) {
        view.rcPixels = fz_translate_irect(view.rcPixels, -static_cast<int>(target.toBitmap.e),
                                           -static_cast<int>(target.toBitmap.f));
        view.toPixels = fz_identity;
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
