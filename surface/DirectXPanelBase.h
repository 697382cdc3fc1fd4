// Binds a swap chain panel to a rendering device, a drawing context and a swap
// chain of two buffers; follows the panel's size and composition scale and
// survives the loss of the device.
//
// Lifetime: held by a `shared_ptr`; the events of the panel and of the
// application hold it weakly and are left at its end. Call `Initialize` once
// after construction (it makes the resources that the constructor cannot).
// Units: `m_width` and `m_height` logical, render target sizes in device pixels.
// Threads: the UI thread only. `m_lock` wraps changes of size and a frame; it
// is recursive and held while a viewer draws, hence also while the host's
// handlers of a drawn page run. A size or scale that changes while a frame is
// open is noted and takes effect with the next frame: a target is never taken
// from under a frame.
// Errors: failing device calls are raised; what could not be made is made by
// the next frame. A lost device is not a failure (it is remade), unless it is
// lost more than three times in a row without a good present between.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/concurrency/CriticalSection.h"
#include "platform/graphics/Graphics.h"
#include "platform/system/Environment.h"
#include "platform/ui/SwapChainPanel.h"

namespace velko::vkit {

class DirectXPanelBase : public std::enable_shared_from_this<DirectXPanelBase> {
public:
    explicit DirectXPanelBase(std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel);
    virtual ~DirectXPanelBase();
    DirectXPanelBase(const DirectXPanelBase&) = delete;
    DirectXPanelBase& operator=(const DirectXPanelBase&) = delete;

    // Subscribes to the panel and the application and makes all resources;
    // nothing of it in design mode.
    virtual void Initialize();

    const std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel>& Panel() const {
        return m_pPanel;
    }
    bool IsLoadingComplete() const { return m_bLoadingComplete; } // device resources exist
    // Counts the losses of the device; bitmaps of another count are gone.
    std::uint64_t DeviceGeneration() const { return m_nDeviceGeneration; }
    const std::shared_ptr<Windows::Graphics::ID2D1Bitmap>& TargetBitmap() const {
        return m_d2dTargetBitmap;
    }

    // The imaging factory.
    virtual std::shared_ptr<Windows::Graphics::IWICImagingFactory2> GetWicFactory() const;

protected:
    virtual void CreateDeviceIndependentResources();
    virtual void CreateDeviceResources();
    virtual void CreateSizeDependentResources();
    virtual void OnDeviceLost();
    virtual void OnSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs& args);
    virtual void OnCompositionScaleChanged();
    virtual void OnSuspending();
    virtual void OnResuming();
    virtual void Present();

    // Whether `Initialize` subscribed, which it does not in design mode.
    bool IsActive() const { return m_bActive; }

    // Makes what a failure or a change of size within a frame left to make.
    void EnsureResources();

    // Leaves all events and lets go of the device and all that belongs to it.
    void Release();

    std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> m_pPanel;
    std::shared_ptr<Windows::Graphics::ID3D11Device1> m_d3dDevice;
    std::shared_ptr<Windows::Graphics::ID3D11DeviceContext1> m_d3dContext;
    std::shared_ptr<Windows::Graphics::IDXGISwapChain2> m_swapChain;
    std::shared_ptr<Windows::Graphics::ID2D1Factory2> m_d2dFactory;
    std::shared_ptr<Windows::Graphics::ID2D1Device> m_d2dDevice;
    std::shared_ptr<Windows::Graphics::ID2D1DeviceContext> m_d2dContext;
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> m_d2dTargetBitmap;
    std::shared_ptr<Windows::Graphics::IWICImagingFactory2> m_wicFactory;
    Windows::Graphics::D2D_COLOR_F m_backgroundColor{1.0F, 1.0F, 1.0F, 1.0F};
    std::uint32_t m_alphaMode = 0;
    bool m_bLoadingComplete = false;
    concurrency::critical_section m_lock;
    float m_renderTargetHeight = 1.0F;
    float m_renderTargetWidth = 1.0F;
    float m_compositionScaleX = 1.0F;
    float m_compositionScaleY = 1.0F;
    float m_height = 1.0F;
    float m_width = 1.0F;

    bool m_bFrameOpen = false;         // set around a frame by whoever runs one
    bool m_bSizeChangePending = false; // a change that came while a frame was open

private:
    void Subscribe();
    void Unsubscribe();
    void ReleaseTarget();
    void ReleaseDeviceResources();
    void ChangeSize();
    Windows::Graphics::D2D_SIZE_U TargetSize() const;
    Windows::Graphics::D2D_SIZE_U CreateSwapChain();
    bool ResizeSwapChain(Windows::Graphics::D2D_SIZE_U size);
    void QueueSetSwapChain();
    void CreateTarget();
    bool IsLoss(Platform::HRESULT nCode);

    static constexpr std::uint32_t kMaxRecoveries = 3;

    std::weak_ptr<Platform::IEnvironment> m_wkEnvironment;
    Windows::Foundation::EventRegistrationToken m_tokenSizeChanged;
    Windows::Foundation::EventRegistrationToken m_tokenScaleChanged;
    Windows::Foundation::EventRegistrationToken m_tokenSuspending;
    Windows::Foundation::EventRegistrationToken m_tokenResuming;
    bool m_bActive = false;
    bool m_bSizeKnown = false;       // the panel has told its size
    std::uint32_t m_nRecoveries = 0; // since the last good present
    Platform::HRESULT m_nLossCode = Platform::DXGI_ERROR_DEVICE_REMOVED;
    std::uint64_t m_nDeviceGeneration = 0;
};

}
