// The value records in which viewers and the control exchange positions.
//
// Spaces: device space is pixels of the swap chain, origin at the canvas's top
// left, Y down; logical space is device space divided by the composition
// scale; page space is the file's user space in points, Y up; block space is
// device pixels from a block's top left.
// Threads: a record is written by one thread and then only read.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/foundation/Geometry.h"

namespace velko::vkit {

class PDFViewCanvas;

// Where a page item or a block lies on the screen; device space.
struct Render_ScreenOffsetInfo {
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    double dbOffsetY = 0.0; // of the top edge; may lie off the screen
    double dbOffsetX = 0.0; // of the left edge
};

// The screen rectangle of one page, as a copy for callers.
struct Render_PageScreenOffsetInfo {
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    double dbOffsetY = 0.0;
    double dbOffsetX = 0.0;
};

// How a bitmap relates to the whole page; device pixels.
struct Render_PDFPageOffsetInfo {
    std::int32_t nPageWidth = 0;
    std::int32_t nPageHeight = 0;
    std::int32_t nOffsetY = 0; // of the page's origin relative to the bitmap; <= 0
    std::int32_t nOffsetX = 0;
};

// A part of a page, as shares of the page's sides as it lies on the screen.
struct PageShare {
    double dbLeft = 0.0;
    double dbTop = 0.0;
    double dbWidth = 0.0;
    double dbHeight = 0.0;

    double Area() const { return dbWidth * dbHeight; }
    bool Contains(const PageShare& other) const {
        constexpr double kRounding = 1e-9;
        return other.dbLeft >= dbLeft - kRounding && other.dbTop >= dbTop - kRounding &&
               other.dbLeft + other.dbWidth <= dbLeft + dbWidth + kRounding &&
               other.dbTop + other.dbHeight <= dbTop + dbHeight + kRounding;
    }
};

// The grid into which a page is divided; both at least 1 once it is computed.
struct Render_PageDavidBlock {
    std::int32_t nRows = 0;
    std::int32_t nCols = 0;
    friend bool operator==(const Render_PageDavidBlock&, const Render_PageDavidBlock&) = default;
};

// What a point of the screen lies on.
struct PDFPagePoint {
    std::int32_t nPageIndex = 0;
    Windows::Foundation::Point pt; // page space on a page, else the device point
};

struct WrapperDevicePoint {
    bool bIsValid = false; // the page is laid out now
    std::int32_t nPageIndex = 0;
    Windows::Foundation::Point pt; // logical; (0, 0) when not valid
};

struct WrapperDeviceRect {
    bool bIsValid = false;
    std::int32_t nPageIndex = 0;
    Windows::Foundation::Rect rc = Windows::Foundation::Rect::Empty();
    std::shared_ptr<Render_PageScreenOffsetInfo> pPageScreenOffset; // zeros when not valid
};

// Where the first laid-out page stands; device space.
struct PagePosition {
    double dbOffsetX = 0.0;
    double dbOffsetY = 0.0;
    std::int32_t nPageIndex = 0;
};

// One move of the layout; lives for one layout step.
struct PDFRenderTask {
    double dbOffsetY = 0.0; // device pixels; positive moves the content up
    double dbOffsetX = 0.0; // positive moves the content left
    double dbScale = 1.0;   // for pages laid out anew
    std::int32_t nRotate = 0;
};

// Given to the host after a page was drawn, to paint over it.
class RenderCanvasEventArgs {
public:
    RenderCanvasEventArgs(std::shared_ptr<PDFViewCanvas> pCanvas, std::int32_t nPage,
                          std::int32_t nTurn)
        : Canvas(std::move(pCanvas)), nPageIndex(nPage), nRotate(nTurn) {}

    std::shared_ptr<PDFViewCanvas> Canvas;
    std::int32_t nPageIndex;
    std::int32_t nRotate;
};

}
