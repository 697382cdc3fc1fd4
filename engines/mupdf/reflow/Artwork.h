// The parts of a page that are pictures and drawings, not text.
//
// Marks are the boxes of what the page draws. Those that touch or nearly touch
// belong together: the strips of a scan, the bars of a chart.
//
// Threads: one at a time.
// Units: the page's, Y down.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <vector>

namespace velko::engines::mupdf::reflow {

struct ArtworkMark {
    fz_rect rc = fz_empty_rect;
    bool bPicture = false; // a sampled image; else lines and areas
};

struct ArtworkRegion {
    fz_rect rc = fz_empty_rect;
    std::size_t nMarks = 0;
    bool bPicture = false; // holds one
};

// `bHasText`: what covers most of the page is then the ground that the text
// stands on, and left out.
std::vector<ArtworkRegion> FindRegions(const std::vector<ArtworkMark>& marks, const fz_rect& rcPage,
                                       bool bHasText);

}
