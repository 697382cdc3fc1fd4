#include "widget/search/SearchWalk.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include "platform/concurrency/Cancellation.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::ITextReader;
using velko::pdf::ITextSource;
using velko::pdf::PageText;
using velko::pdf::PDFDoc;
using velko::pdf::TextChar;

namespace {

constexpr std::chrono::milliseconds kSlice(8);

std::shared_ptr<ITextReader> ReaderOf(const std::shared_ptr<PDFDoc>& pDocument,
                                      const ITextSource::AbortFlag& pAbort) {
    const auto pSource = std::dynamic_pointer_cast<ITextSource>(pDocument);
    return pSource ? pSource->NewReader(pAbort) : nullptr;
}

bool IsWithin(const RectF& rc, const TextChar& item) {
    const PointF one = item.quad.ptTopLeft;
    const PointF other = item.quad.ptBottomRight;
    const float fX = (one.X + other.X) / 2.0F;
    const float fY = (one.Y + other.Y) / 2.0F;
    return fX >= std::min(rc.Left, rc.Right) && fX <= std::max(rc.Left, rc.Right) &&
           fY >= std::min(rc.Bottom, rc.Top) && fY <= std::max(rc.Bottom, rc.Top);
}

}

SearchWalk::SearchWalk(std::shared_ptr<PDFDoc> pDocument, std::shared_ptr<SearchTexts> pTexts,
                       SearchPattern pattern, SearchStart start)
    : m_pDocument(std::move(pDocument)),
      m_pTexts(std::move(pTexts)),
      m_pattern(std::move(pattern)),
      m_start(start),
      m_nPages(m_pDocument->GetPageCount()),
      m_pAbort(std::make_shared<std::atomic<bool>>(false)),
      m_pReader(ReaderOf(m_pDocument, m_pAbort)) {}

SearchWalk::Slice SearchWalk::Run() {
    const auto end = std::chrono::steady_clock::now() + kSlice;
    PageSearch search(m_pattern);
    Slice slice;
    do {
        const std::int32_t n = m_nNext++;
        if (n >= m_nPages || IsCancelled()) {
            break;
        }
        slice.push_back(Look(n, search));
        if (!slice.back().hits.empty() && !m_bFound.exchange(true)) {
            break;
        }
    } while (std::chrono::steady_clock::now() < end);
    return IsCancelled() ? Slice() : slice;
}

SearchWalk::PageHits SearchWalk::Look(std::int32_t n, PageSearch& search) {
    PageHits page;
    page.nPage = PageAt(n);
    if (const auto pText = TextOf(page.nPage)) {
        page.hits = search.In(*pText);
        page.bHasText = !pText->IsEmpty();
    }
    page.nStartChar = n == 0 ? StartChar() : 0;
    return page;
}

std::shared_ptr<const PageText> SearchWalk::Read(std::int32_t nPage) {
    try {
        return m_pReader ? m_pReader->Read(nPage) : nullptr;
    } catch (const concurrency::task_canceled&) {
        return nullptr;
    } catch (...) {
        Platform::Debug::OutputDebugString("the text of page " + std::to_string(nPage) +
                                           " could not be searched\n");
        return nullptr;
    }
}

SearchTexts::Text SearchWalk::TextOf(std::int32_t nPage) {
    SearchTexts::Text pText = m_pTexts->Find(nPage);
    if (pText) {
        return pText;
    }
    if (const auto pRead = Read(nPage)) {
        pText = std::make_shared<const SearchText>(*pRead);
        m_pTexts->Keep(nPage, pText);
    }
    return pText;
}

// Of a page with nothing to read in sight it is the end.
std::int32_t SearchWalk::StartChar() {
    const auto pText = m_start.rcSeen ? Read(m_start.nPage) : nullptr;
    if (!pText) {
        return m_start.nChar;
    }
    const auto first =
        std::find_if(pText->chars.begin(), pText->chars.end(),
                     [this](const TextChar& item) { return IsWithin(*m_start.rcSeen, item); });
    return static_cast<std::int32_t>(first - pText->chars.begin());
}

}
