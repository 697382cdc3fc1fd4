// A drawing device without pixels: it counts its calls, knows what of it is
// alive, and fails or loses itself on demand. What a frame looks like is asked
// of a real device.
//
// It keeps the rules of the interface: a frame has a target and is never within
// another one, and buffers that somebody holds cannot be resized.
// Faults are set from now on and count calls from 1. A fault that has happened
// is gone, unless it is set for ever.
// Lifetime: its objects may outlive it. Threads: the UI thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/graphics/Graphics.h"

namespace Platform::Fake {

// Those that tests count or let fail; the others that can fail are `Other`.
enum class GraphicsCall {
    D3D11CreateDevice,
    CreateBitmap,
    CopyFromRenderTarget,
    CreateSolidColorBrush,
    BeginDraw,
    EndDraw,
    ResizeBuffers,
    Present1,
    Trim,
    Other,
};

class CountingGraphicsFactory final : public Windows::Graphics::IGraphicsFactory {
public:
    std::shared_ptr<Windows::Graphics::ID2D1Factory2> D2D1CreateFactory() override;
    std::shared_ptr<Windows::Graphics::IWICImagingFactory2> CreateImagingFactory() override;
    std::shared_ptr<Windows::Graphics::IDWriteFactory> DWriteCreateFactory() override;
    Platform::HRESULT D3D11CreateDevice(
        const Windows::Graphics::DeviceRequest& request,
        std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice) override;
    std::shared_ptr<Windows::Graphics::IDXGISwapChain2> CreateSwapChainForComposition(
        const std::shared_ptr<Windows::Graphics::ID3D11Device1>& pDevice,
        const Windows::Graphics::DXGI_SWAP_CHAIN_DESC1& description) override;

    // Calls since the start or the last clear, those that failed included.
    std::size_t Count(GraphicsCall eCall) const { return m_pState->counts[eCall]; }
    std::size_t CountAll() const;
    void ClearCalls() { m_pState->counts.clear(); }

    // What is alive. Bitmaps: those that `CreateBitmap` made.
    std::int64_t LiveBitmaps() const { return m_pState->bitmaps.use_count() - 1; }
    std::int64_t LiveDevices() const { return m_pState->devices.use_count() - 1; }
    std::int64_t LiveSwapChains() const { return m_pState->chains.use_count() - 1; }

    // As last set on a context and on a chain.
    Windows::Foundation::Point Dpi() const { return m_pState->dpi; }
    Windows::Graphics::D2D_MATRIX_3X2_F MatrixTransform() const { return m_pState->matrix; }

    // Whether there is a hardware device; true at the start.
    void HasHardware(bool bHas) { m_pState->bHasHardware = bHas; }
    // The `nCall`-th call of any kind fails with the code.
    void FailCall(std::uint32_t nCall) { m_pState->faults.push_back({std::nullopt, nCall}); }
    void FailCallOf(GraphicsCall eCall, std::uint32_t nCall,
                    Platform::HRESULT nCode = Platform::E_FAIL) {
        m_pState->faults.push_back({eCall, nCall, nCode});
    }
    // The `nCall`-th `Present1` or `ResizeBuffers` loses the device.
    void LoseDeviceAtPresent(std::uint32_t nCall, bool bForEver = false);
    void LoseDeviceAtResize(std::uint32_t nCall);
    void ClearFaults() { m_pState->faults.clear(); }
    // How many calls failed because a fault was set.
    std::uint32_t FaultsHappened() const { return m_pState->nFaultsHappened; }

    // What its objects share.
    struct DeviceLife {
        bool bLost = false;
    };
    struct Fault {
        std::optional<GraphicsCall> eCall; // none: any
        std::uint32_t nCallsLeft = 1;
        Platform::HRESULT nCode = Platform::E_FAIL;
        bool bLoss = false;
        bool bForEver = false;
    };
    struct State {
        // Counts a call and answers with what it fails, if it does.
        Platform::HRESULT Try(GraphicsCall eCall, DeviceLife* pDevice = nullptr);
        // As `Try`, raising the failure.
        void Require(GraphicsCall eCall, DeviceLife* pDevice = nullptr);

        std::map<GraphicsCall, std::size_t> counts;
        std::vector<Fault> faults;
        std::uint32_t nFaultsHappened = 0;
        bool bHasHardware = true;
        Windows::Foundation::Point dpi;
        Windows::Graphics::D2D_MATRIX_3X2_F matrix;
        // Each object of a kind holds a copy of the kind's token.
        const std::shared_ptr<int> bitmaps = std::make_shared<int>();
        const std::shared_ptr<int> devices = std::make_shared<int>();
        const std::shared_ptr<int> chains = std::make_shared<int>();

    private:
        std::optional<Fault> TakeFault(GraphicsCall eCall);
    };

private:
    const std::shared_ptr<State> m_pState = std::make_shared<State>();
};

}
