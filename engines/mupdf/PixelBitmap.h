// `velko.common.Bitmap` on memory of its own.
#pragma once

#include <cstdlib>
#include <memory>

#include "document/engine/Bitmap.h"

namespace velko::engines::mupdf {

class PixelBitmap final : public common::Bitmap {
public:
    // Pixels of the largest bitmap that is made: eight screens of 3840 by 2160.
    static constexpr std::int64_t kMaxPixels = std::int64_t{8} * 3840 * 2160;

    // Raises `EngineException`: parameter for a side below 1, memory when the
    // size is above the limit or cannot be had. The pixels are zero.
    PixelBitmap(std::int32_t nWidth, std::int32_t nHeight);

    std::span<std::uint8_t> GetBuffer() override;
    std::int32_t GetWidth() const override { return m_nWidth; }
    std::int32_t GetHeight() const override { return m_nHeight; }
    void FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) override;

private:
    // Zeroes the pixels unless they have been written to. A bitmap is mostly
    // filled as a whole first, which needs no zeroes before.
    void Settle();

    struct Free {
        void operator()(std::uint8_t* pBytes) const { std::free(pBytes); }
    };

    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::unique_ptr<std::uint8_t, Free> m_pPixels;
    bool m_bSettled = false;
};

class PixelBitmapFactory final : public common::IBitmapFactory {
public:
    std::shared_ptr<common::Bitmap> Create(std::int32_t nWidth, std::int32_t nHeight,
                                           std::int32_t nFormat, void* pBuffer,
                                           std::int32_t nPitch) override;
};

}
