// What of a document is in sight, counted in pages, and where a scroll bar's handle
// stands for it.
//
// Pages count alike whatever their size, so that nothing needs to be known of pages that
// nobody has seen yet.
// Threads: UI thread only.
#pragma once

#include <optional>

namespace velko::vkit {

class PDFViewCtrl;

struct ScrollRange {
    double dbStart = 0.0;  // what lies before what is in sight
    double dbLength = 0.0; // what is in sight, above 0
    double dbTotal = 0.0;

    bool Fits() const { return dbLength >= dbTotal * (1.0 - 1e-6); }
    double LastStart() const { return dbTotal - dbLength; }
    friend bool operator==(const ScrollRange&, const ScrollRange&) = default;
};

// Down the document, in pages; empty without a document.
std::optional<ScrollRange> RangeDown(PDFViewCtrl& control);
// Across the page that is read, in its own widths.
std::optional<ScrollRange> RangeAcross(PDFViewCtrl& control);

// A handle on a track; any unit.
struct HandlePlace {
    double dbStart = 0.0;
    double dbLength = 0.0;
};
HandlePlace PlaceHandle(const ScrollRange& range, double dbTrack, double dbLeast);
// Where the range starts when the handle does there.
double StartFor(const ScrollRange& range, double dbTrack, double dbLeast, double dbHandle);

}
