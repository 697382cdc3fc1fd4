#include "engines/mupdf/reflow/ReadingOrder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>

#include "engines/mupdf/reflow/Gutter.h"

namespace velko::engines::mupdf::reflow {

namespace {

using Pieces = std::vector<Piece>;

constexpr int kDeepest = 6;              // columns within columns
constexpr std::size_t kMostGaps = 8;     // are tried to part a page across
constexpr float kLeastGap = 0.5F;        // in the size of the text below it
constexpr float kMargin = 0.12F;         // of the page's height may a running head stand in
constexpr float kAsideGap = 0.9F;        // below or above it, in its size
constexpr std::size_t kCellLetters = 24; // of a cell of a table across columns at most
constexpr std::size_t kHeadLetters = 40; // of a piece of its head
constexpr std::size_t kLeastRows = 3;
constexpr float kLowFigure = 20.0F; // points from a figure's top to where it comes at most
constexpr std::size_t kAsideLetters = 160;

float Middle(const Piece& piece) {
    return (piece.rc.y0 + piece.rc.y1) / 2.0F;
}

bool IsBeside(const Piece& one, const Piece& two) {
    const float fShared = std::min(one.rc.y1, two.rc.y1) - std::max(one.rc.y0, two.rc.y0);
    return fShared > 0.5F * std::min(one.rc.y1 - one.rc.y0, two.rc.y1 - two.rc.y0);
}

void SortWithin(Row& row) {
    const auto nRightToLeft = std::count_if(row.begin(), row.end(),
                                            [](const Piece& piece) { return piece.bRightToLeft; });
    const bool bBackwards =
        2 * static_cast<std::size_t>(nRightToLeft) >= row.size() && nRightToLeft != 0;
    std::stable_sort(row.begin(), row.end(), [&](const Piece& one, const Piece& two) {
        return bBackwards ? one.rc.x1 > two.rc.x1 : one.rc.x0 < two.rc.x0;
    });
}

// Where a piece comes among the rows: a low figure stands in one, a high one begins
// at its top.
float RowOf(const Piece& piece) {
    return piece.rc.y0 + std::min((piece.rc.y1 - piece.rc.y0) / 2.0F, kLowFigure);
}

// Pieces side by side become a row; a figure is a row of its own.
std::vector<Row> RowsOf(Pieces pieces) {
    std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& one, const Piece& two) {
        return (one.IsFigure() ? RowOf(one) : Middle(one)) <
               (two.IsFigure() ? RowOf(two) : Middle(two));
    });
    std::vector<Row> rows;
    for (const Piece& piece : pieces) {
        const bool bJoins = !rows.empty() && !piece.IsFigure() && !rows.back()[0].IsFigure() &&
                            IsBeside(rows.back()[0], piece);
        if (bJoins) {
            rows.back().push_back(piece);
        } else {
            rows.push_back({piece});
        }
    }
    for (Row& row : rows) {
        SortWithin(row);
    }
    return rows;
}

Column ColumnOf(Pieces pieces) {
    Column column;
    column.fLeft = INFINITY;
    column.fRight = -INFINITY;
    for (const Piece& piece : pieces) {
        if (!piece.IsFigure()) {
            column.fLeft = std::min(column.fLeft, piece.rc.x0);
            column.fRight = std::max(column.fRight, piece.rc.x1);
        }
    }
    column.rows = RowsOf(std::move(pieces));
    return column;
}

struct Gap {
    float fMiddle = 0.0F;
    float fHeight = 0.0F;
};

// Where nothing stands over the whole width.
std::vector<Gap> GapsAcross(Pieces pieces) {
    std::sort(pieces.begin(), pieces.end(),
              [](const Piece& one, const Piece& two) { return one.rc.y0 < two.rc.y0; });
    std::vector<Gap> gaps;
    float fBottom = INFINITY;
    for (const Piece& piece : pieces) {
        if (piece.rc.y0 - fBottom > kLeastGap * piece.fSize) {
            gaps.push_back({(piece.rc.y0 + fBottom) / 2.0F, piece.rc.y0 - fBottom});
        }
        fBottom = std::isfinite(fBottom) ? std::max(fBottom, piece.rc.y1) : piece.rc.y1;
    }
    return gaps;
}

