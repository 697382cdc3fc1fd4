#include "engines/mupdf/reflow/ModelBuilder.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "engines/mupdf/reflow/Capture.h"
#include "engines/mupdf/reflow/Figures.h"
#include "engines/mupdf/reflow/Paragraphs.h"
#include "engines/mupdf/reflow/ReadingOrder.h"
#include "engines/mupdf/reflow/RowText.h"

namespace velko::engines::mupdf::reflow {

namespace {

// The size of most letters, in tenths of a point.
float BodySizeOf(const std::vector<TextLine>& lines) {
    std::map<int, std::size_t> letters;
    for (const TextLine& line : lines) {
        letters[static_cast<int>(std::lround(line.fSize * 10.0F))] += line.glyphs.size();
    }
    const auto it =
        std::max_element(letters.begin(), letters.end(),
                         [](const auto& one, const auto& two) { return one.second < two.second; });
    return it == letters.end() ? 10.0F : static_cast<float>(it->first) / 10.0F;
}

std::vector<Direction> DirectionsIn(const std::vector<TextLine>& lines) {
    LettersByDirection letters{};
    for (const TextLine& line : lines) {
        letters[static_cast<std::size_t>(line.eDirection)] += line.glyphs.size();
    }
    return DirectionsOf(letters);
}

fz_rect BoundsOf(const std::vector<Piece>& pieces) {
    fz_rect rc = pieces.front().rc;
    for (const Piece& piece : pieces) {
        rc = fz_union_rect(rc, piece.rc);
    }
    return rc;
}

class Builder {
public:
    Builder(PageModel& model, CapturedPage& page, const fz_rect& rcPage)
        : m_model(model), m_page(page), m_rcPage(rcPage), m_words(page.lines) {}

    void Build() {
        m_model.fBodySize = BodySizeOf(m_page.lines);
        m_figures = FindFigures(m_page, m_rcPage);
        m_inFigure.resize(m_page.lines.size(), false);
        for (const FoundFigure& found : m_figures) {
            for (const std::size_t i : found.lines) {
                m_inFigure[i] = true;
            }
        }
        std::vector<Direction> directions = DirectionsIn(m_page.lines);
        if (directions.empty() || directions.front() == Direction::kOblique) {
            directions.insert(directions.begin(), Direction::kRight);
        }
        for (const Direction eDirection : directions) {
            AddDirection(eDirection, eDirection == directions.front());
        }
    }

private:
    // The figures stand among the text of the first direction.
    void AddDirection(Direction eDirection, bool bFigures) {
        std::vector<Piece> pieces;
        for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
            const TextLine& line = m_page.lines[i];
            if (line.eDirection == eDirection && !m_inFigure[i]) {
                pieces.push_back({line.rc, line.fSize, line.glyphs.size(), i, line.bRightToLeft});
            }
        }
        for (std::size_t i = 0; bFigures && i < m_figures.size(); ++i) {
            const fz_rect rc =
                fz_transform_rect(m_figures[i].figure.rcRegion, Upright(eDirection, {1.0F, 0.0F}));
            pieces.push_back({rc, 0.0F, 0, m_page.lines.size() + i, false});
        }
        if (pieces.empty()) {
            return;
        }
        const fz_rect rcText = BoundsOf(pieces);
        if (eDirection == Direction::kOblique) {
            AddOblique(pieces);
            return;
        }
        const bool bUpright = eDirection == Direction::kRight;
        for (const Column& column : OrderPieces(std::move(pieces), bUpright ? m_rcPage : rcText)) {
            AddColumn(column, rcText);
        }
    }

    // Lines that each run another way have no order but the content's. Single
    // letters, of a text on a curve say, stay together.
    void AddOblique(const std::vector<Piece>& pieces) {
        constexpr std::size_t kLetters = 3;
        bool bLetters = false; // before
        for (const Piece& piece : pieces) {
            Glyphs& glyphs = m_page.lines[piece.nIndex].glyphs;
            const bool bFew = glyphs.size() < kLetters;
            if (bFew && bLetters) {
                AppendText(m_model.blocks.back().paragraph.glyphs, glyphs, m_words);
            } else {
                Paragraph paragraph;
                paragraph.glyphs = std::move(glyphs);
                Push(std::move(paragraph));
            }
            bLetters = bFew;
        }
    }

