#include "engines/mupdf/PageRenderer.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/ColorMapping.h"
#include "engines/mupdf/FinishedProgress.h"
#include "engines/mupdf/Page.h"
#include "engines/mupdf/PictureProbe.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;
using common::vxbase::Matrix2D;
using common::vxbase::RectF;

constexpr std::uint32_t kWhite = 0xFFFFFFFFU;

// What an annotation may overflow its measured bounds by, in pixels.
constexpr int kBoundsMargin = 1;

bool IsUsable(const Matrix2D& m) {
    for (const float f : {m.A, m.B, m.C, m.D, m.E, m.F}) {
        if (!std::isfinite(f)) {
            return false;
        }
    }
    return double{m.A} * m.D - double{m.B} * m.C != 0.0;
}

// The inverse of `first` followed by `second`, rounded once at the end.
fz_matrix InverseThen(const fz_matrix& first, const Matrix2D& second) {
    const double dbDet = double{first.a} * first.d - double{first.b} * first.c;
    const double a = first.d / dbDet;
    const double b = -first.b / dbDet;
    const double c = -first.c / dbDet;
    const double d = first.a / dbDet;
    const double e = -(first.e * a + first.f * c);
    const double f = -(first.e * b + first.f * d);
    return fz_make_matrix(static_cast<float>(a * second.A + b * second.C),
                          static_cast<float>(a * second.B + b * second.D),
                          static_cast<float>(c * second.A + d * second.C),
                          static_cast<float>(c * second.B + d * second.D),
                          static_cast<float>(e * second.A + f * second.C + second.E),
                          static_cast<float>(e * second.B + f * second.D + second.F));
}

fz_irect AreaOf(const fz_rect& rc, std::int32_t nWidth, std::int32_t nHeight) {
    return fz_intersect_irect(fz_round_rect(rc), fz_make_irect(0, 0, nWidth, nHeight));
}

// A pixmap over the area of a buffer of the bitmap's width. May throw as the
// library does.
fz_pixmap* PixmapOver(fz_context* ctx, fz_colorspace* pColors, const fz_irect& area,
                      std::int32_t nWidth, int nPixelBytes, std::uint8_t* pBuffer) {
    const std::ptrdiff_t nStride = std::ptrdiff_t{nWidth} * nPixelBytes;
    std::uint8_t* const pFirst =
        pBuffer + area.y0 * nStride + std::ptrdiff_t{area.x0} * nPixelBytes;
    fz_pixmap* const pPixmap =
        fz_new_pixmap_with_data(ctx, pColors, area.x1 - area.x0, area.y1 - area.y0, nullptr, 1,
                                static_cast<int>(nStride), pFirst);
    pPixmap->x = area.x0;
    pPixmap->y = area.y0;
    return pPixmap;
}

template <class T>
void AllocatePixels(std::vector<T>& pixels, std::size_t nPixels, T value) {
    try {
        pixels.assign(nPixels, value);
    } catch (const std::bad_alloc&) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory to map colours in");
    }
}

}

PageRenderer::PageRenderer(std::shared_ptr<common::Bitmap> pBitmap)
    : m_pBitmap(std::move(pBitmap)),
      m_nWidth(m_pBitmap ? m_pBitmap->GetWidth() : 0),
      m_nHeight(m_pBitmap ? m_pBitmap->GetHeight() : 0) {
    if (m_nWidth < 1 || m_nHeight < 1 ||
        m_pBitmap->GetBuffer().size() !=
            static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight) * 4) {
        throw EngineException(ErrorCode::e_ErrParam, "no bitmap to draw into");
    }
}

void PageRenderer::SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) {
    m_nBackColor = nBackColor;
    m_nForeColor = nForeColor;
}

std::shared_ptr<common::Progressive> PageRenderer::StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                               const Matrix2D& matrix,
                                                               common::IPauseCallback*) {
    const auto pOwn = std::dynamic_pointer_cast<Page>(pPage);
    if (!pOwn) {
        throw EngineException(ErrorCode::e_ErrParam, "not a page of this engine");
    }
    if ((m_nContentFlags & kRenderContent) != 0) {
        const auto pDrawing = pOwn->Content(m_pAbort);
        Draw(pDrawing->parts.front(), Place(pOwn->Facts(), matrix));
    }
    return std::make_shared<FinishedProgress>();
}

bool PageRenderer::RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot, const Matrix2D& matrix) {
    const auto pOwn = std::dynamic_pointer_cast<Annotation>(pAnnot);
    if (!pOwn) {
        throw EngineException(ErrorCode::e_ErrParam, "not an annotation of this engine");
    }
    const auto pDrawing = pOwn->Owner()->Annots(m_pAbort);
    const Drawing::Part& part = pDrawing->parts[static_cast<std::size_t>(pOwn->Index())];
    if (!part.list) {
        return false;
    }
    Placement placement = Place(pOwn->Owner()->Facts(), matrix);
    const fz_irect bounds = fz_expand_irect(
        fz_round_rect(fz_transform_rect(part.rcBounds, placement.toBitmap)), kBoundsMargin);
    placement.area = fz_intersect_irect(placement.area, bounds);
    Draw(part, placement);
    return true;
}