bool MostRunLeft(const Pieces& pieces) {
    const auto nLeft = std::count_if(pieces.begin(), pieces.end(),
                                     [](const Piece& piece) { return piece.bRightToLeft; });
    return 2 * static_cast<std::size_t>(nLeft) > pieces.size();
}

// Several short pieces on each side.
bool IsRowOfCells(const Row& row, const Gutter& gutter) {
    std::array<std::size_t, 2> counts{};
    for (const Piece& piece : row) {
        if (piece.IsFigure() || piece.nLetters > kCellLetters) {
            return false;
        }
        ++counts[piece.rc.x0 < gutter.Middle() ? 0 : 1];
    }
    return std::min(counts[0], counts[1]) >= 2;
}

bool IsHeadOf(const Row& row, const Row& below) {
    const float fGap = below[0].rc.y0 - row[0].rc.y1;
    return row.size() > 1 && fGap < row[0].fSize &&
           std::all_of(row.begin(), row.end(), [](const Piece& piece) {
               return !piece.IsFigure() && piece.nLetters <= kHeadLetters;
           });
}

// What stands in rows of cells on both sides of a gutter, and the head above them: a
// table across columns.
std::set<std::size_t> CellsAcross(const Gutter& gutter, const Pieces& pieces) {
    const std::vector<Row> rows = RowsOf(pieces);
    std::set<std::size_t> cells;
    for (std::size_t nFirst = 0; nFirst < rows.size();) {
        std::size_t nEnd = nFirst;
        while (nEnd < rows.size() && IsRowOfCells(rows[nEnd], gutter)) {
            ++nEnd;
        }
        if (nEnd - nFirst >= kLeastRows) {
            const bool bHead = nFirst > 0 && IsHeadOf(rows[nFirst - 1], rows[nFirst]);
            for (std::size_t i = bHead ? nFirst - 1 : nFirst; i < nEnd; ++i) {
                for (const Piece& piece : rows[i]) {
                    cells.insert(piece.nIndex);
                }
            }
        }
        nFirst = nEnd + 1;
    }
    return cells;
}

class Splitter {
public:
    explicit Splitter(std::vector<Column>& columns) : m_columns(columns) {}

    void Split(Pieces pieces, int nDepth) {
        if (pieces.empty()) {
            return;
        }
        const auto gutter = nDepth < kDeepest ? FindGutter(pieces) : std::optional<Gutter>();
        if (gutter) {
            SplitAt(*gutter, pieces, nDepth);
        } else if (nDepth >= kDeepest || !SplitAcross(pieces, nDepth)) {
            m_columns.push_back(ColumnOf(std::move(pieces)));
        }
    }

private:
    // What lies between two pieces that cross the gutter is a band.
    void SplitAt(const Gutter& gutter, const Pieces& pieces, int nDepth) {
        Pieces sorted = pieces;
        std::stable_sort(sorted.begin(), sorted.end(), [](const Piece& one, const Piece& two) {
            return Middle(one) < Middle(two);
        });
        const bool bRightFirst = MostRunLeft(pieces);
        const std::set<std::size_t> cells = CellsAcross(gutter, pieces);
        std::array<Pieces, 2> sides;
        Pieces crossing;
        for (const Piece& piece : sorted) {
            const bool bCrosses =
                gutter.IsCrossedBy(piece.rc) || cells.find(piece.nIndex) != cells.end();
            if (bCrosses && crossing.empty()) {
                Flush(sides, bRightFirst, nDepth);
            } else if (!bCrosses && !crossing.empty()) {
                Split(InContentOrder(std::exchange(crossing, {})), nDepth + 1);
            }
            Pieces& target = bCrosses ? crossing : sides[piece.rc.x0 < gutter.Middle() ? 0 : 1];
            target.push_back(piece);
        }
        Flush(sides, bRightFirst, nDepth);
        Split(InContentOrder(std::move(crossing)), nDepth + 1);
    }

