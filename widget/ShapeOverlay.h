// Areas and frames that the widget draws over a page: a mark that comes, the frame of
// what is chosen.
//
// Lifetime: goes before the control. Threads: UI thread only.
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPolygonF>
#include <QRectF>
#include <QRegion>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "widget/PageOverlay.h"

namespace velko::vkit {

class ShapeOverlay : public PageOverlay {
public:
    struct Shape {
        std::vector<velko::pdf::TextQuad> quads; // page space
        QColor color;                            // of an area; one that is let through
        bool bFrame = false;                     // around the quads instead
        bool bUnbroken = false;                  // a thin line, without dashes
    };
    using Shapes = std::function<std::vector<Shape>(std::int32_t nPage)>;

    ShapeOverlay(PDFViewCtrl& control, std::function<double()> fnPixelRatio, Shapes fnShapes,
                 Over eOver = Over::Pages)
        : PageOverlay(control, std::move(fnPixelRatio), eOver), m_fnShapes(std::move(fnShapes)) {}

    static velko::pdf::TextQuad QuadOf(const velko::common::vxbase::RectF& rc);

protected:
    void Draw(const RenderCanvasEventArgs& args) override;

private:
    // In device pixels.
    QPolygonF OnCanvas(std::int32_t nPage, const velko::pdf::TextQuad& quad) const;
    QPainterPath OnCanvas(std::int32_t nPage, const Shape& shape) const;
    QRectF Screen() const;
    // Empty for a shape that is not.
    std::optional<QRegion> UprightOnCanvas(std::int32_t nPage, const Shape& shape) const;
    void DrawAsPicture(const RenderCanvasEventArgs& args, const Shape& shape) const;

    const Shapes m_fnShapes;
};

}
