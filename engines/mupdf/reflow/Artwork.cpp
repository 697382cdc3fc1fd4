#include "engines/mupdf/reflow/Artwork.h"

#include <algorithm>
#include <cmath>

namespace velko::engines::mupdf::reflow {

namespace {

constexpr int kCells = 160;     // of a page's side; marks in neighbouring cells belong together
constexpr float kGround = 0.6F; // of the page's area
constexpr float kRule = 2.5F;   // points; what is thinner and longer is a rule of the text

float AreaOf(const fz_rect& rc) {
    return (rc.x1 - rc.x0) * (rc.y1 - rc.y0);
}

class Grid {
public:
    explicit Grid(const fz_rect& rcPage)
        : m_rcPage(rcPage), m_cells(static_cast<std::size_t>(kCells) * kCells, kEmpty) {}

    void Mark(const fz_rect& rc) {
        for (int y = Row(rc.y0); y <= Row(rc.y1); ++y) {
            for (int x = Column(rc.x0); x <= Column(rc.x1); ++x) {
                At(x, y) = kMarked;
            }
        }
    }

    // Numbers what hangs together; returns how many there are.
    int Number() {
        int nNext = 0;
        for (int y = 0; y < kCells; ++y) {
            for (int x = 0; x < kCells; ++x) {
                if (At(x, y) == kMarked) {
                    Fill(x, y, nNext++);
                }
            }
        }
        return nNext;
    }

    int NumberAt(const fz_rect& rc) { return At(Column(rc.x0), Row(rc.y0)); }

private:
    static constexpr int kEmpty = -1;
    static constexpr int kMarked = -2;

    struct Cell {
        int x;
        int y;
    };

    static int Index(float f, float fFirst, float fLast) {
        return std::clamp(static_cast<int>((f - fFirst) / (fLast - fFirst) * kCells), 0,
                          kCells - 1);
    }
    int Column(float x) const { return Index(x, m_rcPage.x0, m_rcPage.x1); }
    int Row(float y) const { return Index(y, m_rcPage.y0, m_rcPage.y1); }
    int& At(int x, int y) { return m_cells[static_cast<std::size_t>(y * kCells + x)]; }

    void Fill(int nX, int nY, int nNumber) {
        std::vector<Cell> open = {{nX, nY}};
        At(nX, nY) = nNumber;
        while (!open.empty()) {
            const Cell cell = open.back();
            open.pop_back();
            for (int y = std::max(cell.y - 1, 0); y <= std::min(cell.y + 1, kCells - 1); ++y) {
                for (int x = std::max(cell.x - 1, 0); x <= std::min(cell.x + 1, kCells - 1); ++x) {
                    if (At(x, y) == kMarked) {
                        At(x, y) = nNumber;
                        open.push_back({x, y});
                    }
                }
            }
        }
    }

    fz_rect m_rcPage;
    std::vector<int> m_cells;
};

// The part of a mark that counts; empty for none.
fz_rect Counting(const ArtworkMark& mark, const fz_rect& rcPage, bool bHasText) {
    const fz_rect rc = fz_intersect_rect(mark.rc, rcPage);
    const float fWidth = rc.x1 - rc.x0;
    const float fHeight = rc.y1 - rc.y0;
    const bool bRule = std::min(fWidth, fHeight) < kRule && !mark.bPicture;
    const bool bGround = bHasText && AreaOf(rc) > kGround * AreaOf(rcPage);
    const bool bOnPage = fWidth >= 0.0F && fHeight >= 0.0F;
    return bRule || bGround || !bOnPage ? fz_empty_rect : rc;
}

}

std::vector<ArtworkRegion> FindRegions(const std::vector<ArtworkMark>& marks, const fz_rect& rcPage,
                                       bool bHasText) {
    Grid grid(rcPage);
    std::vector<ArtworkMark> counting;
    for (const ArtworkMark& mark : marks) {
        const fz_rect rc = Counting(mark, rcPage, bHasText);
        if (!fz_is_empty_rect(rc)) {
            grid.Mark(rc);
            counting.push_back({rc, mark.bPicture});
        }
    }
    std::vector<ArtworkRegion> regions(static_cast<std::size_t>(grid.Number()));
    for (const ArtworkMark& mark : counting) {
        ArtworkRegion& region = regions[static_cast<std::size_t>(grid.NumberAt(mark.rc))];
        region.rc = region.nMarks == 0 ? mark.rc : fz_union_rect(region.rc, mark.rc);
        region.bPicture = region.bPicture || mark.bPicture;
        ++region.nMarks;
    }
    return regions;
}

}
