#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsBitmap_p.h"
#include "platform/qt/QtGraphicsContext_p.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr int kBytesPerPixel = 4;

// Eight pixels at a time, which the compiler turns into one wide step.
bool IsRowOpaque(const uchar* pRow, int nWidth) {
    constexpr int kLanes = 8;
    std::array<std::uint32_t, kLanes> all;
    all.fill(0xFFFFFFFFU);
    int nX = 0;
    for (; nX + kLanes <= nWidth; nX += kLanes) {
        std::array<std::uint32_t, kLanes> pixels;
        std::memcpy(pixels.data(), pRow + std::ptrdiff_t{kBytesPerPixel} * nX, sizeof pixels);
        for (std::size_t n = 0; n < kLanes; ++n) {
            all[n] &= pixels[n];
        }
    }
    for (; nX < nWidth; ++nX) {
        std::uint32_t nPixel = 0;
        std::memcpy(&nPixel, pRow + std::ptrdiff_t{kBytesPerPixel} * nX, sizeof nPixel);
        all[0] &= nPixel;
    }
    return std::all_of(all.begin(), all.end(),
                       [](std::uint32_t nPixel) { return (nPixel >> 24U) == 0xFFU; });
}

bool IsOpaque(const uchar* pPixels, D2D_SIZE_U size, std::uint32_t nPitch) {
    for (std::uint32_t nY = 0; nY < size.height; ++nY) {
        if (!IsRowOpaque(pPixels + std::size_t{nPitch} * nY, static_cast<int>(size.width))) {
            return false;
        }
    }
    return true;
}

void CheckPixels(D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch) {
    const std::size_t nRowBytes = std::size_t{size.width} * kBytesPerPixel;
    if (nPitch < nRowBytes || pixels.size() < std::size_t{nPitch} * (size.height - 1) + nRowBytes) {
        throw Platform::InvalidArgumentException("too few pixels for the bitmap's size");
    }
}

// Copies what fits from (0, 0); the rest stays as it is.
void CopyCorner(QImage& target, const QImage& source) {
    const int nHeight = std::min(target.height(), source.height());
    const auto nRowBytes =
        static_cast<std::size_t>(std::min(target.width(), source.width())) * kBytesPerPixel;
    for (int nY = 0; nY < nHeight; ++nY) {
        std::memcpy(target.scanLine(nY), source.constScanLine(nY), nRowBytes);
    }
}

}

QImage MakeImage(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        throw Platform::OutOfMemoryException("no memory for an image");
    }
    image.fill(0U);
    return image;
}

QImage CopyPixels(D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch) {
    CheckPixels(size, pixels, nPitch);
    QImage image(static_cast<int>(size.width), static_cast<int>(size.height),
                 IsOpaque(pixels.data(), size, nPitch) ? QImage::Format_RGB32
                                                       : QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        throw Platform::OutOfMemoryException("no memory for a bitmap");
    }
    for (int nY = 0; nY < image.height(); ++nY) {
        std::memcpy(image.scanLine(nY), &pixels[std::size_t{nPitch} * static_cast<std::size_t>(nY)],
                    std::size_t{size.width} * kBytesPerPixel);
    }
    return image;
}

QImage SharePixels(D2D_SIZE_U size, std::shared_ptr<const void> pOwner,
                   std::span<const std::uint8_t> pixels, std::uint32_t nPitch) {
    CheckPixels(size, pixels, nPitch);
    const auto eFormat = IsOpaque(pixels.data(), size, nPitch)
                             ? QImage::Format_RGB32
                             : QImage::Format_ARGB32_Premultiplied;
    auto pKept = std::make_unique<std::shared_ptr<const void>>(std::move(pOwner));
    QImage image(
        pixels.data(), static_cast<int>(size.width), static_cast<int>(size.height),
        static_cast<qsizetype>(nPitch), eFormat,
        [](void* pOwned) { delete static_cast<std::shared_ptr<const void>*>(pOwned); },
        pKept.get());
    if (image.isNull()) {
        throw Platform::OutOfMemoryException("no memory for a bitmap");
    }
    pKept.release(); // the image's from here on
    return image;
}

QtGraphicsBitmap::QtGraphicsBitmap(std::shared_ptr<QtGraphicsState> pState,
                                   std::shared_ptr<QtDeviceState> pDevice, QImage image)
    : m_pState(std::move(pState)),
      m_pDevice(std::move(pDevice)),
      m_image(std::move(image)),
      m_nCountedBytes(m_image.sizeInBytes()) {
    ++m_pState->nBitmapsCreated;
    ++m_pState->nLiveBitmaps;
    m_pState->nLiveBitmapBytes += m_nCountedBytes;
}

QtGraphicsBitmap::QtGraphicsBitmap(std::shared_ptr<QtDeviceState> pDevice,
                                   std::shared_ptr<QtSwapBuffers> pBuffers)
    : m_pDevice(std::move(pDevice)), m_pBuffers(std::move(pBuffers)) {}

QtGraphicsBitmap::~QtGraphicsBitmap() {
    if (m_pState) {
        --m_pState->nLiveBitmaps;
        m_pState->nLiveBitmapBytes -= m_nCountedBytes;
    }
}

D2D_SIZE_U QtGraphicsBitmap::GetPixelSize() const {
    const QSize size = m_pBuffers ? m_pBuffers->size : m_image.size();
    return {static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height())};
}

QImage& QtGraphicsBitmap::BeginFrame() {
    if (!m_pBuffers) {
        m_image.detach();
        return m_image;
    }
    // A buffer that a window or a snapshot still holds is left to it: a fresh
    // one costs less than the copy that painting into a shared one makes.
    QImage& back = m_pBuffers->back;
    if (back.size() != m_pBuffers->size || !back.isDetached()) {
        back = MakeImage(m_pBuffers->size);
    }
    m_pBuffers->bFrameBegun = true;
    m_pBuffers->backScript.Clear();
    return back;
}

void QtGraphicsBitmap::CopyFromRenderTarget(ID2D1DeviceContext& context) {
    const auto pTarget = std::dynamic_pointer_cast<QtGraphicsBitmap>(context.GetTarget());
    if (!pTarget || m_pBuffers) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "there is no target to copy from");
    }
    if (context.IsDrawing()) {
        static_cast<QtGraphicsContext&>(context).DrawGathered();
    }
    const QImage& frame = pTarget->Image();
    if (frame.size() == m_image.size()) {
        m_image = frame; // shared until one of the two is drawn into
    } else {
        CopyCorner(m_image, frame);
    }
}

std::vector<std::uint8_t> QtGraphicsBitmap::ReadPixels() const {
    const QImage& image = Image();
    const D2D_SIZE_U size = GetPixelSize();
    const std::size_t nRowBytes = std::size_t{size.width} * kBytesPerPixel;
    std::vector<std::uint8_t> bytes(nRowBytes * size.height);
    const int nRows = std::min(image.height(), static_cast<int>(size.height));
    const std::size_t nCopied =
        std::min(nRowBytes, static_cast<std::size_t>(image.width()) * kBytesPerPixel);
    for (int nY = 0; nY < nRows && nCopied > 0; ++nY) {
        std::memcpy(&bytes[nRowBytes * static_cast<std::size_t>(nY)], image.constScanLine(nY),
                    nCopied);
    }
    return bytes;
}

}
