#include "widget/text/SelectionKeys.h"

#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "widget/text/TextGeometry.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using velko::pdf::PageText;
using velko::pdf::TextLine;

namespace {

constexpr double kMargin = 24.0; // Qt's units, between the head and the window's edge
constexpr int kMostPagesOn = 8;  // without text, that a step passes

RectF BoxOnPage(const PageText& text, CharRange range) {
    const TextBox box = BoxOf(text, {{1.0F, 0.0F}, {0.0F, 1.0F}}, range.nFirst, range.nEnd);
    return {box.along.fStart, box.across.fStart, box.along.fEnd, box.across.fEnd};
}

// How far to scroll so that the extent stands in a window of that size.
double ScrollFor(double dbStart, double dbEnd, double dbSize) {
    if (dbStart < kMargin) {
        return dbStart - kMargin;
    }
    return dbEnd > dbSize - kMargin ? std::min(dbEnd - dbSize + kMargin, dbStart - kMargin) : 0.0;
}

}

std::optional<SelectionKeys::Move> SelectionKeys::MoveOf(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool bControl = modifiers == (Qt::ShiftModifier | Qt::ControlModifier);
    if (!bControl && modifiers != Qt::ShiftModifier) {
        return std::nullopt;
    }
    const TextStep eAcross = bControl ? TextStep::Word : TextStep::Char;
    switch (event.key()) {
        case Qt::Key_Left:
            return Move{eAcross, false, -1, true};
        case Qt::Key_Right:
            return Move{eAcross, false, 1, true};
        case Qt::Key_Home:
            return Move{TextStep::LineEdge, bControl, -1};
        case Qt::Key_End:
            return Move{TextStep::LineEdge, bControl, 1};
        case Qt::Key_Up:
            return bControl ? std::nullopt : std::optional(Move{TextStep::Line, false, -1});
        case Qt::Key_Down:
            return bControl ? std::nullopt : std::optional(Move{TextStep::Line, false, 1});
        default:
            return std::nullopt;
    }
}

bool SelectionKeys::OnKey(const QKeyEvent& event) {
    const auto move = MoveOf(event);
    if (!move || !m_parts.texts.Document()) {
        return false;
    }
    const Outcome eOutcome = Carry(*move);
    m_waiting = eOutcome == Outcome::Waits ? move : std::nullopt;
    return eOutcome != Outcome::Nothing;
}

void SelectionKeys::OnRead() {
    if (m_waiting && Carry(*m_waiting) != Outcome::Waits) {
        m_waiting.reset();
    }
}

SelectionKeys::Outcome SelectionKeys::Carry(const Move& move) {
    const TextSelection::Places now = m_parts.selection.Now();
    if (m_parts.selection.IsEmpty() && m_last != now) {
        const auto begin = FirstInSight();
        if (!begin.place) {
            return begin.bWaits ? Outcome::Waits : Outcome::Nothing;
        }
        return Step(move, {*begin.place, *begin.place});
    }
    return Step(move, now);
}

SelectionKeys::Outcome SelectionKeys::Step(const Move& move, TextSelection::Places places) {
    const Found found = move.bDocument
                            ? Found{EdgeOfDocument(move.nDirection), false, move.nDirection > 0}
                            : PlaceFrom(move, places);
    if (found.bWaits) {
        return Outcome::Waits;
    }
    if (found.place) {
        places.head = *found.place;
        m_last = places;
        m_bEnds = found.bEnds;
        if (move.eStep != TextStep::Line) {
            m_goal.reset();
        }
        m_parts.selection.Set(places);
        Show(places.head);
    }
    return Outcome::Done;
}

TextPlace SelectionKeys::EdgeOfDocument(int nDirection) const {
    return nDirection > 0 ? TextPlace{m_parts.control.GetPageCount() - 1, TextSelection::kPageEnd}
                          : TextPlace{};
}

