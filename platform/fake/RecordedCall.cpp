#include "platform/fake/RecordedCall.h"

#include <array>
#include <cstddef>

namespace Platform::Fake {

const char* NameOf(GraphicsCall eCall) {
    constexpr std::array<const char*, 34> kNames = {"D2D1CreateFactory",
                                                    "CreateImagingFactory",
                                                    "DWriteCreateFactory",
                                                    "CreateTextFormat",
                                                    "D3D11CreateDevice",
                                                    "GetImmediateContext1",
                                                    "CreateDevice",
                                                    "CreateDeviceContext",
                                                    "CreateStrokeStyle",
                                                    "CreateSwapChainForComposition",
                                                    "SetMaximumFrameLatency",
                                                    "Trim",
                                                    "OMSetRenderTargetsNone",
                                                    "Flush",
                                                    "ResizeBuffers",
                                                    "Present1",
                                                    "SetMatrixTransform",
                                                    "GetBuffer",
                                                    "CreateBitmapFromDxgiSurface",
                                                    "CreateBitmap",
                                                    "CopyFromRenderTarget",
                                                    "CreateSolidColorBrush",
                                                    "SetOpacity",
                                                    "SetUnitMode",
                                                    "SetTextAntialiasMode",
                                                    "SetDpi",
                                                    "SetTarget",
                                                    "BeginDraw",
                                                    "EndDraw",
                                                    "Clear",
                                                    "SetTransform",
                                                    "DrawBitmap",
                                                    "FillRectangle",
                                                    "DrawRectangle"};
    static_assert(kNames.size() == static_cast<std::size_t>(GraphicsCall::DrawRectangle) + 1);
    return kNames[static_cast<std::size_t>(eCall)];
}

}
