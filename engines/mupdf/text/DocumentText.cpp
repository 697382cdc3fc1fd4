#include <memory>
#include <utility>

#include "engines/mupdf/Document.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/text/PageTextBuilder.h"
#include "engines/mupdf/text/TextReader.h"

namespace velko::engines::mupdf {

// Two that ask at once for one page share the interpreting and do the rest twice.
std::shared_ptr<const pdf::PageText> Document::TextOf(std::int32_t nPageIndex) {
    const PageFacts facts = FactsOf(nPageIndex);
    const PageCache::Key key{m_nKey, nPageIndex, PageCache::Kind::Text, m_sizes.Generation()};
    auto pText = PageCache::Instance().Find<text::CachedText>(key);
    if (!pText) {
        const std::shared_ptr<const Drawing> pContent = ContentOf(nPageIndex, nullptr);
        Operation operation(nullptr, CurrentBudgets().parse);
        pText = std::make_shared<const text::CachedText>(
            text::BuildPageText(*pContent, facts, operation));
        PageCache::Instance().Put(key, pText);
    }
    return {pText, &pText->text};
}

std::shared_ptr<pdf::ITextReader> Document::NewReader(AbortFlag pAbort) {
    LoadedState();
    return std::make_shared<text::TextReader>(shared_from_this(), std::move(pAbort));
}

}
