// The engine's points, rectangles and matrices.
//
// Page space is the file's user space: points of 1/72 inch, Y upward, before
// rotation. Threads: values.
#pragma once

#include <cstdint>

namespace velko::common::vxbase {

struct PointF {
    float X = 0.0F;
    float Y = 0.0F;
};

// In page space Top is above Bottom; in device space Top has the smaller value.
struct RectF {
    float Left = 0.0F;
    float Bottom = 0.0F;
    float Right = 0.0F;
    float Top = 0.0F;
};

struct RectI {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;
};

// x' = A x + C y + E and y' = B x + D y + F; the identity by default.
struct Matrix2D {
    float A = 1.0F;
    float B = 0.0F;
    float C = 0.0F;
    float D = 1.0F;
    float E = 0.0F;
    float F = 0.0F;

    // Makes this the inverse of `matrix`; the identity when it has none.
    void SetReverse(const Matrix2D& matrix);

    // Appends a scaling (prepends it when `bPrepend` is not 0).
    void Scale(float fX, float fY, std::int32_t bPrepend);

    PointF TransformPoint(PointF pt) const;

    // The box around the transformed corners: Left and Bottom hold the smaller
    // values, Right and Top the larger ones.
    RectF TransformRect(const RectF& rc) const;
};

}
