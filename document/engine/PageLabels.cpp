#include "document/engine/PageLabels.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <string_view>
#include <utility>

namespace velko::pdf {

namespace {

// A number so large that its letters would fill a line is written in digits.
constexpr std::int32_t kMostRoman = 9'999;
constexpr std::int32_t kMostLetters = 26 * 20;

std::string Roman(std::int32_t nNumber) {
    constexpr std::array<std::pair<std::int32_t, const char*>, 13> kSigns = {{{1000, "m"},
                                                                              {900, "cm"},
                                                                              {500, "d"},
                                                                              {400, "cd"},
                                                                              {100, "c"},
                                                                              {90, "xc"},
                                                                              {50, "l"},
                                                                              {40, "xl"},
                                                                              {10, "x"},
                                                                              {9, "ix"},
                                                                              {5, "v"},
                                                                              {4, "iv"},
                                                                              {1, "i"}}};
    std::string strText;
    for (const auto& [nValue, szSign] : kSigns) {
        for (; nNumber >= nValue; nNumber -= nValue) {
            strText += szSign;
        }
    }
    return strText;
}

// a to z, then aa to zz, then aaa, as the format counts (ISO 32000-1, 12.4.2).
std::string Letters(std::int32_t nNumber) {
    const auto nTimes = static_cast<std::size_t>((nNumber - 1) / 26 + 1);
    return std::string(nTimes, static_cast<char>('a' + (nNumber - 1) % 26));
}

std::string Upper(std::string strText) {
    std::transform(strText.begin(), strText.end(), strText.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return strText;
}

std::string Numeral(PageLabels::Style eStyle, std::int32_t nNumber) {
    using Style = PageLabels::Style;
    const bool bRoman = eStyle == Style::UpperRoman || eStyle == Style::LowerRoman;
    const bool bLetters = eStyle == Style::UpperLetters || eStyle == Style::LowerLetters;
    if (eStyle == Style::None) {
        return {};
    }
    if ((bRoman && nNumber <= kMostRoman) || (bLetters && nNumber <= kMostLetters)) {
        const std::string strText = bRoman ? Roman(nNumber) : Letters(nNumber);
        return eStyle == Style::UpperRoman || eStyle == Style::UpperLetters ? Upper(strText)
                                                                            : strText;
    }
    return std::to_string(nNumber);
}

}

PageLabels::PageLabels(std::vector<Run> runs) : m_runs(std::move(runs)) {
    std::stable_sort(m_runs.begin(), m_runs.end(), [](const Run& one, const Run& other) {
        return one.nFirstPage < other.nFirstPage;
    });
    m_bSpeaks = std::any_of(m_runs.begin(), m_runs.end(), [](const Run& run) {
        return run.eStyle != Style::Decimal || !run.strPrefix.empty() ||
               run.nFirstNumber != run.nFirstPage + 1;
    });
}

std::string PageLabels::LabelOf(std::int32_t nPageIndex) const {
    const auto after =
        std::upper_bound(m_runs.begin(), m_runs.end(), nPageIndex,
                         [](std::int32_t nPage, const Run& run) { return nPage < run.nFirstPage; });
    if (after == m_runs.begin()) {
        return std::to_string(nPageIndex + 1);
    }
    const Run& run = *std::prev(after);
    const std::int64_t nNumber = std::int64_t{run.nFirstNumber} + (nPageIndex - run.nFirstPage);
    return run.strPrefix + Numeral(run.eStyle, static_cast<std::int32_t>(
                                                   std::min<std::int64_t>(nNumber, INT32_MAX)));
}

std::optional<std::int32_t> PageLabels::Find(const std::string& strLabel,
                                             std::int32_t nPages) const {
    const std::string strWanted = Upper(strLabel);
    for (std::int32_t nPage = 0; nPage < nPages; ++nPage) {
        if (Upper(LabelOf(nPage)) == strWanted) {
            return nPage;
        }
    }
    return std::nullopt;
}

}
