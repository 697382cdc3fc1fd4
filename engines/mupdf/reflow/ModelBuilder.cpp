#include "engines/mupdf/reflow/ModelBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "engines/mupdf/reflow/Capture.h"
#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/Paragraphs.h"
#include "engines/mupdf/reflow/ReadingOrder.h"
#include "engines/mupdf/reflow/RowText.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr std::array<Direction, 5> kDirections = {
    Direction::kRight, Direction::kDown, Direction::kLeft, Direction::kUp, Direction::kOblique};

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

// The directions that occur, the one of most letters first.
std::vector<Direction> DirectionsOf(const std::vector<TextLine>& lines) {
    std::array<std::size_t, kDirections.size()> letters{};
    for (const TextLine& line : lines) {
        letters[static_cast<std::size_t>(line.eDirection)] += line.glyphs.size();
    }
    std::vector<Direction> directions(kDirections.begin(), kDirections.end());
    const auto fnLetters = [&](Direction e) { return letters[static_cast<std::size_t>(e)]; };
    std::erase_if(directions, [&](Direction e) { return fnLetters(e) == 0; });
    std::stable_sort(directions.begin(), directions.end(),
                     [&](Direction one, Direction two) { return fnLetters(one) > fnLetters(two); });
    return directions;
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
        : m_model(model), m_page(page), m_rcPage(rcPage) {}

    void Build() {
        m_model.fBodySize = BodySizeOf(m_page.lines);
        for (const Direction eDirection : DirectionsOf(m_page.lines)) {
            AddDirection(eDirection);
        }
    }

private:
    void AddDirection(Direction eDirection) {
        std::vector<Piece> pieces;
        for (std::size_t i = 0; i < m_page.lines.size(); ++i) {
            const TextLine& line = m_page.lines[i];
            if (line.eDirection == eDirection) {
                pieces.push_back({line.rc, line.fSize, line.glyphs.size(), i, line.bRightToLeft});
            }
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
                AppendText(m_model.blocks.back().paragraph.glyphs, glyphs);
            } else {
                Paragraph paragraph;
                paragraph.glyphs = std::move(glyphs);
                m_model.blocks.push_back({std::move(paragraph), {}, false});
            }
            bLetters = bFew;
        }
    }

    void AddColumn(const Column& column, const fz_rect& rcText) {
        const Measure measure{column.fLeft, column.fRight,     rcText.x0,
                              rcText.x1,    m_model.fBodySize, column.bAside};
        std::vector<RowText> rows;
        for (const Row& row : column.rows) {
            rows.push_back(MakeRowText(row, m_page.lines, m_model));
        }
        AddRows(rows, measure);
    }

    void AddRows(std::vector<RowText>& rows, const Measure& measure) {
        bool bHead = !measure.bAside; // of a column
        for (Paragraph& paragraph : JoinRows(rows, measure)) {
            if (std::exchange(bHead, false) && m_nOpen != kNothing &&
                GoesOn(m_model.blocks[m_nOpen].paragraph, paragraph, m_model)) {
                AppendText(m_model.blocks[m_nOpen].paragraph.glyphs, paragraph.glyphs);
                continue;
            }
            m_model.blocks.push_back({std::move(paragraph), {}, false});
            if (IsFlow(m_model.blocks.back().paragraph, measure)) {
                m_nOpen = m_model.blocks.size() - 1;
            }
        }
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
    std::size_t m_nOpen = kNothing; // the last paragraph of the text's flow
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
    return model;
}

}
