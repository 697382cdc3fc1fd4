#include "engines/mupdf/PageRenderer.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/FinishedProgress.h"
#include "engines/mupdf/Page.h"
#include "engines/mupdf/PictureProbe.h"
#include "engines/mupdf/TileLimit.h"
#include "engines/mupdf/reflow/LayoutDrawer.h"
#include "engines/mupdf/reflow/ReflowedPage.h"

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

// A pixmap over pixels of the caller's, which are those of the area. May throw
// as the library does.
fz_pixmap* PixmapOver(fz_context* ctx, fz_colorspace* pColors, const fz_irect& area,
                      std::ptrdiff_t nStrideBytes, std::uint8_t* pFirst) {
    fz_pixmap* const pPixmap =
        fz_new_pixmap_with_data(ctx, pColors, area.x1 - area.x0, area.y1 - area.y0, nullptr, 1,
                                static_cast<int>(nStrideBytes), pFirst);
    pPixmap->x = area.x0;
    pPixmap->y = area.y0;
    return pPixmap;
}

template <class T>
std::vector<T> MakePixels(std::size_t nCount, T value) {
    try {
        return std::vector<T>(nCount, value);
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
    m_mapping = ColorMapping(nBackColor, nForeColor);
    m_dimming = ColorMapping::Dimming(nBackColor, nForeColor);
}

std::shared_ptr<common::Progressive> PageRenderer::StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                               const Matrix2D& matrix,
                                                               common::IPauseCallback*) {
    const auto pOwn = std::dynamic_pointer_cast<Page>(pPage);
    if (!pOwn) {
        throw EngineException(ErrorCode::e_ErrParam, "not a page of this engine");
    }
    if ((m_nContentFlags & kRenderContent) != 0) {
        const Layer layer{pOwn->Content(m_pAbort), 0, Place(pOwn->Facts(), matrix)};
        m_bDims = false;
        Draw(layer, pOwn->GetAnnotCount() == 0);
    }
    return std::make_shared<FinishedProgress>();
}

bool PageRenderer::RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot, const Matrix2D& matrix) {
    const auto pOwn = std::dynamic_pointer_cast<Annotation>(pAnnot);
    if (!pOwn) {
        throw EngineException(ErrorCode::e_ErrParam, "not an annotation of this engine");
    }
    Layer layer;
    layer.pDrawing = pOwn->Owner()->Annots(m_pAbort);
    const auto nPart = layer.pDrawing->PartOf(pOwn->Id());
    layer.nPart = nPart.value_or(0);
    if (!nPart || !layer.Part().list) {
        m_bIncomplete = m_bIncomplete || layer.pDrawing->bCutShort;
        return false;
    }
    layer.placement = Place(pOwn->Owner()->Facts(), matrix);
    const fz_rect rcBounds = fz_transform_rect(layer.Part().rcBounds, layer.placement.toBitmap);
    layer.placement.area = fz_intersect_irect(
        layer.placement.area, fz_expand_irect(fz_round_rect(rcBounds), kBoundsMargin));
    Draw(layer, false);
    return true;
}

std::shared_ptr<common::Progressive> PageRenderer::StartRenderReflowPage(
    std::shared_ptr<pdf::ReflowPage> pPage, const Matrix2D& matrix, common::IPauseCallback*) {
    const auto pOwn = std::dynamic_pointer_cast<reflow::ReflowedPage>(pPage);
    const auto pLayout = pOwn ? pOwn->Result() : nullptr;
    if (!pLayout || !IsUsable(matrix)) {
        throw EngineException(ErrorCode::e_ErrParam, "not a page that this engine has reflowed");
    }
    DrawReflowed(*pLayout,
                 fz_make_matrix(matrix.A, matrix.B, matrix.C, matrix.D, matrix.E, matrix.F));
    return std::make_shared<FinishedProgress>();
}

