#include "widget/places/SnippetFinder.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "document/engine/PDFDoc.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::pdf::ITextReader;
using velko::pdf::ITextSource;
using velko::pdf::PageText;
using velko::pdf::PDFDoc;

namespace {

constexpr std::chrono::milliseconds kSlice(8);
constexpr std::size_t kMostBytes = std::size_t{4} << 20;
constexpr std::size_t kShortestHalf = 12; // folded letters; less stands anywhere

std::shared_ptr<ITextReader> ReaderOf(const std::shared_ptr<PDFDoc>& pDocument,
                                      const ITextSource::AbortFlag& pAbort) {
    try {
        const auto pSource = std::dynamic_pointer_cast<ITextSource>(pDocument);
        return pSource ? pSource->NewReader(pAbort) : nullptr;
    } catch (...) { // it has gone
        return nullptr;
    }
}

PointF PointOf(double dbX, double dbY) {
    return {static_cast<float>(dbX), static_cast<float>(dbY)};
}

PointF StartOf(const PageText& text, CharRange range) {
    return text.chars[static_cast<std::size_t>(range.nFirst)].quad.ptTopLeft;
}

}

struct SnippetFinder::Piece {
    Piece(const std::string& strText, PointF pt)
        : pattern(QString::fromStdString(strText), {}), search(pattern), ptThen(pt) {}

    const SearchPattern pattern;
    PageSearch search;
    const PointF ptThen;
    std::optional<FoundPlace> found; // on the nearest page
};

SnippetFinder::SnippetFinder(std::shared_ptr<PDFDoc> pDocument, std::vector<SoughtPlace> sought,
                             AbortFlag pAbort, const Limits& limits)
    : m_pDocument(std::move(pDocument)),
      m_sought(std::move(sought)),
      m_pAbort(std::move(pAbort)),
      m_nMostPages(limits.nMostPages),
      m_deadline(Clock::now() + limits.longest),
      m_nPages(m_pDocument ? m_pDocument->GetPageCount() : 0),
      m_pReader(ReaderOf(m_pDocument, m_pAbort)),
      m_texts(kMostBytes) {}

SnippetFinder::~SnippetFinder() = default;

bool SnippetFinder::Run() {
    const auto end = Clock::now() + kSlice;
    while (m_found.size() < m_sought.size()) {
        if (m_pAbort->load(std::memory_order_acquire) || !m_pReader) {
            m_found.resize(m_sought.size());
            break;
        }
        if (m_sought[m_found.size()].snippet.IsEmpty()) {
            m_found.emplace_back();
            continue;
        }
        if (m_pieces.empty()) {
            Begin();
        }
        const auto nPage = Clock::now() < m_deadline ? NextPage() : std::nullopt;
        if (!nPage || LookAt(*nPage)) {
            End();
        }
        if (Clock::now() >= end) {
            break;
        }
    }
    return m_found.size() < m_sought.size();
}

void SnippetFinder::Begin() {
    const PlaceSnippet& snippet = m_sought[m_found.size()].snippet;
    const auto nHalf = static_cast<std::size_t>(snippet.nHalf);
    const PointF ptStart = PointOf(snippet.dbX, snippet.dbY);
    m_pieces.push_back(std::make_unique<Piece>(snippet.strText, ptStart));
    if (nHalf > 0) {
        m_pieces.push_back(std::make_unique<Piece>(snippet.strText.substr(0, nHalf), ptStart));
        m_pieces.push_back(std::make_unique<Piece>(snippet.strText.substr(nHalf),
                                                   PointOf(snippet.dbHalfX, snippet.dbHalfY)));
    }
    const auto fnLength = [](const auto& pPiece) { return pPiece->pattern.Units().size(); };
    m_pieces.erase(
        std::remove_if(m_pieces.begin() + 1, m_pieces.end(),
                       [&](const auto& pPiece) { return fnLength(pPiece) < kShortestHalf; }),
        m_pieces.end());
    std::stable_sort(m_pieces.begin(), m_pieces.end(), [&](const auto& one, const auto& other) {
        return fnLength(one) > fnLength(other);
    });
    m_nStep = 0;
    m_nLookedAt = 0;
}

void SnippetFinder::End() {
    const auto best = std::find_if(m_pieces.begin(), m_pieces.end(),
                                   [](const auto& pPiece) { return pPiece->found.has_value(); });
    m_found.push_back(best != m_pieces.end() ? (*best)->found : std::nullopt);
    m_pieces.clear();
}

// Of two pages as near the later one first: more is put into documents than taken out.
std::optional<std::int32_t> SnippetFinder::NextPage() {
    const std::int32_t nStart =
        std::clamp(m_sought[m_found.size()].nPage, 0, std::max(0, m_nPages - 1));
    while (m_nLookedAt < std::min(m_nPages, m_nMostPages)) {
        const std::int32_t nAway = (m_nStep + 1) / 2;
        const std::int32_t nPage = m_nStep % 2 == 1 ? nStart + nAway : nStart - nAway;
        ++m_nStep;
        if (nPage >= 0 && nPage < m_nPages) {
            ++m_nLookedAt;
            return nPage;
        }
    }
    return std::nullopt;
}

// Whether all of the words stand there.
bool SnippetFinder::LookAt(std::int32_t nPage) {
    const auto pText = TextOf(nPage);
    if (!pText || pText->IsEmpty()) {
        return false;
    }
    for (const auto& pPiece : m_pieces) {
        if (!pPiece->found && LookFor(*pPiece, nPage, *pText) && pPiece == m_pieces.front()) {
            return true;
        }
    }
    return false;
}

// Of several on the page the one that stands nearest to where it stood.
bool SnippetFinder::LookFor(Piece& piece, std::int32_t nPage, const SearchText& text) {
    const std::vector<CharRange> hits = piece.search.In(text);
    const TextPtr pPlaces = hits.empty() ? nullptr : Read(nPage);
    if (!pPlaces) {
        return false;
    }
    const auto fnAway = [&](CharRange hit) {
        const PointF pt = StartOf(*pPlaces, hit);
        return std::hypot(pt.X - piece.ptThen.X, pt.Y - piece.ptThen.Y);
    };
    const auto nearest = std::min_element(
        hits.begin(), hits.end(),
        [&](CharRange one, CharRange other) { return fnAway(one) < fnAway(other); });
    piece.found = FoundPlace{nPage, piece.ptThen, StartOf(*pPlaces, *nearest)};
    return true;
}

SnippetFinder::TextPtr SnippetFinder::Read(std::int32_t nPage) {
    try {
        return m_pReader->Read(nPage);
    } catch (...) { // given up, or a page that cannot be read
        return nullptr;
    }
}

SearchTexts::Text SnippetFinder::TextOf(std::int32_t nPage) {
    SearchTexts::Text pText = m_texts.Find(nPage);
    if (!pText) {
        const TextPtr pRead = Read(nPage);
        pText = pRead ? std::make_shared<const SearchText>(*pRead) : nullptr;
        if (pText) {
            m_texts.Keep(nPage, pText);
        }
    }
    return pText;
}

}
