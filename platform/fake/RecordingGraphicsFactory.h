// A drawing interface for tests: records every call with its arguments,
// composes the pixels in plain C++, and fails or loses its device on demand.
//
// Rectangles land on pixels as on the real device. A transform that turns or
// mirrors draws nothing into the pixels (it is still recorded).
// Faults are set from now on and count calls from 1. A fault that has happened
// is gone, unless it is set for ever.
// Lifetime: its objects may outlive it. Threads: the UI thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/fake/PixelImage.h"
#include "platform/fake/RecordedCall.h"
#include "platform/graphics/Graphics.h"

namespace Platform::Fake {

class RecordingState;

class RecordingGraphicsFactory final : public Windows::Graphics::IGraphicsFactory {
public:
    RecordingGraphicsFactory();
    ~RecordingGraphicsFactory() override;

    std::shared_ptr<Windows::Graphics::ID2D1Factory2> D2D1CreateFactory() override;
    std::shared_ptr<Windows::Graphics::IWICImagingFactory2> CreateImagingFactory() override;
    std::shared_ptr<Windows::Graphics::IDWriteFactory> DWriteCreateFactory() override;
    Platform::HRESULT D3D11CreateDevice(
        const Windows::Graphics::DeviceRequest& request,
        std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice) override;
    std::shared_ptr<Windows::Graphics::IDXGISwapChain2> CreateSwapChainForComposition(
        const std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice,
        const Windows::Graphics::DXGI_SWAP_CHAIN_DESC1& description) override;

    // --- the record ---
    const std::vector<RecordedCall>& Calls() const;
    std::vector<RecordedCall> CallsOf(GraphicsCall eCall) const;
    std::size_t Count(GraphicsCall eCall) const;
    void ClearCalls();

    // --- what is shown and held ---
    // The frame last presented by the newest swap chain; empty before one.
    PixelImage FrontImage() const;
    // Bitmaps made by `CreateBitmap` that are alive, and their bytes.
    std::int64_t LiveBitmaps() const;
    std::int64_t LiveBitmapBytes() const;
    std::int64_t LiveDevices() const;
    std::int64_t LiveSwapChains() const;

    // Without it frames have no pixels, which makes large ones cheap, and asking
    // for one raises; on at the start.
    void ComposePixels(bool bCompose);

    // --- faults ---
    // Whether there is a hardware device; true at the start.
    void HasHardware(bool bHas);
    // The `nCall`-th call that can fail, of any kind, fails with the code.
    void FailCall(std::uint32_t nCall, Platform::HRESULT nCode = Platform::E_FAIL);
    void FailCallOf(GraphicsCall eCall, std::uint32_t nCall,
                    Platform::HRESULT nCode = Platform::E_FAIL, bool bForEver = false);
    // The `nCall`-th `Present1` or `ResizeBuffers` loses the device.
    void LoseDeviceAtPresent(std::uint32_t nCall, bool bForEver = false);
    void LoseDeviceAtResize(std::uint32_t nCall, bool bForEver = false);
    void ClearFaults();
    // How many calls failed because a fault was set.
    std::uint32_t FaultsHappened() const;

private:
    std::shared_ptr<RecordingState> m_pState;
};

}
