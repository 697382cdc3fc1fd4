#include "engines/mupdf/reflow/Gutter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace velko::engines::mupdf::reflow {

namespace {

constexpr int kStrips = 400; // the width is looked at in so many
// Of what the fullest strip holds may lie over a gutter; the least is tried first.
constexpr std::array<float, 5> kMostCovered = {0.0F, 0.1F, 0.2F, 0.35F, 0.5F};
constexpr float kLeastWidth = 0.5F;     // of a gutter, in the text's size
constexpr std::size_t kLeastPieces = 3; // on each side
constexpr float kLeastBeside = 0.3F;    // of the shorter side stands beside the other
constexpr float kProseFill = 0.55F;     // of its column's width does a line of prose take
constexpr float kProseLetters = 14.0F;  // has a line of prose at least
constexpr float kMostJumps = 0.34F;     // between the sides, for each piece of the smaller one

constexpr float kCellLetters = 9.0F; // has a table's cell at most, on average
constexpr float kLevel = 0.2F;       // in the text's size, what stands in one row is off at most
constexpr float kMostLevel = 0.6F;   // of the pieces stand in one row with others: a table

struct Side {
    std::size_t nPieces = 0;
    std::size_t nLetters = 0;
    float fWidths = 0.0F; // sum
    fz_rect rc = fz_empty_rect;

    void Add(const Piece& piece) {
        ++nPieces;
        nLetters += piece.nLetters;
        fWidths += piece.rc.x1 - piece.rc.x0;
        rc = nPieces == 1 ? piece.rc : fz_union_rect(rc, piece.rc);
    }

    float MeanLetters() const {
        return static_cast<float>(nLetters) / static_cast<float>(std::max<std::size_t>(nPieces, 1));
    }

