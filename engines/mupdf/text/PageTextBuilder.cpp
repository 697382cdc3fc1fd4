#include "engines/mupdf/text/PageTextBuilder.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/reflow/Characters.h"
#include "engines/mupdf/reflow/ExtractedText.h"
#include "engines/mupdf/reflow/ReadingOrder.h"

namespace velko::engines::mupdf::text {

namespace {

using common::vxbase::PointF;
using reflow::Direction;

constexpr std::size_t kMostChars = 400'000; // of a page; the rest is left out
constexpr std::size_t kMostOrdered = 8'000; // lines; more stay in the content's order

struct ReadLine {
    reflow::LineBox box;
    std::vector<pdf::TextChar> chars;
    std::vector<std::uint32_t> sources; // of the characters
    PointF ptDirection;
    std::size_t nBlock = 0; // the library's
};

class LineMaker {
public:
    LineMaker(const fz_rect& rcPage, const fz_matrix& toPage)
        : m_toPage(toPage), m_line(rcPage), m_nRoom(kMostChars) {}

    // Without characters where it has nothing to read on the page.
    ReadLine Make(const fz_stext_line& extracted, std::size_t nBlock) {
        ReadLine line;
        line.box = m_line.Read(extracted);
        line.nBlock = nBlock;
        line.ptDirection = DirectionOnPage(extracted.dir, line.box.bRightToLeft);
        for (const auto& [p, nNumber] : m_line.Characters()) {
            if (m_nRoom > line.chars.size()) {
                Append(line, *p);
                line.sources.resize(line.chars.size(), nNumber);
            }
        }
        if (!line.chars.empty() && line.chars.back().nCode == U' ') {
            line.chars.pop_back();
            line.sources.pop_back();
        }
        m_nRoom -= std::min(m_nRoom, line.chars.size());
        return line;
    }

private:
    PointF OnPage(fz_point pt) const {
        const fz_point ptPage = fz_transform_point(pt, m_toPage);
        return {ptPage.x, ptPage.y};
    }

    PointF DirectionOnPage(fz_point dir, bool bBackwards) const {
        const fz_point ptPage = fz_normalize_vector(fz_transform_vector(dir, m_toPage));
        return bBackwards ? PointF{-ptPage.x, -ptPage.y} : PointF{ptPage.x, ptPage.y};
    }

    // One space between words; what is no character, as within a line, is none.
    void Append(ReadLine& line, const fz_stext_char& c) const {
        const auto nCode = static_cast<char32_t>(c.c);
        if (reflow::IsSpace(nCode)) {
            if (!line.chars.empty() && line.chars.back().nCode != U' ') {
                line.chars.push_back(MakeChar(U' ', c, 0, 1));
            }
        } else if (const std::string_view strLetters = reflow::LettersOf(nCode);
                   !strLetters.empty()) {
            for (std::size_t i = 0; i < strLetters.size(); ++i) {
                line.chars.push_back(
                    MakeChar(static_cast<char32_t>(strLetters[i]), c, i, strLetters.size()));
            }
        } else if (nCode >= U' ') {
            line.chars.push_back(MakeChar(nCode, c, 0, 1));
        }
    }

    // The letters of a ligature share its width.
    pdf::TextChar MakeChar(char32_t nCode, const fz_stext_char& c, std::size_t nPart,
                           std::size_t nParts) const {
        const auto fnAlong = [&](fz_point ptStart, fz_point ptEnd, std::size_t n) {
            const float f = static_cast<float>(n) / static_cast<float>(nParts);
            return OnPage(fz_make_point(ptStart.x + f * (ptEnd.x - ptStart.x),
                                        ptStart.y + f * (ptEnd.y - ptStart.y)));
        };
        pdf::TextChar made;
        made.nCode = nCode;
        made.quad = {fnAlong(c.quad.ul, c.quad.ur, nPart), fnAlong(c.quad.ul, c.quad.ur, nPart + 1),
                     fnAlong(c.quad.ll, c.quad.lr, nPart),
                     fnAlong(c.quad.ll, c.quad.lr, nPart + 1)};
        made.fFontSize = reflow::Kept(c.size, reflow::kLeastSize, reflow::kMostSize);
        return made;
    }

