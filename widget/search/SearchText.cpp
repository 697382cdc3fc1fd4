#include "widget/search/SearchText.h"

#include <QList>

#include <algorithm>

namespace velko::vkit {

namespace {

void Append(std::u16string& units, char32_t nCode) {
    if (QChar::requiresSurrogates(nCode)) {
        units += QChar::highSurrogate(nCode);
        units += QChar::lowSurrogate(nCode);
    } else {
        units += static_cast<char16_t>(nCode);
    }
}

}

SearchText::SearchText(const velko::pdf::PageText& text) {
    m_units.reserve(text.chars.size());
    m_lines.reserve(text.lines.size());
    for (const velko::pdf::TextLine& line : text.lines) {
        for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
            Append(m_units, text.chars[static_cast<std::size_t>(i)].nCode);
        }
        m_lines.push_back({line.nEnd, m_units.size(), line.bHyphenated});
    }
}

SearchText::SearchText(const QString& strLine) {
    std::int32_t nChars = 0;
    for (const char32_t nCode : strLine.toUcs4()) {
        Append(m_units, nCode);
        ++nChars;
    }
    m_lines.push_back({nChars, m_units.size(), false});
}

bool SearchText::HasHyphenatedLines() const {
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [](const Line& line) { return line.bGoesOn; });
}

std::size_t SearchText::Bytes() const {
    return sizeof(*this) + m_units.capacity() * sizeof(char16_t) +
           m_lines.capacity() * sizeof(Line);
}

std::vector<SearchText::Line>::const_iterator SearchText::LineOf(std::int32_t nChar) const {
    return std::upper_bound(m_lines.begin(), m_lines.end(), nChar,
                            [](std::int32_t n, const Line& line) { return n < line.nEnd; });
}

std::size_t SearchText::StartOf(std::vector<Line>::const_iterator line) const {
    return line == m_lines.begin() ? 0 : std::prev(line)->nEndUnit;
}

std::size_t SearchText::UnitOf(std::int32_t nChar) const {
    const auto line = LineOf(nChar);
    std::size_t nUnit = StartOf(line);
    for (std::int32_t n = line == m_lines.begin() ? 0 : std::prev(line)->nEnd; n < nChar; ++n) {
        nUnit += nUnit < m_units.size() && QChar::isHighSurrogate(m_units[nUnit]) ? 2 : 1;
    }
    return std::min(nUnit, m_units.size());
}

SearchText::Excerpt SearchText::Around(std::int32_t nFirst, std::int32_t nEnd) const {
    constexpr std::size_t kMostBefore = 40; // of the line, in units
    constexpr std::size_t kMostAfter = 120;
    const std::size_t nHit = UnitOf(nFirst);
    const std::size_t nHitEnd = UnitOf(nEnd);
    auto line = LineOf(nFirst);
    const auto last = LineOf(nEnd - 1);
    Excerpt excerpt;
    if (last == m_lines.end() || nHit >= nHitEnd) {
        return excerpt;
    }
    std::size_t nStart = StartOf(line);
    if (nHit - nStart > kMostBefore) {
        nStart = nHit - kMostBefore;
        excerpt.strText = QStringLiteral("…");
    }
    const std::size_t nStop = std::min(last->nEndUnit, nHitEnd + kMostAfter);
    for (std::size_t i = nStart; i < nStop; ++i) {
        for (; i >= line->nEndUnit; ++line) {
            excerpt.strText += line->bGoesOn ? QString() : QStringLiteral(" ");
        }
        if (i == nHit) {
            excerpt.nFirst = excerpt.strText.size();
        }
        excerpt.strText += QChar(m_units[i]);
        if (i + 1 == nHitEnd) {
            excerpt.nLength = excerpt.strText.size() - excerpt.nFirst;
        }
    }
    return excerpt;
}

}
