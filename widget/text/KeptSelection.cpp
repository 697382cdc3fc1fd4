#include "widget/text/KeptSelection.h"

#include <algorithm>

namespace velko::vkit {

namespace {

constexpr std::int32_t kAround = 24; // characters at each side

}

KeptSelection::KeptSelection(ViewSelection& selection, PageTexts& texts)
    : m_selection(selection), m_texts(texts) {
    connect(&m_texts, &PageTexts::Read, this, [this] {
        if (m_bWaits) {
            Try();
        }
    });
}

// Empty while the page's text is read.
std::optional<std::u32string> KeptSelection::TextAround(TextPlace place) {
    const auto pText = m_texts.OwnTextOf(place.nPage);
    if (!pText) {
        return std::nullopt;
    }
    const auto nChars = static_cast<std::int32_t>(pText->chars.size());
    const std::int32_t nPlace = std::clamp(place.nChar, 0, nChars);
    std::u32string strText;
    for (std::int32_t n = std::max(0, nPlace - kAround); n < std::min(nChars, nPlace + kAround);
         ++n) {
        strText += pText->chars[static_cast<std::size_t>(n)].nCode;
    }
    return strText;
}

void KeptSelection::Take() {
    m_bWaits = false;
    m_kept.reset();
    if (m_selection.IsEmpty()) {
        return;
    }
    const auto places = m_selection.Now();
    const auto strAnchor = TextAround(places.anchor);
    const auto strHead = TextAround(places.head);
    if (strAnchor && strHead) {
        m_kept = Kept{places, *strAnchor, *strHead};
    }
}

void KeptSelection::BringBack(std::int32_t nPagesMoved) {
    m_nPagesMoved = nPagesMoved;
    m_bWaits = m_kept.has_value();
    if (m_bWaits) {
        Try();
    }
}

// Unless the reader has selected something else by then.
void KeptSelection::Try() {
    std::optional<bool> done = m_nPagesMoved != 0 ? TryMoved(m_nPagesMoved) : false;
    if (done == false) {
        done = TryMoved(0);
    }
    if (done) {
        m_bWaits = false;
        m_kept.reset();
    }
}

// Whether it is there; empty while that is not known.
std::optional<bool> KeptSelection::TryMoved(std::int32_t nPages) {
    ViewSelection::Places places = m_kept->places;
    places.anchor.nPage += nPages;
    places.head.nPage += nPages;
    if (std::min(places.anchor.nPage, places.head.nPage) < 0) {
        return false;
    }
    const auto strAnchor = TextAround(places.anchor);
    const auto strHead = TextAround(places.head);
    if (!strAnchor || !strHead) {
        return std::nullopt;
    }
    const bool bSame = *strAnchor == m_kept->strAnchor && *strHead == m_kept->strHead;
    if (bSame && m_selection.IsEmpty()) {
        m_selection.Restore(places);
    }
    return bSame;
}

}
