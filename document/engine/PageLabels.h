// The labels of a document's pages: what its author calls them, such as "iv" or "A-3".
//
// Threads: a value.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velko::pdf {

class PageLabels {
public:
    enum class Style { None, Decimal, UpperRoman, LowerRoman, UpperLetters, LowerLetters };

    // From its first page to the next run's.
    struct Run {
        std::int32_t nFirstPage = 0;
        Style eStyle = Style::None;
        std::string strPrefix;         // UTF-8
        std::int32_t nFirstNumber = 1; // above 0
    };

    PageLabels() = default; // of a document without labels

    // The runs in any order; of several with the same first page the last one counts.
    explicit PageLabels(std::vector<Run> runs);

    // Whether any page has a label that is not just its number.
    bool SayMoreThanNumbers() const { return m_bSpeaks; }

    // Pages that no run covers are called by their number.
    std::string LabelOf(std::int32_t nPageIndex) const;

    // The first of `nPages` pages that is called so, in letters of any case.
    std::optional<std::int32_t> Find(const std::string& strLabel, std::int32_t nPages) const;

private:
    std::vector<Run> m_runs; // by their first page
    bool m_bSpeaks = false;
};

}