    void AddColumn(const Column& column, const fz_rect& rcText) {
        const Measure measure{column.fLeft, column.fRight,     rcText.x0,
                              rcText.x1,    m_model.fBodySize, column.bAside};
        m_bHead = !measure.bAside;
        m_bBesideFloat = false;
        std::vector<RowText> rows;
        for (const Row& row : column.rows) {
            if (row.front().IsFigure()) {
                AddRows(std::exchange(rows, {}), measure);
                AddFigure(m_figures[row.front().nIndex - m_page.lines.size()]);
            } else {
                rows.push_back(MakeRowText(row, m_page.lines, m_model));
            }
        }
        AddRows(std::move(rows), measure);
    }

    // The region, and the text that it shows for whoever leaves the region out.
    void AddFigure(const FoundFigure& found) {
        Block block;
        block.figure = found.figure;
        block.bIsFigure = true;
        m_bHead = m_bHead && !found.figure.bIsText;
        m_bBesideFloat = !found.figure.bIsText;
        m_model.blocks.push_back(std::move(block));
        for (const std::size_t i : found.lines) {
            Block inner;
            inner.paragraph.glyphs = std::move(m_page.lines[i].glyphs);
            inner.paragraph.bRightToLeft = m_page.lines[i].bRightToLeft;
            inner.bInPicture = !found.figure.bIsText;
            inner.bInText = found.figure.bIsText;
            m_model.blocks.push_back(std::move(inner));
        }
    }

    void AddRows(std::vector<RowText> rows, const Measure& measure) {
        for (Paragraph& paragraph : JoinRows(rows, measure, m_words)) {
            if (m_bHead && m_nOpen != kNothing &&
                GoesOn(m_model.blocks[m_nOpen].paragraph, paragraph, m_model)) {
                AppendText(m_model.blocks[m_nOpen].paragraph.glyphs, paragraph.glyphs, m_words);
                m_bHead = false;
                continue;
            }
            const bool bFloats = m_bHead && (paragraph.bFixedPitch || m_bBesideFloat);
            m_bBesideFloat = paragraph.bFixedPitch;
            m_bHead = bFloats;
            Push(std::move(paragraph));
            if (!bFloats && IsFlow(m_model.blocks.back().paragraph, measure)) {
                m_nOpen = m_model.blocks.size() - 1;
            }
        }
    }

    void Push(Paragraph paragraph) {
        Block block;
        block.paragraph = std::move(paragraph);
        m_model.blocks.push_back(std::move(block));
    }

    // Not a note at the foot of a column, nor a heading.
    bool IsFlow(const Paragraph& paragraph, const Measure& measure) const {
        const Style& style = m_model.styles[paragraph.glyphs.back().nStyle];
        return !measure.bAside && AreLikeSizes(style.fSize, m_model.fBodySize);
    }

    static constexpr std::size_t kNothing = ~std::size_t{0};

    PageModel& m_model;
    CapturedPage& m_page;
    fz_rect m_rcPage;
    std::vector<FoundFigure> m_figures;
    std::vector<bool> m_inFigure;   // lines that a figure shows
    std::size_t m_nOpen = kNothing; // the last paragraph of the text's flow
    Words m_words;

    // At the head of a column, where the text may go on from the one before; figures,
    // listings and what is written below them may come first.
    bool m_bHead = false;
    bool m_bBesideFloat = false; // such a one was the last block
};

}

PageModel BuildModel(std::shared_ptr<const Drawing> pContent,
                     std::shared_ptr<const Drawing> pAnnots, const fz_rect& rcPage,
                     Operation& operation) {
    PageModel model;
    model.bCutShort = pContent->bCutShort || (pAnnots && pAnnots->bCutShort);
    model.pContent = std::move(pContent);
    model.pAnnots = std::move(pAnnots);
    CapturedPage page = CapturePage(model, rcPage, operation);
    Builder(model, page, rcPage).Build();
    model.nBytes = BytesOf(model);
    return model;
}

}
