// The slice of a GPU drawing interface that the drawing surface needs: devices
// that can fail to be made and can be lost, a swap chain of two buffers, and a
// context that draws bitmaps and rectangles.
//
// Units: device pixels, origin top left, Y down; every rectangle covers whole pixels (see
// `PixelGrid.h`). Pixels are B8G8R8A8, alpha premultiplied, top row first.
// Lifetime: a context holds its target, a target its buffer; a bitmap or chain may outlive its
// device. Failures are platform exceptions, except where an operation answers a code.
// Threads: the UI thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/HResult.h"

namespace Windows::Graphics {

inline constexpr std::uint32_t DXGI_FORMAT_B8G8R8A8_UNORM = 87;
inline constexpr std::uint32_t D2D1_ALPHA_MODE_PREMULTIPLIED = 1;
inline constexpr std::uint32_t D3D11_CREATE_DEVICE_BGRA_SUPPORT = 32;
inline constexpr std::uint32_t D3D11_SDK_VERSION = 7;
inline constexpr std::uint32_t DXGI_USAGE_RENDER_TARGET_OUTPUT = 32;
inline constexpr std::uint32_t D2D1_BITMAP_OPTIONS_NONE = 0;
inline constexpr std::uint32_t D2D1_BITMAP_OPTIONS_TARGET_CANNOT_DRAW = 3;
inline constexpr std::uint32_t D2D1_UNIT_MODE_PIXELS = 1;
inline constexpr std::uint32_t D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE = 2;

// Drawing outside of a frame, or a frame begun within a frame.
inline constexpr Platform::HRESULT D2DERR_WRONG_STATE = Platform::MakeHResult(0x88990001U);
// The device cannot do what was asked for, or is not of the kind asked for.
inline constexpr Platform::HRESULT DXGI_ERROR_UNSUPPORTED = Platform::MakeHResult(0x887A0004U);
// A call against the rules, such as a resize while a buffer is still in use.
inline constexpr Platform::HRESULT DXGI_ERROR_INVALID_CALL = Platform::MakeHResult(0x887A0001U);

enum class D3D_DRIVER_TYPE { HARDWARE = 1, WARP = 5 };
enum class D2D1_INTERPOLATION_MODE { NEAREST_NEIGHBOR = 0, LINEAR = 1 };

struct D2D_SIZE_U {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    friend bool operator==(const D2D_SIZE_U&, const D2D_SIZE_U&) = default;
};

struct D2D_RECT_F {
    float left = 0.0F;
    float top = 0.0F;
    float right = 0.0F;
    float bottom = 0.0F;
    friend bool operator==(const D2D_RECT_F&, const D2D_RECT_F&) = default;
};

struct D2D_COLOR_F {
    float r = 0.0F;
    float g = 0.0F;
    float b = 0.0F;
    float a = 1.0F;
    friend bool operator==(const D2D_COLOR_F&, const D2D_COLOR_F&) = default;
};

// x' = _11 x + _21 y + _31 and y' = _12 x + _22 y + _32.
struct D2D_MATRIX_3X2_F {
    float _11 = 1.0F;
    float _12 = 0.0F;
    float _21 = 0.0F;
    float _22 = 1.0F;
    float _31 = 0.0F;
    float _32 = 0.0F;
    friend bool operator==(const D2D_MATRIX_3X2_F&, const D2D_MATRIX_3X2_F&) = default;
};

struct D2D1_BITMAP_PROPERTIES {
    std::uint32_t format = DXGI_FORMAT_B8G8R8A8_UNORM;
    std::uint32_t alphaMode = D2D1_ALPHA_MODE_PREMULTIPLIED;
    float dpiX = 96.0F;
    float dpiY = 96.0F;
    std::uint32_t bitmapOptions = D2D1_BITMAP_OPTIONS_NONE;
};

class ID2D1DeviceContext;

// A bitmap of one device. It dies with its device.
class ID2D1Bitmap {
public:
    virtual ~ID2D1Bitmap() = default;
    virtual D2D_SIZE_U GetPixelSize() const = 0;

    // False once the device that made it is lost.
    virtual bool IsDeviceAlive() const = 0;

    // Copies this bitmap's size from (0, 0) of the context's target. The
    // target holds the last frame until a new one is begun.
    virtual void CopyFromRenderTarget(ID2D1DeviceContext& context) = 0;

