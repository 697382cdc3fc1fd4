#include "viewers/core/PageGeometry.h"

#include <algorithm>
#include <cmath>

#include "document/Utility.h"
#include "platform/system/Environment.h"

namespace velko::vkit {

namespace {

// No page that an engine reports comes near this at the largest scale.
constexpr std::int32_t kLargestSide = 1'000'000;

// A screen of a few pixels (a window being made) must not cut a page into
// hundreds of thousands of blocks.
constexpr double kSmallestBlockSide = 64.0;

constexpr float kPointsPerInch = 72.0F;

// The scale at which a page whose side `fSide` (points) shows as `fShown`
// pixels at scale 1.0 fits the screen.
double FitScale(const VLK_PageSize& size, std::int32_t nRotate, const ScreenSize& screen,
                float fBaseWidth, float fBaseHeight) {
    const bool bTurned = IsTurned(nRotate);
    const double dbAcross = bTurned ? size.fHeight : size.fWidth; // on the screen's X axis
    const double dbDown = bTurned ? size.fWidth : size.fHeight;
    const double dbPixels = std::min(screen.dbHeight / dbDown, screen.dbWidth / dbAcross);
    return (dbDown * dbPixels) / static_cast<double>(bTurned ? fBaseWidth : fBaseHeight);
}

std::int32_t CountBlocks(std::int32_t nSide, double dbScreen) {
    if (nSide <= dbScreen) {
        return 1;
    }
    return std::max(1, static_cast<std::int32_t>(nSide / std::max(dbScreen, kSmallestBlockSide)));
}

}

DisplaySize CalcPageDisplaySize(const VLK_PageSize& size, std::int32_t nRotate,
                                const ScreenSize& screen, double& dbScale) {
    if (size.fWidth == 0.0F && size.fHeight == 0.0F) {
        return {};
    }
    const bool bTurned = IsTurned(nRotate);
    const float fAcross = bTurned ? size.fHeight : size.fWidth;
    const float fDown = bTurned ? size.fWidth : size.fHeight;
    if (Utility::IsMobile()) {
        const double dbFit = std::min(screen.dbHeight / fDown, screen.dbWidth / fAcross);
        return {static_cast<float>(dbScale * fAcross * dbFit),
                static_cast<float>(dbScale * fDown * dbFit)};
    }
    const float fDpi = Windows::Graphics::Display::DisplayInformation::LogicalDpi();
    const float fWidth = (fAcross / kPointsPerInch) * fDpi;
    const float fHeight = (fDown / kPointsPerInch) * fDpi;
    if (dbScale == 0.0) {
        dbScale = FitScale(size, nRotate, screen, fWidth, fHeight);
    }
    return {static_cast<float>(fWidth * dbScale), static_cast<float>(fHeight * dbScale)};
}

double CalcWidthRatio(const VLK_PageSize& size, std::int32_t nRotate, const ScreenSize& screen) {
    const bool bTurned = IsTurned(nRotate);
    const double dbFitWidth = screen.dbWidth / (bTurned ? size.fHeight : size.fWidth);
    const double dbFitPage =
        std::min(dbFitWidth, screen.dbHeight / (bTurned ? size.fWidth : size.fHeight));
    const double dbRatio = bTurned ? dbFitPage / dbFitWidth : dbFitWidth / dbFitPage;
    return std::isfinite(dbRatio) ? dbRatio : 1.0;
}

Render_PageDavidBlock CalcBlockGrid(const Render_ScreenOffsetInfo& rc, const ScreenSize& screen) {
    return {CountBlocks(rc.nHeight, screen.dbHeight), CountBlocks(rc.nWidth, screen.dbWidth)};
}

std::int32_t TruncateSide(float fSide) {
    if (!(fSide > 0.0F)) {
        return 0;
    }
    return fSide >= static_cast<float>(kLargestSide) ? kLargestSide
                                                     : static_cast<std::int32_t>(fSide);
}

}
