// What a viewer shows at this moment, in numbers; for the control, tools and tests.
//
// Units: device pixels. Threads: the UI thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "viewers/core/Records.h"

namespace velko::vkit {

struct BlockState {
    std::int32_t nBlockId = 0;
    Render_ScreenOffsetInfo screenRect;
    bool bIsDisplay = false;
    bool bIsRendering = false;
    bool bHasBitmap = false;
    bool bIsSharp = false;         // the bitmap is of this scale and this state of the page
    PageShare share;               // of its page
    std::int32_t nBitmapWidth = 0; // 0 without a bitmap
    std::int32_t nBitmapHeight = 0;
};

struct PageItemState {
    std::int32_t nPageIndex = 0;
    Render_ScreenOffsetInfo screenRect;
    double dbScale = 0.0;
    std::int32_t nRotate = 0;
    Render_PageDavidBlock grid;
    std::vector<BlockState> blocks;  // row by row
    std::vector<PageShare> standIns; // what lies under blocks without a bitmap
};

struct ViewerState {
    std::vector<PageItemState> items; // in list order
    std::uint32_t nScaleCacheEntries = 0;
    std::size_t nStandIns = 0;  // of all pages, also of those that are not laid out
    std::size_t nOverviews = 0; // beside them
    bool bShowScaleSnapshot = false;
};

// What is rendered of pages that are laid out.
struct PageInk {
    bool bSome = false; // something of their contents shows, be it blurred
    bool bAll = false;  // all in sight is rendered for its place
};

class IViewerInspection {
public:
    virtual ~IViewerInspection() = default;
    virtual ViewerState Inspect() const = 0; // empty after disposal

    // Of all pages, or of one; neither for one that is not laid out. Nothing is
    // allocated: hosts ask within each frame.
    virtual PageInk Ink() const = 0;
    virtual PageInk InkOf(std::int32_t nPageIndex) const = 0;
};

}
