#include "widget/text/SelectionDrag.h"

#include "widget/text/TextGeometry.h"

namespace velko::vkit {

using velko::pdf::PageText;

namespace {

CharRange UnitAt(const PageText& text, velko::common::vxbase::PointF pt, TextUnit eUnit) {
    if (text.chars.empty()) {
        return {};
    }
    if (eUnit == TextUnit::Char) {
        const std::int32_t nPlace = CharPlaceAt(text, pt).value_or(0);
        return {nPlace, nPlace};
    }
    if (eUnit == TextUnit::Word) {
        return WordAt(text, CharAt(text, pt).value_or(0));
    }
    const velko::pdf::TextLine& line = LineOf(text, LineAt(text, pt));
    return {line.nFirst, line.nEnd};
}

}

// Empty while the page is read.
std::optional<TextSpan> SelectionDrag::SpanAt(const PagePoint& point) const {
    const auto pText = m_texts.TextOf(point.nPage);
    if (!pText) {
        return std::nullopt;
    }
    const CharRange unit = UnitAt(*pText, point.pt, m_eUnit);
    return TextSpan{{point.nPage, unit.nFirst}, {point.nPage, unit.nEnd}};
}

void SelectionDrag::Begin(const PagePoint& point, TextUnit eUnit) {
    m_start = point;
    m_eUnit = eUnit;
    m_bOn = true;
    MoveTo(point);
}

void SelectionDrag::Extend(const PagePoint& point) {
    m_start.reset();
    m_eUnit = m_selection.Unit();
    m_bOn = true;
    MoveTo(point);
}

void SelectionDrag::Hold(TextPlace anchor, const PagePoint& point) {
    m_selection.Begin({anchor, anchor}, TextUnit::Char);
    Extend(point);
}

void SelectionDrag::MoveTo(const PagePoint& point) {
    m_end = point;
    Follow();
}

bool SelectionDrag::TakeStart() {
    if (m_start) {
        const auto span = SpanAt(*m_start);
        if (!span) {
            return false;
        }
        m_start.reset();
        m_selection.Begin(*span, m_eUnit);
    }
    return true;
}

// Up to a page that is being read what lies before it is taken, or behind it.
bool SelectionDrag::Follow() {
    if (!m_bOn || !TakeStart()) {
        return !m_bOn;
    }
    if (const auto span = SpanAt(m_end)) {
        m_selection.ExtendTo(*span);
        return true;
    }
    const bool bBack = m_end.nPage < m_selection.Now().anchor.nPage;
    const TextPlace edge{m_end.nPage, bBack ? TextSelection::kPageEnd : 0};
    m_selection.ExtendTo({edge, edge});
    return false;
}

}
