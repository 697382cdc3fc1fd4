#include "widget/search/SearchPattern.h"

#include <QChar>
#include <algorithm>
#include <utility>

namespace velko::vkit {

namespace {

std::vector<std::size_t> BordersOf(const std::u16string& units) {
    std::vector<std::size_t> borders(units.size() + 1, 0);
    std::size_t nBorder = 0;
    for (std::size_t i = 1; i < units.size(); ++i) {
        while (nBorder > 0 && units[i] != units[nBorder]) {
            nBorder = borders[nBorder];
        }
        nBorder += units[i] == units[nBorder] ? 1 : 0;
        borders[i + 1] = nBorder;
    }
    return borders;
}

bool IsOfWord(char16_t unit) {
    const QChar c(unit);
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c == u'_';
}

// Whether a word goes on from one to the other.
bool IsWithinWord(char16_t one, char16_t other) {
    return IsOfWord(one) && IsOfWord(other) && !IsWithoutSpaces(one) && !IsWithoutSpaces(other);
}

// Those of both in order; where two overlap, the one that begins first.
std::vector<CharRange> Merged(const std::vector<CharRange>& one,
                              const std::vector<CharRange>& other) {
    std::vector<CharRange> sorted(one.size() + other.size());
    std::merge(one.begin(), one.end(), other.begin(), other.end(), sorted.begin(),
               [](CharRange a, CharRange b) { return a.nFirst < b.nFirst; });
    std::vector<CharRange> merged;
    for (const CharRange range : sorted) {
        if (merged.empty() || range.nFirst >= merged.back().nEnd) {
            merged.push_back(range);
        }
    }
    return merged;
}

}

SearchPattern::SearchPattern(const QString& strText, const SearchOptions& options)
    : m_options(options) {
    FoldedText folded;
    Folding(options).Fold(SearchText(strText.normalized(QString::NormalizationForm_C)),
                          LineHyphens::Stay, folded);
    m_units = std::move(folded.units);
    m_borders = BordersOf(m_units);
}

PageSearch::PageSearch(SearchPattern pattern)
    : m_pattern(std::move(pattern)),
      m_bHasHyphen(m_pattern.Units().find(u'-') != std::u16string::npos),
      m_folding(m_pattern.Options()) {}

std::vector<CharRange> PageSearch::In(const SearchText& text) {
    std::vector<CharRange> hits;
    if (m_pattern.IsEmpty()) {
        return hits;
    }
    m_folding.Fold(text, LineHyphens::GoAway, m_folded);
    Collect(hits);
    if (m_bHasHyphen && text.HasHyphenatedLines()) {
        std::vector<CharRange> withHyphens;
        m_folding.Fold(text, LineHyphens::Stay, m_folded);
        Collect(withHyphens);
        hits = Merged(hits, withHyphens);
    }
    return hits;
}

// Nothing of the text is looked at twice: after a mismatch the search goes on with what
// of the pattern has been read already.
void PageSearch::Collect(std::vector<CharRange>& hits) const {
    const std::u16string& pattern = m_pattern.Units();
    std::size_t nRead = 0; // units of the pattern
    for (std::size_t i = 0; i < m_folded.units.size(); ++i) {
        while (nRead > 0 && (nRead == pattern.size() || m_folded.units[i] != pattern[nRead])) {
            nRead = m_pattern.Borders()[nRead];
        }
        nRead += m_folded.units[i] == pattern[nRead] ? 1 : 0;
        const std::size_t nStart = i + 1 - nRead;
        if (nRead == pattern.size() && IsHit(nStart, i + 1)) {
            const CharRange hit{m_folded.chars[nStart], m_folded.chars[i] + 1};
            if (hits.empty() || hit.nFirst >= hits.back().nEnd) {
                hits.push_back(hit);
                nRead = 0;
            }
        }
    }
}

// A letter is not found without the accent that it has, where accents count.
bool PageSearch::IsHit(std::size_t nStart, std::size_t nEnd) const {
    const std::u16string& units = m_folded.units;
    if (nEnd < units.size() && IsAccentMark(units[nEnd])) {
        return false;
    }
    if (!m_pattern.Options().bWholeWords) {
        return true;
    }
    return (nStart == 0 || !IsWithinWord(units[nStart - 1], units[nStart])) &&
           (nEnd == units.size() || !IsWithinWord(units[nEnd - 1], units[nEnd]));
}

}
