#include "engines/mupdf/reflow/Layout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engines/mupdf/reflow/GlyphMetrics.h"
#include "engines/mupdf/reflow/LineBreaker.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kLeastBody = 6.0F; // points; a page's text is brought within
constexpr float kMostBody = 24.0F;
constexpr float kLineHeight = 1.3F; // in the line's largest size
constexpr float kAscent = 0.98F;
constexpr float kMostIndent = 0.25F;      // of the measure
constexpr float kLettersInMeasure = 2.5F; // of the largest size that is set
constexpr float kMostPixels = 8.0E6F;     // of a figure

// Not a number is the least.
float Kept(float f, float fLeast, float fMost) {
    return f >= fLeast ? std::min(f, fMost) : fLeast;
}

std::int32_t Whole(float f) {
    return static_cast<std::int32_t>(std::lround(Kept(f, -1.0E6F, 1.0E7F)));
}

float QuarterPixel(float f) {
    return std::round(f * 4.0F) / 4.0F;
}

class Setter {
public:
    Setter(Layout& layout, const SetParameters& parameters, std::vector<SetPlace>* pPlaces)
        : m_layout(layout),
          m_pPlaces(pPlaces),
          m_model(*layout.pModel),
          m_nMeasure(Whole(parameters.fScreenWidth)),
          m_fScreenHeight(parameters.fScreenHeight),
          m_fZoom(static_cast<float>(parameters.nPercent) / 100.0F),
          m_fScale(m_fZoom * Kept(m_model.fBodySize, kLeastBody, kMostBody) / m_model.fBodySize),
          m_fLineSpacing(parameters.fLineSpacing * m_fScale),
          m_fParagraphSpacing(parameters.fParagraphSpacing * m_fScale),
          m_bPictures(parameters.bPictures),
          m_metrics(m_model, m_fScale, static_cast<float>(m_nMeasure) / kLettersInMeasure) {}

    void Set() {
        m_layout.shapes = m_metrics.Shapes();
        for (const Block& block : m_model.blocks) {
            if (m_nTop > Layout::kMaxHeight - 2 * Layout::kMaxWidth) {
                m_layout.bCutShort = true;
                break;
            }
            if (!block.bIsFigure) {
                if (!block.bInText && !(block.bInPicture && m_bPictures)) {
                    SetParagraph(block.paragraph);
                }
            } else if (m_bPictures || block.figure.bIsText) {
                SetPicture(block.figure);
            }
        }
        if (!m_layout.lines.empty() || !m_layout.figures.empty()) {
            m_layout.nWidth = m_nMeasure;
            m_layout.nHeight = std::max(m_nTop, 1);
        }
    }

private:
    void LeaveSpace(float fAbove) {
        if (!m_layout.lines.empty() || !m_layout.figures.empty()) {
            m_nTop += Whole(m_fParagraphSpacing + fAbove * m_fScale);
        }
    }

    float IndentOf(float fPoints) const {
        return Kept(fPoints * m_fScale, 0.0F, kMostIndent * static_cast<float>(m_nMeasure));
    }

    void SetParagraph(const Paragraph& paragraph) {
        if (!paragraph.bClose) {
            LeaveSpace(paragraph.fSpaceAbove);
        }
        // A table that fits keeps the places of its cells.
        m_bTable = paragraph.fTableWidth > 0.0F &&
                   paragraph.fTableWidth * m_fScale <= static_cast<float>(m_nMeasure);
        const auto fnAdvance = [&](std::size_t i) { return AdvanceOf(paragraph.glyphs[i]); };
        const float fStart = paragraph.fIndent + paragraph.fFirstLine;
        // An indent gives way to a word that it would break.
        const float fMost =
            static_cast<float>(m_nMeasure) - WidestPart(paragraph.glyphs, fnAdvance);
        const float fFirst = m_bTable ? std::max(fStart * m_fScale, 0.0F)
                                      : Kept(IndentOf(fStart), 0.0F, std::max(fMost, 0.0F));
        const float fOthers = Kept(IndentOf(paragraph.fIndent), 0.0F, std::max(fMost, 0.0F));
        const auto fnIndent = [&](std::size_t n) { return n == 0 ? fFirst : fOthers; };
        const auto lines = BreakLines(
            paragraph.glyphs,
            [&](std::size_t n) { return static_cast<float>(m_nMeasure) - fnIndent(n); }, fnAdvance);
        const Levels levels = LevelsOf(paragraph);
        for (std::size_t n = 0; n < lines.size(); ++n) {
            if (m_nTop > Layout::kMaxHeight - 2 * Layout::kMaxWidth) {
                m_layout.bCutShort = true;
                return;
            }
            SetLineOf(paragraph, lines[n], levels, fnIndent(n));
        }
    }

    float AdvanceOf(const Glyph& glyph) {
        const bool bGap = glyph.nUnicode == kCellGap || glyph.nUnicode == kWideGap;
        const bool bOwn = glyph.nRoom == Glyph::kOwnRoom || (bGap && !m_bTable);
        return bOwn ? m_metrics.Of(glyph).fAdvance
                    : static_cast<float>(glyph.nRoom) / 1000.0F * m_metrics.SizeOf(glyph.nStyle);
    }

