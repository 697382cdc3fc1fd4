#include "widget/edit/MarkDrag.h"

#include <algorithm>

namespace velko::vkit {

using velko::pdf::PageText;

void MarkDrag::Begin(const PagePoint& point) {
    m_start = point;
    m_end = point;
    m_bWord = false;
}

void MarkDrag::BeginWord(const PagePoint& point) {
    Begin(point);
    m_bWord = true;
}

// Of a page without text its start; empty while that is read.
std::optional<TextPlace> MarkDrag::PlaceOf(const PagePoint& point) const {
    const auto pText = m_texts.TextOf(point.nPage);
    if (!pText) {
        return std::nullopt;
    }
    return TextPlace{point.nPage, CharPlaceAt(*pText, point.pt).value_or(0)};
}

CharRange MarkDrag::RangeOf(std::int32_t nPage, const PageText& text) const {
    const auto start = PlaceOf(*m_start);
    const auto end = PlaceOf(m_end);
    if (!start || !end) {
        return {};
    }
    if (m_bWord) {
        const auto at = CharAt(text, m_start->pt);
        return at && IsOverText(text, m_start->pt) ? WordAt(text, *at) : CharRange();
    }
    return RangeOn(nPage, static_cast<std::int32_t>(text.chars.size()), *start, *end);
}

MarkDrag::Marks MarkDrag::Find() const {
    Marks marks;
    if (!m_start) {
        return marks;
    }
    const auto [nFirst, nLast] = std::minmax({m_start->nPage, m_end.nPage});
    for (std::int32_t nPage = nFirst; nPage <= nLast; ++nPage) {
        const auto pText = m_texts.TextOf(nPage);
        if (!pText) {
            marks.bComplete = false;
            continue;
        }
        marks.bText = marks.bText || !pText->chars.empty();
        Quads quads = QuadsOf(*pText, RangeOf(nPage, *pText));
        if (!quads.empty()) {
            marks.pages[nPage] = std::move(quads);
        }
    }
    return marks;
}

}
