// A bitmap of the recording device: pixels of its own, or a swap chain's.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/fake/RecordingState_p.h"

namespace Platform::Fake {

class RecordingBitmap final : public Windows::Graphics::ID2D1Bitmap {
public:
    // With pixels of its own; counted.
    RecordingBitmap(std::shared_ptr<RecordingState> pState,
                    std::shared_ptr<RecordingDeviceLife> pDevice, PixelImage image);
    // On the back buffer of a chain.
    RecordingBitmap(std::shared_ptr<RecordingState> pState,
                    std::shared_ptr<RecordingDeviceLife> pDevice,
                    std::shared_ptr<RecordingBuffers> pBuffers);

    Windows::Graphics::D2D_SIZE_U GetPixelSize() const override;
    bool IsDeviceAlive() const override { return !m_pDevice->bLost; }
    void CopyFromRenderTarget(Windows::Graphics::ID2D1DeviceContext& context) override;
    std::vector<std::uint8_t> ReadPixels() const override { return Image().Bytes(); }

    std::uint64_t Number() const { return m_nNumber; }
    const PixelImage& Image() const { return m_pBuffers ? m_pBuffers->Current() : m_image; }
    RecordingBuffers* Buffers() const { return m_pBuffers.get(); }

    // Where a frame draws to.
    PixelImage& Canvas() { return m_pBuffers ? m_pBuffers->back : m_image; }

private:
    const std::shared_ptr<RecordingState> m_pState;
    const std::shared_ptr<RecordingDeviceLife> m_pDevice;
    const std::shared_ptr<RecordingBuffers> m_pBuffers;
    const std::uint64_t m_nNumber;
    PixelImage m_image;
    std::optional<CountedLife> m_counted;
    std::optional<CountedLife> m_countedBytes;
};

}
