// What a render of a page rectangle needs, and the box for its result.
//
// A request is filled at the start of a render, on the UI thread, so that the
// worker reads nothing that the UI thread changes. Threads: values.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "document/engine/Bitmap.h"
#include "document/engine/PDFPage.h"
#include "document/engine/ScanColors.h"
#include "platform/concurrency/Cancellation.h"

namespace velko::vkit {

struct RenderColors {
    std::uint32_t nBackColor = 0xFFFFFFFFU; // 0xAARRGGBB
    std::uint32_t nForeColor = 0xFF000000U;
    velko::common::ScanColors eScanColors = velko::common::ScanColors::Turned;
};

struct RenderBlockRequest : RenderColors {
    std::shared_ptr<velko::pdf::PDFPage> pPage;
    std::int32_t nLeft = 0; // where the page's origin lies relative to the bitmap
    std::int32_t nTop = 0;
    std::int32_t nBitmapWidth = 0; // pixels, before `fScale`
    std::int32_t nBitmapHeight = 0;
    float fDisplayWidth = 0.0F; // the whole page; truncated to integers
    float fDisplayHeight = 0.0F;
    std::int32_t nRotate = 0; // quarter turns
    float fScale = 1.0F;
    std::uint32_t nRenderFlags = 3; // as the document's render flags
    std::vector<std::int32_t> hiddenAnnotTypes;
    concurrency::cancellation_token token = concurrency::cancellation_token::none();
};

// Hands a rendered bitmap from the worker to its continuation.
struct BitmapBox {
    std::shared_ptr<velko::common::Bitmap> pBitmap;
};

}
