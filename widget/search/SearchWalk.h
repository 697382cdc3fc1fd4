// One search's way through a document: from the page that the reader sees to the last,
// and on from the first.
//
// It is gone in slices of a few milliseconds, so that a render never waits long for a
// thread of the pool.
// Threads: `Cancel` any; `Run` on the task pool, by several at once.
// Errors: a page whose text cannot be read has none, which the debug output tells.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "document/engine/PDFDoc.h"
#include "document/engine/PageText.h"
#include "widget/search/SearchPattern.h"
#include "widget/search/SearchTexts.h"

namespace velko::vkit {

// Where the reader is: of that page what lies in a box of page space, or from a
// character on.
struct SearchStart {
    std::int32_t nPage = 0;
    std::optional<velko::common::vxbase::RectF> rcSeen;
    std::int32_t nChar = 0; // without the box
};

class SearchWalk {
public:
    struct PageHits {
        std::int32_t nPage = 0;
        std::vector<CharRange> hits;
        bool bHasText = false;
        std::int32_t nStartChar = 0; // of the first page: from there on the reader sees it
    };
    using Slice = std::vector<PageHits>;

    SearchWalk(std::shared_ptr<velko::pdf::PDFDoc> pDocument, std::shared_ptr<SearchTexts> pTexts,
               SearchPattern pattern, SearchStart start);

    // The next pages, as many as the time has room for; the first hit ends the first
    // slice. None: no page is left, or the walk is cancelled.
    Slice Run();
    void Cancel() { m_pAbort->store(true, std::memory_order_release); }

    std::int32_t PageCount() const { return m_nPages; }
    // The page that is the walk's n-th.
    std::int32_t PageAt(std::int32_t n) const { return (m_start.nPage + n) % m_nPages; }

private:
    bool IsCancelled() const { return m_pAbort->load(std::memory_order_acquire); }
    PageHits Look(std::int32_t n, PageSearch& search);
    std::shared_ptr<const velko::pdf::PageText> Read(std::int32_t nPage);
    SearchTexts::Text TextOf(std::int32_t nPage);
    std::int32_t StartChar();

    const std::shared_ptr<velko::pdf::PDFDoc> m_pDocument;
    const std::shared_ptr<SearchTexts> m_pTexts;
    const SearchPattern m_pattern;
    const SearchStart m_start;
    const std::int32_t m_nPages;
    const std::shared_ptr<std::atomic<bool>> m_pAbort;
    const std::shared_ptr<velko::pdf::ITextReader> m_pReader; // empty: the engine has no text
    std::atomic<std::int32_t> m_nNext = 0;                    // of the walk
    std::atomic<bool> m_bFound = false;
};

}