// Mapped, the bitmap's paper becomes the background colour, wholly.
void PageRenderer::DrawReflowed(const reflow::Layout& layout, const fz_matrix& toBitmap) {
    const fz_irect area = fz_make_irect(0, 0, m_nWidth, m_nHeight);
    const bool bMapped = m_nColorMode == kColorModeMapped;
    if (bMapped) {
        m_pBitmap->FillRect(kWhite, {0, 0, m_nWidth, m_nHeight});
    }
    Operation operation(m_pAbort, CurrentBudgets().render);
    reflow::DrawTarget target{BitmapPixels(), m_nWidth, m_nHeight, toBitmap, nullptr};
    if (bMapped && !layout.figures.empty()) {
        m_pictures = MakePixels(PixelCount(), std::uint8_t{0});
        target.pPictures = m_pictures.data();
    }
    reflow::DrawLayout(layout, target, operation);
    m_bIncomplete = m_bIncomplete || layout.bCutShort || operation.IsTimedOut();
    if (bMapped) {
        Map(area, BitmapPixels());
    }
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

std::uint32_t* PageRenderer::BitmapPixels() {
    return reinterpret_cast<std::uint32_t*>(m_pBitmap->GetBuffer().data());
}

std::size_t PageRenderer::IndexOf(const fz_irect& area) const {
    return static_cast<std::size_t>(area.y0) * static_cast<std::size_t>(m_nWidth) +
           static_cast<std::size_t>(area.x0);
}

std::size_t PageRenderer::PixelCount() const {
    return static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
}

void PageRenderer::Draw(const Layer& layer, bool bAlone) {
    m_bIncomplete = m_bIncomplete || layer.pDrawing->bCutShort;
    if (fz_is_empty_irect(layer.placement.area)) {
        return;
    }
    if (m_nColorMode == kColorModeMapped) {
        DrawMapped(layer, bAlone);
    } else if (layer.Part().list) {
        Run(layer, BitmapPixels());
    }
}

void PageRenderer::DrawMapped(const Layer& layer, bool bAlone) {
    const fz_irect& area = layer.placement.area;
    std::uint32_t* pTrueColors = nullptr;
    if (bAlone && m_trueColors.empty()) {
        m_pBitmap->FillRect(kWhite, {area.x0, area.y0, area.x1, area.y1});
        m_mappedInPlace.push_back(layer);
        pTrueColors = BitmapPixels();
    } else {
        KeepTrueColors();
        pTrueColors = m_trueColors.data();
    }
    DrawTrueColors(layer, pTrueColors);
    Map(area, pTrueColors);
}

// What was mapped in place has lost its own colours and is drawn once more.
void PageRenderer::KeepTrueColors() {
    if (!m_trueColors.empty()) {
        return;
    }
    m_trueColors = MakePixels(PixelCount(), kWhite);
    for (const Layer& below : std::exchange(m_mappedInPlace, {})) {
        DrawTrueColors(below, m_trueColors.data());
    }
}

void PageRenderer::DrawTrueColors(const Layer& layer, std::uint32_t* pPixels) {
    if (!layer.Part().list) {
        return;
    }
    Run(layer, pPixels);
    const bool bFollows = m_eScanColors != common::ScanColors::Left && IsScan(layer);
    m_bDims = m_bDims || (bFollows && m_eScanColors == common::ScanColors::Dimmed);
    if (layer.Part().bHasPictures && !bFollows) {
        if (m_pictures.empty()) {
            m_pictures = MakePixels(PixelCount(), std::uint8_t{0});
        }
        RunPictures(layer);
    }
}

template <class MakeDevice>
void PageRenderer::RunList(const Layer& layer, const fz_irect& area, MakeDevice&& fnMakeDevice) {
    fz_context* const ctx = ThreadContext();
    const AllocationWatch watch;
    Operation operation(m_pAbort, CurrentBudgets().render);
    operation.ThrowIfAborted();
    DeviceHandle device;
    PixmapHandle pixmap;
    Guard(ctx, [&] { device.Out() = fnMakeDevice(ctx, pixmap.Out()); });
    try {
        Guard(ctx, [&] {
            fz_run_display_list(ctx, layer.Part().list.Get(), device.Get(),
                                layer.placement.toBitmap, fz_rect_from_irect(area),
                                operation.Cookie());
            fz_close_device(ctx, device.Get());
        });
    } catch (const LibraryError&) {
        // A drawing that was broken off complains about what it left open, and
        // a fault of the file leaves out the rest; want of memory shows below.
    }
    operation.ThrowIfAborted();
    m_bIncomplete = m_bIncomplete || operation.IsTimedOut();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory to draw the page");
    }
}

