// Pixels as the recording device composes them: blue, green, red, alpha
// (premultiplied), rows tightly packed, top row first.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/graphics/Graphics.h"
#include "platform/graphics/PixelGrid.h"

namespace Platform::Fake {

class PixelImage {
public:
    PixelImage() = default;
    explicit PixelImage(Windows::Graphics::D2D_SIZE_U size); // transparent
    PixelImage(Windows::Graphics::D2D_SIZE_U size, std::vector<std::uint8_t> bytes);

    Windows::Graphics::D2D_SIZE_U Size() const { return m_size; }
    bool IsEmpty() const { return m_bytes.empty(); }
    const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }

    // The pixel as 0xAARRGGBB, premultiplied. Inside the image only.
    std::uint32_t At(std::uint32_t nX, std::uint32_t nY) const;

    // Replaces every pixel. The colour is not premultiplied.
    void Clear(const Windows::Graphics::D2D_COLOR_F& color);

    // Draws over what is there; pixels outside of the image are left out.
    void Fill(const Windows::Graphics::PixelRect& rc, const Windows::Graphics::D2D_COLOR_F& color,
              float fOpacity);
    // Stretches a part of `source` (on the bitmap, fractions allowed) over `rc`.
    void Stretch(const Windows::Graphics::PixelRect& rc, const PixelImage& source,
                 const Windows::Graphics::D2D_RECT_F& rcSource, float fOpacity,
                 Windows::Graphics::D2D1_INTERPOLATION_MODE eInterpolation);

    // Copies what fits of `source` from (0, 0).
    void CopyFrom(const PixelImage& source);

private:
    using Pixel = std::array<std::uint8_t, 4>;

    std::size_t Offset(std::uint32_t nX, std::uint32_t nY) const;
    Pixel Load(std::int32_t nX, std::int32_t nY) const;
    Pixel Nearest(double dbX, double dbY, const Windows::Graphics::PixelRect& rcLimit) const;
    Pixel Bilinear(double dbX, double dbY, const Windows::Graphics::PixelRect& rcLimit) const;
    void BlendOver(std::int32_t nX, std::int32_t nY, Pixel pixel, float fOpacity);

    Windows::Graphics::D2D_SIZE_U m_size;
    std::vector<std::uint8_t> m_bytes;
};

}
