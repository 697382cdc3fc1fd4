#include "widget/text/TextRange.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::pdf::PageText;
using velko::pdf::TextBlock;
using velko::pdf::TextChar;
using velko::pdf::TextLine;
using velko::pdf::TextQuad;

namespace {

constexpr float kNear = 0.4F;        // of a letter's size
constexpr float kStretchGap = 0.75F; // of a letter's size; a wider gap ends a stretch
constexpr float kMostOver = 0.9F;    // of a letter's size do lines reach over each other
constexpr float kBeside = 0.02F;     // how much a way along a line counts within a block

// Along a line and across it, from the line's top down, with the letters upright.
struct Axes {
    PointF along{1.0F, 0.0F};
    PointF across{0.0F, -1.0F};

    float Along(PointF pt) const { return pt.X * along.X + pt.Y * along.Y; }
    float Across(PointF pt) const { return pt.X * across.X + pt.Y * across.Y; }
    PointF Point(float fAlong, float fAcross) const {
        return {fAlong * along.X + fAcross * across.X, fAlong * along.Y + fAcross * across.Y};
    }
};

struct Extent {
    float fStart = std::numeric_limits<float>::max();
    float fEnd = std::numeric_limits<float>::lowest();

    void Add(float f) {
        fStart = std::min(fStart, f);
        fEnd = std::max(fEnd, f);
    }
    float Middle() const { return (fStart + fEnd) / 2.0F; }
    float DistanceTo(float f) const { return std::max({fStart - f, f - fEnd, 0.0F}); }
};

// In axes of its own.
struct Box {
    Extent along;
    Extent across;

    void Add(const Axes& axes, const TextQuad& quad) {
        for (const PointF pt :
             {quad.ptTopLeft, quad.ptTopRight, quad.ptBottomLeft, quad.ptBottomRight}) {
            along.Add(axes.Along(pt));
            across.Add(axes.Across(pt));
        }
    }
};

float Length(PointF pt) {
    return std::hypot(pt.X, pt.Y);
}

// The axes of a letter; letters without a width have those that a line is read in.
Axes AxesOf(const TextLine& line, const TextQuad& quad) {
    PointF along{quad.ptBottomRight.X - quad.ptBottomLeft.X,
                 quad.ptBottomRight.Y - quad.ptBottomLeft.Y};
    if (!(Length(along) > 0.0F)) {
        along = line.ptDirection;
    }
    const float fLength = Length(along);
    if (!(fLength > 0.0F)) {
        return {};
    }
    Axes axes;
    axes.along = {along.X / fLength, along.Y / fLength};
    axes.across = {axes.along.Y, -axes.along.X};
    const PointF down{quad.ptBottomLeft.X - quad.ptTopLeft.X,
                      quad.ptBottomLeft.Y - quad.ptTopLeft.Y};
    if (down.X * axes.across.X + down.Y * axes.across.Y < 0.0F) {
        axes.across = {-axes.across.X, -axes.across.Y}; // a mirrored page
    }
    return axes;
}

Axes AxesOf(const PageText& text, const TextLine& line) {
    return AxesOf(line, text.chars[static_cast<std::size_t>(line.nFirst)].quad);
}

const TextChar& At(const PageText& text, std::int32_t nChar) {
    return text.chars[static_cast<std::size_t>(nChar)];
}

Box BoxOf(const PageText& text, const Axes& axes, std::int32_t nFirst, std::int32_t nEnd) {
    Box box;
    for (std::int32_t i = nFirst; i < nEnd; ++i) {
        box.Add(axes, At(text, i).quad);
    }
    return box;
}

bool Contains(const PageText& text, const TextBlock& block, PointF pt) {
    if (block.nFirstLine >= block.nEndLine) {
        return false;
    }
    const Axes axes = AxesOf(text, text.lines[static_cast<std::size_t>(block.nFirstLine)]);
    Box box;
    for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
        const TextLine& line = text.lines[static_cast<std::size_t>(n)];
        for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
            box.Add(axes, At(text, i).quad);
        }
    }
    return box.along.DistanceTo(axes.Along(pt)) == 0.0F &&
           box.across.DistanceTo(axes.Across(pt)) == 0.0F;
}

struct Nearest {
    std::int32_t nLine = -1;
    float fDistance = std::numeric_limits<float>::max();
};

