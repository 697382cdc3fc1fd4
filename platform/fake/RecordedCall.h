// One call of the drawing interface, as the recording device saw it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/graphics/Graphics.h"

namespace Platform::Fake {

enum class GraphicsCall {
    D2D1CreateFactory,
    CreateImagingFactory,
    DWriteCreateFactory,
    CreateTextFormat,
    D3D11CreateDevice,
    GetImmediateContext1,
    CreateDevice,
    CreateDeviceContext,
    CreateStrokeStyle,
    CreateSwapChainForComposition,
    SetMaximumFrameLatency,
    Trim,
    OMSetRenderTargetsNone,
    Flush,
    ResizeBuffers,
    Present1,
    SetMatrixTransform,
    GetBuffer,
    CreateBitmapFromDxgiSurface,
    CreateBitmap,
    CopyFromRenderTarget,
    CreateSolidColorBrush,
    SetOpacity,
    SetUnitMode,
    SetTextAntialiasMode,
    SetDpi,
    SetTarget,
    BeginDraw,
    EndDraw,
    Clear,
    SetTransform,
    DrawBitmap,
    FillRectangle,
    DrawRectangle,
};

const char* NameOf(GraphicsCall eCall);

// Fields that a call does not have keep their start values.
struct RecordedCall {
    GraphicsCall eCall{};
    Platform::HRESULT nResult = Platform::S_OK;

    // The object made or used (device, chain, bitmap, brush): numbered from 1
    // in order of creation over all kinds; 0 is none.
    std::uint64_t nObject = 0;

    Windows::Graphics::D2D_SIZE_U size;          // of a bitmap or of buffers
    Windows::Graphics::D2D_COLOR_F color;        // of a clear or a brush, without its opacity
    float fOpacity = 1.0F;                       // of a bitmap drawn or a brush
    Windows::Graphics::D2D_RECT_F rcDestination; // of a bitmap, a fill or an outline
    Windows::Graphics::D2D_RECT_F rcSource;      // of a bitmap
    Windows::Graphics::D2D1_INTERPOLATION_MODE eInterpolation{};
    float fStrokeWidth = 0.0F;
    Windows::Graphics::D2D_MATRIX_3X2_F matrix; // of a transform
    float fDpiX = 0.0F;                         // of a context or a bitmap
    float fDpiY = 0.0F;
    bool bAlive = true; // the bitmap's device was not lost

    // Numbers as passed, in the order of the operation's own parameters: modes,
    // flags, formats, counts, feature levels.
    std::vector<std::uint32_t> values;
    std::vector<float> floats; // dashes; miter limit and offset come first
    std::string strText;       // names of fonts
};

}
