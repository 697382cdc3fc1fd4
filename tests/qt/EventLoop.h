// Runs the event loop in tests until something holds.
//
// Threads: the UI thread.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

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

}
