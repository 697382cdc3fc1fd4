// A page that a viewer has laid out: which one, how it is turned, and where it
// stands on the screen. All that queries and conversions need to know of it.
//
// Units: device pixels; quarter turns. Threads: the UI thread only.
#pragma once

#include <cstdint>

#include "viewers/core/Records.h"

namespace velko::vkit {

struct LaidOutPage {
    LaidOutPage(std::int32_t nPage, std::int32_t nTurn) : nPageIndex(nPage), m_nRotate(nTurn) {}

    const std::int32_t nPageIndex;
    const std::int32_t m_nRotate;
    Render_ScreenOffsetInfo screenRect;
};

}