void PageRenderer::Run(const Layer& layer, std::uint32_t* pPixels) {
    const fz_irect& area = layer.placement.area;
    RunList(layer, area, [&](fz_context* ctx, fz_pixmap*& pPixmap) {
        pPixmap = PixmapOver(ctx, fz_device_bgr(ctx), area, std::ptrdiff_t{m_nWidth} * 4,
                             reinterpret_cast<std::uint8_t*>(pPixels + IndexOf(area)));
        fz_device* const pDevice = fz_new_draw_device(ctx, fz_identity, pPixmap);
        LimitTiles(pDevice);
        return pDevice;
    });
}

// What it takes is mostly the decoding of the picture, which a drawing of the page
// has just done and the library keeps for a while.
bool PageRenderer::IsScan(const Layer& layer) {
    using Brightness = Drawing::Brightness;
    if (!layer.Part().bIsPicture) {
        return false;
    }
    const Brightness eKnown = layer.pDrawing->eBrightness;
    if (eKnown != Brightness::Unknown) {
        return eKnown == Brightness::Bright;
    }
    const bool bBright = IsBright(layer);
    if (!m_bIncomplete) {
        layer.pDrawing->eBrightness = bBright ? Brightness::Bright : Brightness::Dark;
    }
    return bBright;
}

// Whether most of the page is: what is dark by itself is not to glare when turned.
bool PageRenderer::IsBright(const Layer& layer) {
    constexpr int kSide = 64;
    constexpr std::uint8_t kPaper = 160;
    constexpr std::size_t kChannels = 2; // grey, and full opacity
    auto greys = MakePixels(std::size_t{kSide} * kSide * kChannels, std::uint8_t{0xFF});
    const fz_rect& rcPage = layer.Part().rcBounds;
    Layer small = layer;
    small.placement.area = fz_make_irect(0, 0, kSide, kSide);
    small.placement.toBitmap =
        fz_concat(fz_translate(-rcPage.x0, -rcPage.y0),
                  fz_scale(kSide / (rcPage.x1 - rcPage.x0), kSide / (rcPage.y1 - rcPage.y0)));
    RunList(small, small.placement.area, [&](fz_context* ctx, fz_pixmap*& pPixmap) {
        pPixmap = PixmapOver(ctx, fz_device_gray(ctx), small.placement.area,
                             std::ptrdiff_t{kSide} * kChannels, greys.data());
        return fz_new_draw_device(ctx, fz_identity, pPixmap);
    });
    int nBright = 0;
    for (std::size_t n = 0; n < greys.size(); n += kChannels) {
        nBright += greys[n] >= kPaper ? 1 : 0;
    }
    return nBright > kSide * kSide / 2;
}

void PageRenderer::RunPictures(const Layer& layer) {
    const fz_irect& area = layer.placement.area;
    RunList(layer, area, [&](fz_context* ctx, fz_pixmap*& pPixmap) {
        pPixmap = PixmapOver(ctx, nullptr, area, m_nWidth, m_pictures.data() + IndexOf(area));
        return NewPictureDevice(ctx, pPixmap);
    });
}

void PageRenderer::Map(const fz_irect& area, const std::uint32_t* pTrueColors) {
    const auto nWidth = static_cast<std::size_t>(area.x1 - area.x0);
    const ColorMapping& mapping = m_bDims ? m_dimming : m_mapping;
    for (int y = area.y0; y < area.y1; ++y) {
        const std::size_t nFirst = IndexOf({area.x0, y, area.x1, y + 1});
        std::span<const std::uint8_t> pictures;
        if (!m_pictures.empty()) {
            pictures = std::span(m_pictures).subspan(nFirst, nWidth);
        }
        mapping.MapRow({pTrueColors + nFirst, nWidth}, pictures, {BitmapPixels() + nFirst, nWidth});
    }
}

std::shared_ptr<common::Renderer> PageRendererFactory::Create(
    std::shared_ptr<common::Bitmap> pBitmap) {
    return std::make_shared<PageRenderer>(std::move(pBitmap));
}

}
