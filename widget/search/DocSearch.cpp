#include "widget/search/DocSearch.h"

#include <QPointer>
#include <algorithm>
#include <utility>

#include "platform/concurrency/Task.h"

namespace velko::vkit {

namespace {

constexpr int kLanes = 2; // one reads while the other sorts what it has read

}

DocSearch::~DocSearch() {
    Stop();
}

void DocSearch::Stop() {
    if (m_pWalk) {
        m_pWalk->Cancel();
    }
    m_pWalk.reset();
}

void DocSearch::Find(const std::shared_ptr<velko::pdf::PDFDoc>& pDocument, SearchPattern pattern,
                     const SearchStart& start) {
    Stop();
    if (m_wkDocument.lock() != pDocument || !m_pTexts) {
        m_wkDocument = pDocument;
        m_pTexts = std::make_shared<SearchTexts>();
    }
    m_pages.clear();
    m_nSearched = 0;
    m_nChecked = 0;
    m_nCount = 0;
    m_bFirstTold = false;
    m_bHasText = false;
    emit Cleared();
    const std::int32_t nPages = pDocument ? pDocument->GetPageCount() : 0;
    if (nPages <= 0 || pattern.IsEmpty()) {
        return;
    }
    m_pages.resize(static_cast<std::size_t>(nPages));
    SearchStart there = start;
    there.nPage = std::clamp(start.nPage, 0, nPages - 1);
    m_pWalk = std::make_shared<SearchWalk>(pDocument, m_pTexts, std::move(pattern), there);
    for (int n = 0; n < kLanes; ++n) {
        RunLane();
    }
}

void DocSearch::Forget() {
    Find(nullptr, {}, {});
    m_pTexts.reset();
}

// A slice may have ended before anybody listens: it is always taken from the event loop.
void DocSearch::RunLane() {
    const auto fnRun = [pWalk = m_pWalk] { return pWalk->Run(); };
    concurrency::create_task(fnRun).then([pThis = QPointer<DocSearch>(this), pWalk = m_pWalk](
                                             const concurrency::task<SearchWalk::Slice>& running) {
        if (!pThis || !running.is_value() || running.get().empty()) {
            return;
        }
        const auto fnTake = [pThis, pWalk, slice = running.get()] {
            if (pThis->m_pWalk == pWalk) {
                pThis->Take(slice);
            }
        };
        QMetaObject::invokeMethod(pThis, fnTake, Qt::QueuedConnection);
    });
}

QList<int> DocSearch::Keep(SearchWalk::Slice slice) {
    std::sort(slice.begin(), slice.end(),
              [](const auto& one, const auto& other) { return one.nPage < other.nPage; });
    QList<int> pages;
    for (SearchWalk::PageHits& found : slice) {
        Page& page = m_pages[static_cast<std::size_t>(found.nPage)];
        page.bSearched = true;
        page.hits = std::move(found.hits);
        m_nCount += static_cast<std::int64_t>(page.hits.size());
        m_bHasText = m_bHasText || found.bHasText;
        if (!page.hits.empty()) {
            pages << found.nPage;
        }
        if (found.nPage == m_pWalk->PageAt(0)) {
            m_nStartChar = found.nStartChar;
        }
    }
    m_nSearched += static_cast<std::int32_t>(slice.size());
    return pages;
}

// A handler may end the search, or the view.
void DocSearch::Take(SearchWalk::Slice slice) {
    const auto pWalk = m_pWalk;
    const auto fnGoesOn = [pThis = QPointer<DocSearch>(this), pWalk] {
        return pThis && pThis->m_pWalk == pWalk;
    };
    const QList<int> pages = Keep(std::move(slice));
    if (!IsFull()) {
        RunLane();
    }
    if (!pages.isEmpty()) {
        emit Found(pages);
    }
    if (fnGoesOn()) {
        LookForFirst();
    }
    if (fnGoesOn()) {
        if (IsFull() || m_nSearched == PageCount()) {
            End();
        }
        emit Progressed();
    }
}

void DocSearch::End() {
    Stop();
    for (Page& page : m_pages) {
        page.bSearched = true;
    }
}

void DocSearch::LookForFirst() {
    const auto first = m_bFirstTold ? std::nullopt : FirstAfterStart();
    if (first) {
        m_bFirstTold = true;
        emit FirstFound(*first);
    }
}

// What stands on the first page before the place where the reader is comes last.
std::optional<HitPlace> DocSearch::FirstAfterStart() {
    for (; m_nChecked < PageCount(); ++m_nChecked) {
        const std::int32_t nPage = m_pWalk->PageAt(m_nChecked);
        const Page& page = m_pages[static_cast<std::size_t>(nPage)];
        if (!page.bSearched) {
            return std::nullopt;
        }
        const std::int32_t nFrom = m_nChecked == 0 ? m_nStartChar : 0;
        const auto hit = std::find_if(page.hits.begin(), page.hits.end(),
                                      [nFrom](CharRange range) { return range.nFirst >= nFrom; });
        if (hit != page.hits.end()) {
            return HitPlace{nPage, static_cast<std::int32_t>(hit - page.hits.begin())};
        }
    }
    const std::int32_t nStart = m_pWalk->PageAt(0);
    return On(nStart).empty() ? std::nullopt : std::optional(HitPlace{nStart, 0});
}

const DocSearch::Hits& DocSearch::On(std::int32_t nPage) const {
    static const Hits s_none;
    return nPage >= 0 && nPage < PageCount() ? m_pages[static_cast<std::size_t>(nPage)].hits
                                             : s_none;
}

std::optional<std::int64_t> DocSearch::CountBefore(std::int32_t nPage) const {
    std::int64_t nCount = 0;
    for (std::int32_t n = 0; n < std::min(nPage, PageCount()); ++n) {
        const Page& page = m_pages[static_cast<std::size_t>(n)];
        if (!page.bSearched) {
            return std::nullopt;
        }
        nCount += static_cast<std::int64_t>(page.hits.size());
    }
    return nCount;
}

std::optional<CharRange> DocSearch::At(HitPlace place) const {
    const Hits& hits = On(place.nPage);
    const auto nIndex = static_cast<std::size_t>(place.nIndex);
    return place.nIndex >= 0 && nIndex < hits.size() ? std::optional(hits[nIndex]) : std::nullopt;
}

HitPlace DocSearch::PlaceOf(std::int64_t n) const {
    std::int32_t nPage = 0;
    while (nPage + 1 < PageCount() && n >= static_cast<std::int64_t>(On(nPage).size())) {
        n -= static_cast<std::int64_t>(On(nPage++).size());
    }
    return {nPage, static_cast<std::int32_t>(n)};
}

SearchTexts::Text DocSearch::TextOf(std::int32_t nPage) const {
    return m_pTexts ? m_pTexts->Find(nPage) : nullptr;
}

std::optional<DocSearch::Step> DocSearch::Next(HitPlace from, bool bBack) const {
    const std::int32_t nIndex = from.nIndex + (bBack ? -1 : 1);
    if (At({from.nPage, nIndex})) {
        return Step{{from.nPage, nIndex}, false};
    }
    std::int32_t nPage = from.nPage;
    for (std::int32_t n = 0; n < PageCount(); ++n) {
        const std::int32_t nNext = (nPage + (bBack ? PageCount() - 1 : 1)) % PageCount();
        nPage = nNext;
        const Page& page = m_pages[static_cast<std::size_t>(nPage)];
        if (!page.bSearched) {
            return std::nullopt;
        }
        if (!page.hits.empty()) {
            const bool bRound = bBack ? nPage >= from.nPage : nPage <= from.nPage;
            const auto nLast = static_cast<std::int32_t>(page.hits.size()) - 1;
            return Step{{nPage, bBack ? nLast : 0}, bRound};
        }
    }
    return std::nullopt;
}

}
