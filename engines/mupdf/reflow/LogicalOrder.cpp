#include "engines/mupdf/reflow/LogicalOrder.h"

#include <algorithm>
#include <iterator>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

using Line = std::vector<PlacedCharacter>;

// A mark above a letter stands where the letter does: it goes where that goes.
void PlaceMarksOnLetters(Line& line) {
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (IsMark(line[i].nUnicode)) {
            line[i].fMiddle = line[i - 1].fMiddle;
        }
    }
}

// Left to right, a letter's marks to its left, so that they follow it when read.
void SortByPlace(Line& line) {
    PlaceMarksOnLetters(line);
    std::reverse(line.begin(), line.end());
    std::stable_sort(line.begin(), line.end(),
                     [](const auto& one, const auto& two) { return one.fMiddle < two.fMiddle; });
}

bool RunsRight(char32_t c) {
    return IsLeftToRight(c) || IsDigit(c);
}

// Where a stretch that runs against the line ends: it takes in what stands
// between two of its characters, but numbers apart are stretches of their own.
template <class Against>
Line::iterator EndOfStretch(Line::iterator it, Line::iterator end, Against&& fnAgainst) {
    auto itEnd = std::next(it);
    bool bSpace = false;
    bool bWord = IsLetter(it->nUnicode);
    for (auto itNext = itEnd; itNext != end; ++itNext) {
        const char32_t c = itNext->nUnicode;
        if (fnAgainst(c)) {
            if (bSpace && !(bWord && IsLetter(c))) {
                return itEnd;
            }
            bWord = bWord || IsLetter(c);
            itEnd = std::next(itNext);
            bSpace = false;
        } else if (IsRightToLeft(c) || RunsRight(c)) {
            return itEnd;
        } else {
            bSpace = bSpace || IsSpace(c);
        }
    }
    return itEnd;
}

template <class Against>
void ReverseStretches(Line& line, Against&& fnAgainst) {
    for (auto it = line.begin(); it != line.end();) {
        if (!fnAgainst(it->nUnicode)) {
            ++it;
            continue;
        }
        const auto itEnd = EndOfStretch(it, line.end(), fnAgainst);
        std::reverse(it, itEnd);
        it = itEnd;
    }
}

}

bool ToLogicalOrder(Line& line) {
    const auto nRight = std::count_if(line.begin(), line.end(),
                                      [](const auto& c) { return IsLeftToRight(c.nUnicode); });
    const auto nLeft = std::count_if(line.begin(), line.end(),
                                     [](const auto& c) { return IsRightToLeft(c.nUnicode); });
    if (nLeft == 0) {
        return false;
    }
    SortByPlace(line);
    if (nLeft > nRight) {
        std::reverse(line.begin(), line.end());
        ReverseStretches(line, &RunsRight);
    } else {
        ReverseStretches(line, &IsRightToLeft);
    }
    return nLeft > nRight;
}

}
