#include <cstring>
#include <utility>

#include "platform/fake/RecordingContext_p.h"
#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr std::size_t kBytesPerPixel = 4;

RecordedCall CallWith(GraphicsCall eCall, std::vector<std::uint32_t> values = {}) {
    RecordedCall call;
    call.eCall = eCall;
    call.values = std::move(values);
    return call;
}

PixelImage ImageOf(D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch) {
    const std::size_t nRowBytes = std::size_t{size.width} * kBytesPerPixel;
    const std::size_t nNeeded = std::size_t{nPitch} * (size.height - 1) + nRowBytes;
    if (nPitch < nRowBytes || pixels.size() < nNeeded) {
        throw Platform::InvalidArgumentException("too few pixels for the bitmap's size");
    }
    std::vector<std::uint8_t> bytes(nRowBytes * size.height);
    for (std::uint32_t nY = 0; nY < size.height; ++nY) {
        std::memcpy(&bytes[nRowBytes * nY], &pixels[std::size_t{nPitch} * nY], nRowBytes);
    }
    return {size, std::move(bytes)};
}

}

RecordingBrush::RecordingBrush(std::shared_ptr<RecordingState> pState, const D2D_COLOR_F& color,
                               std::uint64_t nNumber)
    : m_pState(std::move(pState)), m_color(color), m_nNumber(nNumber) {}

void RecordingBrush::SetOpacity(float fOpacity) {
    RecordedCall call = CallWith(GraphicsCall::SetOpacity);
    call.nObject = m_nNumber;
    call.fOpacity = fOpacity;
    m_pState->Record(call);
    m_fOpacity = fOpacity;
}

RecordingContext::RecordingContext(std::shared_ptr<RecordingState> pState,
                                   std::shared_ptr<RecordingDeviceLife> pDevice)
    : m_pState(std::move(pState)), m_pDevice(std::move(pDevice)) {}

void RecordingContext::SetUnitMode(std::uint32_t nMode) {
    m_pState->Record(CallWith(GraphicsCall::SetUnitMode, {nMode}));
}

void RecordingContext::SetTextAntialiasMode(std::uint32_t nMode) {
    m_pState->Record(CallWith(GraphicsCall::SetTextAntialiasMode, {nMode}));
}

void RecordingContext::SetDpi(float fDpiX, float fDpiY) {
    RecordedCall call = CallWith(GraphicsCall::SetDpi);
    call.fDpiX = fDpiX;
    call.fDpiY = fDpiY;
    m_pState->Record(call);
}

void RecordingContext::SetTarget(std::shared_ptr<ID2D1Bitmap> pTarget) {
    m_pTarget = std::dynamic_pointer_cast<RecordingBitmap>(pTarget);
    RecordedCall call = CallWith(GraphicsCall::SetTarget);
    call.nObject = m_pTarget ? m_pTarget->Number() : 0;
    m_pState->Record(call);
}

std::shared_ptr<ID2D1Bitmap> RecordingContext::GetTarget() const {
    return m_pTarget;
}

std::shared_ptr<ID2D1Bitmap> RecordingContext::CreateBitmap(
    D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch,
    const D2D1_BITMAP_PROPERTIES& properties) {
    RecordedCall call =
        CallWith(GraphicsCall::CreateBitmap,
                 {nPitch, properties.format, properties.alphaMode, properties.bitmapOptions});
    call.size = size;
    call.fDpiX = properties.dpiX;
    call.fDpiY = properties.dpiY;
    m_pState->Require(call, m_pDevice.get());
    if (size.width == 0 || size.height == 0) {
        throw Platform::InvalidArgumentException("a bitmap without pixels");
    }
    auto pBitmap = std::make_shared<RecordingBitmap>(
        m_pState, m_pDevice, pixels.empty() ? PixelImage(size) : ImageOf(size, pixels, nPitch));
    m_pState->calls.back().nObject = pBitmap->Number();
    return pBitmap;
}

RecordingContext::Brush RecordingContext::CreateSolidColorBrush(const D2D_COLOR_F& color) {
    RecordedCall call = CallWith(GraphicsCall::CreateSolidColorBrush);
    call.color = color;
    call.nObject = m_pState->NewObject();
    m_pState->Require(call, m_pDevice.get());
    return std::make_shared<RecordingBrush>(m_pState, color, call.nObject);
}

