#include "widget/text/SelectionPointer.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QTabletEvent>
#include <utility>

#include "platform/qt/QtElementWindow.h"

namespace velko::vkit {

namespace {

constexpr int kRestMs = 80;

bool IsFar(QPointF one, QPointF other) {
    return (one - other).manhattanLength() >= QApplication::startDragDistance();
}

}

SelectionPointer::SelectionPointer(Parts parts)
    : m_window(parts.window),
      m_places(parts.places),
      m_texts(parts.texts),
      m_selection(parts.selection),
      m_shape(parts.shape),
      m_drag(parts.texts, parts.selection),
      m_edge(parts.window, {std::move(parts.fnScroll), [this](QPointF pt) { MoveTo(pt); }}) {
    m_window.installEventFilter(this);
    connect(&m_texts, &PageTexts::Read, this, &SelectionPointer::OnRead);
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    m_rest.callOnTimeout(this, [this] {
        const auto point = m_hover ? m_places.At(*m_hover) : std::nullopt;
        if (point && m_texts.TextOf(point->nPage)) {
            Hover();
        }
    });
}

// --- input -----------------------------------------------------------------

bool SelectionPointer::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return OnMouse(*static_cast<QMouseEvent*>(pEvent), pEvent->type());
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
            return OnPen(*static_cast<QTabletEvent*>(pEvent));
        case QEvent::Leave:
            m_hover.reset();
            Hover();
            return false;
        case QEvent::Hide:
        case QEvent::UngrabMouse:
        case QEvent::WindowBlocked:
        case QEvent::WindowDeactivate:
            Lose();
            return false;
        default:
            return false;
    }
}

bool SelectionPointer::OnMouse(const QMouseEvent& event, QEvent::Type eType) {
    m_bPen = false;
    if (eType == QEvent::MouseMove) {
        m_nMovedAt = event.timestamp();
        m_hover = event.buttons() == Qt::NoButton ? std::optional(event.position()) : std::nullopt;
        return OnMove(event.position(), event.buttons().testFlag(Qt::LeftButton));
    }
    if (event.button() != Qt::LeftButton) {
        if (eType != QEvent::MouseButtonRelease) {
            Lose(); // what was selected so far is meant
        }
        return false;
    }
    if (eType == QEvent::MouseButtonRelease) {
        return OnRelease(event.position());
    }
    return OnPress({event.position(), event.modifiers().testFlag(Qt::ShiftModifier),
                    CountClick(event, eType == QEvent::MouseButtonDblClick)});
}

bool SelectionPointer::OnPen(QTabletEvent& event) {
    bool bTaken = false;
    m_bPen = true;
    if (event.type() == QEvent::TabletMove) {
        bTaken = OnMove(event.position(), event.buttons().testFlag(Qt::LeftButton));
    } else if (event.button() != Qt::LeftButton) {
        return false;
    } else if (event.type() == QEvent::TabletPress) {
        bTaken = OnPress({event.position(), event.modifiers().testFlag(Qt::ShiftModifier), 1});
    } else {
        bTaken = OnRelease(event.position());
    }
    if (bTaken) {
        event.accept(); // else it comes again as a mouse's
    }
    return bTaken;
}

// The third click of three is a press like the first.
int SelectionPointer::CountClick(const QMouseEvent& event, bool bDouble) {
    const auto nSpan = static_cast<quint64>(QApplication::styleHints()->mouseDoubleClickInterval());
    const bool bGoesOn = m_nClicks == 2 && event.timestamp() - m_nClickedAt < nSpan &&
                         !IsFar(event.position(), m_ptClicked);
    m_nClicks = bDouble ? 2 : bGoesOn ? 3 : 1;
    m_nClickedAt = event.timestamp();
    m_ptClicked = event.position();
    return m_nClicks;
}

// --- a drag ----------------------------------------------------------------

bool SelectionPointer::OnPress(const Contact& contact) {
    Finish();
    m_eGrip = Grip::None;
    m_ptPressed = contact.pt;
    const auto near = m_places.Near(contact.pt);
    if (near && contact.bShift && !m_selection.IsEmpty()) {
        m_drag.Extend(*near);
        m_eGrip = Grip::Selects;
        MoveTo(contact.pt);
        return true;
    }
    const auto point = m_places.At(contact.pt);
    return point && !m_window.IsInertiaRunning() && OnPressAt(*point, contact);
}

