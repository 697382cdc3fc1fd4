#include "widget/MiddleDrag.h"

#include <QMouseEvent>
#include <QWidget>
#include <utility>

namespace velko::vkit {

MiddleDrag::MiddleDrag(QWidget& window, PointerShape& shape,
                       std::function<void(double, double)> fnScroll)
    : m_shape(shape), m_fnScroll(std::move(fnScroll)) {
    window.installEventFilter(this);
}

bool MiddleDrag::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            if (static_cast<QMouseEvent*>(pEvent)->button() != Qt::MiddleButton) {
                return false;
            }
            Begin(*static_cast<QMouseEvent*>(pEvent));
            return true;
        case QEvent::MouseMove:
            if (!m_last) {
                return false;
            }
            Move(*static_cast<QMouseEvent*>(pEvent));
            return true;
        case QEvent::MouseButtonRelease:
            if (static_cast<QMouseEvent*>(pEvent)->button() != Qt::MiddleButton) {
                return false;
            }
            End();
            return true;
        case QEvent::Hide:
            End();
            return false;
        default:
            return false;
    }
}

void MiddleDrag::Begin(const QMouseEvent& event) {
    m_last = event.position();
    m_shape.Set(PointerShape::MiddleDrag, true);
}

// A release that never came, as after a grab by another window, ends it too.
void MiddleDrag::Move(const QMouseEvent& event) {
    if (!event.buttons().testFlag(Qt::MiddleButton)) {
        End();
        return;
    }
    const QPointF way = *std::exchange(m_last, event.position()) - event.position();
    m_fnScroll(way.x(), way.y());
}

void MiddleDrag::End() {
    m_last.reset();
    m_shape.Set(PointerShape::MiddleDrag, false);
}

}