    // A page whose parts have columns, but not the same: it is parted at the
    // widest gap that leaves a part with a gutter.
    bool SplitAcross(const Pieces& pieces, int nDepth) {
        std::vector<Gap> gaps = GapsAcross(pieces);
        std::sort(gaps.begin(), gaps.end(),
                  [](const Gap& one, const Gap& two) { return one.fHeight > two.fHeight; });
        gaps.resize(std::min(gaps.size(), kMostGaps));
        for (const Gap& gap : gaps) {
            std::array<Pieces, 2> parts;
            for (const Piece& piece : pieces) {
                parts[Middle(piece) < gap.fMiddle ? 0 : 1].push_back(piece);
            }
            if (FindGutter(parts[0]) || FindGutter(parts[1])) {
                Split(std::move(parts[0]), nDepth + 1);
                Split(std::move(parts[1]), nDepth + 1);
                return true;
            }
        }
        return false;
    }

    void Flush(std::array<Pieces, 2>& sides, bool bRightFirst, int nDepth) {
        const std::size_t nFirst = bRightFirst ? 1 : 0;
        Split(InContentOrder(std::exchange(sides[nFirst], {})), nDepth + 1);
        Split(InContentOrder(std::exchange(sides[1 - nFirst], {})), nDepth + 1);
    }

    static Pieces InContentOrder(Pieces pieces) {
        std::sort(pieces.begin(), pieces.end(),
                  [](const Piece& one, const Piece& two) { return one.nIndex < two.nIndex; });
        return pieces;
    }

    std::vector<Column>& m_columns;
};

// Takes the row at the page's very top (or bottom) out when it stands apart.
Pieces TakeAside(Pieces& pieces, const fz_rect& rcPage, bool bTop) {
    const auto fnEdge = [&](const Piece& piece) { return bTop ? piece.rc.y0 : -piece.rc.y1; };
    const auto itFirst = std::min_element(
        pieces.begin(), pieces.end(),
        [&](const Piece& one, const Piece& two) { return fnEdge(one) < fnEdge(two); });
    if (itFirst == pieces.end() || itFirst->IsFigure()) {
        return {};
    }
    const Piece first = *itFirst;
    const float fDistance = bTop ? first.rc.y1 - rcPage.y0 : rcPage.y1 - first.rc.y0;
    const auto fnIsAside = [&](const Piece& piece) {
        return !piece.IsFigure() && IsBeside(piece, first);
    };
    std::size_t nLetters = 0;
    float fGap = INFINITY;
    for (const Piece& piece : pieces) {
        if (fnIsAside(piece)) {
            nLetters += piece.nLetters;
        } else {
            fGap = std::min(fGap, bTop ? piece.rc.y0 - first.rc.y1 : first.rc.y0 - piece.rc.y1);
        }
    }
    if (fDistance > kMargin * (rcPage.y1 - rcPage.y0) || nLetters > kAsideLetters ||
        !std::isfinite(fGap) || fGap < kAsideGap * first.fSize) {
        return {};
    }
    const auto itAside = std::stable_partition(
        pieces.begin(), pieces.end(), [&](const Piece& piece) { return !fnIsAside(piece); });
    Pieces aside(itAside, pieces.end());
    pieces.erase(itAside, pieces.end());
    return aside;
}

void AppendAside(std::vector<Column>& columns, Pieces pieces) {
    if (!pieces.empty()) {
        columns.push_back(ColumnOf(std::move(pieces)));
        columns.back().bAside = true;
    }
}

}

std::vector<Column> OrderPieces(std::vector<Piece> pieces, const fz_rect& rcPage) {
    std::vector<Column> columns;
    AppendAside(columns, TakeAside(pieces, rcPage, true));
    Pieces foot = TakeAside(pieces, rcPage, false);
    Splitter(columns).Split(std::move(pieces), 0);
    AppendAside(columns, std::move(foot));
    return columns;
}

}
