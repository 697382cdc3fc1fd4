#include "widget/text/EdgeScroll.h"

#include <QWidget>
#include <algorithm>
#include <utility>

namespace velko::vkit {

namespace {

constexpr double kEdge = 20.0; // Qt's units; nearer to the edge the pages move
constexpr int kStepMs = 25;
constexpr double kMostStep = 30.0;

// How far to move for a pointer there, in a window of that size.
double StepFor(double dbAt, double dbSize) {
    const double dbIn = std::min(dbAt, dbSize - dbAt);
    const double dbStep = std::min(kMostStep, std::max(0.0, (kEdge - dbIn) / 2.0));
    return dbAt < dbSize / 2.0 ? -dbStep : dbStep;
}

}

EdgeScroll::EdgeScroll(QWidget& window, Hands hands) : m_window(window), m_hands(std::move(hands)) {
    m_timer.setInterval(kStepMs);
    m_timer.callOnTimeout([this] { Step(); });
}

void EdgeScroll::Follow(QPointF pt) {
    m_pointer = pt;
    if (!m_timer.isActive()) {
        m_timer.start();
    }
}

void EdgeScroll::Step() {
    const double dbX = StepFor(m_pointer.x(), m_window.width());
    const double dbY = StepFor(m_pointer.y(), m_window.height());
    if (dbX != 0.0 || dbY != 0.0) {
        m_hands.fnScroll(dbX, dbY);
        m_hands.fnScrolled(m_pointer);
    }
}

}
