// What becomes of scans where the colours of pages are mapped.
#pragma once

#include <cstdint>

namespace velko::common {

// A scan is a page that a picture covers all over, or nearly, bright as paper is, and
// on which no text shows; invisible text, for searching, does not count.
enum class ScanColors : std::int32_t {
    Turned = 0, // mapped as paper and ink are
    Dimmed = 1, // its own colours, no brighter than the mapped ones
    Left = 2    // its own colours, as of any picture
};

// Of a number that was kept; another one is as if none were.
constexpr ScanColors ToScanColors(std::int32_t nKept) {
    const auto eKept = static_cast<ScanColors>(nKept);
    return eKept == ScanColors::Dimmed || eKept == ScanColors::Left ? eKept : ScanColors::Turned;
}

}
