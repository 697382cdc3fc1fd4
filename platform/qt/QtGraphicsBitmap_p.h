// A bitmap of the raster device: an image of its own, or a swap chain's.
#pragma once

#include <QImage>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/graphics/Graphics.h"
#include "platform/qt/QtGraphicsState.h"

namespace Platform::Qt {

class QtGraphicsBitmap final : public Windows::Graphics::ID2D1Bitmap {
public:
    // With pixels of its own; counted until it goes.
    QtGraphicsBitmap(std::shared_ptr<QtGraphicsState> pState,
                     std::shared_ptr<QtDeviceState> pDevice, QImage image);
    // On the back buffer of a chain.
    QtGraphicsBitmap(std::shared_ptr<QtDeviceState> pDevice,
                     std::shared_ptr<QtSwapBuffers> pBuffers);
    ~QtGraphicsBitmap() override;

    Windows::Graphics::D2D_SIZE_U GetPixelSize() const override;
    bool IsDeviceAlive() const override { return !m_pDevice->bLost; }
    void CopyFromRenderTarget(Windows::Graphics::ID2D1DeviceContext& context) override;
    std::vector<std::uint8_t> ReadPixels() const override;

    const QImage& Image() const { return m_pBuffers ? m_pBuffers->Current() : m_image; }
    QtSwapBuffers* Buffers() const { return m_pBuffers.get(); }

    // The image that a new frame draws into; nobody else holds it.
    QImage& BeginFrame();
    // The same image, once a frame has been begun in it.
    QImage& FrameUnderWay() { return m_pBuffers ? m_pBuffers->back : m_image; }

private:
    const std::shared_ptr<QtGraphicsState> m_pState;
    const std::shared_ptr<QtDeviceState> m_pDevice;
    const std::shared_ptr<QtSwapBuffers> m_pBuffers;
    QImage m_image;
    const std::int64_t m_nCountedBytes = 0;
};

// A transparent image; raises `OutOfMemoryException`.
QImage MakeImage(QSize size);

// A copy of the pixels. Without a transparent pixel it is marked as opaque,
// which makes drawing it a plain copy of rows.
QImage CopyPixels(Windows::Graphics::D2D_SIZE_U size, std::span<const std::uint8_t> pixels,
                  std::uint32_t nPitch);

// The pixels where they lie, marked in the same way; `pOwner` goes with the
// image and its copies.
QImage SharePixels(Windows::Graphics::D2D_SIZE_U size, std::shared_ptr<const void> pOwner,
                   std::span<const std::uint8_t> pixels, std::uint32_t nPitch);

}
