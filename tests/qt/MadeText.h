// The text of a page made by hand, with places, for tests.
//
// Threads: values.
#pragma once

#include <string>

#include "widget/text/TextRange.h"

namespace velko::testing {

// Letters of 10 by 10 points, a line as a block of its own or with the one before.
class MadeText {
public:
    using Point = common::vxbase::PointF;

    // `ptStart` is the first letter's lower start, `dir` the way in which it is read;
    // letters stand upright to `upright`, which right-to-left letters run against.
    MadeText& Line(const std::string& strText, Point ptStart, Point dir = {1, 0},
                   bool bSameBlock = false, bool bBackwards = false) {
        return Line(std::u32string(strText.begin(), strText.end()), ptStart, dir, bSameBlock,
                    bBackwards);
    }
    MadeText& Line(const std::u32string& strText, Point ptStart, Point dir = {1, 0},
                   bool bSameBlock = false, bool bBackwards = false) {
        const auto nLine = static_cast<int>(m_text.lines.size());
        if (!bSameBlock) {
            m_text.blocks.push_back({nLine, nLine});
        }
        m_text.blocks.back().nEndLine = nLine + 1;
        const auto nFirst = static_cast<int>(m_text.chars.size());
        const Point along = bBackwards ? Point{-dir.X, -dir.Y} : dir;
        const Point up{-along.Y, along.X};
        for (std::size_t i = 0; i < strText.size(); ++i) {
            const float f = 10.0F * (static_cast<float>(i) + (bBackwards ? 1.0F : 0.0F));
            const Point pt{ptStart.X + f * dir.X, ptStart.Y + f * dir.Y};
            const auto fnAt = [&](float fAlong, float fUp) {
                return Point{pt.X + fAlong * along.X + fUp * up.X,
                             pt.Y + fAlong * along.Y + fUp * up.Y};
            };
            m_text.chars.push_back(
                {strText[i], {fnAt(0, 10), fnAt(10, 10), fnAt(0, 0), fnAt(10, 0)}, 10.0F});
        }
        m_text.lines.push_back({nFirst, static_cast<int>(m_text.chars.size()), dir, false});
        return *this;
    }

    // The last line's last word goes on in the next line.
    MadeText& Hyphenated() {
        m_text.lines.back().bHyphenated = true;
        return *this;
    }

    std::string Between(Point one, Point other) const {
        const auto from = vkit::CharPlaceAt(m_text, one);
        const auto to = vkit::CharPlaceAt(m_text, other);
        return from && to ? Of(vkit::RangeOn(0, Count(), {0, *from}, {0, *to})) : "nothing";
    }
    std::string Of(vkit::CharRange range) const {
        std::string str;
        for (int i = range.nFirst; i < range.nEnd; ++i) {
            str += static_cast<char>(m_text.chars[static_cast<std::size_t>(i)].nCode);
        }
        return str;
    }
    int Count() const { return static_cast<int>(m_text.chars.size()); }
    const pdf::PageText& Get() const { return m_text; }

private:
    pdf::PageText m_text;
};

}
