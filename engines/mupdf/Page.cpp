#include "engines/mupdf/Page.h"

#include <utility>

#include "document/engine/DisplayMatrix.h"
#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Document.h"
#include "engines/mupdf/FinishedProgress.h"

namespace velko::engines::mupdf {

using common::EngineException;
using common::ErrorCode;

Page::Page(std::shared_ptr<Document> pDocument, std::int32_t nIndex, const PageFacts& facts)
    : m_pDocument(std::move(pDocument)),
      m_nIndex(nIndex),
      m_facts(facts),
      m_bParsed(m_pDocument->Sizes().Knows(nIndex)),
      m_nMostAnnots(facts.nAnnots) {}

std::int32_t Page::Parse() {
    Content(nullptr);
    return m_bParsed ? common::Progressive::kFinished : common::Progressive::kCutShort;
}

std::shared_ptr<common::Progressive> Page::StartParse(std::int32_t, common::IPauseCallback* pPause,
                                                      std::int32_t nReparse) {
    if (nReparse != 0) {
        m_pDocument->ForgetCutShort(m_nIndex);
    }
    try {
        const Operation::Patience patience(pPause);
        return std::make_shared<FinishedProgress>(Parse());
    } catch (const Operation::Paused&) {
        return std::make_shared<PutOffProgress>(
            [pSelf = shared_from_this()] { return pSelf->Parse(); });
    }
}

std::shared_ptr<const Drawing> Page::Content(Operation::AbortFlag pAbort) {
    auto pDrawing = m_pDocument->ContentOf(m_nIndex, std::move(pAbort));
    m_bParsed = !pDrawing->bCutShort;
    return pDrawing;
}

std::shared_ptr<const Drawing> Page::Annots(Operation::AbortFlag pAbort) {
    return m_pDocument->AnnotsOf(m_nIndex, std::move(pAbort));
}

common::vxbase::Matrix2D Page::GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                                std::int32_t nWidth, std::int32_t nHeight,
                                                std::int32_t nRotate) const {
    return pdf::MakeDisplayMatrix(m_facts.rcBox, m_facts.nRotation, nLeft, nTop, nWidth, nHeight,
                                  nRotate);
}

std::uint64_t Page::AnnotGeneration() const {
    return m_pDocument->FactsNow(m_nIndex).value_or(m_facts).nGeneration;
}

std::int32_t Page::GetAnnotCount() {
    const std::int32_t nCount = m_pDocument->FactsNow(m_nIndex).value_or(m_facts).nAnnots;
    std::int32_t nMost = m_nMostAnnots;
    while (nMost < nCount && !m_nMostAnnots.compare_exchange_weak(nMost, nCount)) {
    }
    return nCount;
}

std::shared_ptr<const Page::Annotations> Page::ListAnnots() {
    const std::uint64_t nGeneration = AnnotGeneration();
    {
        const concurrency::critical_section::scoped_lock lock(m_annotsLock);
        if (m_pAnnots && m_pAnnots->nGeneration == nGeneration) {
            return m_pAnnots;
        }
    }
    auto pAnnots = std::make_shared<const Annotations>(
        Annotations{nGeneration, m_pDocument->AnnotEntriesOf(m_nIndex)});
    const concurrency::critical_section::scoped_lock lock(m_annotsLock);
    m_pAnnots = pAnnots;
    return pAnnots;
}

// Whoever goes through the annotations was told how many there are before an edit may
// have taken one away.
std::shared_ptr<pdf::IAnnot> Page::GetAnnot(std::int32_t nIndex) {
    if (nIndex < 0 || (nIndex >= GetAnnotCount() && nIndex >= m_nMostAnnots)) {
        throw EngineException(ErrorCode::e_ErrParam, "the page has no such annotation");
    }
    const auto pAnnots = ListAnnots();
    const auto nAt = static_cast<std::size_t>(nIndex);
    if (nAt >= pAnnots->entries.size() || pAnnots->entries[nAt].nId == 0) {
        return nullptr;
    }
    return std::make_shared<Annotation>(shared_from_this(), pAnnots->entries[nAt]);
}

Annotation::Annotation(std::shared_ptr<Page> pPage, const AnnotEntry& entry)
    : m_pPage(std::move(pPage)), m_entry(entry) {}

}
