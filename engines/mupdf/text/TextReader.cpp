#include "engines/mupdf/text/TextReader.h"

#include <utility>

#include "engines/mupdf/Drawings.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/text/PageTextBuilder.h"

namespace velko::engines::mupdf::text {

std::shared_ptr<OpenedFile> TextReader::UsableFile() {
    if (!m_pFile || m_pFile->IsDamaged()) {
        m_pFile = m_pDocument->OpenBeside();
    }
    return m_pFile;
}

std::shared_ptr<const Drawing> TextReader::ContentOf(std::int32_t nPage) {
    const PageCache::Key key{m_pDocument->CacheNumber(), nPage, PageCache::Kind::Content};
    if (auto pKept = PageCache::Instance().Peek<Drawing>(key)) {
        return pKept;
    }
    const concurrency::critical_section::scoped_lock lock(m_lock);
    Operation operation(m_pAbort, CurrentBudgets().parse);
    operation.ThrowIfAborted();
    return DrawContent(UsableFile(), nPage, operation);
}

std::shared_ptr<const pdf::PageText> TextReader::Read(std::int32_t nPageIndex) {
    const PageFacts facts = m_pDocument->FactsOf(nPageIndex);
    const PageCache::Key key{m_pDocument->CacheNumber(), nPageIndex, PageCache::Kind::Text,
                             m_pDocument->Sizes().Generation()};
    auto pText = PageCache::Instance().Peek<CachedText>(key);
    if (!pText) {
        const std::shared_ptr<const Drawing> pContent = ContentOf(nPageIndex);
        Operation operation(m_pAbort, CurrentBudgets().parse);
        pText = std::make_shared<const CachedText>(BuildPageText(*pContent, facts, operation));
    }
    return {pText, &pText->text};
}

}
