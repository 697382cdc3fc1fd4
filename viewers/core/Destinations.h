// The kinds of destinations in a document, their values, and how large an area
// of a page is to be shown.
//
// Threads: pure functions.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/foundation/Geometry.h"
#include "viewers/core/PageGeometry.h"

namespace velko::vkit {

enum DestinationKind : std::int32_t {
    kExplicit = 1, // a place and a zoom
    kFitPage = 2,
    kFitWidth = 3,
    kFitHeight = 4,
    kFitRectangle = 5,
    kFitBox = 6, // the box around the page's contents
    kFitBoxWidth = 7,
    kFitBoxHeight = 8,
};

constexpr std::size_t kLeft = 0; // also the only value of a kind that has one
constexpr std::size_t kTop = 1;
constexpr std::size_t kRight = 2; // the zoom, for an explicit destination
constexpr std::size_t kBottom = 3;

// Raises `OutOfBoundsException` when there are too few.
inline float ValueAt(const std::vector<float>& values, std::size_t nIndex) {
    if (nIndex >= values.size()) {
        throw Platform::OutOfBoundsException("a destination with too few values");
    }
    return values[nIndex];
}

// How much larger a page is to be shown for one side of an area to fit. An area
// that covers the page fits like the page.
inline double SideFactor(double dbArea, double dbPage, double dbScreen) {
    return dbScreen / std::min(dbArea, dbPage);
}

// The same for both sides of an area (device pixels) of the page at `rcPage`.
inline double AreaFactor(const Windows::Foundation::Rect& rcArea,
                         const Render_ScreenOffsetInfo& rcPage, const ScreenSize& screen) {
    return std::min(SideFactor(rcArea.Width, rcPage.nWidth, screen.dbWidth),
                    SideFactor(rcArea.Height, rcPage.nHeight, screen.dbHeight));
}

}
