#include "widget/text/TextSteps.h"

#include <algorithm>
#include <cmath>

#include "widget/text/TextGeometry.h"
#include "widget/text/TextRange.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::pdf::PageText;
using velko::pdf::TextLine;

namespace {

std::int32_t CountOf(const PageText& text) {
    return static_cast<std::int32_t>(text.chars.size());
}

bool IsSpace(const PageText& text, std::int32_t nChar) {
    return CharOf(text, nChar).nCode == U' ';
}

// To the end of a word, or back to its start; the ends of lines part words.
std::optional<std::int32_t> WordAfter(const PageText& text, std::int32_t nPlace, int nDirection) {
    std::int32_t nChar = nDirection > 0 ? nPlace : nPlace - 1;
    while (nChar >= 0 && nChar < CountOf(text) && IsSpace(text, nChar)) {
        nChar += nDirection;
    }
    if (nChar < 0 || nChar >= CountOf(text)) {
        return std::nullopt;
    }
    const CharRange word = WordAt(text, nChar);
    return nDirection > 0 ? word.nEnd : word.nFirst;
}

TextBox BoxOfLine(const PageText& text, const TextAxes& axes, std::int32_t nLine) {
    const TextLine& line = LineOf(text, nLine);
    return BoxOf(text, axes, line.nFirst, line.nEnd);
}

bool AreBeside(const TextExtent& one, const TextExtent& other) {
    const float fOver = std::min(one.fEnd, other.fEnd) - std::max(one.fStart, other.fStart);
    return fOver > std::min(one.Length(), other.Length()) / 2.0F;
}

// Of the lines of a row the one nearest to the goal.
std::int32_t NearestInRow(const PageText& text, std::int32_t nLine, int nDirection, PointF ptGoal) {
    const TextAxes axes = AxesOf(text, LineOf(text, nLine));
    const TextExtent row = BoxOfLine(text, axes, nLine).across;
    const auto nLines = static_cast<std::int32_t>(text.lines.size());
    std::int32_t nNearest = nLine;
    float fNearest = BoxOfLine(text, axes, nLine).along.DistanceTo(axes.Along(ptGoal));
    for (std::int32_t n = nLine + nDirection; n >= 0 && n < nLines; n += nDirection) {
        const TextBox box = BoxOfLine(text, axes, n);
        if (!AreBeside(row, box.across)) {
            break;
        }
        if (const float f = box.along.DistanceTo(axes.Along(ptGoal)); f < fNearest) {
            fNearest = f;
            nNearest = n;
        }
    }
    return nNearest;
}

TextSpot SpotIn(const PageText& text, std::int32_t nLine, PointF ptGoal) {
    const std::int32_t nPlace = CharPlaceIn(text, nLine, ptGoal);
    return {nPlace, nPlace == LineOf(text, nLine).nEnd};
}

std::optional<TextSpot> LineAfter(const PageText& text, std::int32_t nLine, int nDirection,
                                  PointF ptGoal) {
    const TextAxes axes = AxesOf(text, LineOf(text, nLine));
    const TextExtent row = BoxOfLine(text, axes, nLine).across;
    const auto nLines = static_cast<std::int32_t>(text.lines.size());
    for (std::int32_t n = nLine + nDirection; n >= 0 && n < nLines; n += nDirection) {
        if (!AreBeside(row, BoxOfLine(text, axes, n).across)) {
            return SpotIn(text, NearestInRow(text, n, nDirection, ptGoal), ptGoal);
        }
    }
    return std::nullopt;
}

}

std::int32_t LineOfSpot(const PageText& text, TextSpot spot) {
    const std::int32_t nChar = spot.bEnds ? spot.nPlace - 1 : spot.nPlace;
    return LineOfChar(text, std::clamp(nChar, 0, std::max(0, CountOf(text) - 1)));
}

bool RunsBack(const PageText& text, std::int32_t nLine) {
    const TextLine& line = LineOf(text, nLine);
    const PointF along = AxesOf(text, line).along;
    return line.ptDirection.X * along.X + line.ptDirection.Y * along.Y < 0.0F;
}

std::optional<TextSpot> SpotAfter(const PageText& text, TextSpot spot, PointF ptGoal,
                                  TextStep eStep, int nDirection) {
    const std::int32_t nLine = LineOfSpot(text, spot);
    if (nLine < 0) {
        return std::nullopt;
    }
    const bool bOn = nDirection > 0;
    const std::int32_t nNext = spot.nPlace + nDirection;
    switch (eStep) {
        case TextStep::Char:
            return nNext < 0 || nNext > CountOf(text) ? std::nullopt
                                                      : std::optional(TextSpot{nNext, bOn});
        case TextStep::Word: {
            const auto place = WordAfter(text, spot.nPlace, nDirection);
            return place ? std::optional(TextSpot{*place, bOn}) : std::nullopt;
        }
        case TextStep::Line:
            return LineAfter(text, nLine, nDirection, ptGoal);
        case TextStep::LineEdge:
            return TextSpot{bOn ? LineOf(text, nLine).nEnd : LineOf(text, nLine).nFirst, bOn};
    }
    return std::nullopt;
}

TextSpot SpotOnEntering(const PageText& text, TextStep eStep, int nDirection, PointF ptGoal) {
    if (text.chars.empty()) {
        return {};
    }
    const std::int32_t nEdge = nDirection > 0 ? 0 : CountOf(text);
    if (eStep == TextStep::Line) {
        const std::int32_t nLine =
            nDirection > 0 ? 0 : static_cast<std::int32_t>(text.lines.size()) - 1;
        return SpotIn(text, NearestInRow(text, nLine, nDirection, ptGoal), ptGoal);
    }
    const auto word = eStep == TextStep::Word ? WordAfter(text, nEdge, nDirection) : std::nullopt;
    return {word.value_or(nEdge), word ? nDirection > 0 : nDirection < 0};
}

PointF PointOf(const PageText& text, TextSpot spot) {
    if (text.chars.empty()) {
        return {};
    }
    const std::int32_t nLine = LineOfSpot(text, spot);
    const TextAxes axes = AxesOf(text, LineOf(text, nLine));
    const std::int32_t nChar =
        std::clamp(spot.bEnds ? spot.nPlace - 1 : spot.nPlace, 0, CountOf(text) - 1);
    const TextBox box = BoxOf(text, axes, nChar, nChar + 1);
    const bool bFar = spot.bEnds != RunsBack(text, nLine);
    return axes.Point(bFar ? box.along.fEnd : box.along.fStart, box.across.Middle());
}

}
