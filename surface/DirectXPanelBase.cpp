#include "surface/DirectXPanelBase.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix
using Platform::HRESULT;
using Windows::UI::Xaml::Controls::SwapChainPanel;

namespace {

constexpr std::uint32_t kBufferCount = 2;
constexpr std::uint32_t kSyncInterval = 1;
constexpr std::uint32_t kMaxFrameLatency = 1;
constexpr float kDotsPerInch = 96.0F;

// From 11_1 down to 9_1, the most wanted first.
constexpr std::array<std::uint32_t, 7> kFeatureLevels = {0xb100, 0xb000, 0xa100, 0xa000,
                                                         0x9300, 0x9200, 0x9100};

void ThrowIfFailed(HRESULT nCode, const char* szCall) {
    if (nCode < 0) {
        throw Platform::Exception(nCode, szCall);
    }
}

// Truncated, and never empty: a chain has no buffers without pixels.
std::uint32_t ToPixels(float fLength) {
    return static_cast<std::uint32_t>(std::max(fLength, 1.0F));
}

std::shared_ptr<IGraphicsFactory> GraphicsFactory() {
    return Platform::Environment()->GraphicsFactory();
}

std::shared_ptr<ID3D11Device1> MakeDevice(D3D_DRIVER_TYPE eDriver, HRESULT& nCode) {
    DeviceRequest request;
    request.eDriver = eDriver;
    request.nFlags = D3D11_CREATE_DEVICE_BGRA_SUPPORT;
    request.featureLevels = kFeatureLevels;
    request.nSdkVersion = D3D11_SDK_VERSION;
    std::shared_ptr<ID3D11Device1> pDevice;
    nCode = GraphicsFactory()->D3D11CreateDevice(request, pDevice);
    return nCode < 0 ? nullptr : pDevice;
}

}

DirectXPanelBase::DirectXPanelBase(std::shared_ptr<SwapChainPanel> pPanel)
    : m_pPanel(std::move(pPanel)) {}

DirectXPanelBase::~DirectXPanelBase() {
    Unsubscribe();
}

void DirectXPanelBase::Initialize() {
    if (m_bActive || Windows::ApplicationModel::DesignMode::DesignModeEnabled()) {
        return;
    }
    CreateDeviceIndependentResources();
    Subscribe();
    m_bActive = true;
}

void DirectXPanelBase::Subscribe() {
    const std::weak_ptr<DirectXPanelBase> wkSelf = weak_from_this();
    const auto fnCall = [wkSelf](auto fnHandler) {
        return [wkSelf, fnHandler](const auto&... args) {
            if (const auto pSelf = wkSelf.lock()) {
                ((*pSelf).*fnHandler)(args...);
            }
        };
    };
    const auto pEnvironment = Platform::Environment();
    m_wkEnvironment = pEnvironment;
    m_tokenSizeChanged = m_pPanel->SizeChanged.add(fnCall(&DirectXPanelBase::OnSizeChanged));
    m_tokenScaleChanged =
        m_pPanel->CompositionScaleChanged.add(fnCall(&DirectXPanelBase::OnCompositionScaleChanged));
    m_tokenSuspending = pEnvironment->Suspending.add(fnCall(&DirectXPanelBase::OnSuspending));
    m_tokenResuming = pEnvironment->Resuming.add(fnCall(&DirectXPanelBase::OnResuming));
}

void DirectXPanelBase::Unsubscribe() {
    if (!m_bActive) {
        return;
    }
    m_bActive = false;
    m_pPanel->SizeChanged.remove(m_tokenSizeChanged);
    m_pPanel->CompositionScaleChanged.remove(m_tokenScaleChanged);
    if (const auto pEnvironment = m_wkEnvironment.lock()) {
        pEnvironment->Suspending.remove(m_tokenSuspending);
        pEnvironment->Resuming.remove(m_tokenResuming);
    }
}

void DirectXPanelBase::Release() {
    Unsubscribe();
    m_bLoadingComplete = false;
    m_swapChain.reset();
    m_d2dTargetBitmap.reset();
    m_d2dContext.reset();
    m_d2dDevice.reset();
    m_d3dContext.reset();
    m_d3dDevice.reset();
    m_d2dFactory.reset();
    m_wicFactory.reset();
}

std::shared_ptr<IWICImagingFactory2> DirectXPanelBase::GetWicFactory() const {
    return m_wicFactory;
}

