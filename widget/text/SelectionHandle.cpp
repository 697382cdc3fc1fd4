#include "widget/text/SelectionHandle.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTouchEvent>
#include <utility>

namespace velko::vkit {

namespace {

constexpr int kReach = 44; // what a finger hits
constexpr double kRadius = 9.0;

}

SelectionHandle::SelectionHandle(QWidget* pWindow, const QString& strName, Hands hands)
    : QWidget(pWindow), m_hands(std::move(hands)) {
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAccessibleName(strName);
    resize(kReach, kReach);
}

void SelectionHandle::PutUnder(QPointF ptTip) {
    m_ptTip = ptTip;
    move((ptTip - QPointF(kReach / 2.0, 0.0)).toPoint());
    show();
    raise();
}

void SelectionHandle::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF middle(kReach / 2.0, kRadius + 4.0);
    painter.setPen(QPen(palette().color(QPalette::Base), 2.0));
    painter.setBrush(palette().color(QPalette::Active, QPalette::Highlight));
    painter.drawEllipse(middle, kRadius, kRadius);
    painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), 2.0));
    painter.drawLine(QPointF(middle.x(), 0.0), QPointF(middle.x(), 4.0));
}

bool SelectionHandle::event(QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            return OnTouch(*pEvent);
        case QEvent::MouseButtonPress:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return OnMouse(*pEvent);
        case QEvent::TouchCancel:
        case QEvent::UngrabMouse:
        case QEvent::WindowDeactivate:
            End();
            break;
        default:
            break;
    }
    return QWidget::event(pEvent);
}

// Of several fingers the first one has it.
bool SelectionHandle::OnTouch(QEvent& event) {
    const auto& touch = static_cast<const QTouchEvent&>(event);
    const QPointF pt = mapToParent(touch.points().first().position());
    if (event.type() == QEvent::TouchBegin) {
        m_bHeld = true;
        m_hands.fnTaken(pt);
    } else if (event.type() == QEvent::TouchEnd) {
        End();
    } else if (m_bHeld) {
        m_hands.fnMoved(pt);
    }
    event.accept();
    return true;
}

bool SelectionHandle::OnMouse(QEvent& event) {
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    const QPointF pt = mapToParent(mouse.position());
    if (event.type() == QEvent::MouseButtonPress && mouse.button() == Qt::LeftButton) {
        m_bHeld = true;
        m_hands.fnTaken(pt);
    } else if (!mouse.buttons().testFlag(Qt::LeftButton)) {
        End();
    } else if (m_bHeld) {
        m_hands.fnMoved(pt);
    }
    event.accept();
    return true;
}

void SelectionHandle::End() {
    if (std::exchange(m_bHeld, false)) {
        m_hands.fnLetGo();
    }
}

}