bool SelectionPointer::OnPressAt(const PagePoint& point, const Contact& contact) {
    m_pressed = point;
    const bool bText = IsTextAt(point);
    if (bText && contact.nClicks > 1) {
        m_drag.Begin(point, contact.nClicks == 2 ? TextUnit::Word : TextUnit::Line);
        m_eGrip = Grip::Selects;
        MoveTo(contact.pt);
        return true;
    }
    if (bText || !m_texts.TextOf(point.nPage)) {
        m_eGrip = Grip::Pressed;
    }
    return false;
}

bool SelectionPointer::OnMove(QPointF pt, bool bDown) {
    if (!bDown) { // a release that never came, as after a grab by another window
        const bool bTaken = m_eGrip == Grip::Selects;
        if (m_eGrip != Grip::None) {
            Finish();
            m_eGrip = Grip::None;
        }
        Hover();
        return bTaken;
    }
    m_pointer = pt;
    if (m_eGrip == Grip::Pressed && IsFar(pt, m_ptPressed)) {
        Select();
    }
    if (m_eGrip == Grip::Selects) {
        MoveTo(pt);
    }
    return m_eGrip != Grip::None && m_eGrip != Grip::Pressed;
}

bool SelectionPointer::OnRelease(QPointF pt) {
    const Grip eGrip = m_eGrip;
    if (eGrip == Grip::Selects) {
        MoveTo(pt);
        Finish();
    } else if (eGrip == Grip::Waits) {
        PassOn();
    }
    m_eGrip = Grip::None;
    return eGrip == Grip::Selects || eGrip == Grip::Spent;
}

void SelectionPointer::Select() {
    if (!m_texts.TextOf(m_pressed.nPage)) {
        m_eGrip = m_bPen ? Grip::None : Grip::Waits;
    } else if (IsTextAt(m_pressed)) {
        m_window.TakePointers();
        m_eGrip = Grip::Selects;
        m_drag.Begin(m_pressed, TextUnit::Char);
    } else if (std::exchange(m_eGrip, Grip::None) == Grip::Waits) {
        PassOn();
    }
}

// It moves the pages after all, at once.
void SelectionPointer::PassOn() {
    m_eGrip = Grip::None;
    QMouseEvent move(QEvent::MouseMove, m_pointer, m_window.mapToGlobal(m_pointer), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    move.setTimestamp(m_nMovedAt);
    QCoreApplication::sendEvent(&m_window, &move);
}

void SelectionPointer::MoveTo(QPointF pt) {
    m_pointer = pt;
    m_edge.Follow(pt);
    m_shape.Set(PointerShape::Selects, true);
    if (const auto point = m_places.Near(pt)) {
        m_drag.MoveTo(*point);
    }
}

// What is not known yet of its text comes later.
void SelectionPointer::Finish() {
    m_edge.Stop();
    m_shape.Set(PointerShape::Selects, false);
    if (m_eGrip == Grip::Selects && m_drag.Follow()) {
        m_drag.End();
        emit Selected();
    }
}

void SelectionPointer::Lose() {
    if (m_eGrip != Grip::None) {
        Finish();
        m_eGrip = m_eGrip == Grip::Pressed ? Grip::None : Grip::Spent;
    }
}

void SelectionPointer::GiveUp() {
    m_drag.End();
    m_edge.Stop();
    m_shape.Set(PointerShape::Selects, false);
    if (m_eGrip != Grip::None) {
        m_eGrip = Grip::Spent;
    }
}

// --- texts -----------------------------------------------------------------

void SelectionPointer::OnRead() {
    if (m_eGrip == Grip::Waits) {
        Select();
        if (m_eGrip == Grip::Selects) {
            MoveTo(m_pointer);
        }
    } else if (m_drag.IsOn() && m_drag.Follow() && m_eGrip != Grip::Selects) {
        m_drag.End(); // its button was up before
        emit Selected();
    }
    Hover();
}

void SelectionPointer::Update() {
    if (m_eGrip == Grip::Selects) {
        if (const auto point = m_places.Near(m_pointer)) {
            m_drag.MoveTo(*point);
        }
    }
    Hover();
}

bool SelectionPointer::IsTextAt(const PagePoint& point) {
    const auto pText = m_texts.TextOf(point.nPage);
    return pText && IsOverText(*pText, point.pt);
}

// A text is read for the pointer's sake once that rests.
void SelectionPointer::Hover() {
    const auto point = m_hover ? m_places.At(*m_hover) : std::nullopt;
    const auto pText = point ? m_texts.Known(point->nPage) : nullptr;
    m_shape.Set(PointerShape::OverText, pText && IsOverText(*pText, point->pt));
    if (point && !pText) {
        m_rest.start();
    } else {
        m_rest.stop();
    }
}

}
