// What a page of the scripted engine looks like, and what it answers.
#pragma once

#include <cstdint>
#include <vector>

#include "document/engine/Geometry.h"

namespace velko::testing {

// Filled rectangles, in page space, with 0xAARRGGBB colours that are opaque.
struct ScriptedRect {
    common::vxbase::RectF rcArea;
    std::uint32_t nColor = 0xFF000000U;
};

struct ScriptedAnnot {
    std::int32_t nType = 1; // 0: the list has an entry that is no annotation
    common::vxbase::RectF rcArea;
    std::uint32_t nColor = 0xFFFF0000U;
};

struct ScriptedPage {
    enum class Paper {
        Pattern, // every pixel tells page and position, see `PatternColor`
        Solid,   // `nColor` all over the page
        None,    // only what `rects` draws; the bitmap's own colour shines through
    };

    // The page box in page space: its size is the size before rotation.
    common::vxbase::RectF rcBox = {0.0F, 0.0F, 612.0F, 792.0F};
    std::int32_t nRotation = 0; // of the file, quarter turns clockwise
    Paper ePaper = Paper::Pattern;
    std::uint32_t nColor = 0xFFFFFFFFU;
    std::vector<ScriptedRect> rects;
    std::vector<ScriptedAnnot> annots;

    // Set anew it is as wide as it shall be, and this high at 100 %; pictures add
    // to it where they are shown.
    std::int32_t nTextHeight = 400;
    std::int32_t nPictureHeight = 0;

    // How often `Continue` answers "to be continued" before the page is parsed;
    // 0: `StartParse` parses at once.
    std::int32_t nParseSteps = 0;
};

// A page without rotation of that size, its origin at (0, 0).
ScriptedPage MakePage(float fWidth, float fHeight, std::int32_t nRotation = 0);

// `nPages` pages of that size.
std::vector<ScriptedPage> MakePages(int nPages, float fWidth = 612.0F, float fHeight = 792.0F);

// The colour of pattern paper at a point of page space: constant within
// squares of 8 by 8 points whose corners lie at multiples of 8; neighbours
// differ, and so do pages.
std::uint32_t PatternColor(std::int32_t nPage, common::vxbase::PointF ptPage);

// What `nColor` becomes in the mapped colour mode of the scripted engine.
std::uint32_t MapColor(std::uint32_t nColor, std::uint32_t nBackColor, std::uint32_t nForeColor);

}
