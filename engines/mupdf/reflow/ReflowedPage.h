// `velko.pdf.ReflowPage` on a page of this engine.
//
// A parse reads the page's lists (`PageModel`) and sets them (`Layout`). Both, and
// the sizes that came of it, are kept for the document: a page that was measured
// for these parameters before, by whatever object, has its sizes at once, and is
// set when it is drawn. Two that measure one page at once do the work twice: what
// takes time, the interpreting of its content, they share, and a UI thread waits
// for no setting of another thread.
//
// Threads: as the contract says. `Result` may be drawn while the next parse runs.
#pragma once

#include <memory>

#include "document/engine/ReflowPage.h"
#include "engines/mupdf/Page.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/reflow/Layout.h"
#include "engines/mupdf/reflow/MeasuredSizes.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf::reflow {

class ReflowedPage final : public pdf::ReflowPage,
                           public std::enable_shared_from_this<ReflowedPage> {
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

    // What the last parse asked for, set now if it is not yet; empty before the
    // first. Raises as `StartParse`.
    std::shared_ptr<const Layout> Result() const;

    // The page's text, whatever it is set for. Raises as `StartParse`.
    std::shared_ptr<const PageModel> Model() const;

private:
    struct Parsed {
        SetParameters parameters;
        std::uint64_t nNumber = 0; // of the parameters; 0 before the first parse
        MeasuredSize size;
        std::shared_ptr<const Layout> pLayout; // empty until it is needed
    };

    std::int32_t Parse(const SetParameters& parameters); // how it ended
    Parsed Last() const;
    PageCache::Key KeyOf(PageCache::Kind eKind, std::uint64_t nVariant = 0) const;
    PageCache::Key KeyWithAnnots(PageCache::Kind eKind, std::uint64_t nNumber) const;
    void TouchModel() const;
    std::shared_ptr<const Layout> FindLayout(std::uint64_t nNumber) const;
    std::shared_ptr<const Layout> MakeLayout(const Parsed& parsed) const;

    const std::shared_ptr<Page> m_pPage;
    SetParameters m_parameters; // of the next parse

    mutable concurrency::critical_section m_lock; // a leaf
    mutable Parsed m_last VLK_GUARDED_BY(m_lock);
};

class ReflowedPageFactory final : public pdf::IReflowPageFactory {
public:
    // Raises `EngineException` (parameter) for a page of another engine.
    std::shared_ptr<pdf::ReflowPage> Create(std::shared_ptr<pdf::PDFPage> pPage) override;
};

}
