#include "platform/fake/RecordingGraphicsFactory.h"

#include <stdexcept>
#include <utility>

#include "platform/fake/RecordingContext_p.h"
#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

using State = std::shared_ptr<RecordingState>;

RecordedCall CallTo(GraphicsCall eCall, std::uint64_t nObject = 0) {
    RecordedCall call;
    call.eCall = eCall;
    call.nObject = nObject;
    return call;
}

class ImmediateContext final : public ID3D11DeviceContext1 {
public:
    explicit ImmediateContext(State pState) : m_pState(std::move(pState)) {}
    void OMSetRenderTargetsNone() override {
        m_pState->Record(CallTo(GraphicsCall::OMSetRenderTargetsNone));
    }
    void Flush() override { m_pState->Record(CallTo(GraphicsCall::Flush)); }

private:
    const State m_pState;
};

class Device final : public ID3D11Device1 {
public:
    Device(State pState, D3D_DRIVER_TYPE eDriver, std::uint64_t nNumber)
        : m_pState(std::move(pState)),
          m_eDriver(eDriver),
          m_nNumber(nNumber),
          m_counted(m_pState, &RecordingState::nLiveDevices) {}

    D3D_DRIVER_TYPE DriverType() const override { return m_eDriver; }
    std::shared_ptr<ID3D11DeviceContext1> GetImmediateContext1() override {
        m_pState->Require(CallTo(GraphicsCall::GetImmediateContext1, m_nNumber), m_pLife.get());
        return std::make_shared<ImmediateContext>(m_pState);
    }
    void SetMaximumFrameLatency(std::uint32_t nFrames) override {
        RecordedCall call = CallTo(GraphicsCall::SetMaximumFrameLatency, m_nNumber);
        call.values = {nFrames};
        m_pState->Require(call, m_pLife.get());
    }
    void Trim() override { m_pState->Require(CallTo(GraphicsCall::Trim, m_nNumber)); }

    const std::shared_ptr<RecordingDeviceLife>& Life() const { return m_pLife; }
    std::uint64_t Number() const { return m_nNumber; }

private:
    const State m_pState;
    const D3D_DRIVER_TYPE m_eDriver;
    const std::uint64_t m_nNumber;
    const std::shared_ptr<RecordingDeviceLife> m_pLife = std::make_shared<RecordingDeviceLife>();
    const CountedLife m_counted;
};

std::shared_ptr<Device> OwnDevice(const std::shared_ptr<ID3D11Device1>& pDevice) {
    auto pOwn = std::dynamic_pointer_cast<Device>(pDevice);
    if (!pOwn) {
        throw Platform::InvalidArgumentException("a device of another kind");
    }
    return pOwn;
}

// Alive as long as anyone holds the buffer that it stands for.
class Surface final : public IDXGISurface {
public:
    Surface(std::shared_ptr<RecordingBuffers> pBuffers, std::shared_ptr<RecordingDeviceLife> pLife)
        : m_pBuffers(std::move(pBuffers)), m_pLife(std::move(pLife)) {}
    D2D_SIZE_U GetSize() const override { return m_pBuffers->back.Size(); }
    const std::shared_ptr<RecordingBuffers>& Buffers() const { return m_pBuffers; }
    const std::shared_ptr<RecordingDeviceLife>& Life() const { return m_pLife; }

private:
    const std::shared_ptr<RecordingBuffers> m_pBuffers;
    const std::shared_ptr<RecordingDeviceLife> m_pLife;
};

class SwapChain final : public IDXGISwapChain2 {
public:
    SwapChain(State pState, std::shared_ptr<RecordingDeviceLife> pLife, D2D_SIZE_U size,
              std::uint64_t nNumber)
        : m_pState(std::move(pState)),
          m_pLife(std::move(pLife)),
          m_nNumber(nNumber),
          m_counted(m_pState, &RecordingState::nLiveSwapChains) {
        m_pBuffers->back = PixelImage(size);
        m_pState->wkNewestBuffers = m_pBuffers;
    }

