#include "widget/text/TextGeometry.h"

#include <cmath>

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::pdf::PageText;
using velko::pdf::TextLine;
using velko::pdf::TextQuad;

namespace {

float Length(PointF pt) {
    return std::hypot(pt.X, pt.Y);
}

}

void TextBox::Add(const TextAxes& axes, const TextQuad& quad) {
    for (const PointF pt :
         {quad.ptTopLeft, quad.ptTopRight, quad.ptBottomLeft, quad.ptBottomRight}) {
        along.Add(axes.Along(pt));
        across.Add(axes.Across(pt));
    }
}

TextAxes AxesOf(const TextLine& line, const TextQuad& quad) {
    PointF along{quad.ptBottomRight.X - quad.ptBottomLeft.X,
                 quad.ptBottomRight.Y - quad.ptBottomLeft.Y};
    if (!(Length(along) > 0.0F)) {
        along = line.ptDirection;
    }
    const float fLength = Length(along);
    if (!(fLength > 0.0F)) {
        return {};
    }
    TextAxes axes;
    axes.along = {along.X / fLength, along.Y / fLength};
    axes.across = {axes.along.Y, -axes.along.X};
    const PointF down{quad.ptBottomLeft.X - quad.ptTopLeft.X,
                      quad.ptBottomLeft.Y - quad.ptTopLeft.Y};
    if (down.X * axes.across.X + down.Y * axes.across.Y < 0.0F) {
        axes.across = {-axes.across.X, -axes.across.Y}; // a mirrored page
    }
    return axes;
}

TextAxes AxesOf(const PageText& text, const TextLine& line) {
    return AxesOf(line, CharOf(text, line.nFirst).quad);
}

TextBox BoxOf(const PageText& text, const TextAxes& axes, std::int32_t nFirst, std::int32_t nEnd) {
    TextBox box;
    for (std::int32_t i = nFirst; i < nEnd; ++i) {
        box.Add(axes, CharOf(text, i).quad);
    }
    return box;
}

}
