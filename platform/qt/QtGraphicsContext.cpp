#include <QTransform>
#include <algorithm>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsContext_p.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

constexpr int kOpaque = 255;

QColor ToQColor(const D2D_COLOR_F& color, float fOpacity = 1.0F) {
    const auto fnLimited = [](float fValue) { return std::clamp(fValue, 0.0F, 1.0F); };
    return QColor::fromRgbF(fnLimited(color.r), fnLimited(color.g), fnLimited(color.b),
                            fnLimited(color.a) * fnLimited(fOpacity));
}

QColor ColorOf(const ID2D1SolidColorBrush& brush) {
    return ToQColor(brush.GetColor(), brush.GetOpacity());
}

QRect ToQRect(const PixelRect& rc) {
    return {rc.left, rc.top, rc.Width(), rc.Height()};
}

QRectF ToQRectF(const D2D_RECT_F& rc) {
    return {QPointF(rc.left, rc.top), QPointF(rc.right, rc.bottom)};
}

QTransform ToQTransform(const D2D_MATRIX_3X2_F& matrix) {
    return {matrix._11, matrix._12, matrix._21, matrix._22, matrix._31, matrix._32};
}

}

QtGraphicsContext::QtGraphicsContext(std::shared_ptr<QtGraphicsState> pState,
                                     std::shared_ptr<QtDeviceState> pDevice)
    : m_pState(std::move(pState)), m_pDevice(std::move(pDevice)) {}

void QtGraphicsContext::SetTarget(Bitmap pTarget) {
    if (m_bDrawing) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "the target changes within a frame");
    }
    m_pTarget = std::dynamic_pointer_cast<QtGraphicsBitmap>(pTarget);
}

void QtGraphicsContext::CheckNewBitmap(D2D_SIZE_U size,
                                       const D2D1_BITMAP_PROPERTIES& properties) const {
    constexpr std::uint32_t kMaxSide = 32767; // of an image that can be painted
    if (m_pDevice->bLost) {
        throw Platform::Exception(Platform::DXGI_ERROR_DEVICE_REMOVED, "CreateBitmap");
    }
    if (size.width == 0 || size.height == 0 || size.width > kMaxSide || size.height > kMaxSide ||
        properties.format != DXGI_FORMAT_B8G8R8A8_UNORM) {
        throw Platform::InvalidArgumentException("no bitmap of this size or format");
    }
}

QtGraphicsContext::Bitmap QtGraphicsContext::CreateBitmap(
    D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch,
    const D2D1_BITMAP_PROPERTIES& properties) {
    CheckNewBitmap(size, properties);
    QImage image = pixels.empty()
                       ? MakeImage({static_cast<int>(size.width), static_cast<int>(size.height)})
                       : CopyPixels(size, pixels, nPitch);
    return std::make_shared<QtGraphicsBitmap>(m_pState, m_pDevice, std::move(image));
}

QtGraphicsContext::Bitmap QtGraphicsContext::CreateSharedBitmap(
    D2D_SIZE_U size, std::shared_ptr<const void> pOwner, std::span<const std::uint8_t> pixels,
    std::uint32_t nPitch, const D2D1_BITMAP_PROPERTIES& properties) {
    CheckNewBitmap(size, properties);
    return std::make_shared<QtGraphicsBitmap>(m_pState, m_pDevice,
                                              SharePixels(size, std::move(pOwner), pixels, nPitch));
}

QtGraphicsContext::Brush QtGraphicsContext::CreateSolidColorBrush(const D2D_COLOR_F& color) {
    return std::make_shared<QtGraphicsBrush>(color);
}

void QtGraphicsContext::BeginDraw() {
    if (m_bDrawing || !m_pTarget) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "a frame within a frame, or no target");
    }
    m_script.Clear();
    m_bDrawnInPart = false;
    m_bDrawing = true;
    ++m_pState->nFrames;
}

void QtGraphicsContext::EndDraw() {
    RequireFrame();
    m_bDrawing = false;
    QtSwapBuffers* const pBuffers = m_pTarget->Buffers();
    if (!pBuffers || m_bDrawnInPart || !DrawDifference(*pBuffers)) {
        QImage& image = m_bDrawnInPart ? m_pTarget->FrameUnderWay() : m_pTarget->BeginFrame();
        m_script.Draw(image, image.rect());
    }
    m_script.LetGoOfPictures();
    if (pBuffers) {
        pBuffers->bFrameDrawn = true;
        if (pBuffers->bFrameBegun) {
            pBuffers->backScript.Swap(m_script);
        }
    }
}

// Draws into the buffer that is shown. False when nothing is known of what it
// shows, or when somebody else holds it.
bool QtGraphicsContext::DrawDifference(QtSwapBuffers& buffers) {
    const bool bShown = !buffers.bFrameBegun && buffers.front.size() == buffers.size;
    if (bShown && m_script.IsEmpty()) {
        return true; // nothing was drawn: what is shown stays
    }
    if (!bShown || !buffers.front.isDetached() || !m_script.SaysEveryPixel() ||
        !buffers.frontScript.SaysEveryPixel()) {
        return false;
    }
    const QRect rcChanged =
        m_script.DifferenceTo(buffers.frontScript) & QRect(QPoint(), buffers.size);
    if (!rcChanged.isEmpty()) {
        m_script.Draw(buffers.front, rcChanged);
    }
    buffers.rcChanged |= rcChanged;
    buffers.frontScript.Swap(m_script);
    return true;
}

