#include "widget/WheelReader.h"

#include <QWheelEvent>
#include <QWidget>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace velko::vkit {

namespace {

constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;
constexpr double kNotchScroll = 120.0; // as the panel's own wheel
constexpr double kNotchZoom = 1.2;
constexpr int kRestMs = 500;

double Notches(int nAngle) {
    return static_cast<double>(nAngle) / kNotch;
}

}

WheelReader::WheelReader(QWidget& window, Hands hands) : m_hands(std::move(hands)) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRestMs);
    connect(&m_rest, &QTimer::timeout, this, m_hands.fnSettle);
    window.installEventFilter(this);
}

bool WheelReader::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() != QEvent::Wheel) {
        return false;
    }
    const auto& event = *static_cast<QWheelEvent*>(pEvent);
    if (IsForPanel(event) || !Take(event)) {
        return false;
    }
    pEvent->accept();
    return true;
}

// What the panel has begun to follow is followed by it to its end.
bool WheelReader::IsForPanel(const QWheelEvent& event) {
    const bool bZooms = event.modifiers().testFlag(Qt::ControlModifier);
    if (!m_hands.fnTakes()) {
        m_bPanelScrolls = false;
        return true;
    }
    if (event.phase() == Qt::NoScrollPhase) {
        return false;
    }
    const bool bFollowed = m_bPanelScrolls;
    m_bPanelScrolls = event.phase() != Qt::ScrollEnd && (bFollowed || !bZooms);
    return bFollowed || !bZooms;
}

bool WheelReader::Take(const QWheelEvent& event) {
    const QPoint angle = event.angleDelta();
    if (event.modifiers().testFlag(Qt::ControlModifier)) {
        Zoom(event);
    } else if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        m_hands.fnScroll(-Notches(angle.x() + angle.y()) * kNotchScroll, 0.0);
    } else if (std::abs(angle.x()) > std::abs(angle.y())) {
        m_hands.fnScroll(-Notches(angle.x()) * kNotchScroll, 0.0);
    } else if (m_hands.fnTurnsPages()) {
        ScrollOrTurn(angle.y());
    } else {
        return false;
    }
    return true;
}

void WheelReader::Zoom(const QWheelEvent& event) {
    if (event.angleDelta().y() != 0) {
        m_rest.start();
        m_hands.fnZoom(event.position(), std::pow(kNotchZoom, Notches(event.angleDelta().y())));
    }
}

void WheelReader::ScrollOrTurn(int nAngle) {
    const int nDirection = nAngle < 0 ? 1 : -1;
    if (nAngle == 0) {
        return;
    }
    if (!m_hands.fnIsAtEdge(nDirection)) {
        m_nAgainstEdge = 0;
        m_hands.fnScroll(0.0, -Notches(nAngle) * kNotchScroll);
        return;
    }
    const bool bSameWay = (m_nAgainstEdge < 0) == (nAngle < 0);
    m_nAgainstEdge = bSameWay ? m_nAgainstEdge + nAngle : nAngle;
    if (std::abs(m_nAgainstEdge) >= kNotch) {
        m_nAgainstEdge = 0;
        m_hands.fnTurn(nDirection);
    }
}

}
