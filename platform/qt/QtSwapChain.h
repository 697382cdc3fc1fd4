// Two images that take turns: one is drawn into, the other is shown.
//
// A present exchanges them, so that no frame is copied. The window paints
// `FrontImage` one to one in device pixels, asks for it anew in each paint and
// does not keep it: a front image that someone still holds when its turn to be
// drawn into comes is left to its holder and replaced by a fresh one.
// Threads: the UI thread only. Units: device pixels.
#pragma once

#include <QImage>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/graphics/Graphics.h"
#include "platform/qt/QtGraphicsState.h"

namespace Platform::Qt {

class QtSwapChain final : public Windows::Graphics::IDXGISwapChain2 {
public:
    QtSwapChain(std::shared_ptr<QtGraphicsState> pState, std::shared_ptr<QtDeviceState> pDevice,
                const Windows::Graphics::DXGI_SWAP_CHAIN_DESC1& description);

    // Ends with `DXGI_ERROR_DEVICE_REMOVED` once the device is lost. The front
    // image stays as it is until the next present.
    Platform::HRESULT ResizeBuffers(std::uint32_t nBufferCount, std::uint32_t nWidth,
                                    std::uint32_t nHeight, std::uint32_t nFormat,
                                    std::uint32_t nFlags) override;
    Platform::HRESULT Present1(std::uint32_t nSyncInterval, std::uint32_t nFlags) override;
    void SetMatrixTransform(const Windows::Graphics::D2D_MATRIX_3X2_F& matrix) override;
    std::shared_ptr<Windows::Graphics::IDXGISurface> GetBuffer(std::uint32_t nIndex) override;

    // The last frame that was presented; null before the first one.
    QImage FrontImage() const;

    // What the last present changed of it.
    const QRect& PresentedRect() const { return m_rcPresented; }

    // How many presents showed a frame on this chain.
    std::uint64_t PresentCount() const { return m_nPresents; }

    // The transform to logical units: one over the composition scale.
    const Windows::Graphics::D2D_MATRIX_3X2_F& MatrixTransform() const { return m_matrix; }

    // Called after each present that showed a frame; the window asks for a paint.
    std::function<void()> OnPresented;

private:
    void ShowDrawn();

    const std::shared_ptr<QtGraphicsState> m_pState;
    const std::shared_ptr<QtDeviceState> m_pDevice;
    const std::shared_ptr<QtSwapBuffers> m_pBuffers;
    Windows::Graphics::D2D_MATRIX_3X2_F m_matrix;
    std::uint64_t m_nPresents = 0;
    QRect m_rcPresented;
};

}
