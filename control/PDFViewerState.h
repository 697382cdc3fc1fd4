// One reading of a document's saved view.
//
// Threads: a value. Units: offsets in device pixels.
#pragma once

#include <cstdint>

namespace velko::vkit {

struct PDFViewerState {
    std::int32_t ViewState = 1; // layout mode; 0 is shown as single page
    std::int32_t CurrentPageIndex = 0;
    double Scale = 1.0;
    std::int32_t Rotate = 0; // kept for the host; not brought back
    double OffsetX = 0.0;
    double OffsetY = 0.0;
    bool IsSDToLocalFile = false;
    double ReflowScale = 2.5;
    bool IsReflowShowPicture = true;
};

}
