#include "widget/text/PlainText.h"

#include <QChar>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "widget/text/TextGeometry.h"

namespace velko::vkit {

using velko::pdf::PageText;
using velko::pdf::TextBlock;
using velko::pdf::TextLine;

namespace {

constexpr float kSpace = 0.2F;   // of a letter's size; a narrow one between two words
constexpr int kOverfull = 5;     // of so many lines one may reach beyond the margin
constexpr float kSameRow = 0.5F; // of a letter's size

bool IsSetWithoutSpaces(char32_t c) {
    switch (QChar::script(c)) {
        case QChar::Script_Han:
        case QChar::Script_Hiragana:
        case QChar::Script_Katakana:
        case QChar::Script_Bopomofo:
        case QChar::Script_Thai:
        case QChar::Script_Lao:
        case QChar::Script_Khmer:
            return true;
        default: // signs of East Asian print, and full-width forms
            return (c >= 0x3000 && c <= 0x303F) || (c >= 0xFF01 && c <= 0xFF60);
    }
}

// A line in its reader's way: lengths grow to where it goes on.
struct LineShape {
    TextExtent along;
    float fAcross = 0.0F;
    float fFirstWord = 0.0F; // its width
    float fSize = 0.0F;
};

class BlockShape {
public:
    BlockShape(const PageText& text, const TextBlock& block) : m_text(text) {
        const TextLine& first = LineOf(text, block.nFirstLine);
        m_axes = AxesOf(text, first);
        const bool bBack =
            first.ptDirection.X * m_axes.along.X + first.ptDirection.Y * m_axes.along.Y < 0.0F;
        if (bBack) {
            m_axes.along = {-m_axes.along.X, -m_axes.along.Y};
        }
        std::vector<float> ends;
        for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
            ends.push_back(ShapeOf(n).along.fEnd);
        }
        const auto end = ends.end() - 1 - static_cast<std::ptrdiff_t>(ends.size()) / kOverfull;
        std::nth_element(ends.begin(), end, ends.end());
        m_fEnd = *end;
    }

    // Whether a line break stands between a line and the next one of the block.
    bool IsBroken(std::int32_t nLine) {
        const LineShape line = ShapeOf(nLine);
        const LineShape next = ShapeOf(nLine + 1);
        const bool bBeside = std::abs(next.fAcross - line.fAcross) < kSameRow * line.fSize;
        const bool bRowOfCells = std::exchange(m_bBeside, bBeside);
        if (bBeside || LineOf(m_text, nLine).bHyphenated) {
            return false;
        }
        return bRowOfCells || next.fFirstWord + kSpace * line.fSize < m_fEnd - line.along.fEnd;
    }

private:
    LineShape ShapeOf(std::int32_t nLine) const {
        const TextLine& line = LineOf(m_text, nLine);
        LineShape shape;
        const TextBox box = BoxOf(m_text, m_axes, line.nFirst, line.nEnd);
        shape.along = box.along;
        shape.fAcross = box.across.Middle();
        shape.fSize = CharOf(m_text, line.nFirst).fFontSize;
        const CharRange word = WordTo(line);
        shape.fFirstWord = BoxOf(m_text, m_axes, word.nFirst, word.nEnd).along.Length();
        return shape;
    }

    // Up to where the line might have been broken.
    CharRange WordTo(const TextLine& line) const {
        std::int32_t n = line.nFirst + 1;
        while (n < line.nEnd && CharOf(m_text, n).nCode != U' ' &&
               !IsSetWithoutSpaces(CharOf(m_text, n).nCode)) {
            ++n;
        }
        return {line.nFirst, n};
    }

    const PageText& m_text;
    TextAxes m_axes;
    float m_fEnd = 0.0F;    // the margin
    bool m_bBeside = false; // the line stands beside the one before
};

class Writer {
public:
    Writer(const PageText& text, CharRange range) : m_text(text), m_range(range) {}

    QString Write() {
        for (const TextBlock& block : m_text.blocks) {
            WriteBlock(block);
        }
        return QString::fromUcs4(m_strText.data(), static_cast<qsizetype>(m_strText.size()));
    }

private:
    CharRange PartOf(std::int32_t nLine) const {
        const TextLine& line = LineOf(m_text, nLine);
        return {std::max(m_range.nFirst, line.nFirst), std::min(m_range.nEnd, line.nEnd)};
    }

    void WriteBlock(const TextBlock& block) {
        if (block.nFirstLine >= block.nEndLine ||
            LineOf(m_text, block.nFirstLine).nFirst >= m_range.nEnd ||
            LineOf(m_text, block.nEndLine - 1).nEnd <= m_range.nFirst) {
            return;
        }
        BlockShape shape(m_text, block);
        bool bBroken = true;
        for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
            const CharRange part = PartOf(n);
            if (!part.IsEmpty()) {
                Join(bBroken, CharOf(m_text, part.nFirst).nCode);
                Append(part);
                m_bHyphen = LineOf(m_text, n).bHyphenated;
            }
            bBroken = n + 1 < block.nEndLine && shape.IsBroken(n);
        }
    }

    // The word of a hyphen may go on in another block, as at the top of a column.
    void Join(bool bBroken, char32_t nNext) {
        if (m_strText.empty()) {
            return;
        }
        if (m_bHyphen) {
            m_strText.pop_back();
        } else if (bBroken) {
            m_strText += U'\n';
        } else if (!IsSetWithoutSpaces(m_strText.back()) || !IsSetWithoutSpaces(nNext)) {
            m_strText += U' ';
        }
    }

    void Append(CharRange part) {
        for (std::int32_t i = part.nFirst; i < part.nEnd; ++i) {
            const char32_t c = CharOf(m_text, i).nCode;
            if (QChar::category(c) != QChar::Other_Control && !QChar::isSurrogate(c) &&
                c <= QChar::LastValidCodePoint) {
                m_strText += c;
            }
        }
    }

    const PageText& m_text;
    const CharRange m_range;
    std::u32string m_strText;
    bool m_bHyphen = false; // the last line ends within a word
};

}

QString PlainTextOf(const PageText& text, CharRange range) {
    return Writer(text, range).Write();
}

void AppendPage(QString& strText, const QString& strPage) {
    if (!strText.isEmpty() && !strPage.isEmpty()) {
        strText += '\n';
    }
    strText += strPage;
}

}
