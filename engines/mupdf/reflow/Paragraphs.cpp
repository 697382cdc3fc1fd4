#include "engines/mupdf/reflow/Paragraphs.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "engines/mupdf/reflow/Characters.h"

namespace velko::engines::mupdf::reflow {

namespace {

constexpr float kLikeSize = 1.12F;     // sizes that differ by less are alike
constexpr float kMostLeading = 1.3F;   // within a paragraph, of the usual one
constexpr float kWidestLeading = 2.2F; // in the text's size, whatever is usual
constexpr float kIndent = 0.7F;        // in the text's size; what is less is no indent
constexpr float kVeryShort = 0.4F;     // of the measure is missing
constexpr float kCentred = 0.06F;      // of the measure may the margins differ
constexpr float kHeading = 1.15F;      // of the text's size and above
constexpr float kHeadingSpace = 0.6F;

float StartOf(const RowText& row, const Measure& measure) {
    return row.bRightToLeft ? measure.fRight - row.rc.x1 : row.rc.x0 - measure.fLeft;
}

float RoomBehind(const RowText& row, const Measure& measure) {
    return row.bRightToLeft ? row.rc.x0 - measure.fLeft : measure.fRight - row.rc.x1;
}

float WidthOf(const Measure& measure) {
    return std::max(measure.fRight - measure.fLeft, 1.0F);
}

// The distance between most lines that follow each other, in their size.
float UsualLeading(std::span<const RowText> rows) {
    std::vector<float> leadings;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const float f = (rows[i].fBaseline - rows[i - 1].fBaseline) / rows[i].fSize;
        if (f > 0.0F && f < kWidestLeading) {
            leadings.push_back(f);
        }
    }
    if (leadings.empty()) {
        return INFINITY;
    }
    const auto itLow = leadings.begin() + static_cast<std::ptrdiff_t>(leadings.size() / 3);
    std::nth_element(leadings.begin(), itLow, leadings.end());
    return *itLow;
}

// As far from one edge as from the other.
bool IsEven(const RowText& row, float fLeft, float fRight) {
    return std::abs((row.rc.x0 - fLeft) - (fRight - row.rc.x1)) < kCentred * (fRight - fLeft);
}

// And clearly away from both.
bool IsCentredIn(const RowText& row, float fLeft, float fRight) {
    return IsEven(row, fLeft, fRight) &&
           std::min(row.rc.x0 - fLeft, fRight - row.rc.x1) > kCentred * (fRight - fLeft);
}

bool IsCentred(const RowText& row, const Measure& measure) {
    return !row.bCells && row.nMarker == 0 &&
           (IsCentredIn(row, measure.fLeft, measure.fRight) ||
            IsCentredIn(row, measure.fPageLeft, measure.fPageRight));
}

// The longest lines of a centred paragraph may reach the edges; of two lines the
// shorter, the last, is the one that shows it.
bool AreCentred(std::span<const RowText> rows, const Measure& measure) {
    return IsCentred(rows.back(), measure) &&
           std::all_of(rows.begin(), rows.end(), [&](const RowText& row) {
               return IsEven(row, measure.fLeft, measure.fRight) ||
                      IsEven(row, measure.fPageLeft, measure.fPageRight);
           });
}

class Joiner {
public:
    Joiner(std::span<RowText> rows, const Measure& measure, const Words& words)
        : m_rows(rows), m_measure(measure), m_words(words), m_fLeading(UsualLeading(rows)) {}

    std::vector<Paragraph> Join() {
        FindHeads();
        std::vector<Paragraph> paragraphs;
        std::size_t nFirst = 0;
        for (std::size_t i = 1; i <= m_rows.size(); ++i) {
            if (i == m_rows.size() || Begins(nFirst, i)) {
                paragraphs.push_back(Make(m_rows.subspan(nFirst, i - nFirst)));
                paragraphs.back().bClose = nFirst > 0 && AreClose(nFirst - 1, nFirst);
                nFirst = i;
            }
        }
        return paragraphs;
    }

private:
    // A row above a table's rows that has gaps as well is its head.
    void FindHeads() {
        for (std::size_t i = m_rows.size(); i-- > 1;) {
            const bool bHead = m_rows[i].bCells && m_rows[i - 1].nWideGaps > 1 &&
                               !IsApart(m_rows[i - 1], m_rows[i]);
            m_rows[i - 1].bCells = m_rows[i - 1].bCells || bHead;
        }
    }

    // Whether row `i` begins a paragraph, the one before it being from `nFirst` on.
    bool Begins(std::size_t nFirst, std::size_t i) const {
        const RowText& before = m_rows[i - 1];
        const RowText& row = m_rows[i];
        return m_measure.bAside || before.bCells || row.bCells || IsApart(before, row) ||
               LooksOther(before, row) || BeginsItem(before, row) || IsIndented(nFirst, i) ||
               IsOutdented(nFirst, i) || EndsShort(before, row);
    }

    bool IsApart(const RowText& before, const RowText& row) const {
        const float fLeading = (row.fBaseline - before.fBaseline) / row.fSize;
        return fLeading > kWidestLeading || fLeading > kMostLeading * m_fLeading || fLeading < 0.0F;
    }

    static bool LooksOther(const RowText& before, const RowText& row) {
        return !AreLikeSizes(row.fSize, before.fSize) || before.bBold != row.bBold;
    }

    // A number may begin any line; it begins an item where the line before ends.
    bool BeginsItem(const RowText& before, const RowText& row) const {
        if (row.nMarker == 0) {
            return false;
        }
        return !row.IsNumbered() || before.EndsSentence() || before.nMarker != 0 ||
               StartOf(row, m_measure) < StartOf(before, m_measure) - kIndent * row.fSize ||
               IsShort(before, row);
    }

