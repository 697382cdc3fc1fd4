#include "engines/mupdf/PixelBitmap.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "document/engine/ErrorCode.h"

namespace velko::engines::mupdf {

using common::EngineException;
using common::ErrorCode;

namespace {

static_assert(std::endian::native == std::endian::little, "pixels are written as words");

// 0xAARRGGBB with the colour multiplied by its alpha; as a word it is the pixel.
std::uint32_t Premultiplied(std::uint32_t nColor) {
    const std::uint32_t nAlpha = nColor >> 24U;
    if (nAlpha == 255U) {
        return nColor;
    }
    std::uint32_t nPixel = nAlpha << 24U;
    for (const unsigned nShift : {0U, 8U, 16U}) {
        const std::uint32_t nChannel = (nColor >> nShift) & 0xFFU;
        nPixel |= ((nChannel * nAlpha + 127U) / 255U) << nShift;
    }
    return nPixel;
}

}

PixelBitmap::PixelBitmap(std::int32_t nWidth, std::int32_t nHeight)
    : m_nWidth(nWidth), m_nHeight(nHeight) {
    if (nWidth < 1 || nHeight < 1) {
        throw EngineException(ErrorCode::e_ErrParam, "a bitmap without pixels");
    }
    const std::int64_t nPixels = std::int64_t{nWidth} * nHeight;
    if (nPixels <= kMaxPixels) {
        m_pPixels.reset(
            static_cast<std::uint8_t*>(std::malloc(static_cast<std::size_t>(nPixels) * 4)));
    }
    if (!m_pPixels) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory for a bitmap of that size");
    }
}

void PixelBitmap::Settle() {
    if (!m_bSettled) {
        m_bSettled = true;
        std::memset(m_pPixels.get(), 0, static_cast<std::size_t>(m_nWidth) * m_nHeight * 4);
    }
}

std::span<std::uint8_t> PixelBitmap::GetBuffer() {
    Settle();
    return {m_pPixels.get(), static_cast<std::size_t>(m_nWidth) * m_nHeight * 4};
}

void PixelBitmap::FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) {
    const std::int32_t nLeft = std::max(rc.Left, 0);
    const std::int32_t nTop = std::max(rc.Top, 0);
    const std::int32_t nRight = std::min(rc.Right, m_nWidth);
    const std::int32_t nBottom = std::min(rc.Bottom, m_nHeight);
    if (nLeft >= nRight || nTop >= nBottom) {
        return;
    }
    if (nLeft == 0 && nTop == 0 && nRight == m_nWidth && nBottom == m_nHeight) {
        m_bSettled = true;
    } else {
        Settle();
    }
    auto* const pPixels = reinterpret_cast<std::uint32_t*>(m_pPixels.get());
    const std::uint32_t nPixel = Premultiplied(nColor);
    for (std::int32_t y = nTop; y < nBottom; ++y) {
        std::uint32_t* const pRow = pPixels + static_cast<std::size_t>(y) * m_nWidth;
        std::fill(pRow + nLeft, pRow + nRight, nPixel);
    }
}

std::shared_ptr<common::Bitmap> PixelBitmapFactory::Create(std::int32_t nWidth,
                                                           std::int32_t nHeight,
                                                           std::int32_t nFormat, void* pBuffer,
                                                           std::int32_t nPitch) {
    if (nFormat != common::Bitmap::kFormat32 || pBuffer != nullptr || nPitch != 0) {
        throw EngineException(ErrorCode::e_ErrParam, "a bitmap of that kind is not made");
    }
    return std::make_shared<PixelBitmap>(nWidth, nHeight);
}

}
