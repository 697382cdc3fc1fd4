// A small picture of a page of the document that a control shows.
//
//   const auto drawing = DrawPage(control, 0, {.largest = {96, 128}}, source.get_token());
//   const PagePicture picture = co_await drawing;
//
// It is drawn on the task pool beside the screen's renders: ask for it when those have
// ended, and cancel it when there are others, as it takes of the machine what they
// need. The rotation of the view is not in it.
#pragma once

#include <QImage>
#include <QSize>

#include "document/engine/ScanColors.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Task.h"
#include "widget/PageColors.h"

namespace velko::vkit {

class PDFViewCtrl;

struct PictureWish {
    QSize largest; // pixels
    PageColors colors = DayPageColors();
    velko::common::ScanColors eScanColors = velko::common::ScanColors::Turned;
    bool bAlsoProtected = false; // it stays in memory
    friend bool operator==(const PictureWish&, const PictureWish&) = default;
};

struct PagePicture {
    QImage image;            // opaque; null when the page cannot be drawn whole, or is protected
    bool bProtected = false; // not drawn, as the document is encrypted, whatever opens it
};

// In the page's own proportions, as large as there is room for. Threads: the UI thread.
// Cancelled by the token, and without a document; fails as the engine does.
concurrency::task<PagePicture> DrawPage(PDFViewCtrl& control, int nPage, const PictureWish& wish,
                                        concurrency::cancellation_token token);

}