    Platform::HRESULT ResizeBuffers(std::uint32_t nBufferCount, std::uint32_t nWidth,
                                    std::uint32_t nHeight, std::uint32_t nFormat,
                                    std::uint32_t nFlags) override {
        RecordedCall call = CallTo(GraphicsCall::ResizeBuffers, m_nNumber);
        call.size = {nWidth, nHeight};
        call.values = {nBufferCount, nFormat, nFlags};
        // Whoever holds a buffer holds the chain's images with it.
        const bool bInUse = m_pBuffers.use_count() > 1;
        if (bInUse || nWidth == 0 || nHeight == 0) {
            call.nResult = DXGI_ERROR_INVALID_CALL;
        }
        const Platform::HRESULT nResult = m_pState->Try(std::move(call), m_pLife.get());
        if (nResult >= 0) {
            m_pBuffers->back = PixelImage({nWidth, nHeight});
            m_pBuffers->bFrameBegun = m_pBuffers->bFrameDrawn = false;
        }
        return nResult;
    }

    Platform::HRESULT Present1(std::uint32_t nSyncInterval, std::uint32_t nFlags) override {
        RecordedCall call = CallTo(GraphicsCall::Present1, m_nNumber);
        call.values = {nSyncInterval, nFlags};
        const Platform::HRESULT nResult = m_pState->Try(std::move(call), m_pLife.get());
        if (nResult >= 0 && m_pBuffers->bFrameDrawn) {
            const D2D_SIZE_U size = m_pBuffers->back.Size();
            std::swap(m_pBuffers->back, m_pBuffers->front);
            if (m_pBuffers->back.Size() != size) {
                m_pBuffers->back = PixelImage(size);
            }
            m_pBuffers->bFrameBegun = m_pBuffers->bFrameDrawn = false;
        }
        return nResult;
    }

    void SetMatrixTransform(const D2D_MATRIX_3X2_F& matrix) override {
        RecordedCall call = CallTo(GraphicsCall::SetMatrixTransform, m_nNumber);
        call.matrix = matrix;
        m_pState->Require(call, m_pLife.get());
    }

    std::shared_ptr<IDXGISurface> GetBuffer(std::uint32_t nIndex) override {
        RecordedCall call = CallTo(GraphicsCall::GetBuffer, m_nNumber);
        call.values = {nIndex};
        m_pState->Require(call, m_pLife.get());
        return std::make_shared<Surface>(m_pBuffers, m_pLife);
    }

private:
    const State m_pState;
    const std::shared_ptr<RecordingDeviceLife> m_pLife;
    const std::uint64_t m_nNumber;
    const std::shared_ptr<RecordingBuffers> m_pBuffers = std::make_shared<RecordingBuffers>();
    const CountedLife m_counted;
};

class DrawingDevice final : public ID2D1Device {
public:
    DrawingDevice(State pState, std::shared_ptr<RecordingDeviceLife> pLife)
        : m_pState(std::move(pState)), m_pLife(std::move(pLife)) {}
    std::shared_ptr<ID2D1DeviceContext> CreateDeviceContext() override {
        m_pState->Require(CallTo(GraphicsCall::CreateDeviceContext), m_pLife.get());
        return std::make_shared<RecordingContext>(m_pState, m_pLife);
    }

private:
    const State m_pState;
    const std::shared_ptr<RecordingDeviceLife> m_pLife;
};

class StrokeStyle final : public ID2D1StrokeStyle {};
class ImagingFactory final : public IWICImagingFactory2 {};
class TextFormat final : public IDWriteTextFormat {};

class DrawingFactory final : public ID2D1Factory2 {
public:
    explicit DrawingFactory(State pState) : m_pState(std::move(pState)) {}

    std::shared_ptr<ID2D1Device> CreateDevice(
        const std::shared_ptr<ID3D11Device1>& pDevice) override {
        const auto pOwn = OwnDevice(pDevice);
        m_pState->Require(CallTo(GraphicsCall::CreateDevice, pOwn->Number()), pOwn->Life().get());
        return std::make_shared<DrawingDevice>(m_pState, pOwn->Life());
    }

