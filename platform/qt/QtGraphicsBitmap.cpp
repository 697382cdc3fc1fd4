#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsBitmap_p.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr int kBytesPerPixel = 4;

bool IsRowOpaque(const uchar* pRow, int nWidth) {
    std::uint32_t nAll = 0xFFFFFFFFU;
    for (int nX = 0; nX < nWidth; ++nX) {
        std::uint32_t nPixel = 0;
        std::memcpy(&nPixel, pRow + std::size_t{kBytesPerPixel} * static_cast<std::size_t>(nX),
                    sizeof nPixel);
        nAll &= nPixel;
    }
    return (nAll >> 24U) == 0xFFU;
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
    const std::size_t nRowBytes = std::size_t{size.width} * kBytesPerPixel;
    if (nPitch < nRowBytes || pixels.size() < std::size_t{nPitch} * (size.height - 1) + nRowBytes) {
        throw Platform::InvalidArgumentException("too few pixels for the bitmap's size");
    }
    QImage image(static_cast<int>(size.width), static_cast<int>(size.height),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        throw Platform::OutOfMemoryException("no memory for a bitmap");
    }
    bool bOpaque = true;
    for (int nY = 0; nY < image.height(); ++nY) {
        uchar* const pRow = image.scanLine(nY);
        std::memcpy(pRow, &pixels[std::size_t{nPitch} * static_cast<std::size_t>(nY)], nRowBytes);
        bOpaque = bOpaque && IsRowOpaque(pRow, image.width());
    }
    if (bOpaque) {
        image.reinterpretAsFormat(QImage::Format_RGB32);
    }
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
    return back;
}

void QtGraphicsBitmap::CopyFromRenderTarget(ID2D1DeviceContext& context) {
    const auto pTarget = std::dynamic_pointer_cast<QtGraphicsBitmap>(context.GetTarget());
    if (!pTarget || m_pBuffers) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "there is no target to copy from");
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
