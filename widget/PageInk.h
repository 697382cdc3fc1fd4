// How much of the pages on the screen is rendered.
//
// Threads: UI thread only.
#pragma once

namespace velko::vkit {

class PDFViewCtrl;

struct PageInk {
    bool bSome = false; // a part of a page shows rendered pixels
    bool bAll = false;  // every part on the screen does, at its final scale
};

// Nothing of both without a document on the screen.
PageInk InkOf(PDFViewCtrl& control);

}
