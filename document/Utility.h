// Small operations that the whole component draws on: identifiers, colours as
// text, the device family, units, points through matrices.
//
// Threads: any, except those that ask for the logical DPI (the UI thread).
#pragma once

#include <string>

#include "document/engine/Geometry.h"
#include "platform/foundation/Color.h"
#include "platform/foundation/Geometry.h"
#include "platform/system/Environment.h"

namespace velko::vkit {

class Utility {
public:
    Utility() = delete;

    // Random identifiers (RFC 4122, version 4). Empty when the system has no
    // random numbers. In braces and groups, the third group in lower case and
    // the rest in upper case; plain: 32 digits; long: three in one text, 86
    // characters.
    static std::string NewGuidString();
    static std::string NewGuidStringPlain();
    static std::string NewLongIdString();

    // "#RRGGBB" or "#AARRGGBB"; any other text is opaque white.
    static Windows::UI::Color ColorFromString(const std::string& strText);
    static std::string ColorToString(Windows::UI::Color color); // "#AARRGGBB"

    // Not opposites of each other: there are further families.
    static bool IsDesktop();
    static bool IsMobile();

    // Points of 1/72 inch and device pixels, at the logical DPI of this moment.
    static double PointsToPixels(double dbPoints);
    static double PixelsToPoints(double dbPixels);

    static Windows::Graphics::Display::DisplayInformation GetDisplayInformation() { return {}; }

    // Through a matrix, in 32-bit floats. A rectangle gives the box around its
    // transformed corners; an empty one stays empty.
    static Windows::Foundation::Point TransformPoint(const velko::common::vxbase::Matrix2D& matrix,
                                                     Windows::Foundation::Point pt);
    static Windows::Foundation::Rect TransformRect(const velko::common::vxbase::Matrix2D& matrix,
                                                   const Windows::Foundation::Rect& rc);
};

}
