#include "platform/graphics/PixelGrid.h"

#include <algorithm>
#include <cmath>

namespace Windows::Graphics {

PixelRect PixelRect::Intersected(const PixelRect& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

std::int32_t NearestPixel(float fPosition) {
    constexpr double kLimit = 16777216.0; // where 32-bit floats stop telling pixels apart
    const double dbPosition = std::isnan(fPosition) ? 0.0 : static_cast<double>(fPosition);
    return static_cast<std::int32_t>(std::floor(std::clamp(dbPosition, -kLimit, kLimit) + 0.5));
}

PixelRect PixelsOf(const D2D_RECT_F& rc) {
    return {NearestPixel(rc.left), NearestPixel(rc.top), NearestPixel(rc.right),
            NearestPixel(rc.bottom)};
}

PixelRect FilledPixelsOf(const D2D_RECT_F& rc) {
    PixelRect pixels = PixelsOf(rc);
    if (rc.right > rc.left && rc.bottom > rc.top) {
        pixels.right = std::max(pixels.right, pixels.left + 1);
        pixels.bottom = std::max(pixels.bottom, pixels.top + 1);
    }
    return pixels;
}

std::array<PixelRect, 4> OutlinePixelsOf(const D2D_RECT_F& rc, float fStrokeWidth) {
    const std::int32_t nStroke = std::max(NearestPixel(fStrokeWidth), 1);
    const float fHalf = fStrokeWidth / 2.0F;
    const std::int32_t nLeft = NearestPixel(rc.left - fHalf);
    const std::int32_t nTop = NearestPixel(rc.top - fHalf);
    // The inner edges of the far sides: never before the near sides' inner edges,
    // so that a rectangle thinner than its stroke does not paint a pixel twice.
    const std::int32_t nInnerRight = std::max(NearestPixel(rc.right - fHalf), nLeft + nStroke);
    const std::int32_t nInnerBottom = std::max(NearestPixel(rc.bottom - fHalf), nTop + nStroke);
    const std::int32_t nRight = nInnerRight + nStroke;
    const std::int32_t nBottom = nInnerBottom + nStroke;
    return {{{nLeft, nTop, nRight, nTop + nStroke},
             {nLeft, nInnerBottom, nRight, nBottom},
             {nLeft, nTop + nStroke, nLeft + nStroke, nInnerBottom},
             {nInnerRight, nTop + nStroke, nRight, nInnerBottom}}};
}

bool KeepsUpright(const D2D_MATRIX_3X2_F& matrix) {
    return matrix._12 == 0.0F && matrix._21 == 0.0F && matrix._11 > 0.0F && matrix._22 > 0.0F;
}

D2D_RECT_F Transformed(const D2D_RECT_F& rc, const D2D_MATRIX_3X2_F& matrix) {
    const auto fnX = [&](float fX, float fY) {
        return matrix._11 * fX + matrix._21 * fY + matrix._31;
    };
    const auto fnY = [&](float fX, float fY) {
        return matrix._12 * fX + matrix._22 * fY + matrix._32;
    };
    const auto [fLeft, fRight] = std::minmax({fnX(rc.left, rc.top), fnX(rc.right, rc.top),
                                              fnX(rc.left, rc.bottom), fnX(rc.right, rc.bottom)});
    const auto [fTop, fBottom] = std::minmax({fnY(rc.left, rc.top), fnY(rc.right, rc.top),
                                              fnY(rc.left, rc.bottom), fnY(rc.right, rc.bottom)});
    return {fLeft, fTop, fRight, fBottom};
}

std::optional<D2D_RECT_F> ClippedToBitmap(const D2D_RECT_F& rcSource, D2D_SIZE_U size) {
    const D2D_RECT_F rc{std::max(rcSource.left, 0.0F), std::max(rcSource.top, 0.0F),
                        std::min(rcSource.right, static_cast<float>(size.width)),
                        std::min(rcSource.bottom, static_cast<float>(size.height))};
    if (!(rc.right > rc.left && rc.bottom > rc.top)) {
        return std::nullopt;
    }
    return rc;
}

}
