#include "app/viewer/side/SideHandle.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "app/viewer/FocusRing.h"

namespace velko::viewer {

namespace {

constexpr int kStep = 16; // of an arrow key

}

SideHandle::SideHandle(QWidget* pPanel) : QWidget(pPanel) {
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(QStringLiteral("Width of the side panel"));
    setToolTip(QStringLiteral("Drag, or use the arrow keys, for another width"));
}

void SideHandle::mousePressEvent(QMouseEvent* pEvent) {
    m_nGrip = parentWidget()->width() - mapToParent(pEvent->pos()).x();
}

void SideHandle::mouseMoveEvent(QMouseEvent* pEvent) {
    if (pEvent->buttons().testFlag(Qt::LeftButton)) {
        emit WidthWanted(mapToParent(pEvent->pos()).x() + m_nGrip);
    }
}

void SideHandle::keyPressEvent(QKeyEvent* pEvent) {
    const int nDirection = pEvent->key() == Qt::Key_Right  ? 1
                           : pEvent->key() == Qt::Key_Left ? -1
                                                           : 0;
    if (nDirection != 0) {
        emit WidthWanted(parentWidget()->width() + nDirection * kStep);
    } else {
        QWidget::keyPressEvent(pEvent);
    }
}

void SideHandle::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(underMouse() ? QPalette::Mid : QPalette::Window));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(width() - 1, 0, width() - 1, height());
    DrawFocusRing(painter, *this);
}

void SideHandle::enterEvent(QEnterEvent* /*pEvent*/) {
    update();
}

void SideHandle::leaveEvent(QEvent* /*pEvent*/) {
    update();
}

}
