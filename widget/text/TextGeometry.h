// Boxes around letters and lines of a page, in the axes in which these stand.
//
// Threads: pure functions. Units: page space, points.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "document/engine/PageText.h"

namespace velko::vkit {

// Along a line and across it, from the line's top down, with the letters upright.
struct TextAxes {
    using PointF = velko::common::vxbase::PointF;

    PointF along{1.0F, 0.0F};
    PointF across{0.0F, -1.0F};

    float Along(PointF pt) const { return pt.X * along.X + pt.Y * along.Y; }
    float Across(PointF pt) const { return pt.X * across.X + pt.Y * across.Y; }
    PointF Point(float fAlong, float fAcross) const {
        return {fAlong * along.X + fAcross * across.X, fAlong * along.Y + fAcross * across.Y};
    }
};

struct TextExtent {
    float fStart = std::numeric_limits<float>::max();
    float fEnd = std::numeric_limits<float>::lowest();

    void Add(float f) {
        fStart = std::min(fStart, f);
        fEnd = std::max(fEnd, f);
    }
    void Add(const TextExtent& extent) {
        Add(extent.fStart);
        Add(extent.fEnd);
    }
    float Length() const { return fEnd - fStart; }
    float Middle() const { return (fStart + fEnd) / 2.0F; }
    float DistanceTo(float f) const { return std::max({fStart - f, f - fEnd, 0.0F}); }
};

// In axes of its own.
struct TextBox {
    TextExtent along;
    TextExtent across;

    void Add(const TextAxes& axes, const velko::pdf::TextQuad& quad);
};

inline const velko::pdf::TextChar& CharOf(const velko::pdf::PageText& text, std::int32_t nChar) {
    return text.chars[static_cast<std::size_t>(nChar)];
}
inline const velko::pdf::TextLine& LineOf(const velko::pdf::PageText& text, std::int32_t nLine) {
    return text.lines[static_cast<std::size_t>(nLine)];
}

// The axes of a letter; letters without a width have those that a line is read in.
TextAxes AxesOf(const velko::pdf::TextLine& line, const velko::pdf::TextQuad& quad);
TextAxes AxesOf(const velko::pdf::PageText& text, const velko::pdf::TextLine& line);

// Around characters, the end excluded.
TextBox BoxOf(const velko::pdf::PageText& text, const TextAxes& axes, std::int32_t nFirst,
              std::int32_t nEnd);

}
