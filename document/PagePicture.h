// A picture of a whole page by itself, beside the renders of a screen: it waits for
// none of them, raises no event, and leaves what is known of failed pages alone.
//
// Threads: any but the UI thread; several at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "document/RenderBlockRequest.h"
#include "document/engine/Bitmap.h"
#include "document/engine/PDFPage.h"
#include "platform/concurrency/Cancellation.h"

namespace velko::vkit {

// The page with its annotations on paper of those colours, unturned; the size in pixels,
// above 0.
// Empty when the engine's time ran out before all of it was drawn. Raises what the
// engine does, and `task_canceled` once the token is cancelled.
std::shared_ptr<velko::common::Bitmap> DrawPagePicture(
    const std::shared_ptr<velko::pdf::PDFPage>& pPage, std::int32_t nWidth, std::int32_t nHeight,
    const RenderColors& colors, const concurrency::cancellation_token& token);

}
