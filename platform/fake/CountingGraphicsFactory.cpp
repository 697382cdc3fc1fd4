#include "platform/fake/CountingGraphicsFactory.h"

#include <numeric>
#include <utility>

#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

using Fault = CountingGraphicsFactory::Fault;

// The oldest fault whose turn it is; another one due at the same call waits for
// the next call that it matches.
std::optional<Fault> CountingGraphicsFactory::State::TakeFault(GraphicsCall eCall) {
    std::optional<Fault> taken;
    for (auto it = faults.begin(); it != faults.end();) {
        const bool bMatches = !it->eCall || *it->eCall == eCall;
        const bool bDue = bMatches && it->nCallsLeft == 1;
        if (bMatches && !bDue) {
            --it->nCallsLeft;
        }
        if (!bDue || taken) {
            ++it;
            continue;
        }
        taken = *it;
        it = it->bForEver ? it + 1 : faults.erase(it);
    }
    return taken;
}

Platform::HRESULT CountingGraphicsFactory::State::Try(GraphicsCall eCall, DeviceLife* pDevice) {
    ++counts[eCall];
    if (const std::optional<Fault> fault = TakeFault(eCall)) {
        ++nFaultsHappened;
        if (fault->bLoss && pDevice) {
            pDevice->bLost = true;
        }
        return fault->nCode;
    }
    return pDevice && pDevice->bLost ? Platform::DXGI_ERROR_DEVICE_REMOVED : Platform::S_OK;
}

void CountingGraphicsFactory::State::Require(GraphicsCall eCall, DeviceLife* pDevice) {
    const Platform::HRESULT nResult = Try(eCall, pDevice);
    if (nResult < 0) {
        throw Platform::Exception(nResult, "a call to the device");
    }
}

namespace {

using State = std::shared_ptr<CountingGraphicsFactory::State>;
using DeviceLife = CountingGraphicsFactory::DeviceLife;
using Life = std::shared_ptr<DeviceLife>;
using LifeToken = std::shared_ptr<int>;

struct Buffers {
    D2D_SIZE_U size;
};

class ImmediateContext final : public ID3D11DeviceContext1 {
public:
    void OMSetRenderTargetsNone() override {}
    void Flush() override {}
};

struct Device final : public ID3D11Device1 {
    Device(State pTheState, D3D_DRIVER_TYPE eTheDriver)
        : pState(std::move(pTheState)), eDriver(eTheDriver), counted(pState->devices) {}

    D3D_DRIVER_TYPE DriverType() const override { return eDriver; }
    std::shared_ptr<ID3D11DeviceContext1> GetImmediateContext1() override {
        pState->Require(GraphicsCall::Other, pLife.get());
        return std::make_shared<ImmediateContext>();
    }
    void SetMaximumFrameLatency(std::uint32_t) override {
        pState->Require(GraphicsCall::Other, pLife.get());
    }
    void Trim() override { pState->Require(GraphicsCall::Trim); }

    const State pState;
    const D3D_DRIVER_TYPE eDriver;
    const LifeToken counted;
    const Life pLife = std::make_shared<DeviceLife>();
};

// Alive as long as anyone holds the buffer that it stands for.
struct Surface final : public IDXGISurface {
    Surface(std::shared_ptr<Buffers> pTheBuffers, Life pTheLife)
        : pBuffers(std::move(pTheBuffers)), pLife(std::move(pTheLife)) {}
    D2D_SIZE_U GetSize() const override { return pBuffers->size; }

    const std::shared_ptr<Buffers> pBuffers;
    const Life pLife;
};

class SwapChain final : public IDXGISwapChain2 {
public:
    SwapChain(State pState, Life pLife, D2D_SIZE_U size)
        : m_pState(std::move(pState)), m_pLife(std::move(pLife)), m_counted(m_pState->chains) {
        m_pBuffers->size = size;
    }

    Platform::HRESULT ResizeBuffers(std::uint32_t, std::uint32_t nWidth, std::uint32_t nHeight,
                                    std::uint32_t, std::uint32_t) override {
        const Platform::HRESULT nResult = m_pState->Try(GraphicsCall::ResizeBuffers, m_pLife.get());
        const bool bInUse = m_pBuffers.use_count() > 1;
        if (nResult >= 0 && (bInUse || nWidth == 0 || nHeight == 0)) {
            return DXGI_ERROR_INVALID_CALL;
        }
        if (nResult >= 0) {
            m_pBuffers->size = {nWidth, nHeight};
        }
        return nResult;
    }
    Platform::HRESULT Present1(std::uint32_t, std::uint32_t) override {
        return m_pState->Try(GraphicsCall::Present1, m_pLife.get());
    }
    void SetMatrixTransform(const D2D_MATRIX_3X2_F& matrix) override {
        m_pState->Require(GraphicsCall::Other, m_pLife.get());
        m_pState->matrix = matrix;
    }
    std::shared_ptr<IDXGISurface> GetBuffer(std::uint32_t) override {
        m_pState->Require(GraphicsCall::Other, m_pLife.get());
        return std::make_shared<Surface>(m_pBuffers, m_pLife);
    }

private:
    const State m_pState;
    const Life m_pLife;
    const LifeToken m_counted;
    const std::shared_ptr<Buffers> m_pBuffers = std::make_shared<Buffers>();
};

class Bitmap final : public ID2D1Bitmap {
public:
    Bitmap(State pState, Life pLife, D2D_SIZE_U size)
        : m_pState(std::move(pState)),
          m_pLife(std::move(pLife)),
          m_counted(m_pState->bitmaps),
          m_size(size) {}
    // On the buffers of a chain; not counted.
    Bitmap(State pState, const Surface& surface)
        : m_pState(std::move(pState)),
          m_pLife(surface.pLife),
          m_pBuffers(surface.pBuffers),
          m_size(surface.GetSize()) {}

