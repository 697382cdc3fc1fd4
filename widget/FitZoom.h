// The zooms that fit a page, or the pages, into the view.
//
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <cstdint>

namespace velko::vkit {

class PDFViewCtrl;

// The scale for one of the zoom modes of viewers/core/Modes.h, at most the
// control's largest. A whole page is fitted by both of its sides, also a turned
// one. In a column a width is the one of the widest page that is known by now, so
// that no page on the way is wider than the window; all else is the current page's.
double FitZoom(PDFViewCtrl& control, std::int32_t nZoomMode);

}