    std::shared_ptr<ID2D1Bitmap> CreateBitmapFromDxgiSurface(
        ID2D1DeviceContext& /*context*/, const std::shared_ptr<IDXGISurface>& pSurface,
        const D2D1_BITMAP_PROPERTIES& properties) override {
        const auto pOwn = std::dynamic_pointer_cast<Surface>(pSurface);
        if (!pOwn) {
            throw Platform::InvalidArgumentException("a surface of another kind");
        }
        RecordedCall call = CallTo(GraphicsCall::CreateBitmapFromDxgiSurface);
        call.size = pOwn->GetSize();
        call.fDpiX = properties.dpiX;
        call.fDpiY = properties.dpiY;
        call.values = {properties.format, properties.alphaMode, properties.bitmapOptions};
        m_pState->Require(call, pOwn->Life().get());
        auto pBitmap = std::make_shared<RecordingBitmap>(m_pState, pOwn->Life(), pOwn->Buffers());
        m_pState->calls.back().nObject = pBitmap->Number();
        return pBitmap;
    }

    std::shared_ptr<ID2D1StrokeStyle> CreateStrokeStyle(
        const D2D1_STROKE_STYLE_PROPERTIES& properties, std::span<const float> dashes) override {
        RecordedCall call = CallTo(GraphicsCall::CreateStrokeStyle);
        call.values = {properties.startCap, properties.endCap, properties.dashCap,
                       properties.lineJoin, properties.dashStyle};
        call.floats = {properties.miterLimit, properties.dashOffset};
        call.floats.insert(call.floats.end(), dashes.begin(), dashes.end());
        m_pState->Require(call);
        return std::make_shared<StrokeStyle>();
    }

private:
    const State m_pState;
};

class TextFactory final : public IDWriteFactory {
public:
    explicit TextFactory(State pState) : m_pState(std::move(pState)) {}
    std::shared_ptr<IDWriteTextFormat> CreateTextFormat(const char* szFamily, std::uint32_t nWeight,
                                                        std::uint32_t nStyle,
                                                        std::uint32_t nStretch, float fSize,
                                                        const char* szLocale) override {
        RecordedCall call = CallTo(GraphicsCall::CreateTextFormat);
        call.strText = std::string(szFamily) + "|" + szLocale;
        call.values = {nWeight, nStyle, nStretch};
        call.floats = {fSize};
        m_pState->Require(call);
        return std::make_shared<TextFormat>();
    }

private:
    const State m_pState;
};

}

RecordingGraphicsFactory::RecordingGraphicsFactory()
    : m_pState(std::make_shared<RecordingState>()) {}
RecordingGraphicsFactory::~RecordingGraphicsFactory() = default;

std::shared_ptr<ID2D1Factory2> RecordingGraphicsFactory::D2D1CreateFactory() {
    m_pState->Require(CallTo(GraphicsCall::D2D1CreateFactory));
    return std::make_shared<DrawingFactory>(m_pState);
}

std::shared_ptr<IWICImagingFactory2> RecordingGraphicsFactory::CreateImagingFactory() {
    m_pState->Require(CallTo(GraphicsCall::CreateImagingFactory));
    return std::make_shared<ImagingFactory>();
}

std::shared_ptr<IDWriteFactory> RecordingGraphicsFactory::DWriteCreateFactory() {
    m_pState->Require(CallTo(GraphicsCall::DWriteCreateFactory));
    return std::make_shared<TextFactory>(m_pState);
}

Platform::HRESULT RecordingGraphicsFactory::D3D11CreateDevice(
    const DeviceRequest& request, std::shared_ptr<ID3D11Device1>& pDevice) {
    pDevice.reset();
    RecordedCall call = CallTo(GraphicsCall::D3D11CreateDevice, m_pState->NewObject());
    call.values = {static_cast<std::uint32_t>(request.eDriver), request.nFlags};
    call.values.insert(call.values.end(), request.featureLevels.begin(),
                       request.featureLevels.end());
    call.values.push_back(request.nSdkVersion);
    if (request.eDriver == D3D_DRIVER_TYPE::HARDWARE && !m_pState->bHasHardware) {
        call.nResult = DXGI_ERROR_UNSUPPORTED;
    }
    const std::uint64_t nNumber = call.nObject;
    const Platform::HRESULT nResult = m_pState->Try(std::move(call));
    if (nResult >= 0) {
        pDevice = std::make_shared<Device>(m_pState, request.eDriver, nNumber);
    }
    return nResult;
}

