// What is searched for, and the places of a page where it stands.
//
//   const SearchPattern pattern("naïve fish", {});
//   PageSearch search(pattern);
//   for (const CharRange hit : search.In(SearchText(*pText))) ...
//
// A text without anything to search for, such as spaces, is found nowhere. What goes on
// over the end of a page is not found: between two pages stand their headers and notes.
// Threads: a pattern is a value; a `PageSearch` is used by one at a time.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "widget/search/Folding.h"
#include "widget/text/TextRange.h"

namespace velko::vkit {

class SearchPattern {
public:
    SearchPattern() = default; // empty
    SearchPattern(const QString& strText, const SearchOptions& options);

    bool IsEmpty() const { return m_units.empty(); }
    const std::u16string& Units() const { return m_units; } // folded
    const SearchOptions& Options() const { return m_options; }

    // For each length of its beginning, how long a beginning of the pattern that
    // beginning ends with, itself excluded.
    const std::vector<std::size_t>& Borders() const { return m_borders; }

private:
    std::u16string m_units;
    SearchOptions m_options;
    std::vector<std::size_t> m_borders;
};

class PageSearch {
public:
    explicit PageSearch(SearchPattern pattern);

    // In order, without overlaps. The time it takes grows with the text alone, whatever
    // is searched for in it.
    std::vector<CharRange> In(const SearchText& text);

private:
    void Collect(std::vector<CharRange>& hits) const;
    bool IsHit(std::size_t nStart, std::size_t nEnd) const; // units of `m_folded`

    const SearchPattern m_pattern;
    const bool m_bHasHyphen;
    Folding m_folding;
    FoldedText m_folded; // of the page at hand
};

}
