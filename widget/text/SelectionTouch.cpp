#include "widget/text/SelectionTouch.h"

#include <QTouchEvent>
#include <algorithm>
#include <utility>

#include "platform/qt/QtElementWindow.h"
#include "widget/text/TextGeometry.h"
#include "widget/text/TextSteps.h"

namespace velko::vkit {

using velko::common::vxbase::RectF;

SelectionTouch::SelectionTouch(Parts parts)
    : m_parts(std::move(parts)),
      m_drag(m_parts.texts, m_parts.selection),
      m_edge(m_parts.window, {m_parts.fnScroll, [this](QPointF pt) { MoveTo(pt); }}) {
    m_parts.window.installEventFilter(this);
    m_holdToken = m_parts.window.Panel()->Holding.add(
        [this](auto& args) { OnHolding(m_parts.fnToWindow(args.Position)); });
    connect(&m_parts.texts, &PageTexts::Read, this, [this] {
        TakeHeld();
        m_drag.Follow();
        Update();
    });
    connect(&m_parts.selection, &TextSelection::Changed, this, &SelectionTouch::OnChanged);
}

SelectionTouch::~SelectionTouch() {
    m_parts.window.Panel()->Holding.remove(m_holdToken);
    for (const auto& pHandle : m_handles) {
        delete pHandle.data();
    }
}

// --- a finger --------------------------------------------------------------

bool SelectionTouch::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::TouchBegin:
            LetGo(); // the end of those before was lost
            m_bFinger = true;
            return false;
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd: {
            const bool bTaken = m_bWord;
            OnTouch(*static_cast<QTouchEvent*>(pEvent));
            pEvent->setAccepted(bTaken || pEvent->isAccepted());
            return bTaken;
        }
        case QEvent::TouchCancel:
        case QEvent::Hide:
            LetGo();
            return false;
        default:
            return false;
    }
}

void SelectionTouch::OnTouch(const QTouchEvent& event) {
    if (m_bWord) {
        MoveTo(event.points().first().position());
    }
    if (event.type() == QEvent::TouchEnd) {
        LetGo();
    }
}

void SelectionTouch::OnHolding(QPointF pt) {
    m_held = m_bFinger ? m_parts.places.At(pt) : std::nullopt;
    TakeHeld();
}

void SelectionTouch::TakeHeld() {
    const auto pText = m_held ? m_parts.texts.TextOf(m_held->nPage) : nullptr;
    if (!pText) {
        return;
    }
    const PagePoint point = *std::exchange(m_held, std::nullopt);
    if (IsOverText(*pText, point.pt)) {
        m_parts.window.TakePointers();
        m_bWord = true;
        m_nHead = 1;
        m_drag.Begin(point, TextUnit::Word);
        m_bHandles = true;
        Update();
    }
}

void SelectionTouch::MoveTo(QPointF pt) {
    m_edge.Follow(pt);
    if (const auto point = m_parts.places.Near(pt + m_ptAside)) {
        m_drag.MoveTo(*point);
    }
}

void SelectionTouch::LetGo() {
    m_bFinger = false;
    m_held.reset();
    m_edge.Stop();
    m_ptAside = {};
    if (std::exchange(m_bWord, false) || std::exchange(m_bDragged, false)) {
        m_drag.End();
        Update();
        emit Selected();
    }
}

// --- handles ---------------------------------------------------------------

// What is selected in another way has none.
void SelectionTouch::OnChanged() {
    m_bHandles = m_bWord || m_bDragged;
    Update();
}

void SelectionTouch::Update() {
    if (m_bHandles && !m_handles[0]) {
        for (const int nHandle : {0, 1}) {
            m_handles[nHandle] =
                new SelectionHandle(&m_parts.window,
                                    nHandle == 0 ? QStringLiteral("Start of the selection")
                                                 : QStringLiteral("End of the selection"),
                                    {[this, nHandle](QPointF pt) { TakeHandle(nHandle, pt); },
                                     [this](QPointF pt) { MoveTo(pt); }, [this] { LetGo(); }});
        }
    }
    if (m_handles[0] && m_handles[1]) {
        PlaceHandle(m_nHead, m_parts.selection.Now().head);
        PlaceHandle(1 - m_nHead, m_parts.selection.Now().anchor);
    }
}

void SelectionTouch::PlaceHandle(int nHandle, TextPlace place) {
    const bool bShown = m_bHandles && !m_parts.selection.IsEmpty();
    const auto tip = bShown ? TipOf(place) : std::nullopt;
    if (tip) {
        m_handles[nHandle]->PutUnder(*tip);
    } else if (!m_bDragged) { // one under a finger keeps it
        m_handles[nHandle]->hide();
    }
}

// The end that the handle has moves from now on, the other one stays.
void SelectionTouch::TakeHandle(int nHandle, QPointF pt) {
    const TextSelection::Places now = m_parts.selection.Now();
    const TextPlace head = nHandle == m_nHead ? now.head : now.anchor;
    const TextPlace anchor = nHandle == m_nHead ? now.anchor : now.head;
    m_nHead = nHandle;
    m_bDragged = true;
    const auto pText = m_parts.texts.TextOf(head.nPage);
    const auto point =
        pText ? std::optional(PointOf(*pText, {head.nChar, head > anchor})) : std::nullopt;
    const auto place =
        point ? m_parts.places.InWindow(head.nPage, RectF{point->X, point->Y, point->X, point->Y})
              : std::nullopt;
    m_ptAside = place ? place->topLeft() - pt : QPointF();
    if (const auto near = m_parts.places.Near(pt + m_ptAside)) {
        m_drag.Hold(anchor, *near);
    }
}

// Below its letter; empty out of sight.
std::optional<QPointF> SelectionTouch::TipOf(TextPlace place) const {
    const TextSpan span = m_parts.selection.Span();
    const auto pText = m_parts.texts.Known(place.nPage);
    if (!pText || pText->chars.empty()) {
        return std::nullopt;
    }
    const bool bEnds = place == span.last;
    const auto nChars = static_cast<std::int32_t>(pText->chars.size());
    const std::int32_t nPlace = std::min(place.nChar, nChars);
    const std::int32_t nChar = std::clamp(nPlace - (bEnds ? 1 : 0), 0, nChars - 1);
    const TextBox box = BoxOf(*pText, {{1.0F, 0.0F}, {0.0F, 1.0F}}, nChar, nChar + 1);
    const auto pt = PointOf(*pText, {nPlace, bEnds});
    const auto letter = m_parts.places.InWindow(
        place.nPage, {box.along.fStart, box.across.fStart, box.along.fEnd, box.across.fEnd});
    const auto at = m_parts.places.InWindow(place.nPage, RectF{pt.X, pt.Y, pt.X, pt.Y});
    if (!letter || !at) {
        return std::nullopt;
    }
    const QPointF tip(at->left(), letter->bottom());
    return QRectF(m_parts.window.rect()).contains(tip) ? std::optional(tip) : std::nullopt;
}

}