void RecordingContext::BeginDraw() {
    m_pState->Require(CallWith(GraphicsCall::BeginDraw), m_pDevice.get());
    if (m_bDrawing || !m_pTarget) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "a frame within a frame, or no target");
    }
    m_bDrawing = true;
    if (RecordingBuffers* const pBuffers = m_pTarget->Buffers()) {
        pBuffers->bFrameBegun = true;
    }
}

void RecordingContext::EndDraw() {
    RequireFrame();
    m_bDrawing = false;
    if (RecordingBuffers* const pBuffers = m_pTarget->Buffers()) {
        pBuffers->bFrameDrawn = true;
    }
    m_pState->Require(CallWith(GraphicsCall::EndDraw), m_pDevice.get());
}

bool RecordingContext::Composes() const {
    return m_pState->bComposes && KeepsUpright(m_matrix);
}

void RecordingContext::RequireFrame() const {
    if (!m_bDrawing) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "drawing outside of a frame");
    }
}

void RecordingContext::Clear(const D2D_COLOR_F& color) {
    RequireFrame();
    RecordedCall call = CallWith(GraphicsCall::Clear);
    call.color = color;
    m_pState->Record(call);
    if (m_pState->bComposes) {
        m_pTarget->Canvas().Clear(color);
    }
}

void RecordingContext::SetTransform(const D2D_MATRIX_3X2_F& matrix) {
    RecordedCall call = CallWith(GraphicsCall::SetTransform);
    call.matrix = matrix;
    m_pState->Record(call);
    m_matrix = matrix;
}

void RecordingContext::DrawBitmap(const std::shared_ptr<ID2D1Bitmap>& pBitmap,
                                  const D2D_RECT_F& rcDestination, float fOpacity,
                                  D2D1_INTERPOLATION_MODE eInterpolation,
                                  const D2D_RECT_F& rcSource) {
    RequireFrame();
    const auto pSource = std::dynamic_pointer_cast<RecordingBitmap>(pBitmap);
    RecordedCall call = CallWith(GraphicsCall::DrawBitmap);
    call.nObject = pSource ? pSource->Number() : 0;
    call.rcDestination = rcDestination;
    call.fOpacity = fOpacity;
    call.eInterpolation = eInterpolation;
    call.rcSource = rcSource;
    call.bAlive = pSource && pSource->IsDeviceAlive();
    m_pState->Record(call);
    if (!call.bAlive || !Composes()) {
        return;
    }
    const auto rcClipped = ClippedToBitmap(rcSource, pSource->GetPixelSize());
    const PixelRect pixels = PixelsOf(Transformed(rcDestination, m_matrix));
    if (rcClipped && !pixels.IsEmpty()) {
        m_pTarget->Canvas().Stretch(pixels, pSource->Image(), *rcClipped, fOpacity, eInterpolation);
    }
}

void RecordingContext::RecordRectangle(GraphicsCall eCall, const D2D_RECT_F& rc,
                                       const Brush& pBrush, float fStrokeWidth) {
    RequireFrame();
    RecordedCall call = CallWith(eCall);
    call.rcDestination = rc;
    call.fStrokeWidth = fStrokeWidth;
    if (const auto pOwn = std::dynamic_pointer_cast<RecordingBrush>(pBrush)) {
        call.nObject = pOwn->Number();
        call.color = pOwn->GetColor();
        call.fOpacity = pOwn->GetOpacity();
    }
    m_pState->Record(call);
}

void RecordingContext::FillRectangle(const D2D_RECT_F& rc, const Brush& pBrush) {
    RecordRectangle(GraphicsCall::FillRectangle, rc, pBrush, 0.0F);
    if (pBrush && Composes()) {
        m_pTarget->Canvas().Fill(FilledPixelsOf(Transformed(rc, m_matrix)), pBrush->GetColor(),
                                 pBrush->GetOpacity());
    }
}

void RecordingContext::DrawRectangle(const D2D_RECT_F& rc, const Brush& pBrush,
                                     float fStrokeWidth) {
    RecordRectangle(GraphicsCall::DrawRectangle, rc, pBrush, fStrokeWidth);
    if (!pBrush || !Composes()) {
        return;
    }
    for (const PixelRect& side :
         OutlinePixelsOf(Transformed(rc, m_matrix), fStrokeWidth * m_matrix._11)) {
        m_pTarget->Canvas().Fill(side, pBrush->GetColor(), pBrush->GetOpacity());
    }
}

}
