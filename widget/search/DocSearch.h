// The hits of a search in a document, page by page as they are found.
//
// What is found comes in small portions; each is told by `Found`. `FirstFound` tells once
// which hit is the reader's next, as soon as nothing can come before it.
//
// Lifetime: goes before the control. Threads: UI thread only; the pages are searched on
// the task pool. Errors: a page that cannot be read has no hits.
#pragma once

#include <QList>
#include <QObject>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "widget/search/SearchWalk.h"

namespace velko::vkit {

// One of the hits: the page's n-th.
struct HitPlace {
    std::int32_t nPage = 0;
    std::int32_t nIndex = 0;
    friend bool operator==(const HitPlace&, const HitPlace&) = default;
};

class DocSearch : public QObject {
    Q_OBJECT

public:
    using Hits = std::vector<CharRange>;
    static constexpr std::int64_t kMostHits = 1'000'000; // then the search ends

    ~DocSearch() override;

    // In place of the search before. Nothing is found without a document, or by an
    // empty pattern.
    void Find(const std::shared_ptr<velko::pdf::PDFDoc>& pDocument, SearchPattern pattern,
              const SearchStart& start);
    // What was found and read is forgotten, and whatever is under way ends.
    void Forget();

    bool IsSearching() const { return m_pWalk != nullptr; }
    bool IsFull() const { return m_nCount >= kMostHits; } // there may be more
    bool HasText() const { return m_bHasText; }           // any page that was searched

    std::int64_t Count() const { return m_nCount; }
    const Hits& On(std::int32_t nPage) const; // none on a page that is not searched yet
    // Empty while pages before that one are not searched yet.
    std::optional<std::int64_t> CountBefore(std::int32_t nPage) const;
    std::int32_t PageCount() const { return std::int32_t(m_pages.size()); }
    std::optional<CharRange> At(HitPlace place) const;
    HitPlace PlaceOf(std::int64_t n) const; // of all of them the n-th, which there is
    // The letters of a page that are kept; empty for another page.
    SearchTexts::Text TextOf(std::int32_t nPage) const;

    // The hit after that one, or before it; over the end of the document from its other
    // end. Empty while it may be on a page that is not searched yet, and without hits.
    struct Step {
        HitPlace place;
        bool bRound = false;
    };
    std::optional<Step> Next(HitPlace from, bool bBack) const;

signals:
    void Cleared();                      // the hits have gone
    void Found(const QList<int>& pages); // with hits, ascending
    void Progressed();                   // after each portion
    void FirstFound(velko::vkit::HitPlace place);

private:
    struct Page {
        Hits hits;
        bool bSearched = false;
    };

    void RunLane();
    void Take(SearchWalk::Slice slice);
    QList<int> Keep(SearchWalk::Slice slice); // the pages with hits
    void LookForFirst();
    std::optional<HitPlace> FirstAfterStart();
    void Stop();
    void End(); // of its own

    std::weak_ptr<velko::pdf::PDFDoc> m_wkDocument;
    std::shared_ptr<SearchTexts> m_pTexts; // of that document
    std::shared_ptr<SearchWalk> m_pWalk;   // under way
    std::vector<Page> m_pages;
    std::int32_t m_nSearched = 0; // pages
    std::int32_t m_nChecked = 0;  // pages of the walk that the first hit is not on
    std::int32_t m_nStartChar = 0;
    bool m_bFirstTold = false;
    std::int64_t m_nCount = 0;
    bool m_bHasText = false;
};

}
