// Points, sizes and rectangles of the application model, in 32-bit floats.
//
// Units: whatever the caller's space is; the type fixes none.
// Threads: values.
#pragma once

#include <limits>

#include "platform/foundation/Exception.h"

namespace Windows::Foundation {

struct Point {
    float X = 0.0F;
    float Y = 0.0F;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    float Width = 0.0F;
    float Height = 0.0F;

    friend bool operator==(const Size&, const Size&) = default;
};

// A rectangle that is never negative: the constructor raises
// `InvalidArgumentException` for a negative width or height. `Empty` is the
// one rectangle without any point; it is told by its negative infinite size.
class Rect {
public:
    float X = 0.0F;
    float Y = 0.0F;
    float Width = 0.0F;
    float Height = 0.0F;

    constexpr Rect() = default;
    Rect(float fX, float fY, float fWidth, float fHeight)
        : X(fX), Y(fY), Width(fWidth), Height(fHeight) {
        if (fWidth < 0.0F || fHeight < 0.0F) {
            throw Platform::InvalidArgumentException("a rectangle of negative size");
        }
    }

    static Rect Empty() {
        constexpr float fInfinity = std::numeric_limits<float>::infinity();
        Rect rc;
        rc.X = fInfinity;
        rc.Y = fInfinity;
        rc.Width = -fInfinity;
        rc.Height = -fInfinity;
        return rc;
    }

    bool IsEmpty() const { return Width < 0.0F; }
    float Left() const { return IsEmpty() ? std::numeric_limits<float>::infinity() : X; }
    float Top() const { return IsEmpty() ? std::numeric_limits<float>::infinity() : Y; }
    float Right() const { return IsEmpty() ? -std::numeric_limits<float>::infinity() : X + Width; }
    float Bottom() const {
        return IsEmpty() ? -std::numeric_limits<float>::infinity() : Y + Height;
    }

    // Edges belong to the rectangle.
    bool Contains(Point pt) const {
        return !IsEmpty() && pt.X >= X && pt.X <= X + Width && pt.Y >= Y && pt.Y <= Y + Height;
    }

    // True when the two share an area; touching edges do not intersect.
    bool IntersectsWith(const Rect& rc) const {
        return !IsEmpty() && !rc.IsEmpty() && X < rc.X + rc.Width && rc.X < X + Width &&
               Y < rc.Y + rc.Height && rc.Y < Y + Height;
    }

    friend bool operator==(const Rect&, const Rect&) = default;
};

}