// The rest of the frame is then gathered and drawn over this part.
void QtGraphicsContext::DrawGathered() {
    QImage& image = m_bDrawnInPart ? m_pTarget->FrameUnderWay() : m_pTarget->BeginFrame();
    m_script.Draw(image, image.rect());
    m_script.Clear();
    m_bDrawnInPart = true;
}

void QtGraphicsContext::RequireFrame() const {
    if (!m_bDrawing) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "drawing outside of a frame");
    }
}

// --- the parts of a frame ---

void QtGraphicsContext::Clear(const D2D_COLOR_F& color) {
    RequireFrame();
    m_script.Clear(); // nothing is left of what was drawn before
    const D2D_SIZE_U size = m_pTarget->GetPixelSize();
    m_script
        .Add(QtFrameScript::Kind::Clear,
             {0, 0, static_cast<int>(size.width), static_cast<int>(size.height)})
        .color = ToQColor(color);
}

void QtGraphicsContext::SetTransform(const D2D_MATRIX_3X2_F& matrix) {
    m_matrix = matrix;
}

QtFrameScript::Part& QtGraphicsContext::AddTurned(QtFrameScript::Kind eKind, const D2D_RECT_F& rc) {
    const QTransform transform = ToQTransform(m_matrix);
    const QRectF rcExact = ToQRectF(rc);
    // Lines and smoothing reach past the shape.
    const QRect rcTarget = transform.mapRect(rcExact).toAlignedRect().adjusted(-1, -1, 1, 1);
    QtFrameScript::Part& part = m_script.Add(eKind, rcTarget);
    part.bTurned = true;
    part.rcExact = rcExact;
    part.transform = transform;
    return part;
}

void QtGraphicsContext::AddFill(const QRect& rc, const QColor& color) {
    if (rc.isEmpty()) {
        return;
    }
    QtFrameScript::Part& part = m_script.Add(QtFrameScript::Kind::Fill, rc);
    part.color = color;
    part.bCovers = color.alpha() == kOpaque;
}

void QtGraphicsContext::DrawBitmap(const Bitmap& pBitmap, const D2D_RECT_F& rcDestination,
                                   float fOpacity, D2D1_INTERPOLATION_MODE eInterpolation,
                                   const D2D_RECT_F& rcSource) {
    RequireFrame();
    const auto* const pSource = dynamic_cast<const QtGraphicsBitmap*>(pBitmap.get());
    if (!pSource || !pSource->IsDeviceAlive()) {
        return;
    }
    const auto rcClipped = ClippedToBitmap(rcSource, pSource->GetPixelSize());
    const bool bUpright = KeepsUpright(m_matrix);
    const QRect rcTarget = ToQRect(PixelsOf(Transformed(rcDestination, m_matrix)));
    if (!rcClipped || (bUpright && rcTarget.isEmpty())) {
        return;
    }
    QtFrameScript::Part& part = bUpright ? m_script.Add(QtFrameScript::Kind::Picture, rcTarget)
                                         : AddTurned(QtFrameScript::Kind::Picture, rcDestination);
    part.image = pSource->Image();
    part.nImage = part.image.cacheKey();
    part.bCovers = bUpright && fOpacity >= 1.0F && !part.image.hasAlphaChannel();
    part.rcSource = ToQRectF(*rcClipped);
    part.dbOpacity = std::clamp(fOpacity, 0.0F, 1.0F);
    part.bSmooth = eInterpolation == D2D1_INTERPOLATION_MODE::LINEAR;
}

void QtGraphicsContext::FillRectangle(const D2D_RECT_F& rc, const Brush& pBrush) {
    RequireFrame();
    if (!pBrush) {
        return;
    }
    const QColor color = ColorOf(*pBrush);
    if (KeepsUpright(m_matrix)) {
        AddFill(ToQRect(FilledPixelsOf(Transformed(rc, m_matrix))), color);
    } else {
        AddTurned(QtFrameScript::Kind::Fill, rc).color = color;
    }
}

void QtGraphicsContext::DrawRectangle(const D2D_RECT_F& rc, const Brush& pBrush,
                                      float fStrokeWidth) {
    RequireFrame();
    if (!pBrush) {
        return;
    }
    const QColor color = ColorOf(*pBrush);
    if (KeepsUpright(m_matrix)) {
        for (const PixelRect& side :
             OutlinePixelsOf(Transformed(rc, m_matrix), fStrokeWidth * m_matrix._11)) {
            AddFill(ToQRect(side), color);
        }
        return;
    }
    const D2D_RECT_F rcReach = {rc.left - fStrokeWidth, rc.top - fStrokeWidth,
                                rc.right + fStrokeWidth, rc.bottom + fStrokeWidth};
    QtFrameScript::Part& part = AddTurned(QtFrameScript::Kind::Outline, rcReach);
    part.rcExact = ToQRectF(rc);
    part.color = color;
    part.dbStroke = fStrokeWidth;
}

}
