// Runs the event loop in tests until something holds, and sends the mouse.
//
// Threads: the UI thread.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>

namespace velko::testing {

// Whether `fnCondition` came to hold within the time that a test may take. The
// loop waits for events; the timer only sees to it that the deadline is seen.
template <class Condition>
bool RunUntil(Condition fnCondition) {
    constexpr int kLongestMs = 30'000;
    constexpr int kWakeMs = 50;
    const QDeadlineTimer deadline(kLongestMs);
    QTimer wake;
    wake.start(kWakeMs);
    while (!fnCondition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

// The left button, or a move with it up or down, at a time in milliseconds.
inline void SendMouse(QWidget& widget, QEvent::Type eType, QPointF pt, bool bDown,
                      quint64 nTime = 0) {
    QMouseEvent event(eType, pt, widget.mapToGlobal(pt),
                      eType == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      bDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    event.setTimestamp(nTime);
    QCoreApplication::sendEvent(&widget, &event);
}

}
