#include "document/engine/Geometry.h"

#include <algorithm>
#include <cmath>

namespace velko::common::vxbase {

void Matrix2D::SetReverse(const Matrix2D& matrix) {
    const double dbA = matrix.A;
    const double dbB = matrix.B;
    const double dbC = matrix.C;
    const double dbD = matrix.D;
    const double dbDeterminant = dbA * dbD - dbB * dbC;
    if (dbDeterminant == 0.0 || !std::isfinite(dbDeterminant)) {
        *this = Matrix2D();
        return;
    }
    const double dbE = matrix.E;
    const double dbF = matrix.F;
    A = static_cast<float>(dbD / dbDeterminant);
    B = static_cast<float>(-dbB / dbDeterminant);
    C = static_cast<float>(-dbC / dbDeterminant);
    D = static_cast<float>(dbA / dbDeterminant);
    E = static_cast<float>((dbC * dbF - dbD * dbE) / dbDeterminant);
    F = static_cast<float>((dbB * dbE - dbA * dbF) / dbDeterminant);
}

void Matrix2D::Scale(float fX, float fY, std::int32_t bPrepend) {
    if (bPrepend != 0) {
        A *= fX;
        B *= fX;
        C *= fY;
        D *= fY;
        return;
    }
    A *= fX;
    C *= fX;
    E *= fX;
    B *= fY;
    D *= fY;
    F *= fY;
}

PointF Matrix2D::TransformPoint(PointF pt) const {
    const auto fnSum = [](double dbOne, double dbTwo, double dbThree) {
        return static_cast<float>(dbOne + dbTwo + dbThree);
    };
    return {fnSum(double{A} * pt.X, double{C} * pt.Y, E),
            fnSum(double{B} * pt.X, double{D} * pt.Y, F)};
}

RectF Matrix2D::TransformRect(const RectF& rc) const {
    const PointF pt1 = TransformPoint({rc.Left, rc.Bottom});
    const PointF pt2 = TransformPoint({rc.Right, rc.Bottom});
    const PointF pt3 = TransformPoint({rc.Left, rc.Top});
    const PointF pt4 = TransformPoint({rc.Right, rc.Top});
    const auto [fLeft, fRight] = std::minmax({pt1.X, pt2.X, pt3.X, pt4.X});
    const auto [fBottom, fTop] = std::minmax({pt1.Y, pt2.Y, pt3.Y, pt4.Y});
    return {fLeft, fBottom, fRight, fTop};
}

}
