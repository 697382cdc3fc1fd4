// A rendered block's bitmap on the device, with the key it was rendered for.
//
// Threads: the UI thread only. Units: device pixels.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/graphics/Graphics.h"

namespace velko::vkit {

struct D2DBitmapSource {
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> m_pD2DBitmap; // empty until rendered

    // The block that it belongs to, and the grid of its time.
    std::int32_t m_nBlockId = 0; // from 1
    std::int32_t nPageIndex = 0;
    std::int32_t nRows = 0;
    std::int32_t nCols = 0;

    // A bitmap of a lost device counts as none.
    bool HasBitmap() const { return m_pD2DBitmap && m_pD2DBitmap->IsDeviceAlive(); }
};

}
