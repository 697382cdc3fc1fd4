// `velko.pdf.ReflowPage` on a page of this engine.
//
// A parse reads the page's lists (`PageModel`) and sets them (`Layout`); a parse
// with other sizes sets the same model anew.
//
// Threads: as the contract says. `Result` may be drawn while the next parse runs.
#pragma once

#include <memory>

#include "document/engine/ReflowPage.h"
#include "engines/mupdf/Page.h"
#include "engines/mupdf/reflow/Layout.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf::reflow {

class ReflowedPage final : public pdf::ReflowPage {
public:
    explicit ReflowedPage(std::shared_ptr<Page> pPage) : m_pPage(std::move(pPage)) {}

    void SetScreenSize(float fWidth, float fHeight) override;
    void SetZoom(std::int32_t nPercent) override { m_parameters.nPercent = nPercent; }
    void SetSpacing1(float fSpacing) override { m_parameters.fLineSpacing = fSpacing; }
    void SetSpacing2(float fSpacing) override { m_parameters.fParagraphSpacing = fSpacing; }
    void SetParseFlags(std::int32_t nFlags) override;
    std::shared_ptr<common::Progressive> StartParse(common::IPauseCallback* pPause) override;
    std::int32_t GetContentWidth() const override;
    std::int32_t GetContentHeight() const override;
    common::vxbase::Matrix2D GetDisplayMatrix() const override { return {}; }

    // What the last parse made; empty before the first.
    std::shared_ptr<const Layout> Result() const;

private:
    std::shared_ptr<const PageModel> MakeModel() const;

    const std::shared_ptr<Page> m_pPage;
    SetParameters m_parameters;
    std::shared_ptr<const PageModel> m_pModel; // empty until read

    mutable concurrency::critical_section m_lock; // a leaf
    std::shared_ptr<const Layout> m_pResult VLK_GUARDED_BY(m_lock);
};

class ReflowedPageFactory final : public pdf::IReflowPageFactory {
public:
    // Raises `EngineException` (parameter) for a page of another engine.
    std::shared_ptr<pdf::ReflowPage> Create(std::shared_ptr<pdf::PDFPage> pPage) override;
};

}
