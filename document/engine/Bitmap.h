// `velko.common.Bitmap`: the pixels that an engine draws into.
//
// Format 32: 4 bytes a pixel in the order blue, green, red, alpha
// (`DXGI_FORMAT_B8G8R8A8_UNORM`), alpha premultiplied, top row first, rows
// tightly packed. Threads: one at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "document/engine/Geometry.h"
#include "platform/system/Activation.h"

namespace velko::common {

class Bitmap {
public:
    static constexpr std::int32_t kFormat32 = 32;

    virtual ~Bitmap() = default;

    virtual std::span<std::uint8_t> GetBuffer() = 0;
    virtual std::int32_t GetWidth() const = 0;
    virtual std::int32_t GetHeight() const = 0;

    // Fills with 0xAARRGGBB; the rectangle is clipped to the bitmap.
    virtual void FillRect(std::uint32_t nColor, const vxbase::RectI& rc) = 0;
};

class IBitmapFactory : public Platform::IActivationFactory {
public:
    // Sizes above 0, `nFormat` 32, `pBuffer` and `nPitch` 0: the bitmap owns
    // its pixels, which are zero. Raises `EngineException` (parameter, memory).
    virtual std::shared_ptr<Bitmap> Create(std::int32_t nWidth, std::int32_t nHeight,
                                           std::int32_t nFormat, void* pBuffer,
                                           std::int32_t nPitch) = 0;
};

inline constexpr const char* kBitmapClass = "velko.common.Bitmap";

}
