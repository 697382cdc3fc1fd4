#include "tools/replay/RawPointers.h"

#include <chrono>

#include <QtGui/qtestsupport_gui.h>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QTouchEvent>

#include "platform/qt/QtElementWindow.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

using namespace std::chrono_literals;
using Point = RawPointers::Point;

constexpr std::chrono::milliseconds kStep = 8ms;
constexpr std::chrono::milliseconds kRest = 300ms;

Point Between(Point ptFrom, Point ptTo, float fShare) {
    return {ptFrom.X + (ptTo.X - ptFrom.X) * fShare, ptFrom.Y + (ptTo.Y - ptFrom.Y) * fShare};
}

float ShareOf(std::int32_t nStep, std::int32_t nSteps) {
    return static_cast<float>(nStep) / static_cast<float>(nSteps);
}

QPointingDevice& TouchScreen() {
    static QPointingDevice* const s_pDevice = QTest::createTouchDevice(); // Qt keeps it
    return *s_pDevice;
}

// Gives the touches that reach a widget the time of the script; Qt stamps them
// with its own.
class TouchClock final : public QObject {
public:
    TouchClock(QObject& target, std::chrono::milliseconds time) : m_time(time) {
        target.installEventFilter(this);
    }
    bool eventFilter(QObject* /*pTarget*/, QEvent* pEvent) override {
        if (auto* const pTouch = dynamic_cast<QTouchEvent*>(pEvent)) {
            // Of the event alone: Qt goes on comparing those of its points.
            pTouch->QInputEvent::setTimestamp(static_cast<quint64>(m_time.count()));
        }
        return false;
    }

private:
    const std::chrono::milliseconds m_time;
};

}

// What a handler fails with waits until the pointers are up again.
void RawPointers::Deliver(const std::function<void()>& fnSend) {
    m_failure.Run([&] { m_session.ThroughWindow(fnSend); });
    m_session.PassInputTime(kStep);
}

void RawPointers::SendMouse(QEvent::Type eType, Point pt) {
    const QPointF at = m_session.InWindow(pt);
    const bool bDown = eType != QEvent::MouseButtonRelease;
    QMouseEvent event(eType, at, m_session.Window().mapToGlobal(at),
                      eType == QEvent::MouseMove ? ::Qt::NoButton : ::Qt::LeftButton,
                      bDown ? ::Qt::LeftButton : ::Qt::NoButton, ::Qt::NoModifier);
    event.setTimestamp(static_cast<quint64>(m_session.InputTime().count()));
    Deliver([&] { QCoreApplication::sendEvent(&m_session.Window(), &event); });
}

// The way of real fingers: through the platform's window, so that Qt gives
// each point its place in the widget.
void RawPointers::SendTouch(QEventPoint::State eState, const std::vector<Point>& fingers) {
    QList<QEventPoint> points;
    for (std::size_t n = 0; n < fingers.size(); ++n) {
        const QPointF at = m_session.InWindow(fingers[n]);
        points.emplace_back(static_cast<int>(n), eState, at, m_session.Window().mapToGlobal(at));
    }
    const TouchClock clock(m_session.Window(), m_session.InputTime());
    Deliver(
        [&] { qt_handleTouchEventv2(m_session.Window().windowHandle(), &TouchScreen(), points); });
}

void RawPointers::PauseBefore(Lift eLift) {
    if (eLift == Lift::AtRest) {
        m_session.PassInputTime(kRest);
    }
}

void RawPointers::DragMouse(Point ptFrom, Point ptTo, std::int32_t nSteps, Lift eLift) {
    SendMouse(QEvent::MouseButtonPress, ptFrom);
    for (std::int32_t n = 1; n <= nSteps; ++n) {
        SendMouse(QEvent::MouseMove, Between(ptFrom, ptTo, ShareOf(n, nSteps)));
    }
    PauseBefore(eLift);
    SendMouse(QEvent::MouseButtonRelease, ptTo);
    m_failure.Rethrow();
}

void RawPointers::MoveFingers(const std::vector<Point>& from, const std::vector<Point>& to,
                              std::int32_t nSteps, Lift eLift) {
    SendTouch(QEventPoint::Pressed, from);
    for (std::int32_t n = 1; n <= nSteps; ++n) {
        std::vector<Point> now;
        for (std::size_t nFinger = 0; nFinger < from.size(); ++nFinger) {
            now.push_back(Between(from[nFinger], to[nFinger], ShareOf(n, nSteps)));
        }
        SendTouch(QEventPoint::Updated, now);
    }
    PauseBefore(eLift);
    SendTouch(QEventPoint::Released, to);
    m_failure.Rethrow();
}

}
