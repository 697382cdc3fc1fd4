#include "widget/text/TextRange.h"

#include <QChar>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "widget/text/TextGeometry.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::pdf::PageText;
using velko::pdf::TextBlock;
using velko::pdf::TextLine;
using velko::pdf::TextQuad;

namespace {

constexpr float kNear = 0.4F;        // of a letter's size
constexpr float kStretchGap = 0.75F; // of a letter's size; a wider gap ends a stretch
constexpr float kMostOver = 0.9F;    // of a letter's size do lines reach over each other
constexpr float kBeside = 0.02F;     // how much a way along a line counts within a block

// From the box around it; a block without lines is nowhere.
float DistanceTo(const PageText& text, const TextBlock& block, PointF pt) {
    if (block.nFirstLine >= block.nEndLine) {
        return std::numeric_limits<float>::max();
    }
    const TextAxes axes = AxesOf(text, LineOf(text, block.nFirstLine));
    TextBox box;
    for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
        const TextLine& line = LineOf(text, n);
        for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
            box.Add(axes, CharOf(text, i).quad);
        }
    }
    return std::hypot(box.along.DistanceTo(axes.Along(pt)), box.across.DistanceTo(axes.Across(pt)));
}

struct Nearest {
    std::int32_t nLine = -1;
    float fDistance = std::numeric_limits<float>::max();
};

void Look(Nearest& nearest, const PageText& text, const TextBlock& block, PointF pt,
          float fAlongCounts) {
    for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
        const TextLine& line = text.lines[static_cast<std::size_t>(n)];
        const TextAxes axes = AxesOf(text, line);
        const TextBox box = BoxOf(text, axes, line.nFirst, line.nEnd);
        const float fDistance = std::hypot(fAlongCounts * box.along.DistanceTo(axes.Along(pt)),
                                           box.across.DistanceTo(axes.Across(pt)));
        // Of lines that reach over each other the one whose middle is nearer.
        const float fOff = 1.0E-3F * std::abs(box.across.Middle() - axes.Across(pt)) + fDistance;
        if (fOff < nearest.fDistance) {
            nearest = {n, fOff};
        }
    }
}

// Whether the letter is read against its line's letters' way, as its neighbours tell.
bool RunsBack(const PageText& text, const TextLine& line, const TextAxes& axes,
              std::int32_t nChar) {
    const auto fnMiddle = [&](std::int32_t n) {
        return BoxOf(text, axes, n, n + 1).along.Middle();
    };
    if (nChar + 1 < line.nEnd) {
        return fnMiddle(nChar + 1) < fnMiddle(nChar);
    }
    if (nChar > line.nFirst) {
        return fnMiddle(nChar) < fnMiddle(nChar - 1);
    }
    return line.ptDirection.X * axes.along.X + line.ptDirection.Y * axes.along.Y < 0.0F;
}

bool IsSpace(const PageText& text, std::int32_t nChar) {
    return CharOf(text, nChar).nCode == U' ';
}

bool IsLetter(char32_t c) {
    return QChar::isLetterOrNumber(c) || QChar::isMark(c) || c == U'_';
}

// One within a word binds it.
bool IsApostrophe(char32_t c) {
    return c == U'\'' || c == U'\u2019';
}

bool IsOfWord(const PageText& text, const TextLine& line, std::int32_t nChar) {
    const auto fnIsLetter = [&](std::int32_t n) {
        return n >= line.nFirst && n < line.nEnd && IsLetter(CharOf(text, n).nCode);
    };
    return fnIsLetter(nChar) ||
           (nChar >= line.nFirst && nChar < line.nEnd && IsApostrophe(CharOf(text, nChar).nCode) &&
            fnIsLetter(nChar - 1) && fnIsLetter(nChar + 1));
}

// Of the scripts that are written without spaces; a mark is of its letter's.
QChar::Script SpacelessScriptOf(const PageText& text, const TextLine& line, std::int32_t nChar) {
    constexpr char32_t kProlonged = 0x30FC; // counted to no script
    constexpr std::int32_t kMostMarks = 8;  // on a letter; more are no writing
    const std::int32_t nFirst = std::max(line.nFirst, nChar - kMostMarks);
    while (nChar > nFirst && QChar::isMark(CharOf(text, nChar).nCode)) {
        --nChar;
    }
    const char32_t c = CharOf(text, nChar).nCode;
    const QChar::Script eScript = c == kProlonged ? QChar::Script_Katakana : QChar::script(c);
    const bool bSpaceless = eScript == QChar::Script_Han || eScript == QChar::Script_Hiragana ||
                            eScript == QChar::Script_Katakana;
    return bSpaceless ? eScript : QChar::Script_Common;
}

