#include "engines/mupdf/reflow/Figures.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engines/mupdf/reflow/Artwork.h"
#include "engines/mupdf/reflow/Formulas.h"

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

constexpr std::size_t kLabelLetters = 6;
constexpr float kLabelGap = 1.5F;        // in its size
constexpr float kNested = 0.6F;          // of its area within another figure
constexpr std::size_t kMostMerged = 500; // figures
constexpr float kMostCut = 0.2F;         // of a figure's height

float AreaOf(const fz_rect& rc) {
    return (rc.x1 - rc.x0) * (rc.y1 - rc.y0);
}

bool IsWithin(const fz_rect& rc, const fz_rect& rcOuter) {
    const float x = (rc.x0 + rc.x1) / 2.0F;
    const float y = (rc.y0 + rc.y1) / 2.0F;
    return x > rcOuter.x0 && x < rcOuter.x1 && y > rcOuter.y0 && y < rcOuter.y1;
}

// What the letters of a line cover; those across a drawing, a watermark's say, are no
// text that stands on a ground.
float AreaOf(const TextLine& line) {
    const float fArea = static_cast<float>(line.glyphs.size()) * line.fSize * line.fSize / 2.0F;
    return line.eDirection == Direction::kOblique ? 0.0F : fArea;
}

// Beside a drawing, close to it and short.
bool IsLabelOf(const TextLine& line, const fz_rect& rcDrawing) {
    const float fMiddle = (line.rcOnPage.y0 + line.rcOnPage.y1) / 2.0F;
    const float fGap = std::max(line.rcOnPage.x0 - rcDrawing.x1, rcDrawing.x0 - line.rcOnPage.x1);
    return line.glyphs.size() <= kLabelLetters && fMiddle > rcDrawing.y0 &&
           fMiddle < rcDrawing.y1 && fGap > -line.fSize && fGap < kLabelGap * line.fSize;
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
        AddRegions(nLetters >= kTextOnPage);
        MergeNested();
        AddCurves();
        AddFormulas();
        for (FoundFigure& found : m_figures) {
            LeaveLinesOut(found.figure.rcRegion);
        }
        if (m_page.bTooMuch) {
            m_figures.push_back({{m_rcPage, true}, {}});
        }
        return std::move(m_figures);
    }

private:
    // Where lines and areas join pictures with the page's text, the pictures alone
    // are what is shown.
    void AddRegions(bool bHasText) {
        std::vector<ArtworkMark> pictures;
        for (const ArtworkRegion& region : FindRegions(m_page.artwork, m_rcPage, bHasText)) {
            if (!AddRegion(region) && region.bPicture) {
                std::copy_if(m_page.artwork.begin(), m_page.artwork.end(),
                             std::back_inserter(pictures), [&](const ArtworkMark& mark) {
                                 return mark.bPicture && IsWithin(mark.rc, region.rc);
                             });
            }
        }
        for (const ArtworkRegion& region : FindRegions(pictures, m_rcPage, bHasText)) {
            AddRegion(region);
        }
    }

    bool AddRegion(const ArtworkRegion& region) {
        FoundFigure found{{region.rc, false}, {}};
        std::size_t nLetters = 0;
        float fLetterArea = 0.0F;
        for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
            const TextLine& line = m_page.lines[i];
            if (!m_taken[i] && IsWithin(line.rcOnPage, region.rc)) {
                found.lines.push_back(i);
                nLetters += line.glyphs.size();
                fLetterArea += AreaOf(line);
            } else if (!m_taken[i] && !region.bPicture && IsLabelOf(line, region.rc)) {
                found.lines.push_back(i);
            }
        }
        const bool bIsFigure = IsFigure(region, nLetters, fLetterArea);
        if (bIsFigure) {
            Add(std::move(found));
        }
        return bIsFigure;
    }

    // What lies within another figure is part of it.
    void MergeNested() {
        if (m_figures.size() > kMostMerged) {
            return;
        }
        for (std::size_t i = 0; i < m_figures.size(); ++i) {
            for (std::size_t k = m_figures.size(); k-- > 0;) {
                if (k != i &&
                    IsNested(m_figures[k].figure.rcRegion, m_figures[i].figure.rcRegion)) {
                    Merge(m_figures[i], m_figures[k]);
                    m_figures.erase(m_figures.begin() + static_cast<std::ptrdiff_t>(k));
                    i -= k < i ? 1U : 0U;
                }
            }
        }
    }

    static bool IsNested(const fz_rect& rc, const fz_rect& rcOuter) {
        const fz_rect rcShared = fz_intersect_rect(rc, rcOuter);
        return !fz_is_empty_rect(rcShared) && AreaOf(rcShared) >= kNested * AreaOf(rc);
    }

    static void Merge(FoundFigure& into, const FoundFigure& other) {
        into.figure.rcRegion = fz_union_rect(into.figure.rcRegion, other.figure.rcRegion);
        into.lines.insert(into.lines.end(), other.lines.begin(), other.lines.end());
        std::sort(into.lines.begin(), into.lines.end());
    }

    // Boxes of their signs may be far higher than these, so regions are not grown.
    void AddFormulas() {
        for (Formula& formula : FindFormulas(m_page, m_taken)) {
            FoundFigure found{
                {fz_intersect_rect(fz_expand_rect(formula.rc, kMargin), m_rcPage), true},
                std::move(formula.lines)};
            for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
                const bool bIs =
                    std::find(found.lines.begin(), found.lines.end(), i) != found.lines.end();
                if (!bIs && !m_taken[i] && IsWithin(m_page.lines[i].rc, formula.rc)) {
                    found.lines.push_back(i);
                }
            }
            for (const std::size_t i : found.lines) {
                m_taken[i] = true;
            }
            m_figures.push_back(std::move(found));
        }
    }

    // A line that is set beside a figure is not to be seen in part at its edge too.
    void LeaveLinesOut(fz_rect& rcRegion) const {
        const float fMost = kMostCut * (rcRegion.y1 - rcRegion.y0);
        const fz_rect rcWhole = rcRegion;
        for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
            const TextLine& line = m_page.lines[i];
            const fz_rect& rc = line.eDirection == Direction::kRight ? line.rc : line.rcOnPage;
            const bool bBeside = rc.x1 <= rcWhole.x0 || rc.x0 >= rcWhole.x1;
            if (m_taken[i] || bBeside) {
                continue;
            }
            if (rc.y0 < rcWhole.y0 && rc.y1 > rcRegion.y0 && rc.y1 - rcWhole.y0 < fMost) {
                rcRegion.y0 = rc.y1;
            } else if (rc.y1 > rcWhole.y1 && rc.y0 < rcRegion.y1 && rcWhole.y1 - rc.y0 < fMost) {
                rcRegion.y1 = rc.y0;
            }
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
