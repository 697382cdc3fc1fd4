#include "widget/edit/EditTools.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>
#include <utility>

#include "platform/qt/QtElementWindow.h"

namespace velko::vkit {

EditTools::EditTools(Platform::Qt::QtElementWindow& window, const PagePlaces& places,
                     PageTexts& texts, PointerShape& shape, Hands hands)
    : m_window(window),
      m_places(places),
      m_texts(texts),
      m_shape(shape),
      m_hands(std::move(hands)),
      m_drag(texts),
      m_edge(window, {m_hands.fnScroll, [this](QPointF pt) { Follow(pt); }}) {
    m_window.installEventFilter(this);
    connect(&m_texts, &PageTexts::Read, this, [this] {
        if (m_bEnded) {
            End();
        } else if (m_drag.IsOn()) {
            m_hands.fnRedraw();
        }
    });
}

void EditTools::Take(Tool eTool) {
    if (m_eTool == eTool) {
        return;
    }
    GiveUp();
    m_eTool = eTool;
    m_shape.Set(PointerShape::Marks, eTool == Tool::Highlight);
    m_shape.Set(PointerShape::PutsNote, eTool == Tool::Note);
    if (eTool != Tool::None) { // links under the pointer are not meant any more
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(&m_window, &leave);
    }
    m_hands.fnToolChanged();
}

void EditTools::GiveUp() {
    m_edge.Stop();
    m_pointer.reset();
    m_bEnded = false;
    if (m_drag.IsOn()) {
        m_drag.Cancel();
        m_hands.fnRedraw();
    }
}

// --- input -----------------------------------------------------------------

bool EditTools::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return m_eTool != Tool::None && OnMouse(*pEvent);
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
            return m_eTool != Tool::None && OnPen(*pEvent);
        case QEvent::KeyPress:
            return static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_Escape && OnEscape();
        case QEvent::Hide:
            GiveUp();
            return false;
        default:
            return false;
    }
}

// A release that never came, as after a grab by another window, is one all the same.
bool EditTools::OnMouse(QEvent& event) {
    const auto& mouse = static_cast<QMouseEvent&>(event);
    if (event.type() == QEvent::MouseMove) {
        if (m_pointer && !mouse.buttons().testFlag(Qt::LeftButton)) {
            OnRelease(mouse.position());
        } else if (m_pointer) {
            OnMove(mouse.position());
        }
        return m_pointer.has_value() || mouse.buttons() == Qt::NoButton;
    }
    if (mouse.button() != Qt::LeftButton) {
        return false;
    }
    if (event.type() == QEvent::MouseButtonRelease) {
        OnRelease(mouse.position());
        return true;
    }
    return OnPress(mouse.position(), event.type() == QEvent::MouseButtonDblClick);
}

bool EditTools::OnPen(QEvent& event) {
    auto& pen = static_cast<QTabletEvent&>(event);
    if (event.type() == QEvent::TabletPress) {
        OnPress(pen.position(), false);
    } else if (event.type() == QEvent::TabletMove && m_pointer) {
        OnMove(pen.position());
    } else if (event.type() == QEvent::TabletRelease) {
        OnRelease(pen.position());
    }
    pen.accept();
    return true;
}

bool EditTools::OnEscape() {
    if (m_drag.IsOn() || m_pointer) {
        GiveUp();
        return true;
    }
    if (m_eTool != Tool::None) {
        Take(Tool::None);
        return true;
    }
    return false;
}

bool EditTools::OnPress(QPointF pt, bool bDouble) {
    GiveUp();
    m_window.setFocus();
    if (m_eTool == Tool::Note) {
        if (const auto point = m_places.At(pt)) {
            m_hands.fnPutNote(*point);
        }
        return true;
    }
    const auto point = m_places.Near(pt);
    if (point && bDouble) {
        m_drag.BeginWord(*point);
        End();
    } else if (point) {
        m_drag.Begin(*point);
        m_pointer = pt;
        m_edge.Follow(pt);
    }
    return true;
}

void EditTools::OnMove(QPointF pt) {
    m_pointer = pt;
    m_edge.Follow(pt);
    Follow(pt);
}

void EditTools::OnRelease(QPointF pt) {
    if (m_pointer) {
        Follow(pt);
        m_pointer.reset();
        m_edge.Stop();
        End();
    }
}

void EditTools::Follow(QPointF pt) {
    if (const auto point = m_places.Near(pt)) {
        m_drag.MoveTo(*point);
        m_hands.fnRedraw();
    }
}

void EditTools::Update() {
    if (m_pointer) {
        if (const auto point = m_places.Near(*m_pointer)) {
            m_drag.MoveTo(*point);
        }
    }
}

void EditTools::End() {
    const MarkDrag::Marks marks = m_drag.Find();
    m_bEnded = !marks.bComplete;
    if (m_bEnded) {
        return;
    }
    m_drag.Cancel();
    if (!marks.bText) {
        m_hands.fnNoText();
    } else if (!marks.pages.empty()) {
        m_hands.fnMark(marks);
    }
    m_hands.fnRedraw();
}

}
