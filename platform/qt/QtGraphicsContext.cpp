#include <QTransform>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtGraphicsContext_p.h"

namespace Platform::Qt {

using namespace Windows::Graphics; // the drawing interface, named without a prefix

namespace {

QColor ToQColor(const D2D_COLOR_F& color, float fOpacity = 1.0F) {
    const auto fnLimited = [](float fValue) { return std::clamp(fValue, 0.0F, 1.0F); };
    return QColor::fromRgbF(fnLimited(color.r), fnLimited(color.g), fnLimited(color.b),
                            fnLimited(color.a) * fnLimited(fOpacity));
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

bool IsWhole(const D2D_RECT_F& rc) {
    return rc.left == std::floor(rc.left) && rc.top == std::floor(rc.top) &&
           rc.right == std::floor(rc.right) && rc.bottom == std::floor(rc.bottom);
}

}

QtGraphicsContext::QtGraphicsContext(std::shared_ptr<QtGraphicsState> pState,
                                     std::shared_ptr<QtDeviceState> pDevice)
    : m_pState(std::move(pState)), m_pDevice(std::move(pDevice)) {}

QtGraphicsContext::~QtGraphicsContext() {
    if (m_painter.isActive()) {
        m_painter.end(); // before the target that it paints on goes
    }
}

void QtGraphicsContext::SetTarget(Bitmap pTarget) {
    if (m_painter.isActive()) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "the target changes within a frame");
    }
    m_pTarget = std::dynamic_pointer_cast<QtGraphicsBitmap>(pTarget);
}

QtGraphicsContext::Bitmap QtGraphicsContext::CreateBitmap(
    D2D_SIZE_U size, std::span<const std::uint8_t> pixels, std::uint32_t nPitch,
    const D2D1_BITMAP_PROPERTIES& properties) {
    constexpr std::uint32_t kMaxSide = 32767; // of an image that can be painted
    if (m_pDevice->bLost) {
        throw Platform::Exception(Platform::DXGI_ERROR_DEVICE_REMOVED, "CreateBitmap");
    }
    if (size.width == 0 || size.height == 0 || size.width > kMaxSide || size.height > kMaxSide ||
        properties.format != DXGI_FORMAT_B8G8R8A8_UNORM) {
        throw Platform::InvalidArgumentException("no bitmap of this size or format");
    }
    QImage image = pixels.empty()
                       ? MakeImage({static_cast<int>(size.width), static_cast<int>(size.height)})
                       : CopyPixels(size, pixels, nPitch);
    return std::make_shared<QtGraphicsBitmap>(m_pState, m_pDevice, std::move(image));
}

QtGraphicsContext::Brush QtGraphicsContext::CreateSolidColorBrush(const D2D_COLOR_F& color) {
    return std::make_shared<QtGraphicsBrush>(color);
}

void QtGraphicsContext::BeginDraw() {
    if (m_painter.isActive() || !m_pTarget) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "a frame within a frame, or no target");
    }
    if (!m_painter.begin(&m_pTarget->BeginFrame())) {
        throw Platform::Exception(Platform::E_FAIL, "BeginDraw");
    }
    ++m_pState->nFrames;
}

void QtGraphicsContext::EndDraw() {
    RequireFrame();
    FillCleared();
    m_painter.end();
    if (QtSwapBuffers* const pBuffers = m_pTarget->Buffers()) {
        pBuffers->bFrameDrawn = true;
    }
}

void QtGraphicsContext::RequireFrame() const {
    if (!m_painter.isActive()) {
        throw Platform::Exception(D2DERR_WRONG_STATE, "drawing outside of a frame");
    }
}

void QtGraphicsContext::Clear(const D2D_COLOR_F& color) {
    RequireFrame();
    m_toClear = QRect(0, 0, m_painter.device()->width(), m_painter.device()->height());
    m_clearColor = ToQColor(color);
}

void QtGraphicsContext::FillCleared() {
    m_painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& rc : m_toClear) {
        m_painter.fillRect(rc, m_clearColor);
    }
    m_painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    m_toClear = QRegion();
}

void QtGraphicsContext::SetTransform(const D2D_MATRIX_3X2_F& matrix) {
    m_matrix = matrix;
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
    if (!rcClipped) {
        return;
    }
    const bool bCovers = fOpacity >= 1.0F && !pSource->Image().hasAlphaChannel();
    if (bCovers && KeepsUpright(m_matrix)) {
        Covered(ToQRect(PixelsOf(Transformed(rcDestination, m_matrix))));
    } else {
        FillCleared();
    }
    m_painter.setOpacity(std::clamp(fOpacity, 0.0F, 1.0F));
    m_painter.setRenderHint(QPainter::SmoothPixmapTransform,
                            eInterpolation == D2D1_INTERPOLATION_MODE::LINEAR);
    if (KeepsUpright(m_matrix)) {
        DrawUpright(pSource->Image(), PixelsOf(Transformed(rcDestination, m_matrix)), *rcClipped);
    } else {
        m_painter.setTransform(ToQTransform(m_matrix));
        m_painter.drawImage(ToQRectF(rcDestination), pSource->Image(), ToQRectF(*rcClipped));
        m_painter.resetTransform();
    }
    m_painter.setOpacity(1.0);
}

void QtGraphicsContext::DrawUpright(const QImage& image, const PixelRect& rcDestination,
                                    const D2D_RECT_F& rcSource) {
    if (rcDestination.IsEmpty()) {
        return;
    }
    if (IsWhole(rcSource)) {
        const QRect rcWhole = ToQRectF(rcSource).toRect();
        if (rcWhole.size() == ToQRect(rcDestination).size()) {
            m_painter.drawImage(ToQRect(rcDestination).topLeft(), image, rcWhole);
            return;
        }
    }
    m_painter.drawImage(QRectF(ToQRect(rcDestination)), image, ToQRectF(rcSource));
}

void QtGraphicsContext::FillRectangle(const D2D_RECT_F& rc, const Brush& pBrush) {
    RequireFrame();
    if (!pBrush) {
        return;
    }
    FillCleared();
    const QColor color = ToQColor(pBrush->GetColor(), pBrush->GetOpacity());
    if (KeepsUpright(m_matrix)) {
        m_painter.fillRect(ToQRect(FilledPixelsOf(Transformed(rc, m_matrix))), color);
        return;
    }
    m_painter.setTransform(ToQTransform(m_matrix));
    m_painter.fillRect(ToQRectF(rc), color);
    m_painter.resetTransform();
}

void QtGraphicsContext::DrawRectangle(const D2D_RECT_F& rc, const Brush& pBrush,
                                      float fStrokeWidth) {
    RequireFrame();
    if (!pBrush) {
        return;
    }
    FillCleared();
    const QColor color = ToQColor(pBrush->GetColor(), pBrush->GetOpacity());
    if (KeepsUpright(m_matrix)) {
        for (const PixelRect& side :
             OutlinePixelsOf(Transformed(rc, m_matrix), fStrokeWidth * m_matrix._11)) {
            m_painter.fillRect(ToQRect(side), color);
        }
        return;
    }
    m_painter.setTransform(ToQTransform(m_matrix));
    m_painter.strokePath(
        [&] {
            QPainterPath path;
            path.addRect(ToQRectF(rc));
            return path;
        }(),
        QPen(color, fStrokeWidth));
    m_painter.resetTransform();
}

}
