// Rendered pixels in a platform buffer, on their way to a device bitmap.
//
// Rows tightly packed, 4 bytes a pixel (B, G, R, A premultiplied), top row
// first. Threads: one at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "platform/storage/Buffer.h"

namespace velko::vkit {

struct PixelSource {
    PixelSource(std::shared_ptr<Windows::Storage::Streams::IBuffer> pPixels, std::uint32_t nWidth,
                std::uint32_t nHeight)
        : Pixels(std::move(pPixels)), Width(nWidth), Height(nHeight) {}

    std::shared_ptr<Windows::Storage::Streams::IBuffer> Pixels;
    std::uint32_t Width;  // pixels
    std::uint32_t Height; // pixels
};

}