    // The pixels as they stand, tightly packed; for screenshots and tests.
    virtual std::vector<std::uint8_t> ReadPixels() const = 0;
};

class ID2D1SolidColorBrush {
public:
    virtual ~ID2D1SolidColorBrush() = default;
    virtual D2D_COLOR_F GetColor() const = 0;
    virtual void SetOpacity(float fOpacity) = 0;
    virtual float GetOpacity() const = 0;
};

// Flat caps 0, triangle dash caps 2, miter join 0, custom dash 5.
struct D2D1_STROKE_STYLE_PROPERTIES {
    std::uint32_t startCap = 0;
    std::uint32_t endCap = 0;
    std::uint32_t dashCap = 2;
    std::uint32_t lineJoin = 0;
    float miterLimit = 10.0F;
    std::uint32_t dashStyle = 5;
    float dashOffset = 0.0F;
};

class ID2D1StrokeStyle {
public:
    virtual ~ID2D1StrokeStyle() = default;
};

class ID2D1DeviceContext {
public:
    virtual ~ID2D1DeviceContext() = default;

    virtual void SetUnitMode(std::uint32_t nMode) = 0;
    virtual void SetTextAntialiasMode(std::uint32_t nMode) = 0;
    virtual void SetDpi(float fDpiX, float fDpiY) = 0;
    virtual void SetTarget(std::shared_ptr<ID2D1Bitmap> pTarget) = 0; // empty: none
    virtual std::shared_ptr<ID2D1Bitmap> GetTarget() const = 0;

    // Copies the pixels, `nPitch` bytes a row; empty `pixels` give a
    // transparent bitmap. Raises `InvalidArgumentException` for an empty size
    // or too few bytes, and with the device's code once the device is lost.
    virtual std::shared_ptr<ID2D1Bitmap> CreateBitmap(D2D_SIZE_U size,
                                                      std::span<const std::uint8_t> pixels,
                                                      std::uint32_t nPitch,
                                                      const D2D1_BITMAP_PROPERTIES& properties) = 0;
    // The same with pixels that `pOwner` keeps and that nobody writes to any more: a device may
    // use them where they lie, holding the owner as long as it shows them, or copy them.
    virtual std::shared_ptr<ID2D1Bitmap> CreateSharedBitmap(
        D2D_SIZE_U size, std::shared_ptr<const void> /*pOwner*/,
        std::span<const std::uint8_t> pixels, std::uint32_t nPitch,
        const D2D1_BITMAP_PROPERTIES& properties) {
        return CreateBitmap(size, pixels, nPitch, properties);
    }
    virtual std::shared_ptr<ID2D1SolidColorBrush> CreateSolidColorBrush(
        const D2D_COLOR_F& color) = 0;

    // One frame: `BeginDraw`, drawing, `EndDraw`. Frames do not nest, and
    // drawing outside of one raises; both with `D2DERR_WRONG_STATE`. The frame
    // is over after `EndDraw`, also when that raises.
    virtual void BeginDraw() = 0;
    virtual void EndDraw() = 0;
    virtual bool IsDrawing() const = 0; // between the two

    virtual void Clear(const D2D_COLOR_F& color) = 0;
    virtual void SetTransform(const D2D_MATRIX_3X2_F& matrix) = 0;

