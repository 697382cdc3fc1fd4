#include "widget/DragHand.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

namespace velko::vkit {

DragHand::DragHand(QWidget& window, PointerShape& shape) : m_shape(shape) {
    window.installEventFilter(this);
}

bool DragHand::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::MouseButtonPress:
            if (static_cast<QMouseEvent*>(pEvent)->button() == Qt::LeftButton) {
                m_pressed = static_cast<QMouseEvent*>(pEvent)->position();
            }
            break;
        case QEvent::MouseMove:
            Follow(*static_cast<QMouseEvent*>(pEvent));
            break;
        case QEvent::MouseButtonRelease:
        case QEvent::Hide:
            LetGo();
            break;
        default:
            break;
    }
    return false;
}

// A click with a trembling hand is none.
void DragHand::Follow(const QMouseEvent& event) {
    if (!event.buttons().testFlag(Qt::LeftButton)) {
        LetGo();
        return;
    }
    if (m_pressed &&
        (event.position() - *m_pressed).manhattanLength() >= QApplication::startDragDistance()) {
        m_shape.Set(PointerShape::LeftDrag, true);
    }
}

void DragHand::LetGo() {
    m_pressed.reset();
    m_shape.Set(PointerShape::LeftDrag, false);
}

}
