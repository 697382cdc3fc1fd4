// From points on a page to the text between them, and to the places of that text.
//
// Threads: pure functions. Units: page space, points; indexes of `PageText::chars`.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "document/engine/PageText.h"

namespace velko::vkit {

// Characters of a page, the end excluded.
struct CharRange {
    std::int32_t nFirst = 0;
    std::int32_t nEnd = 0;

    bool IsEmpty() const { return nFirst >= nEnd; }
    friend bool operator==(const CharRange&, const CharRange&) = default;
};

// A place between two characters: before the one of that index.
struct TextPlace {
    std::int32_t nPage = 0;
    std::int32_t nChar = 0;
    // NOLINTNEXTLINE(modernize-use-nullptr): it has none
    friend auto operator<=>(const TextPlace&, const TextPlace&) = default;
};

// The place that is nearest to a point: of the line that the reader means, which beside
// a column is the one at that height of it. Empty for a page without text.
std::optional<std::int32_t> CharPlaceAt(const velko::pdf::PageText& text,
                                        velko::common::vxbase::PointF pt);
// The nearest one of that line.
std::int32_t CharPlaceIn(const velko::pdf::PageText& text, std::int32_t nLine,
                         velko::common::vxbase::PointF pt);
// The character that is nearest. Empty for a page without text.
std::optional<std::int32_t> CharAt(const velko::pdf::PageText& text,
                                   velko::common::vxbase::PointF pt);

// The line that the reader means by a point; -1 for a page without text.
std::int32_t LineAt(const velko::pdf::PageText& text, velko::common::vxbase::PointF pt);
// The line that the character is of; -1 for none.
std::int32_t LineOfChar(const velko::pdf::PageText& text, std::int32_t nChar);

// Whether a character stands at the point, or as near as a pointer aims.
bool IsOverText(const velko::pdf::PageText& text, velko::common::vxbase::PointF pt);

// The word, or the sign, that the character is of, within its line.
CharRange WordAt(const velko::pdf::PageText& text, std::int32_t nChar);

// What of a page lies between two places, whichever comes first; `nChars` are the page's.
CharRange RangeOn(std::int32_t nPage, std::int32_t nChars, TextPlace one, TextPlace other);

// A quad for each stretch of a line without a gap to the eye, spaces at its ends left out.
std::vector<velko::pdf::TextQuad> QuadsOf(const velko::pdf::PageText& text, CharRange range);

}
