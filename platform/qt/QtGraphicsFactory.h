// The drawing interface on Qt's raster painter.
//
// There is no hardware device: `D3D_DRIVER_TYPE::HARDWARE` answers
// `DXGI_ERROR_UNSUPPORTED`, and `WARP` is the raster device. Measured on a
// machine without a GPU, a 1920x1080 frame takes the raster painter about 1 ms
// and OpenGL through its software renderer 16 to 22 ms; even to look for a real
// GPU costs the start of an OpenGL context. A hardware device would be another
// implementation of the same interface, asked for first as it is today.
//
// Lifetime: one per environment; its objects may outlive it. A paint device
// exists without an application object, so that pixel tests need none.
// Threads: the UI thread only.
#pragma once

#include <memory>

#include "platform/graphics/Graphics.h"
#include "platform/qt/QtGraphicsState.h"

namespace Platform::Qt {

class QtGraphicsFactory final : public Windows::Graphics::IGraphicsFactory {
public:
    QtGraphicsFactory();

    std::shared_ptr<Windows::Graphics::ID2D1Factory2> D2D1CreateFactory() override;
    std::shared_ptr<Windows::Graphics::IWICImagingFactory2> CreateImagingFactory() override;
    std::shared_ptr<Windows::Graphics::IDWriteFactory> DWriteCreateFactory() override;
    Platform::HRESULT D3D11CreateDevice(
        const Windows::Graphics::DeviceRequest& request,
        std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice) override;
    // The chain is a `QtSwapChain`.
    std::shared_ptr<Windows::Graphics::IDXGISwapChain2> CreateSwapChainForComposition(
        const std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice,
        const Windows::Graphics::DXGI_SWAP_CHAIN_DESC1& description) override;

    // Counters since the start, and where faults are set.
    const std::shared_ptr<QtGraphicsState>& State() const { return m_pState; }

private:
    std::shared_ptr<QtGraphicsState> m_pState;
};

}
