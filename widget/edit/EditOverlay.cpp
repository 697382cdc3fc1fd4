#include "widget/edit/EditOverlay.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"

namespace velko::vkit {

using namespace Windows::Graphics; // the drawing interface, named without a prefix
using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::TextQuad;

TextQuad EditOverlay::QuadOf(const RectF& rc) {
    return {{rc.Left, rc.Top}, {rc.Right, rc.Top}, {rc.Left, rc.Bottom}, {rc.Right, rc.Bottom}};
}

// In device pixels.
QPolygonF EditOverlay::OnCanvas(std::int32_t nPage, const TextQuad& quad) const {
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

// A picture of what lies in sight is laid over the page, so that quads may lie over each
// other, and run any way, without showing it.
void EditOverlay::Draw(const RenderCanvasEventArgs& args) {
    const auto size = Control().GetCanvasSize();
    const QRectF rcScreen(0.0, 0.0, size.Width * Control().CompositionScaleX(),
                          size.Height * Control().CompositionScaleY());
    const double dbLine = std::max(2.0, std::round(2.0 * PixelRatio()));
    for (const Shape& shape : m_fnShapes(args.nPageIndex)) {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        for (const TextQuad& quad : shape.quads) {
            path.addPolygon(OnCanvas(args.nPageIndex, quad));
        }
        const QRectF rcPath = shape.bFrame
                                  ? path.boundingRect().adjusted(-dbLine, -dbLine, dbLine, dbLine)
                                  : path.boundingRect();
        const QRect rc = rcPath.intersected(rcScreen).toAlignedRect();
        if (rc.isEmpty()) {
            continue;
        }
        QImage picture(rc.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-rc.topLeft());
        if (shape.bFrame) {
            const QRectF rcFrame = path.boundingRect().adjusted(-dbLine / 2.0, -dbLine / 2.0,
                                                                dbLine / 2.0, dbLine / 2.0);
            painter.setPen(QPen(Qt::white, dbLine));
            painter.drawRect(rcFrame);
            painter.setPen(QPen(shape.color, dbLine, Qt::CustomDashLine));
            QPen dashes(shape.color, dbLine);
            dashes.setDashPattern({3.0, 2.0});
            painter.setPen(dashes);
            painter.drawRect(rcFrame);
        } else {
            painter.fillPath(path, shape.color);
        }
        painter.end();
        ID2D1DeviceContext& context = *args.Canvas->GetDeviceContext();
        const auto pBitmap = context.CreateBitmap(
            {static_cast<std::uint32_t>(rc.width()), static_cast<std::uint32_t>(rc.height())},
            {picture.constBits(), static_cast<std::size_t>(picture.sizeInBytes())},
            static_cast<std::uint32_t>(picture.bytesPerLine()), {});
        const auto fLeft = static_cast<float>(rc.left());
        const auto fTop = static_cast<float>(rc.top());
        const auto fWidth = static_cast<float>(rc.width());
        const auto fHeight = static_cast<float>(rc.height());
        context.DrawBitmap(pBitmap, {fLeft, fTop, fLeft + fWidth, fTop + fHeight}, 1.0F,
                           D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, fWidth, fHeight});
    }
}

}