void DirectXPanelBase::CreateDeviceIndependentResources() {
    m_d2dFactory = GraphicsFactory()->D2D1CreateFactory();
    m_wicFactory = GraphicsFactory()->CreateImagingFactory();
}

void DirectXPanelBase::CreateDeviceResources() {
    HRESULT nCode = Platform::S_OK;
    auto pDevice = MakeDevice(D3D_DRIVER_TYPE::HARDWARE, nCode);
    if (!pDevice) {
        pDevice = MakeDevice(D3D_DRIVER_TYPE::WARP, nCode);
    }
    ThrowIfFailed(nCode, "D3D11CreateDevice");
    if (!pDevice) {
        throw Platform::Exception(Platform::E_FAIL, "D3D11CreateDevice");
    }
    m_d3dDevice = std::move(pDevice);
    m_d3dContext = m_d3dDevice->GetImmediateContext1();
    m_d2dDevice = m_d2dFactory->CreateDevice(m_d3dDevice);
    m_d2dContext = m_d2dDevice->CreateDeviceContext();
    m_d2dContext->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
}

void DirectXPanelBase::ReleaseTarget() {
    if (m_d2dContext) {
        m_d2dContext->SetTarget(nullptr);
    }
    m_d2dTargetBitmap.reset();
}

D2D_SIZE_U DirectXPanelBase::TargetSize() const {
    return {ToPixels(m_renderTargetWidth), ToPixels(m_renderTargetHeight)};
}

void DirectXPanelBase::CreateSizeDependentResources() {
    ReleaseTarget();
    m_d3dContext->OMSetRenderTargetsNone();
    m_d3dContext->Flush();
    m_renderTargetWidth = m_width * m_compositionScaleX;
    m_renderTargetHeight = m_height * m_compositionScaleY;

    if (m_swapChain) {
        if (!ResizeSwapChain(TargetSize())) {
            return;
        }
    } else if (const D2D_SIZE_U size = CreateSwapChain(); m_bSizeKnown && size != TargetSize()) {
        // Made at the window's size although the panel's is known (after a
        // loss): no event will bring it to the panel's.
        if (!ResizeSwapChain(TargetSize())) {
            return;
        }
    }
    D2D_MATRIX_3X2_F matrix;
    matrix._11 = 1.0F / m_compositionScaleX;
    matrix._22 = 1.0F / m_compositionScaleY;
    m_swapChain->SetMatrixTransform(matrix);
    CreateTarget();
    m_bSizeChangePending = false;
}

// Answers the size of the chain's buffers.
D2D_SIZE_U DirectXPanelBase::CreateSwapChain() {
    const Windows::Foundation::Rect rcWindow = Platform::Environment()->WindowBounds();
    DXGI_SWAP_CHAIN_DESC1 description;
    description.Width = ToPixels(rcWindow.Width);
    description.Height = ToPixels(rcWindow.Height);
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.BufferCount = kBufferCount;
    description.AlphaMode = m_alphaMode;
    m_swapChain = GraphicsFactory()->CreateSwapChainForComposition(m_d3dDevice, description);
    QueueSetSwapChain(); // first: the chain is kept, whatever fails after it
    m_d3dDevice->SetMaximumFrameLatency(kMaxFrameLatency);
    return {description.Width, description.Height};
}

// False when the device was lost and everything has been made anew instead.
bool DirectXPanelBase::ResizeSwapChain(D2D_SIZE_U size) {
    const HRESULT nCode = m_swapChain->ResizeBuffers(kBufferCount, size.width, size.height,
                                                     DXGI_FORMAT_B8G8R8A8_UNORM, 0);
    if (IsLoss(nCode)) {
        OnDeviceLost();
        return false;
    }
    ThrowIfFailed(nCode, "ResizeBuffers");
    return true;
}

// A chain that was replaced before its turn came is not shown any more.
void DirectXPanelBase::QueueSetSwapChain() {
    Platform::Environment()->MainDispatcher()->RunAsync(
        Windows::UI::Core::CoreDispatcherPriority::normal,
        [wkSelf = weak_from_this(), wkSwapChain = std::weak_ptr(m_swapChain)] {
            const auto pSelf = wkSelf.lock();
            const auto pSwapChain = wkSwapChain.lock();
            if (pSelf && pSwapChain && pSelf->m_swapChain == pSwapChain) {
                pSelf->m_pPanel->SetSwapChain(pSwapChain);
            }
        });
}

