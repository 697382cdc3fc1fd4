// A small picture of a page of the document that a control shows.
//
//   const auto drawing = DrawPage(control, 0, {96, 128}, source.get_token());
//   const PagePicture picture = co_await drawing;
//
// It is drawn on the task pool beside the screen's renders: ask for it when those have
// ended, and cancel it when there are others, as it takes of the machine what they
// need. Neither the reader's colours nor the rotation of the view are in it.
#pragma once

#include <QImage>
#include <QSize>

#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Task.h"

namespace velko::vkit {

class PDFViewCtrl;

struct PagePicture {
    QImage image;            // opaque; null when the page cannot be drawn whole, or is protected
    bool bProtected = false; // the document is encrypted, whatever it takes to open it
};

// In the page's own proportions, as large as `largest` (pixels) has room for. Threads:
// the UI thread. Cancelled by the token, and without a document; fails as the engine does.
concurrency::task<PagePicture> DrawPage(PDFViewCtrl& control, int nPage, QSize largest,
                                        concurrency::cancellation_token token);

}
