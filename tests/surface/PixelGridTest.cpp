// Rectangles on whole pixels: no seams, no lost hairlines, no pixel twice.
#include "platform/graphics/PixelGrid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace Windows::Graphics {
namespace {

TEST(PixelGridTest, NeighboursShareTheirEdgeAndKeepTheirSize) {
    std::mt19937 random(20240229);
    std::uniform_real_distribution<double> offset(-3000.0, 3000.0);
    for (int nRound = 0; nRound < 20000; ++nRound) {
        const double dbX = nRound % 4 == 0 ? nRound / 8.0 : offset(random); // halves too
        const int nWidth = 1 + nRound % 1500;
        const D2D_RECT_F rcLeft{static_cast<float>(dbX), 0.0F, static_cast<float>(dbX + nWidth),
                                10.0F};
        const D2D_RECT_F rcRight{static_cast<float>(dbX + nWidth), 0.0F,
                                 static_cast<float>(dbX + 2 * nWidth), 10.0F};
        const PixelRect left = PixelsOf(rcLeft);
        const PixelRect right = PixelsOf(rcRight);
        ASSERT_EQ(left.right, right.left) << "a seam at " << dbX;
        // Narrowing to 32 bits may move an edge that lies within its rounding
        // of a half; no other may differ.
        const double dbFromHalf = std::abs(dbX - std::floor(dbX) - 0.5);
        if (dbFromHalf > 1e-3) {
            ASSERT_EQ(left.Width(), nWidth) << "resampled at " << dbX;
        }
    }
}

TEST(PixelGridTest, EdgesGoToTheNearestPixelWithHalvesUpward) {
    EXPECT_EQ(NearestPixel(0.49F), 0);
    EXPECT_EQ(NearestPixel(0.5F), 1);
    EXPECT_EQ(NearestPixel(-0.5F), 0);
    EXPECT_EQ(NearestPixel(-0.51F), -1);
    EXPECT_EQ(NearestPixel(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(NearestPixel(std::numeric_limits<float>::infinity()), 1 << 24);
    EXPECT_EQ(NearestPixel(-1e30F), -(1 << 24));
}

TEST(PixelGridTest, AFilledHairlineStaysVisibleAndAnEmptyOneDoesNot) {
    EXPECT_EQ(FilledPixelsOf({2.1F, 5.0F, 2.2F, 9.0F}), (PixelRect{2, 5, 3, 9}));
    EXPECT_EQ(FilledPixelsOf({0.0F, 3.6F, 9.0F, 3.9F}), (PixelRect{0, 4, 9, 5}));
    EXPECT_TRUE(FilledPixelsOf({2.0F, 5.0F, 2.0F, 9.0F}).IsEmpty());
    EXPECT_TRUE(FilledPixelsOf({9.0F, 5.0F, 2.0F, 9.0F}).IsEmpty());
}

TEST(PixelGridTest, AnOutlineStraddlesTheEdgesAndPaintsNoPixelTwice) {
    struct Case {
        D2D_RECT_F rc;
        float fStroke;
        int nPixels; // painted in all
    };
    const Case cases[] = {
        {{10, 10, 20, 20}, 1.0F, 4 * 10}, // from 10 to 20 inclusive: 11 by 11 less 9 by 9
        {{10.3F, 10.3F, 20.3F, 20.3F}, 1.0F, 40},
        {{10, 10, 20, 20}, 3.0F, 13 * 13 - 7 * 7},
        {{10, 10, 20, 20}, 0.2F, 40},   // never thinner than a pixel
        {{10, 10, 11, 10.2F}, 1.0F, 4}, // thinner than its stroke
    };
    for (const Case& test : cases) {
        std::map<std::pair<int, int>, int> painted;
        for (const PixelRect& side : OutlinePixelsOf(test.rc, test.fStroke)) {
            for (int nY = side.top; nY < side.bottom; ++nY) {
                for (int nX = side.left; nX < side.right; ++nX) {
                    EXPECT_EQ(++painted[std::make_pair(nX, nY)], 1) << nX << ", " << nY;
                }
            }
        }
        EXPECT_EQ(static_cast<int>(painted.size()), test.nPixels)
            << test.rc.left << " to " << test.rc.right << ", stroke " << test.fStroke;
    }
}

}
}