// Whether a character and the one behind it are of one word: without spaces it ends where
// the script changes, which comes near to it without a dictionary.
bool IsOneWord(const PageText& text, const TextLine& line, std::int32_t nChar) {
    return IsOfWord(text, line, nChar) && IsOfWord(text, line, nChar + 1) &&
           SpacelessScriptOf(text, line, nChar) == SpacelessScriptOf(text, line, nChar + 1);
}

struct Aim {
    std::int32_t nChar = 0;
    bool bBehind = false; // the point lies nearer to its end
};

Aim AimAt(const PageText& text, std::int32_t nLine, PointF pt) {
    const TextLine& line = LineOf(text, nLine);
    const TextAxes axes = AxesOf(text, line);
    const float fAlong = axes.Along(pt);
    Aim aim{line.nFirst, false};
    float fNearest = std::numeric_limits<float>::max();
    for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
        const TextExtent extent = BoxOf(text, axes, i, i + 1).along;
        const float fOff = extent.DistanceTo(fAlong) + 1.0E-3F * std::abs(extent.Middle() - fAlong);
        if (fOff < fNearest) {
            fNearest = fOff;
            aim = {i, fAlong > extent.Middle()};
        }
    }
    aim.bBehind = aim.bBehind != RunsBack(text, line, axes, aim.nChar);
    return aim;
}

// A piece of a line to be marked.
struct Stretch {
    TextAxes axes;
    TextBox box;
    float fSize = 0.0F; // of its largest letter
};

TextQuad QuadOf(const Stretch& stretch) {
    const auto& [axes, box, fSize] = stretch;
    return {axes.Point(box.along.fStart, box.across.fStart),
            axes.Point(box.along.fEnd, box.across.fStart),
            axes.Point(box.along.fStart, box.across.fEnd),
            axes.Point(box.along.fEnd, box.across.fEnd)};
}

// Letters of one line, in the order in which they stand.
void AddStretches(std::vector<Stretch>& stretches, const PageText& text, const TextLine& line,
                  CharRange range) {
    const TextAxes axes = AxesOf(text, line);
    std::vector<Stretch> letters;
    for (std::int32_t i = range.nFirst; i < range.nEnd; ++i) {
        letters.push_back({axes, BoxOf(text, axes, i, i + 1), CharOf(text, i).fFontSize});
    }
    std::sort(letters.begin(), letters.end(), [](const Stretch& one, const Stretch& two) {
        return one.box.along.fStart < two.box.along.fStart;
    });
    bool bFirst = true;
    for (const Stretch& letter : letters) {
        const bool bGap = bFirst || letter.box.along.fStart - stretches.back().box.along.fEnd >
                                        kStretchGap * letter.fSize;
        bFirst = false;
        if (bGap) {
            stretches.push_back(letter);
            continue;
        }
        Stretch& last = stretches.back();
        last.box.along.Add(letter.box.along.fEnd);
        last.box.across.Add(letter.box.across.fStart);
        last.box.across.Add(letter.box.across.fEnd);
        last.fSize = std::max(last.fSize, letter.fSize);
    }
}

// Fonts that say that their letters are high reach into the lines above and below; what
// is marked of two lines does not lie over each other.
void PartLines(Stretch& above, Stretch& below) {
    const float fOver = above.box.across.fEnd - below.box.across.fStart;
    const bool bSameWay =
        above.axes.along.X * below.axes.along.X + above.axes.along.Y * below.axes.along.Y > 0.999F;
    const bool bBelow = below.box.across.Middle() > above.box.across.Middle() &&
                        below.box.across.fEnd > above.box.across.fEnd;
    if (bSameWay && bBelow && fOver > 0.0F && fOver < kMostOver * below.fSize) {
        above.box.across.fEnd -= fOver / 2.0F;
        below.box.across.fStart += fOver / 2.0F;
    }
}

}