    D2D_SIZE_U GetPixelSize() const override { return m_size; }
    bool IsDeviceAlive() const override { return !m_pLife->bLost; }
    void CopyFromRenderTarget(ID2D1DeviceContext& context) override {
        m_pState->Require(GraphicsCall::CopyFromRenderTarget, m_pLife.get());
        if (!context.GetTarget()) {
            throw Platform::Exception(D2DERR_WRONG_STATE, "there is no target to copy from");
        }
    }
    std::vector<std::uint8_t> ReadPixels() const override { return {}; }

private:
    const State m_pState;
    const Life m_pLife;
    const LifeToken m_counted;
    const std::shared_ptr<Buffers> m_pBuffers;
    const D2D_SIZE_U m_size;
};

class Brush final : public ID2D1SolidColorBrush {
public:
    explicit Brush(const D2D_COLOR_F& color) : m_color(color) {}
    D2D_COLOR_F GetColor() const override { return m_color; }
    void SetOpacity(float fOpacity) override { m_fOpacity = fOpacity; }
    float GetOpacity() const override { return m_fOpacity; }

private:
    const D2D_COLOR_F m_color;
    float m_fOpacity = 1.0F;
};

class Context final : public ID2D1DeviceContext {
public:
    Context(State pState, Life pLife) : m_pState(std::move(pState)), m_pLife(std::move(pLife)) {}

    void SetUnitMode(std::uint32_t) override {}
    void SetTextAntialiasMode(std::uint32_t) override {}
    void SetDpi(float fDpiX, float fDpiY) override { m_pState->dpi = {fDpiX, fDpiY}; }
    void SetTarget(std::shared_ptr<ID2D1Bitmap> pTarget) override {
        m_pTarget = std::move(pTarget);
    }
    std::shared_ptr<ID2D1Bitmap> GetTarget() const override { return m_pTarget; }

    std::shared_ptr<ID2D1Bitmap> CreateBitmap(D2D_SIZE_U size, std::span<const std::uint8_t>,
                                              std::uint32_t,
                                              const D2D1_BITMAP_PROPERTIES&) override {
        m_pState->Require(GraphicsCall::CreateBitmap, m_pLife.get());
        if (size.width == 0 || size.height == 0) {
            throw Platform::InvalidArgumentException("a bitmap without pixels");
        }
        return std::make_shared<Bitmap>(m_pState, m_pLife, size);
    }
    std::shared_ptr<ID2D1SolidColorBrush> CreateSolidColorBrush(const D2D_COLOR_F& color) override {
        m_pState->Require(GraphicsCall::CreateSolidColorBrush, m_pLife.get());
        return std::make_shared<Brush>(color);
    }

    void BeginDraw() override {
        m_pState->Require(GraphicsCall::BeginDraw, m_pLife.get());
        if (m_bDrawing || !m_pTarget) {
            throw Platform::Exception(D2DERR_WRONG_STATE, "a frame within a frame, or no target");
        }
        m_bDrawing = true;
    }
    void EndDraw() override {
        RequireFrame();
        m_bDrawing = false;
        m_pState->Require(GraphicsCall::EndDraw, m_pLife.get());
    }
    bool IsDrawing() const override { return m_bDrawing; }

    void Clear(const D2D_COLOR_F&) override { RequireFrame(); }
    void SetTransform(const D2D_MATRIX_3X2_F&) override {}
    void DrawBitmap(const std::shared_ptr<ID2D1Bitmap>&, const D2D_RECT_F&, float,
                    D2D1_INTERPOLATION_MODE, const D2D_RECT_F&) override {
        RequireFrame();
    }
    void FillRectangle(const D2D_RECT_F&, const std::shared_ptr<ID2D1SolidColorBrush>&) override {
        RequireFrame();
    }
    void DrawRectangle(const D2D_RECT_F&, const std::shared_ptr<ID2D1SolidColorBrush>&,
                       float) override {
        RequireFrame();
    }

private:
    void RequireFrame() const {
        if (!m_bDrawing) {
            throw Platform::Exception(D2DERR_WRONG_STATE, "drawing outside of a frame");
        }
    }

