#include "engines/mupdf/text/SetTextBuilder.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "document/engine/DisplayMatrix.h"

namespace velko::engines::mupdf::text {

namespace {

using common::vxbase::PointF;
using reflow::SetFigure;
using reflow::SetPlace;

constexpr float kLineHeight = 1.3F; // of a set line, in its size

// Of a character in the layout, in its pixels.
struct Spot {
    float fLeft = 0.0F;
    float fRight = 0.0F;
    float fTop = 0.0F;
    float fBottom = 0.0F;
    std::int64_t nLine = 0; // the same for characters that stand on one
    bool bRunsLeft = false;

    Spot Behind() const {
        Spot spot = *this;
        (bRunsLeft ? spot.fRight : spot.fLeft) = bRunsLeft ? fLeft : fRight;
        return spot;
    }
    Spot Before() const {
        Spot spot = *this;
        (bRunsLeft ? spot.fLeft : spot.fRight) = bRunsLeft ? fRight : fLeft;
        return spot;
    }
};

fz_matrix PageFromLayout(const PageFacts& facts, const reflow::Layout& layout) {
    const auto m = pdf::MakeDisplayMatrix(facts.rcBox, facts.nRotation, 0, 0, layout.nWidth,
                                          layout.nHeight, 0);
    fz_matrix toPage = fz_identity;
    fz_try_invert_matrix(&toPage, fz_make_matrix(m.A, m.B, m.C, m.D, m.E, m.F));
    return toPage;
}

fz_rect BoxOf(const pdf::TextQuad& quad, const fz_matrix& m) {
    fz_rect rc = fz_empty_rect;
    for (const PointF pt :
         {quad.ptTopLeft, quad.ptTopRight, quad.ptBottomLeft, quad.ptBottomRight}) {
        rc = fz_include_point_in_rect(rc, fz_transform_point(fz_make_point(pt.X, pt.Y), m));
    }
    return rc;
}

class Placer {
public:
    Placer(const CachedText& own, const reflow::Layout& layout, const std::vector<SetPlace>& places,
           const PageFacts& facts)
        : m_own(own),
          m_layout(layout),
          m_toLists(facts.mListFromPage),
          m_toPage(PageFromLayout(facts, layout)) {
        for (const SetPlace& place : places) {
            Note(place);
        }
    }

    pdf::PageText Place() {
        pdf::PageText text;
        text.chars = m_own.text.chars;
        FindSpots();
        for (std::size_t i = 0; i < text.chars.size(); ++i) {
            Move(text.chars[i], m_spots[i]);
        }
        Divide(text);
        return text;
    }

private:
    // A character may have several glyphs, as the spaces of a listing.
    void Note(const SetPlace& place) {
        if (place.nSource >= m_bySource.size()) {
            m_bySource.resize(place.nSource + std::size_t{1});
        }
        std::optional<Spot>& spot = m_bySource[place.nSource];
        if (!spot) {
            spot = Spot{place.fLeft,
                        place.fRight,
                        static_cast<float>(place.nTop),
                        static_cast<float>(place.nBottom),
                        place.nLine,
                        place.bRunsLeft};
        } else if (spot->nLine == place.nLine) {
            spot->fLeft = std::min(spot->fLeft, place.fLeft);
            spot->fRight = std::max(spot->fRight, place.fRight);
        }
    }

    void FindSpots() {
        const std::size_t nChars = m_own.text.chars.size();
        m_spots.resize(nChars);
        std::optional<Spot> before;
        std::size_t nUnplaced = 0; // at the beginning
        for (const pdf::TextLine& line : m_own.text.lines) {
            for (auto i = static_cast<std::size_t>(line.nFirst);
                 i < static_cast<std::size_t>(line.nEnd); ++i) {
                const std::optional<Spot> spot = SpotOf(i, line);
                if (spot && !before) {
                    std::fill_n(m_spots.begin(), nUnplaced, spot->Before());
                }
                before = spot ? spot : before;
                nUnplaced += before ? 0 : 1;
                m_spots[i] = spot ? *spot : before ? before->Behind() : Spot();
            }
        }
    }

    std::optional<Spot> SpotOf(std::size_t i, const pdf::TextLine& line) const {
        const std::uint32_t nSource = m_own.sources[i];
        if (nSource < m_bySource.size() && m_bySource[nSource]) {
            return PartOf(*m_bySource[nSource], i, line);
        }
        return InFigure(i, line);
    }

