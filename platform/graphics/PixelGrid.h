// How rectangles of fractional position land on whole pixels.
//
// Every edge goes to the nearest pixel boundary by itself, halves upward. Two
// neighbours that share an edge therefore share it on the screen too, without a
// seam or an overlap, and a bitmap as large as its destination is not resampled.
// Units: device pixels. Threads: pure functions.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "platform/graphics/Graphics.h"

namespace Windows::Graphics {

// A rectangle of whole pixels; right and bottom lie outside of it.
struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;

    std::int32_t Width() const { return right - left; }
    std::int32_t Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    PixelRect Intersected(const PixelRect& other) const;
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// The nearest pixel boundary. Far coordinates are limited to +-2^24.
std::int32_t NearestPixel(float fPosition);

// The pixels of a rectangle. A filled one that is not empty keeps at least one
// pixel on each axis, so that hairlines do not vanish.
PixelRect PixelsOf(const D2D_RECT_F& rc);
PixelRect FilledPixelsOf(const D2D_RECT_F& rc);

// The four sides of an outline that straddles the rectangle's edges, without
// overlap; each at least one pixel thick. Sides may be empty.
std::array<PixelRect, 4> OutlinePixelsOf(const D2D_RECT_F& rc, float fStrokeWidth);

// True when the matrix only scales and moves, so that rectangles stay upright.
bool KeepsUpright(const D2D_MATRIX_3X2_F& matrix);

// The box around the transformed rectangle.
D2D_RECT_F Transformed(const D2D_RECT_F& rc, const D2D_MATRIX_3X2_F& matrix);

// The part of a source rectangle that lies on a bitmap; empty when there is none.
std::optional<D2D_RECT_F> ClippedToBitmap(const D2D_RECT_F& rcSource, D2D_SIZE_U size);

}
