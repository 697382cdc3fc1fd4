// What renders of every kind draw into, and with.
#pragma once

#include <cstdint>
#include <memory>

#include "document/RenderBlockRequest.h"
#include "document/engine/Bitmap.h"
#include "document/engine/Renderer.h"
#include "platform/concurrency/Cancellation.h"

namespace velko::vkit::detail {

// Raise what the engine does.
std::shared_ptr<velko::common::Bitmap> MakeFilledBitmap(std::int32_t nWidth, std::int32_t nHeight,
                                                        std::uint32_t nColor);
std::shared_ptr<velko::common::Renderer> MakeRenderer(
    const RenderColors& colors, const concurrency::cancellation_token& token,
    std::shared_ptr<velko::common::Bitmap> pBitmap);

}
