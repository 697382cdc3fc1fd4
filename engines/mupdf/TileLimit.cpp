#include "engines/mupdf/TileLimit.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace velko::engines::mupdf {

namespace {

// Dots of a third of a point all over a page stay below.
constexpr double kMaxTiles = 4.0E6;

using BeginTile = int(fz_context*, fz_device*, fz_rect, fz_rect, float, float, fz_matrix, int);

// The drawing devices' own operation, the same for all of them.
std::atomic<BeginTile*> g_pBeginTile{nullptr};

double TileCount(const fz_rect& rc, float fXStep, float fYStep) {
    const double dbColumns = (double{rc.x1} - rc.x0) / std::abs(fXStep) + 1.0;
    const double dbRows = (double{rc.y1} - rc.y0) / std::abs(fYStep) + 1.0;
    return dbColumns * dbRows;
}

int BeginLimitedTile(fz_context* ctx, fz_device* pDevice, fz_rect rcArea, fz_rect rcView,
                     float fXStep, float fYStep, fz_matrix ctm, int nId) {
    const fz_rect rcVisible = fz_intersect_rect(
        rcArea, fz_transform_rect(fz_device_current_scissor(ctx, pDevice), fz_invert_matrix(ctm)));
    const double dbTiles = TileCount(rcVisible, fXStep, fYStep);
    if (!(dbTiles <= kMaxTiles)) { // not a number is too many as well
        const double dbColumns = std::sqrt(kMaxTiles) / 2.0;
        fXStep = std::max(std::abs(fXStep),
                          static_cast<float>((rcVisible.x1 - rcVisible.x0) / dbColumns));
        fYStep = std::max(std::abs(fYStep),
                          static_cast<float>((rcVisible.y1 - rcVisible.y0) / dbColumns));
    }
    return g_pBeginTile.load()(ctx, pDevice, rcArea, rcView, fXStep, fYStep, ctm, nId);
}

}

void LimitTiles(fz_device* pDevice) {
    if (pDevice->begin_tile != nullptr && pDevice->begin_tile != &BeginLimitedTile) {
        g_pBeginTile = pDevice->begin_tile;
        pDevice->begin_tile = &BeginLimitedTile;
    }
}

}
