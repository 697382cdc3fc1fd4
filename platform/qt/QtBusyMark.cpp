#include "platform/qt/QtBusyMark.h"

#include <QPainter>

namespace Platform::Qt {

namespace {

constexpr int kEdge = 28;
constexpr int kDelayMs = 300;
constexpr int kStepMs = 60;
constexpr int kSteps = 18;
constexpr int kSixteenthsOfTurn = 360 * 16;

}

QtBusyMark::QtBusyMark(QWidget* pParent) : QWidget(pParent) {
    setAttribute(::Qt::WA_TransparentForMouseEvents);
    resize(kEdge, kEdge);
    hide();
}

void QtBusyMark::SetBusy(bool bBusy) {
    if (bBusy == m_timer.isActive()) {
        return;
    }
    if (bBusy) {
        m_timer.start(kDelayMs, this);
    } else {
        m_timer.stop();
        hide();
    }
}

void QtBusyMark::timerEvent(QTimerEvent* /*pEvent*/) {
    m_nStep = (m_nStep + 1) % kSteps;
    if (isHidden()) {
        m_timer.start(kStepMs, this);
        show();
        raise();
    }
    update();
}

void QtBusyMark::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(60, 60, 60, 160), 3.0, ::Qt::SolidLine, ::Qt::RoundCap));
    painter.drawArc(rect().adjusted(5, 5, -5, -5), -kSixteenthsOfTurn * m_nStep / kSteps,
                    kSixteenthsOfTurn * 3 / 4);
}

}