void Look(Nearest& nearest, const PageText& text, const TextBlock& block, PointF pt,
          float fAlongCounts) {
    for (std::int32_t n = block.nFirstLine; n < block.nEndLine; ++n) {
        const TextLine& line = text.lines[static_cast<std::size_t>(n)];
        const Axes axes = AxesOf(text, line);
        const Box box = BoxOf(text, axes, line.nFirst, line.nEnd);
        const float fDistance = std::hypot(fAlongCounts * box.along.DistanceTo(axes.Along(pt)),
                                           box.across.DistanceTo(axes.Across(pt)));
        // Of lines that reach over each other the one whose middle is nearer.
        const float fOff = 1.0E-3F * std::abs(box.across.Middle() - axes.Across(pt)) + fDistance;
        if (fOff < nearest.fDistance) {
            nearest = {n, fOff};
        }
    }
}

// Of the block around the point the line at its height, be it shorter; elsewhere the
// nearest one.
std::int32_t LineAt(const PageText& text, PointF pt) {
    Nearest nearest;
    for (const TextBlock& block : text.blocks) {
        if (Contains(text, block, pt)) {
            Look(nearest, text, block, pt, kBeside);
        }
    }
    for (const TextBlock& block : text.blocks) {
        Look(nearest, text, block, pt, 1.0F);
    }
    return nearest.nLine;
}

// Whether the letter is read against its line's letters' way, as its neighbours tell.
bool RunsBack(const PageText& text, const TextLine& line, const Axes& axes, std::int32_t nChar) {
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
    return At(text, nChar).nCode == U' ';
}

bool IsOfWord(char32_t c) {
    return c > 0x7F || (c >= U'0' && c <= U'9') || (c >= U'A' && c <= U'Z') ||
           (c >= U'a' && c <= U'z') || c == U'_' || c == U'\'';
}

// A piece of a line to be marked.
struct Stretch {
    Axes axes;
    Box box;
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
    const Axes axes = AxesOf(text, line);
    std::vector<Stretch> letters;
    for (std::int32_t i = range.nFirst; i < range.nEnd; ++i) {
        letters.push_back({axes, BoxOf(text, axes, i, i + 1), At(text, i).fFontSize});
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

std::optional<std::int32_t> CharPlaceAt(const PageText& text, PointF pt) {
    const std::int32_t nLine = LineAt(text, pt);
    if (nLine < 0) {
        return std::nullopt;
    }
    const TextLine& line = text.lines[static_cast<std::size_t>(nLine)];
    const Axes axes = AxesOf(text, line);
    const float fAlong = axes.Along(pt);
    std::int32_t nNearest = line.nFirst;
    float fNearest = std::numeric_limits<float>::max();
    for (std::int32_t i = line.nFirst; i < line.nEnd; ++i) {
        const Extent extent = BoxOf(text, axes, i, i + 1).along;
        const float fOff = extent.DistanceTo(fAlong) + 1.0E-3F * std::abs(extent.Middle() - fAlong);
        if (fOff < fNearest) {
            fNearest = fOff;
            nNearest = i;
        }
    }
    const bool bRight = fAlong > BoxOf(text, axes, nNearest, nNearest + 1).along.Middle();
    return bRight != RunsBack(text, line, axes, nNearest) ? nNearest + 1 : nNearest;
}

bool IsOverText(const PageText& text, PointF pt) {
    return std::any_of(text.lines.begin(), text.lines.end(), [&](const TextLine& line) {
        const Axes axes = AxesOf(text, line);
        const Box box = BoxOf(text, axes, line.nFirst, line.nEnd);
        const float fNear = kNear * At(text, line.nFirst).fFontSize;
        return box.along.DistanceTo(axes.Along(pt)) <= fNear &&
               box.across.DistanceTo(axes.Across(pt)) <= fNear;
    });
}

CharRange WordAt(const PageText& text, std::int32_t nPlace) {
    const auto it = std::find_if(text.lines.begin(), text.lines.end(), [&](const TextLine& line) {
        return nPlace >= line.nFirst && nPlace <= line.nEnd;
    });
    if (it == text.lines.end() || it->nFirst >= it->nEnd) {
        return {};
    }
    const std::int32_t nChar = std::min(nPlace, it->nEnd - 1);
    CharRange word{nChar, nChar + 1};
    if (!IsOfWord(At(text, nChar).nCode)) {
        return word;
    }
    while (word.nFirst > it->nFirst && IsOfWord(At(text, word.nFirst - 1).nCode)) {
        --word.nFirst;
    }
    while (word.nEnd < it->nEnd && IsOfWord(At(text, word.nEnd).nCode)) {
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
