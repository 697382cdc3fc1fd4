// Reflowed text by script: a height for a width and a zoom.
//
// The height is the page's `fReflowHeight` times the square of the zoom over
// the width relative to 1000, as the area of text is constant.
#pragma once

#include <memory>

#include "document/engine/ReflowPage.h"
#include "tests/support/scripted_engine/EngineScript_p.h"

namespace velko::testing {

class ScriptedPageObject;

class ScriptedReflowPage final : public pdf::ReflowPage {
public:
    ScriptedReflowPage(std::shared_ptr<EngineScript> pScript,
                       std::shared_ptr<ScriptedPageObject> pPage);

    std::int32_t Index() const;

    void SetScreenSize(float fWidth, float) override { m_fWidth = fWidth; }
    void SetZoom(std::int32_t nPercent) override { m_nZoom = nPercent; }
    void SetSpacing1(float) override {}
    void SetSpacing2(float) override {}
    void SetParseFlags(std::int32_t) override {}
    std::shared_ptr<common::Progressive> StartParse(common::IPauseCallback* pPause) override;
    std::int32_t GetContentWidth() const override { return m_nContentWidth; }
    std::int32_t GetContentHeight() const override { return m_nContentHeight; }
    common::vxbase::Matrix2D GetDisplayMatrix() const override { return {}; }

private:
    std::shared_ptr<EngineScript> m_pScript;
    std::shared_ptr<ScriptedPageObject> m_pPage;
    float m_fWidth = 1000.0F;
    std::int32_t m_nZoom = 100;
    std::int32_t m_nContentWidth = 0; // 0 until parsed
    std::int32_t m_nContentHeight = 0;
};

class ScriptedReflowPageFactory final : public pdf::IReflowPageFactory {
public:
    explicit ScriptedReflowPageFactory(std::shared_ptr<EngineScript> pScript)
        : m_pScript(std::move(pScript)) {}
    std::shared_ptr<pdf::ReflowPage> Create(std::shared_ptr<pdf::PDFPage> pPage) override;

private:
    std::shared_ptr<EngineScript> m_pScript;
};

}
