#include <memory>
#include <utility>

#include "engines/mupdf/Document.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/reflow/ReflowedPage.h"
#include "engines/mupdf/text/PageTextBuilder.h"
#include "engines/mupdf/text/SetTextBuilder.h"
#include "engines/mupdf/text/TextReader.h"

namespace velko::engines::mupdf {

// Two that ask at once for one page share the interpreting and do the rest twice.
std::shared_ptr<const text::CachedText> Document::OwnText(std::int32_t nPage,
                                                          const PageFacts& facts) {
    const PageCache::Key key{m_nKey, nPage, PageCache::Kind::Text, m_sizes.Generation()};
    auto pText = PageCache::Instance().Find<text::CachedText>(key);
    if (!pText) {
        const std::shared_ptr<const Drawing> pContent = ContentOf(nPage, nullptr);
        Operation operation(nullptr, CurrentBudgets().parse);
        pText = std::make_shared<const text::CachedText>(
            text::BuildPageText(*pContent, facts, operation));
        PageCache::Instance().Put(key, pText);
    }
    return pText;
}

std::shared_ptr<const pdf::PageText> Document::TextOf(std::int32_t nPageIndex) {
    const auto pText = OwnText(nPageIndex, FactsOf(nPageIndex));
    return {pText, &pText->text};
}

std::shared_ptr<pdf::ITextReader> Document::NewReader(AbortFlag pAbort) {
    LoadedState();
    return std::make_shared<text::TextReader>(shared_from_this(), std::move(pAbort));
}

std::uint64_t Document::SetNumber() const {
    const auto latest = m_sizes.Latest();
    return latest ? latest->nNumber : 0;
}

std::shared_ptr<const pdf::PageText> Document::SetTextOf(std::int32_t nPageIndex) {
    const PageFacts facts = FactsOf(nPageIndex);
    const auto latest = m_sizes.Latest();
    if (!latest) {
        return nullptr;
    }
    const reflow::ReflowedPage page(std::make_shared<Page>(shared_from_this(), nPageIndex, facts));
    std::vector<reflow::SetPlace> places;
    const auto pLayout = reflow::SetModel(page.Model(), latest->parameters, &places);
    return std::make_shared<const pdf::PageText>(
        text::PlaceText(*OwnText(nPageIndex, facts), *pLayout, places, facts));
}

}
