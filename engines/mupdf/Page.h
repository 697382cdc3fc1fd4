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
    std::int32_t GetAnnotCount() override;
    std::shared_ptr<pdf::IAnnot> GetAnnot(std::int32_t nIndex) override;

    // Another one after each edit of its annotations.
    std::uint64_t AnnotGeneration() const;

    // For renderers.
    Document& Owner() const { return *m_pDocument; }
    const PageFacts& Facts() const { return m_facts; }
    std::shared_ptr<const Drawing> Content(Operation::AbortFlag pAbort);
    std::shared_ptr<const Drawing> Annots(Operation::AbortFlag pAbort);

private:
    // As they are in a generation.
    struct Annotations {
        std::uint64_t nGeneration = 0;
        std::vector<AnnotEntry> entries;
    };

    std::int32_t Parse(); // how it ended, as a progress says it
    std::shared_ptr<const Annotations> ListAnnots();

    const std::shared_ptr<Document> m_pDocument;
    const std::int32_t m_nIndex;
    const PageFacts m_facts; // but for what edits change
    std::atomic<bool> m_bParsed;
    std::atomic<std::int32_t> m_nMostAnnots; // the largest count that was told

    concurrency::critical_section m_annotsLock; // a leaf
    std::shared_ptr<const Annotations> m_pAnnots
        VLK_GUARDED_BY(m_annotsLock); // empty until asked for
};

class Annotation : public pdf::IAnnot {
public:
    Annotation(std::shared_ptr<Page> pPage, const AnnotEntry& entry);

    std::int32_t GetType() const override { return m_entry.nKind; }

    // For renderers.
    const std::shared_ptr<Page>& Owner() const { return m_pPage; }
    pdf::AnnotId Id() const { return m_entry.nId; }

private:
    std::shared_ptr<Page> m_pPage;
    AnnotEntry m_entry;
};

}
