// Draws scripted pages, annotations and reflowed text.
#pragma once

#include <functional>
#include <memory>

#include "document/engine/ReflowPage.h"
#include "document/engine/Renderer.h"
#include "tests/support/scripted_engine/EngineScript_p.h"

namespace velko::testing {

class ScriptedPageObject;

class ScriptedRenderer final : public common::Renderer {
public:
    ScriptedRenderer(std::shared_ptr<EngineScript> pScript,
                     std::shared_ptr<common::Bitmap> pBitmap);

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
    void SetAbortFlag(std::shared_ptr<const std::atomic<bool>> pAbort) override;
    bool IsIncomplete() const override { return m_bIncomplete; }

private:
    // The colour at a point of the drawn space; 0 leaves the pixel alone.
    using ColorAt = std::function<std::uint32_t(common::vxbase::PointF)>;

    EngineCall MakeCall(EngineOp eOp, const common::vxbase::Matrix2D& matrix) const;
    void Paint(const common::vxbase::Matrix2D& matrix, const ColorAt& fnColorAt);

    std::shared_ptr<EngineScript> m_pScript;
    std::shared_ptr<common::Bitmap> m_pBitmap;
    std::int32_t m_nColorMode = kColorModeNormal;
    std::uint32_t m_nBackColor = 0xFFFFFFFFU;
    std::uint32_t m_nForeColor = 0xFF000000U;
    std::uint32_t m_nContentFlags = kRenderContent;
    std::shared_ptr<const std::atomic<bool>> m_pAbort;
    bool m_bIncomplete = false;
};

class ScriptedRendererFactory final : public common::IRendererFactory {
public:
    explicit ScriptedRendererFactory(std::shared_ptr<EngineScript> pScript)
        : m_pScript(std::move(pScript)) {}
    std::shared_ptr<common::Renderer> Create(std::shared_ptr<common::Bitmap> pBitmap) override;

private:
    std::shared_ptr<EngineScript> m_pScript;
};

}
