#include "platform/qt/QtDispatcherTimer.h"

#include <QTimerEvent>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/qt/QtDispatcher.h"

namespace Platform::Qt {

QtDispatcherTimer::QtDispatcherTimer(std::shared_ptr<std::atomic<int>> pRunning)
    : m_pRunning(std::move(pRunning)) {}

QtDispatcherTimer::~QtDispatcherTimer() {
    Stop();
}

void QtDispatcherTimer::Interval(std::chrono::nanoseconds interval) {
    if (interval < std::chrono::nanoseconds::zero()) {
        throw InvalidArgumentException("a negative timer interval");
    }
    m_interval = std::chrono::ceil<std::chrono::milliseconds>(interval);
    if (IsEnabled()) {
        Start();
    }
}

void QtDispatcherTimer::Start() {
    Stop();
    m_timer.start(static_cast<int>(m_interval.count()), ::Qt::PreciseTimer, this);
    m_pRunning->fetch_add(1);
}

void QtDispatcherTimer::Stop() {
    if (m_timer.isActive()) {
        m_timer.stop();
        m_pRunning->fetch_sub(1);
    }
}

void QtDispatcherTimer::timerEvent(QTimerEvent* pEvent) {
    if (pEvent->timerId() != m_timer.timerId()) {
        return;
    }
    // A handler may let go of the timer.
    const std::shared_ptr<QtDispatcherTimer> pKeep = shared_from_this();
    QtDispatcher::RunGuarded("a tick of a timer", [this] { Tick.raise(); });
}

}
