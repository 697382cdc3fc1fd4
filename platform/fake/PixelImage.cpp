#include "platform/fake/PixelImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace Platform::Fake {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr std::size_t kBytesPerPixel = 4;

std::uint8_t ToByte(double dbValue) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(dbValue, 0.0, 1.0) * 255.0));
}

std::array<std::uint8_t, 4> Premultiplied(const D2D_COLOR_F& color) {
    const double dbAlpha = std::clamp(static_cast<double>(color.a), 0.0, 1.0);
    return {ToByte(color.b * dbAlpha), ToByte(color.g * dbAlpha), ToByte(color.r * dbAlpha),
            ToByte(dbAlpha)};
}

PixelRect Bounds(D2D_SIZE_U size) {
    return {0, 0, static_cast<std::int32_t>(size.width), static_cast<std::int32_t>(size.height)};
}

}

PixelImage::PixelImage(D2D_SIZE_U size)
    : m_size(size), m_bytes(std::size_t{size.width} * size.height * kBytesPerPixel) {}

PixelImage::PixelImage(D2D_SIZE_U size, std::vector<std::uint8_t> bytes)
    : m_size(size), m_bytes(std::move(bytes)) {}

std::size_t PixelImage::Offset(std::uint32_t nX, std::uint32_t nY) const {
    return (std::size_t{nY} * m_size.width + nX) * kBytesPerPixel;
}

PixelImage::Pixel PixelImage::Load(std::int32_t nX, std::int32_t nY) const {
    Pixel pixel{};
    std::memcpy(pixel.data(),
                &m_bytes[Offset(static_cast<std::uint32_t>(nX), static_cast<std::uint32_t>(nY))],
                kBytesPerPixel);
    return pixel;
}

std::uint32_t PixelImage::At(std::uint32_t nX, std::uint32_t nY) const {
    const Pixel pixel = Load(static_cast<std::int32_t>(nX), static_cast<std::int32_t>(nY));
    return (std::uint32_t{pixel[3]} << 24U) | (std::uint32_t{pixel[2]} << 16U) |
           (std::uint32_t{pixel[1]} << 8U) | std::uint32_t{pixel[0]};
}

void PixelImage::Clear(const D2D_COLOR_F& color) {
    const Pixel pixel = Premultiplied(color);
    for (std::size_t nAt = 0; nAt < m_bytes.size(); nAt += kBytesPerPixel) {
        std::memcpy(&m_bytes[nAt], pixel.data(), kBytesPerPixel);
    }
}

void PixelImage::BlendOver(std::int32_t nX, std::int32_t nY, Pixel pixel, float fOpacity) {
    const std::size_t nAt = Offset(static_cast<std::uint32_t>(nX), static_cast<std::uint32_t>(nY));
    const double dbOpacity = std::clamp(static_cast<double>(fOpacity), 0.0, 1.0);
    const double dbKept = 1.0 - pixel[3] / 255.0 * dbOpacity;
    for (std::size_t nChannel = 0; nChannel < kBytesPerPixel; ++nChannel) {
        const double dbMixed = pixel[nChannel] * dbOpacity + m_bytes[nAt + nChannel] * dbKept;
        m_bytes[nAt + nChannel] = ToByte(dbMixed / 255.0);
    }
}

void PixelImage::Fill(const PixelRect& rc, const D2D_COLOR_F& color, float fOpacity) {
    const PixelRect rcVisible = rc.Intersected(Bounds(m_size));
    const Pixel pixel = Premultiplied(color);
    for (std::int32_t nY = rcVisible.top; nY < rcVisible.bottom; ++nY) {
        for (std::int32_t nX = rcVisible.left; nX < rcVisible.right; ++nX) {
            BlendOver(nX, nY, pixel, fOpacity);
        }
    }
}

PixelImage::Pixel PixelImage::Nearest(double dbX, double dbY, const PixelRect& rcLimit) const {
    const auto nX = static_cast<std::int32_t>(std::floor(dbX));
    const auto nY = static_cast<std::int32_t>(std::floor(dbY));
    return Load(std::clamp(nX, rcLimit.left, rcLimit.right - 1),
                std::clamp(nY, rcLimit.top, rcLimit.bottom - 1));
}

PixelImage::Pixel PixelImage::Bilinear(double dbX, double dbY, const PixelRect& rcLimit) const {
    const double dbLeft = std::floor(dbX - 0.5);
    const double dbTop = std::floor(dbY - 0.5);
    const double dbWeightX = dbX - 0.5 - dbLeft;
    const double dbWeightY = dbY - 0.5 - dbTop;
    const Pixel topLeft = Nearest(dbLeft, dbTop, rcLimit);
    const Pixel topRight = Nearest(dbLeft + 1.0, dbTop, rcLimit);
    const Pixel bottomLeft = Nearest(dbLeft, dbTop + 1.0, rcLimit);
    const Pixel bottomRight = Nearest(dbLeft + 1.0, dbTop + 1.0, rcLimit);
    Pixel result{};
    for (std::size_t nChannel = 0; nChannel < kBytesPerPixel; ++nChannel) {
        const double dbUpper =
            topLeft[nChannel] * (1.0 - dbWeightX) + topRight[nChannel] * dbWeightX;
        const double dbLower =
            bottomLeft[nChannel] * (1.0 - dbWeightX) + bottomRight[nChannel] * dbWeightX;
        result[nChannel] = ToByte((dbUpper * (1.0 - dbWeightY) + dbLower * dbWeightY) / 255.0);
    }
    return result;
}

void PixelImage::Stretch(const PixelRect& rc, const PixelImage& source, const D2D_RECT_F& rcSource,
                         float fOpacity, D2D1_INTERPOLATION_MODE eInterpolation) {
    const PixelRect rcVisible = rc.Intersected(Bounds(m_size));
    const double dbStepX = (double{rcSource.right} - rcSource.left) / rc.Width();
    const double dbStepY = (double{rcSource.bottom} - rcSource.top) / rc.Height();
    const PixelRect rcLimit = Bounds(source.Size());
    const bool bLinear = eInterpolation == D2D1_INTERPOLATION_MODE::LINEAR;
    for (std::int32_t nY = rcVisible.top; nY < rcVisible.bottom; ++nY) {
        const double dbY = rcSource.top + (nY - rc.top + 0.5) * dbStepY;
        for (std::int32_t nX = rcVisible.left; nX < rcVisible.right; ++nX) {
            const double dbX = rcSource.left + (nX - rc.left + 0.5) * dbStepX;
            const Pixel pixel =
                bLinear ? source.Bilinear(dbX, dbY, rcLimit) : source.Nearest(dbX, dbY, rcLimit);
            BlendOver(nX, nY, pixel, fOpacity);
        }
    }
}

void PixelImage::CopyFrom(const PixelImage& source) {
    const std::uint32_t nHeight = std::min(m_size.height, source.m_size.height);
    const std::size_t nRowBytes =
        std::size_t{std::min(m_size.width, source.m_size.width)} * kBytesPerPixel;
    for (std::uint32_t nY = 0; nY < nHeight && nRowBytes > 0; ++nY) {
        std::memcpy(&m_bytes[Offset(0, nY)], &source.m_bytes[source.Offset(0, nY)], nRowBytes);
    }
}

}
