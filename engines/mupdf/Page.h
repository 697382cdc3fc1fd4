// A page of a document, and one of its annotations.
//
// Threads: any. What a UI thread asks for is copied into the page when it is
// made and never waits.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "document/engine/PDFPage.h"
#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/Operation.h"
#include "engines/mupdf/PageTable.h"
#include "platform/concurrency/CriticalSection.h"

namespace velko::engines::mupdf {

class Document;

class Page final : public pdf::PDFPage, public std::enable_shared_from_this<Page> {
public:
    Page(std::shared_ptr<Document> pDocument, std::int32_t nIndex, const PageFacts& facts);

    float GetWidth() const override { return m_facts.fWidth; }
    float GetHeight() const override { return m_facts.fHeight; }
    std::int32_t GetIndex() const override { return m_nIndex; }
    std::int32_t GetRotation() const override { return m_facts.nRotation; }
    common::vxbase::RectF GetBox(std::int32_t) const override { return m_facts.rcBox; }
    bool IsParsed() const override { return m_bParsed; }
    std::shared_ptr<common::Progressive> StartParse(std::int32_t nFlags,
                                                    common::IPauseCallback* pPause,
                                                    std::int32_t nReparse) override;
    common::vxbase::Matrix2D GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                              std::int32_t nWidth, std::int32_t nHeight,
                                              std::int32_t nRotate) const override;
    std::int32_t GetAnnotCount() override { return m_facts.nAnnots; }
    std::shared_ptr<pdf::IAnnot> GetAnnot(std::int32_t nIndex) override;

    // For renderers.
    Document& Owner() const { return *m_pDocument; }
    const PageFacts& Facts() const { return m_facts; }
    std::shared_ptr<const Drawing> Content(Operation::AbortFlag pAbort);
    std::shared_ptr<const Drawing> Annots(Operation::AbortFlag pAbort);

private:
    using Kinds = std::vector<std::int32_t>;

    std::int32_t Parse(); // how it ended, as a progress says it
    std::shared_ptr<const Kinds> AnnotKinds();

    const std::shared_ptr<Document> m_pDocument;
    const std::int32_t m_nIndex;
    const PageFacts m_facts;
    std::atomic<bool> m_bParsed;

    concurrency::critical_section m_kindsLock;                         // a leaf
    std::shared_ptr<const Kinds> m_pKinds VLK_GUARDED_BY(m_kindsLock); // empty until asked for
};

class Annotation final : public pdf::IAnnot {
public:
    Annotation(std::shared_ptr<Page> pPage, std::int32_t nIndex, std::int32_t nKind);

    std::int32_t GetType() const override { return m_nKind; }

    // For renderers.
    const std::shared_ptr<Page>& Owner() const { return m_pPage; }
    std::int32_t Index() const { return m_nIndex; }

private:
    std::shared_ptr<Page> m_pPage;
    std::int32_t m_nIndex;
    std::int32_t m_nKind;
};

}