// Of the block around the point, or the nearest one, the line at its height, be it
// shorter; unless another line lies right there.
std::int32_t LineAt(const PageText& text, PointF pt) {
    std::vector<float> distances;
    float fNearest = std::numeric_limits<float>::max();
    for (const TextBlock& block : text.blocks) {
        distances.push_back(DistanceTo(text, block, pt));
        fNearest = std::min(fNearest, distances.back());
    }
    Nearest nearest;
    for (std::size_t i = 0; i < distances.size(); ++i) {
        if (distances[i] == fNearest) {
            Look(nearest, text, text.blocks[i], pt, kBeside);
        }
    }
    for (const TextBlock& block : text.blocks) {
        Look(nearest, text, block, pt, 1.0F);
    }
    return nearest.nLine;
}

std::int32_t LineOfChar(const PageText& text, std::int32_t nChar) {
    const auto it =
        std::upper_bound(text.lines.begin(), text.lines.end(), nChar,
                         [](std::int32_t n, const TextLine& line) { return n < line.nFirst; });
    return static_cast<std::int32_t>(it - text.lines.begin()) - 1;
}

std::optional<std::int32_t> CharAt(const PageText& text, PointF pt) {
    const std::int32_t nLine = LineAt(text, pt);
    return nLine < 0 ? std::nullopt : std::optional(AimAt(text, nLine, pt).nChar);
}

std::int32_t CharPlaceIn(const PageText& text, std::int32_t nLine, PointF pt) {
    const Aim aim = AimAt(text, nLine, pt);
    return aim.nChar + (aim.bBehind ? 1 : 0);
}

std::optional<std::int32_t> CharPlaceAt(const PageText& text, PointF pt) {
    const std::int32_t nLine = LineAt(text, pt);
    return nLine < 0 ? std::nullopt : std::optional(CharPlaceIn(text, nLine, pt));
}

bool IsOverText(const PageText& text, PointF pt) {
    return std::any_of(text.lines.begin(), text.lines.end(), [&](const TextLine& line) {
        const TextAxes axes = AxesOf(text, line);
        const TextBox box = BoxOf(text, axes, line.nFirst, line.nEnd);
        const float fNear = kNear * CharOf(text, line.nFirst).fFontSize;
        return box.along.DistanceTo(axes.Along(pt)) <= fNear &&
               box.across.DistanceTo(axes.Across(pt)) <= fNear;
    });
}

CharRange WordAt(const PageText& text, std::int32_t nPlace) {
    const auto nChars = static_cast<std::int32_t>(text.chars.size());
    const std::int32_t nChar = std::min(nPlace, nChars - 1);
    const std::int32_t nLine = LineOfChar(text, nChar);
    if (nChar < 0 || nLine < 0) {
        return {};
    }
    const TextLine& line = LineOf(text, nLine);
    CharRange word{nChar, nChar + 1};
    while (IsOneWord(text, line, word.nFirst - 1)) {
        --word.nFirst;
    }
    while (IsOneWord(text, line, word.nEnd - 1)) {
        ++word.nEnd;
    }
    return word;
}

CharRange RangeOn(std::int32_t nPage, std::int32_t nChars, TextPlace one, TextPlace other) {
    const auto [first, last] = std::minmax(one, other);
    if (nPage < first.nPage || nPage > last.nPage) {
        return {};
    }
    return {nPage == first.nPage ? std::min(first.nChar, nChars) : 0,
            nPage == last.nPage ? std::min(last.nChar, nChars) : nChars};
}

std::vector<TextQuad> QuadsOf(const PageText& text, CharRange range) {
    std::vector<Stretch> stretches;
    for (const TextLine& line : text.lines) {
        CharRange part{std::max(range.nFirst, line.nFirst), std::min(range.nEnd, line.nEnd)};
        while (!part.IsEmpty() && IsSpace(text, part.nFirst)) {
            ++part.nFirst;
        }
        while (!part.IsEmpty() && IsSpace(text, part.nEnd - 1)) {
            --part.nEnd;
        }
        if (!part.IsEmpty()) {
            AddStretches(stretches, text, line, part);
        }
    }
    std::vector<TextQuad> quads;
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        if (i + 1 < stretches.size()) {
            PartLines(stretches[i], stretches[i + 1]);
        }
        quads.push_back(QuadOf(stretches[i]));
    }
    return quads;
}

}
