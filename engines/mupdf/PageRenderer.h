// `velko.common.Renderer`: runs display lists into a bitmap.
//
// In the mapped colour mode an area is drawn in the page's own colours onto
// white and then mapped as a whole, so that blending happens between true
// colours. A page with annotations keeps its true colours beside the bitmap:
// each annotation is drawn over them, and only its own area is mapped again.
// The paper of the caller's bitmap becomes the background colour there.
//
// Threads: one at a time; several renderers may run at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/Renderer.h"
#include "engines/mupdf/ColorMapping.h"
#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/Operation.h"
#include "engines/mupdf/PageTable.h"

namespace velko::engines::mupdf {

namespace reflow {
struct Layout;
}

class PageRenderer final : public common::Renderer {
public:
    // Raises `EngineException` (parameter) without a usable bitmap.
    explicit PageRenderer(std::shared_ptr<common::Bitmap> pBitmap);

    void SetColorMode(std::int32_t nMode) override { m_nColorMode = nMode; }
    void SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) override;
    void SetScanColors(common::ScanColors eColors) override { m_eScanColors = eColors; }
    void SetRenderContentFlags(std::uint32_t nFlags) override { m_nContentFlags = nFlags; }
    std::shared_ptr<common::Progressive> StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                     const common::vxbase::Matrix2D& matrix,
                                                     common::IPauseCallback* pPause) override;
    bool RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot,
                     const common::vxbase::Matrix2D& matrix) override;
    std::shared_ptr<common::Progressive> StartRenderReflowPage(
        std::shared_ptr<pdf::ReflowPage> pPage, const common::vxbase::Matrix2D& matrix,
        common::IPauseCallback* pPause) override;
    bool IsIncomplete() const override { return m_bIncomplete; }
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

    Placement Place(const PageFacts& facts, const common::vxbase::Matrix2D& matrix) const;
    std::uint32_t* BitmapPixels();
    std::size_t IndexOf(const fz_irect& area) const; // of the area's first pixel
    std::size_t PixelCount() const;

    // `bAlone`: nothing is expected over it.
    void Draw(const Layer& layer, bool bAlone);
    void DrawMapped(const Layer& layer, bool bAlone);
    void KeepTrueColors();
    void DrawTrueColors(const Layer& layer, std::uint32_t* pPixels);
    bool IsScan(const Layer& layer);
    bool IsBright(const Layer& layer);
    void DrawReflowed(const reflow::Layout& layout, const fz_matrix& toBitmap);
    void Map(const fz_irect& area, const std::uint32_t* pTrueColors);

    // Run the list into pixels of the bitmap's size, or its pictures into the mask.
    void Run(const Layer& layer, std::uint32_t* pPixels);
    void RunPictures(const Layer& layer);
    template <class MakeDevice>
    void RunList(const Layer& layer, const fz_irect& area, MakeDevice&& fnMakeDevice);

    std::shared_ptr<common::Bitmap> m_pBitmap;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::int32_t m_nColorMode = kColorModeNormal;
    ColorMapping m_mapping{0xFFFFFFFFU, 0xFF000000U};
    ColorMapping m_dimming{0xFFFFFFFFU, 0xFF000000U}; // for a scan that is dimmed
    common::ScanColors m_eScanColors = common::ScanColors::Turned;
    bool m_bDims = false; // the page is such a one
    std::uint32_t m_nContentFlags = kRenderContent;
    Operation::AbortFlag m_pAbort;
    bool m_bIncomplete = false;

    // The mapped mode: of the bitmap's size, or empty until needed.
    std::vector<Layer> m_mappedInPlace;      // layers whose true colours are gone
    std::vector<std::uint32_t> m_trueColors; // before the mapping
    std::vector<std::uint8_t> m_pictures;    // how much of a picture each pixel is
};

class PageRendererFactory final : public common::IRendererFactory {
public:
    std::shared_ptr<common::Renderer> Create(std::shared_ptr<common::Bitmap> pBitmap) override;
};

}
