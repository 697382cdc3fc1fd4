// A page's text set anew for a width, measured; and what a render of a band of
// it needs.
//
// Units: pixels of the set text, its first at the top left. Threads: values; the
// engine's object is used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "document/RenderBlockRequest.h"
#include "document/engine/ReflowPage.h"

namespace velko::vkit {

// What a page is set for.
struct ReflowParameters {
    double dbWidth = 0.0; // of the text, and of the screen that it is read on
    double dbHeight = 0.0;
    float fZoom = 1.0F; // 1.0: a point of the page is a pixel
    bool bShowPicture = true;
    float fSpacing1 = 0.0F; // between lines and paragraphs, points
    float fSpacing2 = 0.0F;
    friend bool operator==(const ReflowParameters&, const ReflowParameters&) = default;
};

struct VLK_ReflowPage {
    std::shared_ptr<velko::pdf::ReflowPage> m_pReflowPage; // set
    std::int32_t nContentWidth = 0;                        // 0 for a page with nothing to show
    std::int32_t nContentHeight = 0;
};

// Filled at the start of a render, as `RenderBlockRequest`.
struct ReflowBlockRequest : RenderColors {
    std::shared_ptr<VLK_ReflowPage> pPage;
    std::int32_t nPageIndex = 0; // whose failures its own are
    std::int32_t nLeft = 0;      // where the text's origin lies relative to the bitmap
    std::int32_t nTop = 0;
    std::int32_t nBitmapWidth = 0; // pixels
    std::int32_t nBitmapHeight = 0;
    float fScale = 1.0F; // pixels of the bitmap to a pixel of the set text
    concurrency::cancellation_token token = concurrency::cancellation_token::none();
};

}