void DirectXPanelBase::CreateTarget() {
    D2D1_BITMAP_PROPERTIES properties;
    properties.format = DXGI_FORMAT_B8G8R8A8_UNORM;
    properties.alphaMode = D2D1_ALPHA_MODE_PREMULTIPLIED;
    properties.dpiX = kDotsPerInch * m_compositionScaleX;
    properties.dpiY = kDotsPerInch * m_compositionScaleY;
    properties.bitmapOptions = D2D1_BITMAP_OPTIONS_TARGET_CANNOT_DRAW;
    const std::shared_ptr<IDXGISurface> pSurface = m_swapChain->GetBuffer(0);
    auto pTarget = m_d2dFactory->CreateBitmapFromDxgiSurface(*m_d2dContext, pSurface, properties);
    m_d2dContext->SetDpi(properties.dpiX, properties.dpiY);
    m_d2dContext->SetTarget(pTarget);
    m_d2dTargetBitmap = std::move(pTarget);
}

void DirectXPanelBase::EnsureResources() {
    if (!m_bLoadingComplete || !m_d2dContext) {
        // Also what was made on a device that was not completed: brushes and
        // targets of one device do not serve another.
        ReleaseDeviceResources();
        CreateDeviceResources();
    }
    if (!m_d2dTargetBitmap || m_bSizeChangePending) {
        CreateSizeDependentResources();
    }
}

void DirectXPanelBase::ReleaseDeviceResources() {
    m_bLoadingComplete = false;
    m_swapChain.reset();
    if (m_d3dContext) {
        m_d3dContext->OMSetRenderTargetsNone();
    }
    ReleaseTarget();
    m_d2dContext.reset();
    m_d2dDevice.reset();
    if (m_d3dContext) {
        m_d3dContext->Flush();
    }
}

void DirectXPanelBase::OnDeviceLost() {
    ReleaseDeviceResources();
    ++m_nDeviceGeneration;
    if (m_nRecoveries == kMaxRecoveries) {
        throw Platform::Exception(m_nLossCode, "the device is lost again and again");
    }
    ++m_nRecoveries;
    CreateDeviceResources();
    CreateSizeDependentResources();
}

bool DirectXPanelBase::IsLoss(HRESULT nCode) {
    if (nCode != Platform::DXGI_ERROR_DEVICE_REMOVED &&
        nCode != Platform::DXGI_ERROR_DEVICE_RESET) {
        return false;
    }
    m_nLossCode = nCode;
    return true;
}

void DirectXPanelBase::OnSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs& args) {
    m_bSizeKnown = true;
    if (args.NewSize.Width == m_width && args.NewSize.Height == m_height) {
        return;
    }
    const concurrency::critical_section::scoped_lock lock(m_lock);
    m_width = std::max(args.NewSize.Width, 1.0F);
    m_height = std::max(args.NewSize.Height, 1.0F);
    ChangeSize();
}

void DirectXPanelBase::OnCompositionScaleChanged() {
    if (m_pPanel->CompositionScaleX() == m_compositionScaleX &&
        m_pPanel->CompositionScaleY() == m_compositionScaleY) {
        return;
    }
    const concurrency::critical_section::scoped_lock lock(m_lock);
    m_compositionScaleX = m_pPanel->CompositionScaleX();
    m_compositionScaleY = m_pPanel->CompositionScaleY();
    ChangeSize();
}

void DirectXPanelBase::ChangeSize() {
    m_bSizeChangePending = true;
    if (m_bFrameOpen || !m_d2dContext) {
        return; // the next frame takes it over
    }
    CreateSizeDependentResources();
}

void DirectXPanelBase::OnSuspending() {
    const concurrency::critical_section::scoped_lock lock(m_lock);
    if (m_d3dDevice) {
        m_d3dDevice->Trim();
    }
}

// Nothing was given up that a resume would have to bring back.
void DirectXPanelBase::OnResuming() {}

void DirectXPanelBase::Present() {
    const HRESULT nCode = m_swapChain->Present1(kSyncInterval, 0);
    if (IsLoss(nCode)) {
        OnDeviceLost();
        return;
    }
    ThrowIfFailed(nCode, "Present1");
    m_nRecoveries = 0;
}

}
