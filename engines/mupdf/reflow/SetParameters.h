// What a page's text is set for.
#pragma once

#include <cstdint>

namespace velko::engines::mupdf::reflow {

struct SetParameters {
    static constexpr std::int32_t kMostSide = 16'384; // pixels

    float fScreenWidth = 0.0F; // pixels
    float fScreenHeight = 0.0F;
    std::int32_t nPercent = 100;    // of the page's own sizes
    float fLineSpacing = 0.0F;      // between lines, points at 100 %
    float fParagraphSpacing = 0.0F; // between paragraphs, likewise
    bool bPictures = true;

    bool operator==(const SetParameters&) const = default;
};

// Brought within what can be read and drawn, so that parameters that set alike are
// equal; what is not a number becomes the least.
SetParameters Bounded(const SetParameters& parameters);

}
