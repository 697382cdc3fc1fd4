// `velko.common.Renderer`: runs display lists into a bitmap.
//
// In the mapped colour mode an area is drawn in the page's own colours onto
// white and then mapped as a whole, so that blending happens between true
// colours. What is drawn later into the same area (an annotation over the
// page) is drawn on top of everything drawn before it, beside, and mapped
// again. The paper of the caller's bitmap becomes the background colour there.
//
// Threads: one at a time; several renderers may run at once.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/Renderer.h"
#include "engines/mupdf/DisplayListCache.h"
#include "engines/mupdf/Operation.h"
#include "engines/mupdf/PageTable.h"

namespace velko::engines::mupdf {

class PageRenderer final : public common::Renderer {
public:
    // Raises `EngineException` (parameter) without a usable bitmap.
    explicit PageRenderer(std::shared_ptr<common::Bitmap> pBitmap);

    void SetColorMode(std::int32_t nMode) override { m_nColorMode = nMode; }
    void SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) override;
    void SetRenderContentFlags(std::uint32_t nFlags) override { m_nContentFlags = nFlags; }
    std::shared_ptr<common::Progressive> StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                     const common::vxbase::Matrix2D& matrix,
                                                     common::IPauseCallback* pPause) override;
    bool RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot,
                     const common::vxbase::Matrix2D& matrix) override;
    std::shared_ptr<common::Progressive> StartRenderReflowPage(
        std::shared_ptr<pdf::ReflowPage> pPage, const common::vxbase::Matrix2D& matrix,
        common::IPauseCallback* pPause) override;
    void SetAbortFlag(Operation::AbortFlag pAbort) override { m_pAbort = std::move(pAbort); }

private:
    // Where a list goes: its space to the bitmap's, and the pixels it may touch.
    struct Placement {
        fz_matrix toBitmap = fz_identity;
        fz_irect area = fz_empty_irect;
    };

    // A part with its place. Keeps the list alive.
    struct Layer {
        std::shared_ptr<const Drawing> pDrawing;
        std::size_t nPart = 0;
        Placement placement;

        const Drawing::Part& Part() const { return pDrawing->parts[nPart]; }
    };

    // Pixels of an area of the bitmap, in the bitmap itself or beside it.
    struct Canvas {
        std::uint32_t* pPixels = nullptr; // of the area's first pixel
        std::ptrdiff_t nStride = 0;       // in pixels
        fz_irect area = fz_empty_irect;
    };

    Placement Place(const PageFacts& facts, const common::vxbase::Matrix2D& matrix) const;
    Canvas CanvasOver(const fz_irect& area);
    void Draw(const Layer& layer);
    void DrawMapped(const Layer& layer);
    void DrawTrueColors(const Canvas& canvas, const Layer& layer,
                        std::vector<std::uint8_t>& pictures);
    void Map(const Canvas& source, const std::vector<std::uint8_t>& pictures);

    // Run the list into a canvas, or its pictures into a mask of the area's size.
    void Run(const Layer& layer, const Canvas& canvas);
    void RunPictures(const Layer& layer, const fz_irect& area, std::uint8_t* pMask);
    template <class MakeDevice>
    void RunList(const Layer& layer, const fz_irect& area, MakeDevice&& fnMakeDevice);

    std::shared_ptr<common::Bitmap> m_pBitmap;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::int32_t m_nColorMode = kColorModeNormal;
    std::uint32_t m_nBackColor = 0xFFFFFFFFU;
    std::uint32_t m_nForeColor = 0xFF000000U;
    std::uint32_t m_nContentFlags = kRenderContent;
    Operation::AbortFlag m_pAbort;

    std::vector<Layer> m_layers; // drawn so far in the mapped mode
};

class PageRendererFactory final : public common::IRendererFactory {
public:
    std::shared_ptr<common::Renderer> Create(std::shared_ptr<common::Bitmap> pBitmap) override;
};

}
