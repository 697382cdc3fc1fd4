#include "document/engine/DisplayMatrix.h"

namespace velko::pdf {

namespace {

// x' = dbA x + dbC y + dbE and so on, before rounding to floats.
struct WideMatrix {
    double dbA, dbB, dbC, dbD, dbE, dbF;
};

}

common::vxbase::Matrix2D MakeDisplayMatrix(const common::vxbase::RectF& rcBox,
                                           std::int32_t nPageRotation, std::int32_t nLeft,
                                           std::int32_t nTop, std::int32_t nWidth,
                                           std::int32_t nHeight, std::int32_t nRotate) {
    const double dbBoxWidth = double{rcBox.Right} - rcBox.Left;
    const double dbBoxHeight = double{rcBox.Top} - rcBox.Bottom;
    const std::int32_t nTurns = ((nPageRotation & 3) + (nRotate & 3)) & 3;
    const bool bSideways = (nTurns & 1) != 0;
    const double dbX = nWidth / (bSideways ? dbBoxHeight : dbBoxWidth);
    const double dbY = nHeight / (bSideways ? dbBoxWidth : dbBoxHeight);

    WideMatrix m{};
    switch (nTurns) {
        case 0:
            m = {dbX, 0.0, 0.0, -dbY, -rcBox.Left * dbX, rcBox.Top * dbY};
            break;
        case 1:
            m = {0.0, dbY, dbX, 0.0, -rcBox.Bottom * dbX, -rcBox.Left * dbY};
            break;
        case 2:
            m = {-dbX, 0.0, 0.0, dbY, rcBox.Right * dbX, -rcBox.Bottom * dbY};
            break;
        default:
            m = {0.0, -dbY, -dbX, 0.0, rcBox.Top * dbX, rcBox.Right * dbY};
            break;
    }
    return {static_cast<float>(m.dbA),         static_cast<float>(m.dbB),
            static_cast<float>(m.dbC),         static_cast<float>(m.dbD),
            static_cast<float>(m.dbE + nLeft), static_cast<float>(m.dbF + nTop)};
}

}
