// `velko.common.Renderer`: runs display lists into a bitmap.
//
// In the mapped colour mode the page is drawn in its own colours onto white in
// a bitmap beside, and the area of the page (or of the annotation) is then
// mapped into the caller's bitmap. Blending thus happens between true colours.
// The caller's bitmap is covered there: its paper is the background colour.
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

    Placement Place(const PageFacts& facts, const common::vxbase::Matrix2D& matrix) const;
    void Draw(const Drawing::Part& part, const Placement& placement);
    void DrawMapped(const Drawing::Part& part, const Placement& placement);

    // Runs the list into 4-byte pixels of the bitmap's size.
    void Run(const Drawing::Part& part, const Placement& placement, std::uint8_t* pPixels);
    void RunPictures(const Drawing::Part& part, const Placement& placement);
    template <class MakeDevice>
    void RunList(const Drawing::Part& part, const Placement& placement, MakeDevice&& fnMakeDevice);
    void MapArea(const fz_irect& area);

    std::shared_ptr<common::Bitmap> m_pBitmap;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::int32_t m_nColorMode = kColorModeNormal;
    std::uint32_t m_nBackColor = 0xFFFFFFFFU;
    std::uint32_t m_nForeColor = 0xFF000000U;
    std::uint32_t m_nContentFlags = kRenderContent;
    Operation::AbortFlag m_pAbort;

    std::vector<std::uint32_t> m_trueColors; // of the bitmap's size; empty until needed
    std::vector<std::uint8_t> m_pictures;    // as above, one byte a pixel
};

class PageRendererFactory final : public common::IRendererFactory {
public:
    std::shared_ptr<common::Renderer> Create(std::shared_ptr<common::Bitmap> pBitmap) override;
};

}