    // Of the letters of one glyph.
    Spot PartOf(Spot spot, std::size_t i, const pdf::TextLine& line) const {
        const auto fnSame = [&](std::size_t n) { return m_own.sources[n] == m_own.sources[i]; };
        std::size_t nFirst = i;
        std::size_t nEnd = i + 1;
        while (nFirst > static_cast<std::size_t>(line.nFirst) && fnSame(nFirst - 1)) {
            --nFirst;
        }
        while (nEnd < static_cast<std::size_t>(line.nEnd) && fnSame(nEnd)) {
            ++nEnd;
        }
        const float fPart = (spot.fRight - spot.fLeft) / static_cast<float>(nEnd - nFirst);
        spot.fLeft += fPart * static_cast<float>(i - nFirst);
        spot.fRight = spot.fLeft + fPart;
        return spot;
    }

    std::optional<Spot> InFigure(std::size_t i, const pdf::TextLine& line) const {
        const fz_rect rc = BoxOf(m_own.text.chars[i].quad, m_toLists);
        const fz_point ptMiddle = {(rc.x0 + rc.x1) / 2.0F, (rc.y0 + rc.y1) / 2.0F};
        for (const SetFigure& figure : m_layout.figures) {
            if (fz_is_point_inside_rect(ptMiddle, figure.rcRegion) != 0) {
                const fz_rect rcSet = fz_transform_rect(rc, ToLayout(figure));
                // Lines of figures have numbers of their own, below those of set ones.
                return Spot{rcSet.x0, rcSet.x1, rcSet.y0, rcSet.y1, -1 - line.nFirst, false};
            }
        }
        return std::nullopt;
    }

    static fz_matrix ToLayout(const SetFigure& figure) {
        const fz_rect& rc = figure.rcRegion;
        const float fX = static_cast<float>(figure.rc.x1 - figure.rc.x0) / (rc.x1 - rc.x0);
        const float fY = static_cast<float>(figure.rc.y1 - figure.rc.y0) / (rc.y1 - rc.y0);
        return fz_make_matrix(fX, 0.0F, 0.0F, fY, static_cast<float>(figure.rc.x0) - rc.x0 * fX,
                              static_cast<float>(figure.rc.y0) - rc.y0 * fY);
    }

    PointF OnPage(float fX, float fY) const {
        const fz_point pt = fz_transform_point(fz_make_point(fX, fY), m_toPage);
        return {pt.x, pt.y};
    }

    void Move(pdf::TextChar& c, const Spot& spot) const {
        c.quad = {OnPage(spot.fLeft, spot.fTop), OnPage(spot.fRight, spot.fTop),
                  OnPage(spot.fLeft, spot.fBottom), OnPage(spot.fRight, spot.fBottom)};
        const fz_point ptHeight = fz_transform_vector(
            fz_make_point(0.0F, (spot.fBottom - spot.fTop) / kLineHeight), m_toPage);
        c.fFontSize = std::abs(ptHeight.x) + std::abs(ptHeight.y);
    }

    void Divide(pdf::PageText& text) const {
        for (const pdf::TextBlock& block : m_own.text.blocks) {
            const auto nFirst = static_cast<std::int32_t>(text.lines.size());
            const auto& lines = m_own.text.lines;
            DivideBlock(text, lines[static_cast<std::size_t>(block.nFirstLine)].nFirst,
                        lines[static_cast<std::size_t>(block.nEndLine) - 1].nEnd);
            text.blocks.push_back({nFirst, static_cast<std::int32_t>(text.lines.size())});
        }
    }

    void DivideBlock(pdf::PageText& text, std::int32_t nFirst, std::int32_t nEnd) const {
        const auto fnLine = [&](std::int32_t i) {
            return m_spots[static_cast<std::size_t>(i)].nLine;
        };
        for (std::int32_t i = nFirst; i < nEnd;) {
            pdf::TextLine line;
            line.nFirst = i;
            std::int32_t nLeft = 0; // characters that run there
            for (; i < nEnd && fnLine(i) == fnLine(line.nFirst); ++i) {
                nLeft += m_spots[static_cast<std::size_t>(i)].bRunsLeft ? 1 : 0;
            }
            line.nEnd = i;
            line.ptDirection = DirectionOnPage(nLeft > (line.nEnd - line.nFirst) / 2);
            text.lines.push_back(line);
        }
    }

    PointF DirectionOnPage(bool bRunsLeft) const {
        const fz_point pt = fz_normalize_vector(
            fz_transform_vector(fz_make_point(bRunsLeft ? -1.0F : 1.0F, 0.0F), m_toPage));
        return {pt.x, pt.y};
    }

    const CachedText& m_own;
    const reflow::Layout& m_layout;
    const fz_matrix m_toLists;
    const fz_matrix m_toPage;
    std::vector<std::optional<Spot>> m_bySource;
    std::vector<Spot> m_spots; // of each character
};

}

pdf::PageText PlaceText(const CachedText& own, const reflow::Layout& layout,
                        const std::vector<SetPlace>& places, const PageFacts& facts) {
    if (layout.nWidth <= 0 || layout.nHeight <= 0) {
        return {};
    }
    return Placer(own, layout, places, facts).Place();
}

}