SelectionKeys::Found SelectionKeys::PlaceFrom(Move move, const TextSelection::Places& places) {
    const auto pText = m_parts.texts.TextOf(places.head.nPage);
    if (!pText) {
        return {std::nullopt, true};
    }
    const std::int32_t nHead =
        std::min(places.head.nChar, static_cast<std::int32_t>(pText->chars.size()));
    const TextSpot spot{nHead, m_last == places ? m_bEnds : places.head > places.anchor};
    const std::int32_t nLine = LineOfSpot(*pText, spot);
    if (move.bVisual && nLine >= 0 && RunsBack(*pText, nLine)) {
        move.nDirection = -move.nDirection;
    }
    if (!m_goal || m_last != places) {
        m_goal = PointOf(*pText, spot);
    }
    const auto on = SpotAfter(*pText, spot, *m_goal, move.eStep, move.nDirection);
    return on ? Found{TextPlace{places.head.nPage, on->nPlace}, false, on->bEnds}
              : Enter(move, places.head.nPage);
}

// The next page that has text.
SelectionKeys::Found SelectionKeys::Enter(const Move& move, std::int32_t nFrom) {
    const std::int32_t nPages = m_parts.control.GetPageCount();
    for (int n = 1; n <= kMostPagesOn; ++n) {
        const std::int32_t nPage = nFrom + n * move.nDirection;
        if (nPage < 0 || nPage >= nPages) {
            break;
        }
        const auto pText = m_parts.texts.TextOf(nPage);
        if (!pText) {
            return {std::nullopt, true};
        }
        if (!pText->chars.empty()) {
            const TextSpot spot = SpotOnEntering(*pText, move.eStep, move.nDirection, *m_goal);
            return {TextPlace{nPage, spot.nPlace}, false, spot.bEnds};
        }
    }
    return {};
}

// --- what is in sight ------------------------------------------------------

SelectionKeys::Found SelectionKeys::FirstInSight() {
    for (const std::int32_t nPage : m_parts.control.GetVisiblePages()) {
        const auto pText = m_parts.texts.TextOf(nPage);
        if (!pText) {
            return {std::nullopt, true};
        }
        for (const TextLine& line : pText->lines) {
            if (!IsInSight(nPage, *pText, {line.nFirst, line.nEnd})) {
                continue;
            }
            for (std::int32_t n = line.nFirst; n < line.nEnd; ++n) {
                if (IsInSight(nPage, *pText, {n, n + 1})) {
                    return {TextPlace{nPage, n}, false};
                }
            }
        }
    }
    return {};
}

// Whether the middle of it is; of a line whether any of it may be.
bool SelectionKeys::IsInSight(std::int32_t nPage, const PageText& text, CharRange range) const {
    const auto place = m_parts.places.InWindow(nPage, BoxOnPage(text, range));
    const QRectF window(m_parts.window.rect());
    return place && (range.nEnd - range.nFirst > 1 ? window.intersects(*place)
                                                   : window.contains(place->center()));
}

// A page whose text is not known yet is shown at least.
void SelectionKeys::Show(TextPlace head) {
    const auto pText = m_parts.texts.TextOf(head.nPage);
    const auto nChars = pText ? static_cast<std::int32_t>(pText->chars.size()) : 0;
    const std::int32_t nChar =
        std::clamp(head.nChar - (head.nChar > 0 ? 1 : 0), 0, std::max(0, nChars - 1));
    const auto fnPlace = [&] {
        return m_parts.places.InWindow(
            head.nPage, nChars > 0 ? BoxOnPage(*pText, {nChar, nChar + 1}) : RectF());
    };
    if (!fnPlace()) {
        m_parts.fnGotoPage(head.nPage);
    }
    const auto place = nChars > 0 ? fnPlace() : std::nullopt;
    if (!place) {
        return;
    }
    const double dbRatio = m_parts.window.devicePixelRatioF();
    const double dbX = ScrollFor(place->left(), place->right(), m_parts.window.width());
    const double dbY = ScrollFor(place->top(), place->bottom(), m_parts.window.height());
    if (dbX != 0.0 || dbY != 0.0) {
        m_parts.fnScroll(dbX * dbRatio, dbY * dbRatio);
    }
}

}
