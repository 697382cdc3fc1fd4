// `velko.common.Renderer`: draws pages and annotations into a bitmap.
//
// Threads: one at a time; several renderers may run at once.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "document/engine/Annot.h"
#include "document/engine/Bitmap.h"
#include "document/engine/Geometry.h"
#include "document/engine/PDFPage.h"
#include "document/engine/Progressive.h"
#include "document/engine/ScanColors.h"
#include "platform/system/Activation.h"

namespace velko::pdf {
class ReflowPage;
}

namespace velko::common {

class Renderer {
public:
    static constexpr std::int32_t kColorModeNormal = 0;
    static constexpr std::int32_t kColorModeMapped = 2;
    static constexpr std::uint32_t kRenderContent = 1;

    virtual ~Renderer() = default;

    // Mapped: black becomes the foreground and white the background of
    // `SetMappingModeColors`, greys lie between; hues stay, and so do
    // photographs but for scans.
    virtual void SetColorMode(std::int32_t nMode) = 0;
    virtual void SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) = 0;

    // For scans in the mapped mode; `Turned` at first. An engine that does not tell
    // a scan from other pages leaves it as it is.
    virtual void SetScanColors(ScanColors /*eColors*/) {}

    // `kRenderContent` or nothing: without the bit `StartRender` draws nothing.
    // Other bits mean nothing.
    virtual void SetRenderContentFlags(std::uint32_t nFlags) = 0;

    // Draws the page's content (no annotations) over what the bitmap holds.
    // `matrix` maps page space to the bitmap; only what lies in the bitmap
    // costs time. Without a pause object the page is drawn when this returns;
    // what is broken in it is left out. Raises `EngineException` as
    // `PDFPage::StartParse` does, and e_ErrParam for a page of another engine.
    virtual std::shared_ptr<Progressive> StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                     const vxbase::Matrix2D& matrix,
                                                     IPauseCallback* pPause) = 0;

    // Draws one annotation of a page, over what was drawn before it. False when
    // it has nothing to show. Raises as `StartRender`.
    virtual bool RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot,
                             const vxbase::Matrix2D& matrix) = 0;

    // True when something that was drawn so far is not all there, because its
    // time ran out. Asked again from the start, it may come out whole.
    virtual bool IsIncomplete() const { return false; }

    // Draws a reflowed page as `StartRender` draws a page; `matrix` maps its
    // content to the bitmap. Raises e_ErrUnsupported from an engine without it.
    virtual std::shared_ptr<Progressive> StartRenderReflowPage(
        std::shared_ptr<pdf::ReflowPage> pPage, const vxbase::Matrix2D& matrix,
        IPauseCallback* pPause) = 0;

    // A flag that whoever asked for the render may set at any time; the
    // drawing then ends early by raising `concurrency::task_canceled`. Handed
    // over before the first draw, by the thread that draws; empty for none.
    virtual void SetAbortFlag(std::shared_ptr<const std::atomic<bool>> pAbort) = 0;
};

class IRendererFactory : public Platform::IActivationFactory {
public:
    virtual std::shared_ptr<Renderer> Create(std::shared_ptr<Bitmap> pBitmap) = 0;
};

inline constexpr const char* kRendererClass = "velko.common.Renderer";

}