std::shared_ptr<IDXGISwapChain2> RecordingGraphicsFactory::CreateSwapChainForComposition(
    const std::shared_ptr<ID3D11Device1>& pDevice, const DXGI_SWAP_CHAIN_DESC1& description) {
    const auto pOwn = OwnDevice(pDevice);
    RecordedCall call = CallTo(GraphicsCall::CreateSwapChainForComposition, m_pState->NewObject());
    call.size = {description.Width, description.Height};
    call.values = {description.Format,        description.Stereo ? 1U : 0U, description.SampleCount,
                   description.SampleQuality, description.BufferUsage,      description.BufferCount,
                   description.Scaling,       description.SwapEffect,       description.AlphaMode,
                   description.Flags};
    m_pState->Require(call, pOwn->Life().get());
    return std::make_shared<SwapChain>(m_pState, pOwn->Life(), call.size, call.nObject);
}

// --- the record, the counters, the faults ---

const std::vector<RecordedCall>& RecordingGraphicsFactory::Calls() const {
    return m_pState->calls;
}

std::vector<RecordedCall> RecordingGraphicsFactory::CallsOf(GraphicsCall eCall) const {
    std::vector<RecordedCall> found;
    for (const RecordedCall& call : m_pState->calls) {
        if (call.eCall == eCall) {
            found.push_back(call);
        }
    }
    return found;
}

std::size_t RecordingGraphicsFactory::Count(GraphicsCall eCall) const {
    return CallsOf(eCall).size();
}

void RecordingGraphicsFactory::ClearCalls() {
    m_pState->calls.clear();
}

PixelImage RecordingGraphicsFactory::FrontImage() const {
    if (!m_pState->bComposes) {
        throw std::logic_error("frames have no pixels: ComposePixels");
    }
    const auto pBuffers = m_pState->wkNewestBuffers.lock();
    return pBuffers ? pBuffers->front : PixelImage();
}

std::int64_t RecordingGraphicsFactory::LiveBitmaps() const {
    return m_pState->nLiveBitmaps;
}

std::int64_t RecordingGraphicsFactory::LiveBitmapBytes() const {
    return m_pState->nLiveBitmapBytes;
}

std::int64_t RecordingGraphicsFactory::LiveDevices() const {
    return m_pState->nLiveDevices;
}

std::int64_t RecordingGraphicsFactory::LiveSwapChains() const {
    return m_pState->nLiveSwapChains;
}

void RecordingGraphicsFactory::ComposePixels(bool bCompose) {
    m_pState->bComposes = bCompose;
}

void RecordingGraphicsFactory::HasHardware(bool bHas) {
    m_pState->bHasHardware = bHas;
}

void RecordingGraphicsFactory::FailCall(std::uint32_t nCall, Platform::HRESULT nCode) {
    m_pState->faults.push_back({std::nullopt, nCall, nCode, false, false});
}

void RecordingGraphicsFactory::FailCallOf(GraphicsCall eCall, std::uint32_t nCall,
                                          Platform::HRESULT nCode, bool bForEver) {
    m_pState->faults.push_back({eCall, nCall, nCode, false, bForEver});
}

void RecordingGraphicsFactory::LoseDeviceAtPresent(std::uint32_t nCall, bool bForEver) {
    m_pState->faults.push_back(
        {GraphicsCall::Present1, nCall, Platform::DXGI_ERROR_DEVICE_REMOVED, true, bForEver});
}

void RecordingGraphicsFactory::LoseDeviceAtResize(std::uint32_t nCall, bool bForEver) {
    m_pState->faults.push_back(
        {GraphicsCall::ResizeBuffers, nCall, Platform::DXGI_ERROR_DEVICE_RESET, true, bForEver});
}

void RecordingGraphicsFactory::ClearFaults() {
    m_pState->faults.clear();
}

std::uint32_t RecordingGraphicsFactory::FaultsHappened() const {
    return m_pState->nFaultsHappened;
}

}