    float StartOf(const Paragraph& paragraph, const BrokenLine& line, float fIndent) const {
        const float fRest = static_cast<float>(m_nMeasure) - line.fWidth;
        if (paragraph.eAlign == Align::kCentre) {
            return std::max(fRest / 2.0F, 0.0F);
        }
        return paragraph.bRightToLeft ? fRest - fIndent : fIndent;
    }

    void SetLineOf(const Paragraph& paragraph, const BrokenLine& line, const Levels& levels,
                   float fIndent) {
        float fSize = 1.0F; // the largest
        for (std::size_t i = line.nFirst; i < line.nEnd; ++i) {
            fSize = std::max(fSize, m_metrics.SizeOf(paragraph.glyphs[i].nStyle));
        }
        const std::int32_t nBaseline = m_nTop + Whole(kAscent * fSize);
        SetLine set{m_layout.glyphs.size(), 0, nBaseline, nBaseline};
        const std::int32_t nBottom = m_nTop + std::max(Whole(kLineHeight * fSize), 1);
        float x = StartOf(paragraph, line, fIndent);
        for (const std::size_t i : VisualOrder(line, levels)) {
            const Glyph& glyph = paragraph.glyphs[i];
            const GlyphMetrics::Room room = m_metrics.Of(glyph);
            if (room.bDraws) {
                const std::int32_t y = nBaseline - Whole(m_metrics.RiseOf(glyph.nStyle));
                m_layout.glyphs.push_back(
                    {QuarterPixel(x), y, glyph.nStyle, glyph.nGlyph, glyph.nUnicode});
                set.nInkTop = std::min(set.nInkTop, y + Whole(room.fInkTop) - 2);
                set.nInkBottom = std::max(set.nInkBottom, y + Whole(room.fInkBottom) + 2);
            }
            const float fAdvance = AdvanceOf(glyph);
            if (m_pPlaces != nullptr && glyph.nSource != Glyph::kNoSource) {
                const bool bRunsLeft = !levels.empty() && (levels[i] & 1U) != 0;
                m_pPlaces->push_back({glyph.nSource,
                                      static_cast<std::int32_t>(m_layout.lines.size()), x,
                                      x + fAdvance, m_nTop, nBottom, bRunsLeft});
            }
            x += fAdvance;
        }
        set.nEnd = m_layout.glyphs.size();
        m_layout.lines.push_back(set);
        m_nTop += std::max(Whole(kLineHeight * fSize + m_fLineSpacing), 1);
    }

    // As large as on the page beside the text, but whole on one screen. Huge letters are
    // set smaller; that is no reason for a figure.
    void SetPicture(const Figure& figure) {
        const float fWidth = figure.rcRegion.x1 - figure.rcRegion.x0;
        const float fHeight = figure.rcRegion.y1 - figure.rcRegion.y0;
        if (!(fWidth > 0.0F) || !(fHeight > 0.0F)) {
            return;
        }
        const float fScale =
            std::min({std::max(m_fScale, m_fZoom), static_cast<float>(m_nMeasure) / fWidth,
                      m_fScreenHeight / fHeight, std::sqrt(kMostPixels / fWidth / fHeight)});
        LeaveSpace(0.0F);
        const std::int32_t nWidth = std::clamp(Whole(fWidth * fScale), 1, m_nMeasure);
        const std::int32_t nHeight = std::max(Whole(fHeight * fScale), 1);
        const std::int32_t nLeft = (m_nMeasure - nWidth) / 2;
        m_layout.figures.push_back(
            {fz_make_irect(nLeft, m_nTop, nLeft + nWidth, m_nTop + nHeight), figure.rcRegion});
        m_nTop += nHeight;
    }

    Layout& m_layout;
    std::vector<SetPlace>* m_pPlaces; // empty: nobody asks for them
    const PageModel& m_model;
    std::int32_t m_nMeasure;
    float m_fScreenHeight;
    float m_fZoom;
    float m_fScale; // pixels of a point
    float m_fLineSpacing;
    float m_fParagraphSpacing;
    bool m_bPictures;
    GlyphMetrics m_metrics;
    bool m_bTable = false;   // the paragraph at hand is a row of one, set as such
    std::int32_t m_nTop = 0; // of what comes next
};

std::size_t BytesOf(const Layout& layout) {
    return sizeof layout + layout.shapes.capacity() * sizeof layout.shapes[0] +
           layout.glyphs.capacity() * sizeof layout.glyphs[0] +
           layout.lines.capacity() * sizeof layout.lines[0] +
           layout.figures.capacity() * sizeof layout.figures[0];
}

}

std::shared_ptr<const Layout> SetModel(std::shared_ptr<const PageModel> pModel,
                                       const SetParameters& parameters,
                                       std::vector<SetPlace>* pPlaces) {
    auto pLayout = std::make_shared<Layout>();
    pLayout->bCutShort = pModel->bCutShort;
    pLayout->pModel = std::move(pModel);
    Setter(*pLayout, parameters, pPlaces).Set();
    pLayout->nBytes = BytesOf(*pLayout);
    return pLayout;
}

}
