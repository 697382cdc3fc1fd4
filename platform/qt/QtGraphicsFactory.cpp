#include "platform/qt/QtGraphicsFactory.h"

#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsContext_p.h"
#include "platform/qt/QtGraphicsSurface_p.h"
#include "platform/qt/QtSwapChain.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

// A painter has no queue of commands and no targets bound aside from its own.
class RasterImmediateContext final : public ID3D11DeviceContext1 {
public:
    void OMSetRenderTargetsNone() override {}
    void Flush() override {}
};

class RasterDevice final : public ID3D11Device1 {
public:
    D3D_DRIVER_TYPE DriverType() const override { return D3D_DRIVER_TYPE::WARP; }
    std::shared_ptr<ID3D11DeviceContext1> GetImmediateContext1() override {
        return std::make_shared<RasterImmediateContext>();
    }
    void SetMaximumFrameLatency(std::uint32_t /*nFrames*/) override {}
    void Trim() override {}
    const std::shared_ptr<QtDeviceState>& State() const { return m_pState; }

private:
    const std::shared_ptr<QtDeviceState> m_pState = std::make_shared<QtDeviceState>();
};

const std::shared_ptr<QtDeviceState>& StateOf(const std::shared_ptr<ID3D11Device1>& pDevice) {
    const auto* const pRaster = dynamic_cast<const RasterDevice*>(pDevice.get());
    if (!pRaster) {
        throw Platform::InvalidArgumentException("a device of another kind");
    }
    if (pRaster->State()->bLost) {
        throw Platform::Exception(Platform::DXGI_ERROR_DEVICE_REMOVED, "the device is lost");
    }
    return pRaster->State();
}

class RasterDrawingDevice final : public ID2D1Device {
public:
    RasterDrawingDevice(std::shared_ptr<QtGraphicsState> pState,
                        std::shared_ptr<QtDeviceState> pDevice)
        : m_pState(std::move(pState)), m_pDevice(std::move(pDevice)) {}
    std::shared_ptr<ID2D1DeviceContext> CreateDeviceContext() override {
        return std::make_shared<QtGraphicsContext>(m_pState, m_pDevice);
    }

private:
    const std::shared_ptr<QtGraphicsState> m_pState;
    const std::shared_ptr<QtDeviceState> m_pDevice;
};

// Held by callers as proof that it was made; nothing draws with them.
class StrokeStyle final : public ID2D1StrokeStyle {};
class ImagingFactory final : public IWICImagingFactory2 {};
class TextFormat final : public IDWriteTextFormat {};

class TextFactory final : public IDWriteFactory {
public:
    std::shared_ptr<IDWriteTextFormat> CreateTextFormat(const char* /*szFamily*/,
                                                        std::uint32_t /*nWeight*/,
                                                        std::uint32_t /*nStyle*/,
                                                        std::uint32_t /*nStretch*/, float /*fSize*/,
                                                        const char* /*szLocale*/) override {
        return std::make_shared<TextFormat>();
    }
};

class RasterDrawingFactory final : public ID2D1Factory2 {
public:
    explicit RasterDrawingFactory(std::shared_ptr<QtGraphicsState> pState)
        : m_pState(std::move(pState)) {}

    std::shared_ptr<ID2D1Device> CreateDevice(
        const std::shared_ptr<ID3D11Device1>& pDevice) override {
        return std::make_shared<RasterDrawingDevice>(m_pState, StateOf(pDevice));
    }

    std::shared_ptr<ID2D1Bitmap> CreateBitmapFromDxgiSurface(
        ID2D1DeviceContext& /*context*/, const std::shared_ptr<IDXGISurface>& pSurface,
        const D2D1_BITMAP_PROPERTIES& /*properties*/) override {
        const auto* const pOwn = dynamic_cast<const QtGraphicsSurface*>(pSurface.get());
        if (!pOwn) {
            throw Platform::InvalidArgumentException("a surface of another kind");
        }
        return std::make_shared<QtGraphicsBitmap>(pOwn->Device(), pOwn->Buffers());
    }

    std::shared_ptr<ID2D1StrokeStyle> CreateStrokeStyle(
        const D2D1_STROKE_STYLE_PROPERTIES& /*properties*/,
        std::span<const float> /*dashes*/) override {
        return std::make_shared<StrokeStyle>();
    }

private:
    const std::shared_ptr<QtGraphicsState> m_pState;
};

}

QtGraphicsFactory::QtGraphicsFactory() : m_pState(std::make_shared<QtGraphicsState>()) {}

std::shared_ptr<ID2D1Factory2> QtGraphicsFactory::D2D1CreateFactory() {
    return std::make_shared<RasterDrawingFactory>(m_pState);
}

std::shared_ptr<IWICImagingFactory2> QtGraphicsFactory::CreateImagingFactory() {
    return std::make_shared<ImagingFactory>();
}

std::shared_ptr<IDWriteFactory> QtGraphicsFactory::DWriteCreateFactory() {
    return std::make_shared<TextFactory>();
}

Platform::HRESULT QtGraphicsFactory::D3D11CreateDevice(const DeviceRequest& request,
                                                       std::shared_ptr<ID3D11Device1>& pDevice) {
    pDevice.reset();
    if (request.eDriver != D3D_DRIVER_TYPE::WARP) {
        return DXGI_ERROR_UNSUPPORTED;
    }
    pDevice = std::make_shared<RasterDevice>();
    return Platform::S_OK;
}

std::shared_ptr<IDXGISwapChain2> QtGraphicsFactory::CreateSwapChainForComposition(
    const std::shared_ptr<ID3D11Device1>& pDevice, const DXGI_SWAP_CHAIN_DESC1& description) {
    return std::make_shared<QtSwapChain>(m_pState, StateOf(pDevice), description);
}

}