    fz_matrix m_toPage;
    reflow::LineCharacters m_line;
    std::size_t m_nRoom; // characters that the page may have yet
};

// The lines of one direction as they are read.
void AppendOrder(std::vector<std::size_t>& order, const std::vector<ReadLine>& lines,
                 Direction eDirection, const fz_rect& rcPage) {
    std::vector<reflow::Piece> pieces;
    fz_rect rcText = fz_empty_rect;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const reflow::LineBox& box = lines[i].box;
        if (box.eDirection == eDirection) {
            rcText = pieces.empty() ? box.rc : fz_union_rect(rcText, box.rc);
            pieces.push_back({box.rc, box.fSize, lines[i].chars.size(), i, box.bRightToLeft});
        }
    }
    if (eDirection == Direction::kOblique) { // each may run another way
        for (const reflow::Piece& piece : pieces) {
            order.push_back(piece.nIndex);
        }
        return;
    }
    const bool bUpright = eDirection == Direction::kRight;
    for (const auto& column : reflow::OrderPieces(std::move(pieces), bUpright ? rcPage : rcText)) {
        for (const reflow::Row& row : column.rows) {
            for (const reflow::Piece& piece : row) {
                order.push_back(piece.nIndex);
            }
        }
    }
}

std::vector<std::size_t> OrderOf(const std::vector<ReadLine>& lines, const fz_rect& rcPage) {
    std::vector<std::size_t> order;
    if (lines.size() > kMostOrdered) {
        order.resize(lines.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        return order;
    }
    reflow::LettersByDirection letters{};
    for (const ReadLine& line : lines) {
        letters[static_cast<std::size_t>(line.box.eDirection)] += line.chars.size();
    }
    for (const Direction eDirection : reflow::DirectionsOf(letters)) {
        AppendOrder(order, lines, eDirection, rcPage);
    }
    return order;
}

bool GoesOnIn(const ReadLine& line, const ReadLine& next) {
    const std::size_t nChars = line.chars.size();
    return nChars > 1 && reflow::IsHyphen(line.chars[nChars - 1].nCode) &&
           reflow::IsLetter(line.chars[nChars - 2].nCode) &&
           reflow::IsLowerCase(next.chars.front().nCode);
}

// Lines that follow each other and that the library took for one block stay one.
void Join(CachedText& result, const std::vector<ReadLine>& lines,
          const std::vector<std::size_t>& order) {
    pdf::PageText& text = result.text;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const ReadLine& line = lines[order[i]];
        const auto nLine = static_cast<std::int32_t>(text.lines.size());
        if (i == 0 || lines[order[i - 1]].nBlock != line.nBlock) {
            text.blocks.push_back({nLine, nLine});
        }
        text.blocks.back().nEndLine = nLine + 1;
        pdf::TextLine joined;
        joined.nFirst = static_cast<std::int32_t>(text.chars.size());
        text.chars.insert(text.chars.end(), line.chars.begin(), line.chars.end());
        result.sources.insert(result.sources.end(), line.sources.begin(), line.sources.end());
        joined.nEnd = static_cast<std::int32_t>(text.chars.size());
        joined.ptDirection = line.ptDirection;
        joined.bHyphenated = i + 1 < order.size() && GoesOnIn(line, lines[order[i + 1]]);
        text.lines.push_back(joined);
    }
}

std::size_t BytesOf(const CachedText& result) {
    const pdf::PageText& text = result.text;
    return sizeof(CachedText) + result.sources.capacity() * sizeof(std::uint32_t) +
           text.chars.capacity() * sizeof(pdf::TextChar) +
           text.lines.capacity() * sizeof(pdf::TextLine) +
           text.blocks.capacity() * sizeof(pdf::TextBlock);
}

}

CachedText BuildPageText(const Drawing& content, const PageFacts& facts, Operation& operation) {
    const AllocationWatch watch;
    CachedText result;
    result.bCutShort = content.bCutShort;
    fz_matrix toPage{};
    if (fz_try_invert_matrix(&toPage, facts.mListFromPage) == 0) {
        const fz_rect rcPage = reflow::PageInLists(facts);
        const reflow::ExtractedText text =
            reflow::ExtractText({&content}, rcPage, operation.Cookie());
        operation.ThrowIfAborted();
        LineMaker maker(rcPage, toPage);
        std::vector<ReadLine> lines;
        reflow::ForEachLine(text, [&](const fz_stext_line& extracted, std::size_t nBlock) {
            ReadLine line = maker.Make(extracted, nBlock);
            if (!line.chars.empty()) {
                lines.push_back(std::move(line));
            }
        });
        Join(result, lines, OrderOf(lines, rcPage));
    }
    result.bCutShort = result.bCutShort || operation.IsTimedOut();
    if (watch.WasRefused() && !operation.IsTimedOut()) {
        throw common::EngineException(common::ErrorCode::e_ErrOutOfMemory,
                                      "no memory for the page's text");
    }
    result.nBytes = BytesOf(result);
    return result;
}

}