    const State m_pState;
    const Life m_pLife;
    std::shared_ptr<ID2D1Bitmap> m_pTarget;
    bool m_bDrawing = false;
};

class DrawingDevice final : public ID2D1Device {
public:
    DrawingDevice(State pState, Life pLife)
        : m_pState(std::move(pState)), m_pLife(std::move(pLife)) {}
    std::shared_ptr<ID2D1DeviceContext> CreateDeviceContext() override {
        m_pState->Require(GraphicsCall::Other, m_pLife.get());
        return std::make_shared<Context>(m_pState, m_pLife);
    }

private:
    const State m_pState;
    const Life m_pLife;
};

class DrawingFactory final : public ID2D1Factory2 {
public:
    explicit DrawingFactory(State pState) : m_pState(std::move(pState)) {}

    std::shared_ptr<ID2D1Device> CreateDevice(
        const std::shared_ptr<ID3D11Device1>& pDevice) override {
        const Life& pLife = dynamic_cast<Device&>(*pDevice).pLife;
        m_pState->Require(GraphicsCall::Other, pLife.get());
        return std::make_shared<DrawingDevice>(m_pState, pLife);
    }
    std::shared_ptr<ID2D1Bitmap> CreateBitmapFromDxgiSurface(
        ID2D1DeviceContext&, const std::shared_ptr<IDXGISurface>& pSurface,
        const D2D1_BITMAP_PROPERTIES&) override {
        const auto& surface = dynamic_cast<Surface&>(*pSurface);
        m_pState->Require(GraphicsCall::Other, surface.pLife.get());
        return std::make_shared<Bitmap>(m_pState, surface);
    }
    std::shared_ptr<ID2D1StrokeStyle> CreateStrokeStyle(const D2D1_STROKE_STYLE_PROPERTIES&,
                                                        std::span<const float>) override {
        m_pState->Require(GraphicsCall::Other);
        return std::make_shared<ID2D1StrokeStyle>();
    }

private:
    const State m_pState;
};

class TextFactory final : public IDWriteFactory {
public:
    explicit TextFactory(State pState) : m_pState(std::move(pState)) {}
    std::shared_ptr<IDWriteTextFormat> CreateTextFormat(const char*, std::uint32_t, std::uint32_t,
                                                        std::uint32_t, float,
                                                        const char*) override {
        m_pState->Require(GraphicsCall::Other);
        return std::make_shared<IDWriteTextFormat>();
    }

private:
    const State m_pState;
};

}

std::shared_ptr<ID2D1Factory2> CountingGraphicsFactory::D2D1CreateFactory() {
    m_pState->Require(GraphicsCall::Other);
    return std::make_shared<DrawingFactory>(m_pState);
}

std::shared_ptr<IWICImagingFactory2> CountingGraphicsFactory::CreateImagingFactory() {
    m_pState->Require(GraphicsCall::Other);
    return std::make_shared<IWICImagingFactory2>();
}

std::shared_ptr<IDWriteFactory> CountingGraphicsFactory::DWriteCreateFactory() {
    m_pState->Require(GraphicsCall::Other);
    return std::make_shared<TextFactory>(m_pState);
}

Platform::HRESULT CountingGraphicsFactory::D3D11CreateDevice(
    const DeviceRequest& request, std::shared_ptr<ID3D11Device1>& pDevice) {
    pDevice.reset();
    const Platform::HRESULT nResult = m_pState->Try(GraphicsCall::D3D11CreateDevice);
    if (nResult < 0) {
        return nResult;
    }
    if (request.eDriver == D3D_DRIVER_TYPE::HARDWARE && !m_pState->bHasHardware) {
        return DXGI_ERROR_UNSUPPORTED;
    }
    pDevice = std::make_shared<Device>(m_pState, request.eDriver);
    return Platform::S_OK;
}

std::shared_ptr<IDXGISwapChain2> CountingGraphicsFactory::CreateSwapChainForComposition(
    const std::shared_ptr<ID3D11Device1>& pDevice, const DXGI_SWAP_CHAIN_DESC1& description) {
    const Life& pLife = dynamic_cast<Device&>(*pDevice).pLife;
    m_pState->Require(GraphicsCall::Other, pLife.get());
    return std::make_shared<SwapChain>(m_pState, pLife,
                                       D2D_SIZE_U{description.Width, description.Height});
}

std::size_t CountingGraphicsFactory::CountAll() const {
    return std::accumulate(m_pState->counts.begin(), m_pState->counts.end(), std::size_t{0},
                           [](std::size_t n, const auto& entry) { return n + entry.second; });
}

void CountingGraphicsFactory::LoseDeviceAtPresent(std::uint32_t nCall, bool bForEver) {
    m_pState->faults.push_back(
        {GraphicsCall::Present1, nCall, Platform::DXGI_ERROR_DEVICE_REMOVED, true, bForEver});
}

void CountingGraphicsFactory::LoseDeviceAtResize(std::uint32_t nCall) {
    m_pState->faults.push_back(
        {GraphicsCall::ResizeBuffers, nCall, Platform::DXGI_ERROR_DEVICE_RESET, true});
}

}