    bool IsProse() const {
        const auto fPieces = static_cast<float>(nPieces);
        return fWidths / fPieces >= kProseFill * (rc.x1 - rc.x0) &&
               static_cast<float>(nLetters) / fPieces >= kProseLetters;
    }
};

struct Extent {
    float fLeft = INFINITY;
    float fRight = -INFINITY;
    float fSize = 0.0F; // most letters'
    float Width() const { return fRight - fLeft; }
};

Extent ExtentOf(std::span<const Piece> pieces) {
    Extent extent;
    std::vector<float> sizes;
    for (const Piece& piece : pieces) {
        extent.fLeft = std::min(extent.fLeft, piece.rc.x0);
        extent.fRight = std::max(extent.fRight, piece.rc.x1);
        if (!piece.IsFigure()) {
            sizes.push_back(piece.fSize);
        }
    }
    if (!sizes.empty()) {
        const auto itMiddle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
        std::nth_element(sizes.begin(), itMiddle, sizes.end());
        extent.fSize = *itMiddle;
    }
    return extent;
}

// How many pieces lie over each strip of the width.
std::array<int, kStrips> CoverageOf(std::span<const Piece> pieces, const Extent& extent) {
    std::array<int, kStrips + 1> steps{};
    const auto fnStrip = [&](float x) {
        return std::clamp(static_cast<int>((x - extent.fLeft) / extent.Width() * kStrips), 0,
                          kStrips - 1);
    };
    for (const Piece& piece : pieces) {
        ++steps[static_cast<std::size_t>(fnStrip(piece.rc.x0))];
        --steps[static_cast<std::size_t>(fnStrip(piece.rc.x1) + 1)];
    }
    std::array<int, kStrips> coverage{};
    int nCovering = 0;
    for (std::size_t i = 0; i < kStrips; ++i) {
        nCovering += steps[i];
        coverage[i] = nCovering;
    }
    return coverage;
}

// Stretches of strips that at most so many pieces lie over, away from the edges.
std::vector<Gutter> Candidates(const std::array<int, kStrips>& coverage, int nMost,
                               const Extent& extent) {
    std::vector<Gutter> gutters;
    const float fStrip = extent.Width() / kStrips;
    std::size_t nFirst = 0;
    for (std::size_t i = 0; i < kStrips; ++i) {
        if (coverage[i] <= nMost) {
            continue;
        }
        const Gutter gutter{extent.fLeft + static_cast<float>(nFirst) * fStrip,
                            extent.fLeft + static_cast<float>(i) * fStrip};
        if (nFirst > 0 && gutter.fRight - gutter.fLeft >= kLeastWidth * extent.fSize) {
            gutters.push_back(gutter);
        }
        nFirst = i + 1;
    }
    return gutters;
}

// Cells of a table, drawn column by column: short pieces, in the same rows on both
// sides.
bool PartsCells(std::span<const Piece> pieces, const Gutter& gutter, const Side& left,
                const Side& right) {
    if (left.MeanLetters() > kCellLetters || right.MeanLetters() > kCellLetters) {
        return false;
    }
    std::vector<float> middles; // of the right side's
    for (const Piece& piece : pieces) {
        if (!piece.IsFigure() && piece.rc.x0 >= gutter.Middle()) {
            middles.push_back((piece.rc.y0 + piece.rc.y1) / 2.0F);
        }
    }
    std::sort(middles.begin(), middles.end());
    const auto nLevel = std::count_if(pieces.begin(), pieces.end(), [&](const Piece& piece) {
        const float fMiddle = (piece.rc.y0 + piece.rc.y1) / 2.0F;
        const float fNear = kLevel * piece.fSize;
        const auto it = std::lower_bound(middles.begin(), middles.end(), fMiddle - fNear);
        return !piece.IsFigure() && piece.rc.x1 <= gutter.Middle() && it != middles.end() &&
               *it <= fMiddle + fNear;
    });
    return static_cast<float>(nLevel) > kMostLevel * static_cast<float>(left.nPieces);
}

bool PartsColumns(std::span<const Piece> pieces, const Gutter& gutter) {
    std::array<Side, 2> sides;
    std::size_t nJumps = 0;
    int nLast = -1;
    for (const Piece& piece : pieces) { // in the content's order
        if (piece.IsFigure() || gutter.IsCrossedBy(piece.rc)) {
            continue;
        }
        const int nSide = piece.rc.x0 < gutter.Middle() ? 0 : 1;
        nJumps += nLast >= 0 && nSide != nLast ? 1U : 0U;
        nLast = nSide;
        sides[static_cast<std::size_t>(nSide)].Add(piece);
    }
    const Side& left = sides[0];
    const Side& right = sides[1];
    const std::size_t nFewest = std::min(left.nPieces, right.nPieces);
    if (nFewest < kLeastPieces) {
        return false;
    }
    const float fBeside = std::min(left.rc.y1, right.rc.y1) - std::max(left.rc.y0, right.rc.y0);
    const float fShorter = std::min(left.rc.y1 - left.rc.y0, right.rc.y1 - right.rc.y0);
    if (fBeside < kLeastBeside * fShorter) {
        return false;
    }
    return (left.IsProse() && right.IsProse()) ||
           (!PartsCells(pieces, gutter, left, right) &&
            static_cast<float>(nJumps) <= kMostJumps * static_cast<float>(nFewest));
}

}

std::optional<Gutter> FindGutter(std::span<const Piece> pieces) {
    if (pieces.size() < 2 * kLeastPieces) {
        return std::nullopt;
    }
    const Extent extent = ExtentOf(pieces);
    if (!(extent.Width() > 0.0F) || !std::isfinite(extent.Width())) {
        return std::nullopt;
    }
    const auto coverage = CoverageOf(pieces, extent);
    const auto fFullest = static_cast<float>(*std::max_element(coverage.begin(), coverage.end()));
    for (const float fMost : kMostCovered) {
        std::optional<Gutter> widest;
        for (const Gutter& gutter :
             Candidates(coverage, static_cast<int>(fMost * fFullest), extent)) {
            const bool bWider =
                !widest || gutter.fRight - gutter.fLeft > widest->fRight - widest->fLeft;
            if (bWider && PartsColumns(pieces, gutter)) {
                widest = gutter;
            }
        }
        if (widest) {
            return widest;
        }
    }
    return std::nullopt;
}

}
