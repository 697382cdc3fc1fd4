#include "engines/mupdf/reflow/Figures.h"

#include <algorithm>
#include <utility>

#include "engines/mupdf/reflow/Artwork.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kLeastPicture = 10.0F;     // points, either side; less is an ornament
constexpr float kLeastDrawing = 30.0F;     // points, both sides
constexpr std::size_t kLeastMarks = 5;     // of a drawing
constexpr std::size_t kMostLetters = 400;  // within a figure; more are the page's text
constexpr float kMostCovered = 0.2F;       // of its area by letters
constexpr std::size_t kTextOnPage = 40;    // letters; less is no text on a ground
constexpr std::size_t kLettersOfPiece = 3; // a piece of text on a curve has fewer
constexpr std::size_t kPiecesOnCurve = 4;
constexpr float kNearby = 2.5F; // in the text's size, from piece to piece of a curve
constexpr float kMargin = 2.0F; // points, around text

bool IsWithin(const fz_rect& rc, const fz_rect& rcOuter) {
    const float x = (rc.x0 + rc.x1) / 2.0F;
    const float y = (rc.y0 + rc.y1) / 2.0F;
    return x > rcOuter.x0 && x < rcOuter.x1 && y > rcOuter.y0 && y < rcOuter.y1;
}

// Large enough, and with few enough letters, to be a figure.
bool IsFigure(const ArtworkRegion& region, std::size_t nLetters, float fLetterArea) {
    const float fWidth = region.rc.x1 - region.rc.x0;
    const float fHeight = region.rc.y1 - region.rc.y0;
    const bool bLarge = region.bPicture ? std::max(fWidth, fHeight) >= kLeastPicture
                                        : std::min(fWidth, fHeight) >= kLeastDrawing &&
                                              region.nMarks >= kLeastMarks;
    return bLarge && nLetters <= kMostLetters && fLetterArea <= kMostCovered * fWidth * fHeight;
}

class Finder {
public:
    Finder(const CapturedPage& page, const fz_rect& rcPage)
        : m_page(page), m_rcPage(rcPage), m_taken(page.lines.size(), false) {}

    std::vector<FoundFigure> Find() {
        std::size_t nLetters = 0;
        for (const TextLine& line : m_page.lines) {
            nLetters += line.glyphs.size();
        }
        for (const ArtworkRegion& region :
             FindRegions(m_page.artwork, m_rcPage, nLetters >= kTextOnPage)) {
            AddRegion(region);
        }
        AddCurves();
        if (m_page.bTooMuch) {
            m_figures.push_back({{m_rcPage, true}, {}});
        }
        return std::move(m_figures);
    }

private:
    void AddRegion(const ArtworkRegion& region) {
        FoundFigure found{{region.rc, false}, {}};
        std::size_t nLetters = 0;
        float fLetterArea = 0.0F;
        for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
            const TextLine& line = m_page.lines[i];
            if (!m_taken[i] && IsWithin(line.rcOnPage, region.rc)) {
                found.lines.push_back(i);
                nLetters += line.glyphs.size();
                fLetterArea += static_cast<float>(line.glyphs.size()) * line.fSize * line.fSize / 2;
            }
        }
        if (IsFigure(region, nLetters, fLetterArea)) {
            Add(std::move(found));
        }
    }

    void Add(FoundFigure found) {
        fz_rect& rcRegion = found.figure.rcRegion;
        for (const std::size_t i : found.lines) {
            m_taken[i] = true;
            rcRegion = fz_union_rect(rcRegion, m_page.lines[i].rcOnPage); // labels may reach out
        }
        rcRegion = fz_intersect_rect(rcRegion, m_rcPage);
        m_figures.push_back(std::move(found));
    }

    // Letters that follow each other closely, each turned its own way.
    void AddCurves() {
        FoundFigure found;
        for (std::size_t i = 0; i <= m_page.lines.size(); ++i) {
            if (i < m_page.lines.size() && !m_taken[i] && Continues(found, i)) {
                const fz_rect rc = fz_expand_rect(m_page.lines[i].rcOnPage, kMargin);
                found.figure.rcRegion =
                    found.lines.empty() ? rc : fz_union_rect(found.figure.rcRegion, rc);
                found.lines.push_back(i);
                continue;
            }
            if (IsCurve(found)) {
                found.figure.bIsText = true;
                Add(std::move(found));
            }
            found = FoundFigure();
        }
    }

    bool Continues(const FoundFigure& found, std::size_t i) const {
        const TextLine& line = m_page.lines[i];
        if (line.glyphs.size() >= kLettersOfPiece) {
            return false;
        }
        if (found.lines.empty()) {
            return true;
        }
        const fz_rect rcNear =
            fz_expand_rect(m_page.lines[found.lines.back()].rcOnPage, kNearby * line.fSize);
        return IsWithin(line.rcOnPage, rcNear);
    }

    bool IsCurve(const FoundFigure& found) const {
        const auto nOblique = std::count_if(
            found.lines.begin(), found.lines.end(),
            [&](std::size_t i) { return m_page.lines[i].eDirection == Direction::kOblique; });
        return found.lines.size() >= kPiecesOnCurve &&
               2 * static_cast<std::size_t>(nOblique) > found.lines.size();
    }

    const CapturedPage& m_page;
    fz_rect m_rcPage;
    std::vector<bool> m_taken; // lines that a figure shows
    std::vector<FoundFigure> m_figures;
};

}

std::vector<FoundFigure> FindFigures(const CapturedPage& page, const fz_rect& rcPage) {
    return Finder(page, rcPage).Find();
}

}