std::shared_ptr<common::Progressive> PageRenderer::StartRenderReflowPage(
    std::shared_ptr<pdf::ReflowPage>, const Matrix2D&, common::IPauseCallback*) {
    throw EngineException(ErrorCode::e_ErrUnsupported, "this engine does not reflow pages");
}

PageRenderer::Placement PageRenderer::Place(const PageFacts& facts, const Matrix2D& matrix) const {
    Placement placement;
    if (!IsUsable(matrix)) {
        return placement;
    }
    const RectF rcPage = matrix.TransformRect(facts.rcBox);
    placement.toBitmap = InverseThen(facts.mListFromPage, matrix);
    placement.area = AreaOf(fz_make_rect(rcPage.Left, rcPage.Bottom, rcPage.Right, rcPage.Top),
                            m_nWidth, m_nHeight);
    return placement;
}

void PageRenderer::Draw(const Drawing::Part& part, const Placement& placement) {
    if (fz_is_empty_irect(placement.area)) {
        return;
    }
    if (m_nColorMode == kColorModeMapped) {
        DrawMapped(part, placement);
    } else if (part.list) {
        Run(part, placement, m_pBitmap->GetBuffer().data());
    }
}

void PageRenderer::DrawMapped(const Drawing::Part& part, const Placement& placement) {
    const std::size_t nPixels =
        static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
    if (m_trueColors.empty()) {
        AllocatePixels(m_trueColors, nPixels, kWhite);
    }
    if (part.list) {
        Run(part, placement, reinterpret_cast<std::uint8_t*>(m_trueColors.data()));
    }
    if (part.bHasPictures) {
        if (m_pictures.empty()) {
            AllocatePixels(m_pictures, nPixels, std::uint8_t{0});
        }
        RunPictures(part, placement);
    }
    MapArea(placement.area);
}

template <class MakeDevice>
void PageRenderer::RunList(const Drawing::Part& part, const Placement& placement,
                           MakeDevice&& fnMakeDevice) {
    fz_context* const ctx = ThreadContext();
    const AllocationWatch watch;
    Operation operation(m_pAbort, CurrentBudgets().render);
    operation.ThrowIfAborted();
    DeviceHandle device;
    PixmapHandle pixmap;
    Guard(ctx, [&] { device.Out() = fnMakeDevice(ctx, pixmap.Out()); });
    try {
        Guard(ctx, [&] {
            fz_run_display_list(ctx, part.list.Get(), device.Get(), placement.toBitmap,
                                fz_rect_from_irect(placement.area), operation.Cookie());
            fz_close_device(ctx, device.Get());
        });
    } catch (const LibraryError& error) {
        // A drawing that was broken off complains about what it left open; a
        // fault of the file leaves out the rest.
        operation.ThrowIfAborted();
        if (error.Kind() == FZ_ERROR_MEMORY && watch.WasRefused()) {
            throw;
        }
    }
    operation.ThrowIfAborted();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory to draw the page");
    }
}

void PageRenderer::Run(const Drawing::Part& part, const Placement& placement,
                       std::uint8_t* pPixels) {
    RunList(part, placement, [&](fz_context* ctx, fz_pixmap*& pPixmap) {
        pPixmap = PixmapOver(ctx, fz_device_bgr(ctx), placement.area, m_nWidth, 4, pPixels);
        return fz_new_draw_device(ctx, fz_identity, pPixmap);
    });
}

void PageRenderer::RunPictures(const Drawing::Part& part, const Placement& placement) {
    RunList(part, placement, [&](fz_context* ctx, fz_pixmap*& pPixmap) {
        pPixmap = PixmapOver(ctx, nullptr, placement.area, m_nWidth, 1, m_pictures.data());
        return NewPictureDevice(ctx, pPixmap);
    });
}

void PageRenderer::MapArea(const fz_irect& area) {
    const ColorMapping mapping(m_nBackColor, m_nForeColor);
    auto* const pTarget = reinterpret_cast<std::uint32_t*>(m_pBitmap->GetBuffer().data());
    const auto nCount = static_cast<std::size_t>(area.x1 - area.x0);
    for (int y = area.y0; y < area.y1; ++y) {
        const std::size_t nStart =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
            static_cast<std::size_t>(area.x0);
        const std::span<const std::uint8_t> pictures =
            m_pictures.empty() ? std::span<const std::uint8_t>()
                               : std::span<const std::uint8_t>(&m_pictures[nStart], nCount);
        mapping.MapRow({&m_trueColors[nStart], nCount}, pictures, {pTarget + nStart, nCount});
    }
}

std::shared_ptr<common::Renderer> PageRendererFactory::Create(
    std::shared_ptr<common::Bitmap> pBitmap) {
    return std::make_shared<PageRenderer>(std::move(pBitmap));
}

}