    bool IsIndented(std::size_t nFirst, std::size_t i) const {
        const RowText& before = m_rows[i - 1];
        const RowText& row = m_rows[i];
        const bool bFurther =
            StartOf(row, m_measure) > StartOf(before, m_measure) + kIndent * row.fSize;
        const bool bHanging = i - 1 == nFirst && before.nMarker != 0;
        const bool bListing = before.bFixedPitch && row.bFixedPitch;
        return bFurther && !bHanging && (bListing || before.EndsSentence() || IsShort(before, row));
    }

    // Only the first line of a paragraph is indented beyond the others.
    bool IsOutdented(std::size_t nFirst, std::size_t i) const {
        const RowText& before = m_rows[i - 1];
        const RowText& row = m_rows[i];
        return i - 1 != nFirst &&
               StartOf(row, m_measure) < StartOf(before, m_measure) - kIndent * row.fSize;
    }

    // The next line's first word would have had room.
    bool IsShort(const RowText& before, const RowText& row) const {
        return RoomBehind(before, m_measure) > row.FirstWordWidth() + row.fSize;
    }

    static bool PartsWord(const RowText& before, const RowText& row) {
        return before.glyphs.size() > 1 && IsHyphen(before.Last()) && IsLowerCase(row.First()) &&
               IsLetter(before.glyphs[before.glyphs.size() - 2].nUnicode);
    }

    bool EndsShort(const RowText& before, const RowText& row) const {
        if (!IsShort(before, row) || PartsWord(before, row)) {
            return false;
        }
        return before.EndsSentence() || before.bFixedPitch || IsCentred(row, m_measure) ||
               RoomBehind(before, m_measure) > kVeryShort * WidthOf(m_measure);
    }

    // Rows of a listing or of a table.
    bool AreClose(std::size_t nBefore, std::size_t i) const {
        const RowText& before = m_rows[nBefore];
        const RowText& row = m_rows[i];
        const bool bLike = (before.bFixedPitch && row.bFixedPitch) || (before.bCells && row.bCells);
        return bLike && !IsApart(before, row);
    }

    Paragraph Make(std::span<RowText> rows) const {
        Paragraph paragraph;
        const RowText& first = rows.front();
        paragraph.bRightToLeft = first.bRightToLeft;
        paragraph.bFixedPitch = first.bFixedPitch;
        paragraph.fTableWidth = first.bCells ? WidthOf(m_measure) : 0.0F;
        if (AreCentred(rows, m_measure)) {
            paragraph.eAlign = Align::kCentre;
        } else {
            SetIndents(paragraph, rows);
        }
        if (first.fSize > kHeading * m_measure.fBodySize ||
            (first.bBold && rows.size() < 3 && !first.bCells)) {
            paragraph.fSpaceAbove = kHeadingSpace * first.fSize;
        }
        for (RowText& row : rows) {
            AppendText(paragraph.glyphs, row.glyphs, m_words);
        }
        return paragraph;
    }

    void SetIndents(Paragraph& paragraph, std::span<const RowText> rows) const {
        const float fFirst = StartOf(rows.front(), m_measure);
        float fOthers = fFirst;
        if (rows.size() > 1) {
            fOthers = StartOf(rows[1], m_measure);
            for (const RowText& row : rows.subspan(1)) {
                fOthers = std::min(fOthers, StartOf(row, m_measure));
            }
        } else if (rows.front().nMarker != 0 && !rows.front().bRightToLeft) {
            fOthers = rows.front().fAfterMarker - m_measure.fLeft;
        }
        paragraph.fIndent = std::max(fOthers, 0.0F);
        paragraph.fFirstLine = fFirst - paragraph.fIndent;
    }

    std::span<RowText> m_rows;
    const Measure& m_measure;
    const Words& m_words;
    float m_fLeading;
};

}

bool AreLikeSizes(float fOne, float fTwo) {
    return fOne < kLikeSize * fTwo && fTwo < kLikeSize * fOne;
}

std::vector<Paragraph> JoinRows(std::span<RowText> rows, const Measure& measure,
                                const Words& words) {
    return Joiner(rows, measure, words).Join();
}

void AppendText(Glyphs& text, const Glyphs& more, const Words& words) {
    if (text.empty() || more.empty()) {
        text.insert(text.end(), more.begin(), more.end());
        return;
    }
    const char32_t cNext = more.front().nUnicode;
    const char32_t cLast = text.back().nUnicode;
    const bool bHyphen = IsHyphen(cLast) && text.size() > 1 &&
                         IsLetter(text[text.size() - 2].nUnicode) && IsLetter(cNext);
    if (bHyphen && (cLast == 0xAD || (IsLowerCase(cNext) && !words.KeepHyphen(text, more)))) {
        text.pop_back();
    } else if (!bHyphen && !(IsIdeographic(cLast) && IsIdeographic(cNext))) {
        text.push_back({U' ', Glyph::kNone, text.back().nStyle, false});
    }
    text.insert(text.end(), more.begin(), more.end());
}

bool GoesOn(const Paragraph& before, const Paragraph& after, const PageModel& model) {
    if (before.eAlign != Align::kStart || after.eAlign != Align::kStart) {
        return false;
    }
    const Glyph& last = before.glyphs.back();
    const Glyph& first = after.glyphs.front();
    return AreLikeSizes(model.styles[first.nStyle].fSize, model.styles[last.nStyle].fSize) &&
           IsLowerCase(first.nUnicode) && !reflow::EndsSentence(last.nUnicode) &&
           !IsClosingMark(last.nUnicode);
}

}