    // The source is clipped to the bitmap and what remains is stretched over
    // the whole destination. A destination of the source's size on the screen
    // is copied pixel by pixel. A missing bitmap, or one of a lost device,
    // draws nothing; so does a missing brush.
    virtual void DrawBitmap(const std::shared_ptr<ID2D1Bitmap>& pBitmap,
                            const D2D_RECT_F& rcDestination, float fOpacity,
                            D2D1_INTERPOLATION_MODE eInterpolation, const D2D_RECT_F& rcSource) = 0;
    virtual void FillRectangle(const D2D_RECT_F& rc,
                               const std::shared_ptr<ID2D1SolidColorBrush>& pBrush) = 0;
    virtual void DrawRectangle(const D2D_RECT_F& rc,
                               const std::shared_ptr<ID2D1SolidColorBrush>& pBrush,
                               float fStrokeWidth) = 0;
};

class ID2D1Device {
public:
    virtual ~ID2D1Device() = default;
    virtual std::shared_ptr<ID2D1DeviceContext> CreateDeviceContext() = 0;
};

class ID3D11DeviceContext1 {
public:
    virtual ~ID3D11DeviceContext1() = default;
    virtual void OMSetRenderTargetsNone() = 0;
    virtual void Flush() = 0;
};

struct DXGI_SWAP_CHAIN_DESC1 {
    std::uint32_t Width = 0;
    std::uint32_t Height = 0;
    std::uint32_t Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    bool Stereo = false;
    std::uint32_t SampleCount = 1;
    std::uint32_t SampleQuality = 0;
    std::uint32_t BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    std::uint32_t BufferCount = 2;
    std::uint32_t Scaling = 0;    // stretch
    std::uint32_t SwapEffect = 3; // flip sequential
    std::uint32_t AlphaMode = 0;
    std::uint32_t Flags = 0;
};

// One back buffer of a swap chain.
class IDXGISurface {
public:
    virtual ~IDXGISurface() = default;
    virtual D2D_SIZE_U GetSize() const = 0;
};

class IDXGISwapChain2 {
public:
    virtual ~IDXGISwapChain2() = default;
    // Every bitmap on a buffer has to be let go of before.
    virtual Platform::HRESULT ResizeBuffers(std::uint32_t nBufferCount, std::uint32_t nWidth,
                                            std::uint32_t nHeight, std::uint32_t nFormat,
                                            std::uint32_t nFlags) = 0;
    // Shows what was drawn since the last present; without a frame drawn since
    // then, the last one stays.
    virtual Platform::HRESULT Present1(std::uint32_t nSyncInterval, std::uint32_t nFlags) = 0;
    virtual void SetMatrixTransform(const D2D_MATRIX_3X2_F& matrix) = 0;
    virtual std::shared_ptr<IDXGISurface> GetBuffer(std::uint32_t nIndex) = 0;
};

class ID3D11Device1 {
public:
    virtual ~ID3D11Device1() = default;
    virtual D3D_DRIVER_TYPE DriverType() const = 0;
    virtual std::shared_ptr<ID3D11DeviceContext1> GetImmediateContext1() = 0;
    virtual void SetMaximumFrameLatency(std::uint32_t nFrames) = 0;
    virtual void Trim() = 0;
};

// Device independent: makes drawing devices on a rendering device.
class ID2D1Factory2 {
public:
    virtual ~ID2D1Factory2() = default;
    virtual std::shared_ptr<ID2D1Device> CreateDevice(
        const std::shared_ptr<ID3D11Device1>& pDevice) = 0;
    virtual std::shared_ptr<ID2D1Bitmap> CreateBitmapFromDxgiSurface(
        ID2D1DeviceContext& context, const std::shared_ptr<IDXGISurface>& pSurface,
        const D2D1_BITMAP_PROPERTIES& properties) = 0;
    virtual std::shared_ptr<ID2D1StrokeStyle> CreateStrokeStyle(
        const D2D1_STROKE_STYLE_PROPERTIES& properties, std::span<const float> dashes) = 0;
};

class IWICImagingFactory2 {
public:
    virtual ~IWICImagingFactory2() = default;
};

class IDWriteTextFormat {
public:
    virtual ~IDWriteTextFormat() = default;
};

class IDWriteFactory {
public:
    virtual ~IDWriteFactory() = default;
    virtual std::shared_ptr<IDWriteTextFormat> CreateTextFormat(const char* szFamily,
                                                                std::uint32_t nWeight,
                                                                std::uint32_t nStyle,
                                                                std::uint32_t nStretch, float fSize,
                                                                const char* szLocale) = 0;
};

struct DeviceRequest {
    D3D_DRIVER_TYPE eDriver = D3D_DRIVER_TYPE::HARDWARE;
    std::uint32_t nFlags = 0;
    std::span<const std::uint32_t> featureLevels; // 0xb100 is 11_1, most wanted first
    std::uint32_t nSdkVersion = D3D11_SDK_VERSION;
};

// The entry to the drawing interface; an environment supplies one.
class IGraphicsFactory {
public:
    virtual ~IGraphicsFactory() = default;
    virtual std::shared_ptr<ID2D1Factory2> D2D1CreateFactory() = 0;
    virtual std::shared_ptr<IWICImagingFactory2> CreateImagingFactory() = 0;
    virtual std::shared_ptr<IDWriteFactory> DWriteCreateFactory() = 0;

    // A failure code and an empty device when there is none of the kind asked for.
    virtual Platform::HRESULT D3D11CreateDevice(const DeviceRequest& request,
                                                std::shared_ptr<ID3D11Device1>& pDevice) = 0;
    virtual std::shared_ptr<IDXGISwapChain2> CreateSwapChainForComposition(
        const std::shared_ptr<ID3D11Device1>& pDevice,
        const DXGI_SWAP_CHAIN_DESC1& description) = 0;
};

}
