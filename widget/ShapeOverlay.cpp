#include "widget/ShapeOverlay.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix
using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::TextQuad;

TextQuad ShapeOverlay::QuadOf(const RectF& rc) {
    return {{rc.Left, rc.Top}, {rc.Right, rc.Top}, {rc.Left, rc.Bottom}, {rc.Right, rc.Bottom}};
}

QPolygonF ShapeOverlay::OnCanvas(std::int32_t nPage, const TextQuad& quad) const {
    QPolygonF polygon;
    for (const PointF pt :
         {quad.ptTopLeft, quad.ptTopRight, quad.ptBottomRight, quad.ptBottomLeft}) {
        const auto at = Control().PagePointToDevicePoint(nPage, {pt.X, pt.Y});
        polygon << QPointF(at.X * Control().CompositionScaleX(),
                           at.Y * Control().CompositionScaleY());
    }
    polygon << polygon.first();
    return polygon;
}

QPainterPath ShapeOverlay::OnCanvas(std::int32_t nPage, const Shape& shape) const {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const TextQuad& quad : shape.quads) {
        path.addPolygon(OnCanvas(nPage, quad));
    }
    return path;
}

QRectF ShapeOverlay::Screen() const {
    const auto size = Control().GetCanvasSize();
    return {0.0, 0.0, size.Width * Control().CompositionScaleX(),
            size.Height * Control().CompositionScaleY()};
}

namespace {

bool IsUpright(const QPolygonF& quad) {
    constexpr double kStraight = 0.5; // pixels
    const auto fnIsStraight = [&](int nFrom, int nTo) {
        const QPointF side = quad[nTo] - quad[nFrom];
        return std::min(std::abs(side.x()), std::abs(side.y())) < kStraight;
    };
    return fnIsStraight(0, 1) && fnIsStraight(1, 2) && fnIsStraight(2, 3);
}

// White between the dashes, so that they are seen on any page.
void PaintFrame(QPainter& painter, const QRectF& rc, const ShapeOverlay::Shape& shape,
                double dbLine) {
    const QRectF rcFrame = rc.adjusted(-dbLine / 2.0, -dbLine / 2.0, dbLine / 2.0, dbLine / 2.0);
    if (shape.bUnbroken) {
        painter.setPen(QPen(shape.color, dbLine / 2.0));
        painter.drawRect(rcFrame);
        return;
    }
    painter.setPen(QPen(Qt::white, dbLine));
    painter.drawRect(rcFrame);
    QPen dashes(shape.color, dbLine);
    dashes.setDashPattern({3.0, 2.0});
    painter.setPen(dashes);
    painter.drawRect(rcFrame);
}

void DrawPicture(ID2D1DeviceContext& context, const QImage& picture, QPoint ptTopLeft) {
    const auto pBitmap = context.CreateBitmap(
        {static_cast<std::uint32_t>(picture.width()), static_cast<std::uint32_t>(picture.height())},
        {picture.constBits(), static_cast<std::size_t>(picture.sizeInBytes())},
        static_cast<std::uint32_t>(picture.bytesPerLine()), {});
    const auto fLeft = static_cast<float>(ptTopLeft.x());
    const auto fTop = static_cast<float>(ptTopLeft.y());
    const auto fWidth = static_cast<float>(picture.width());
    const auto fHeight = static_cast<float>(picture.height());
    context.DrawBitmap(pBitmap, {fLeft, fTop, fLeft + fWidth, fTop + fHeight}, 1.0F,
                       D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, fWidth, fHeight});
}

}

// Upright areas are rectangles of whole pixels, none over another: that costs little while
// the pages scroll.
std::optional<QRegion> ShapeOverlay::UprightOnCanvas(std::int32_t nPage, const Shape& shape) const {
    const QRectF screen = Screen();
    QRegion region;
    for (const TextQuad& quad : shape.quads) {
        const QPolygonF polygon = OnCanvas(nPage, quad);
        const QRectF rc = polygon.boundingRect();
        if (!rc.intersects(screen)) {
            continue;
        }
        if (!IsUpright(polygon)) {
            return std::nullopt;
        }
        region += QRect(rc.topLeft().toPoint(), rc.bottomRight().toPoint() - QPoint(1, 1));
    }
    return region;
}

void ShapeOverlay::Draw(const RenderCanvasEventArgs& args) {
    for (const Shape& shape : m_fnShapes(args.nPageIndex)) {
        const auto upright = shape.bFrame ? std::nullopt : UprightOnCanvas(args.nPageIndex, shape);
        if (!upright) {
            DrawAsPicture(args, shape);
            continue;
        }
        const float fScaleX = Control().CompositionScaleX();
        const float fScaleY = Control().CompositionScaleY();
        for (const QRect& rc : *upright& Screen().toAlignedRect()) {
            args.Canvas->FillRect(
                {static_cast<float>(rc.x()) / fScaleX, static_cast<float>(rc.y()) / fScaleY,
                 static_cast<float>(rc.width()) / fScaleX,
                 static_cast<float>(rc.height()) / fScaleY},
                shape.color.rgba());
        }
    }
}

// A picture of what lies in sight is laid over the page, so that quads may lie over each
// other, and run any way, without showing it.
void ShapeOverlay::DrawAsPicture(const RenderCanvasEventArgs& args, const Shape& shape) const {
    const double dbLine = std::max(2.0, std::round(2.0 * PixelRatio()));
    const QPainterPath path = OnCanvas(args.nPageIndex, shape);
    const double dbAround = shape.bFrame ? dbLine : 0.0;
    const QRect rc = path.boundingRect()
                         .adjusted(-dbAround, -dbAround, dbAround, dbAround)
                         .intersected(Screen())
                         .toAlignedRect();
    if (rc.isEmpty()) {
        return;
    }
    QImage picture(rc.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-rc.topLeft());
    if (shape.bFrame) {
        PaintFrame(painter, path.boundingRect(), shape, dbLine);
    } else {
        painter.fillPath(path, shape.color);
    }
    painter.end();
    DrawPicture(*args.Canvas->GetDeviceContext(), picture, rc.topLeft());
}

}
