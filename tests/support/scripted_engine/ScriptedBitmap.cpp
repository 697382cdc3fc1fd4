#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "tests/support/scripted_engine/ScriptedBitmap_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;

namespace {

constexpr std::int64_t kMaxPixels = std::int64_t{64} << 20;

std::size_t ByteCount(std::int32_t nWidth, std::int32_t nHeight) {
    return static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4;
}

}

ScriptedBitmap::ScriptedBitmap(std::shared_ptr<EngineScript> pScript, std::int32_t nWidth,
                               std::int32_t nHeight)
    : m_pScript(std::move(pScript)),
      m_counted(m_pScript->m_nBitmaps),
      m_nWidth(nWidth),
      m_nHeight(nHeight),
      m_pixels(ByteCount(nWidth, nHeight)) {}

void ScriptedBitmap::FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) {
    const std::int32_t nLeft = std::max(rc.Left, 0);
    const std::int32_t nRight = std::min(rc.Right, m_nWidth);
    const std::uint32_t nAlpha = nColor >> 24U;
    std::array<std::uint8_t, 4> pixel{0, 0, 0, static_cast<std::uint8_t>(nAlpha)};
    for (unsigned nChannel = 0; nChannel < 3; ++nChannel) {
        const std::uint32_t nValue = (nColor >> (8U * nChannel)) & 0xFFU;
        pixel[nChannel] = static_cast<std::uint8_t>((nValue * nAlpha + 127U) / 255U);
    }
    for (std::int32_t y = std::max(rc.Top, 0); y < std::min(rc.Bottom, m_nHeight); ++y) {
        std::uint8_t* pRow = &m_pixels[ByteCount(m_nWidth, y)];
        for (std::int32_t x = nLeft; x < nRight; ++x) {
            std::memcpy(pRow + std::size_t(x) * 4, pixel.data(), pixel.size());
        }
    }
}

std::shared_ptr<common::Bitmap> ScriptedBitmapFactory::Create(std::int32_t nWidth,
                                                              std::int32_t nHeight,
                                                              std::int32_t nFormat, void* pBuffer,
                                                              std::int32_t nPitch) {
    EngineCall call;
    call.eOp = EngineOp::CreateBitmap;
    call.nWidth = nWidth;
    call.nHeight = nHeight;
    m_pScript->Arrive(call);
    if (nWidth <= 0 || nHeight <= 0 || nFormat != common::Bitmap::kFormat32 || pBuffer != nullptr ||
        nPitch != 0) {
        throw EngineException(ErrorCode::e_ErrParam, "a bitmap of that kind is not made");
    }
    if (std::int64_t{nWidth} * nHeight > kMaxPixels) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "a bitmap of that size is not made");
    }
    return std::make_shared<ScriptedBitmap>(m_pScript, nWidth, nHeight);
}

}
