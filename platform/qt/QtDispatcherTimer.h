// A timer of the UI thread on Qt's timers.
//
// An interval is rounded up to whole milliseconds. A tick that throws is logged.
// Threads: UI thread only, `RunningCount` from any.
#pragma once

#include <QBasicTimer>
#include <QObject>
#include <atomic>
#include <chrono>
#include <memory>

#include "platform/ui/CoreDispatcher.h"

namespace Platform::Qt {

class QtDispatcherTimer final : public Windows::UI::Xaml::DispatcherTimer,
                                public std::enable_shared_from_this<QtDispatcherTimer>,
                                private QObject {
public:
    // `pRunning` counts the timers that run; it is shared by those of one environment.
    explicit QtDispatcherTimer(std::shared_ptr<std::atomic<int>> pRunning);
    ~QtDispatcherTimer() override;

    void Interval(std::chrono::nanoseconds interval) override;
    void Start() override;
    void Stop() override;
    bool IsEnabled() const override { return m_timer.isActive(); }

private:
    void timerEvent(QTimerEvent* pEvent) override;

    const std::shared_ptr<std::atomic<int>> m_pRunning;
    std::chrono::milliseconds m_interval{0};
    QBasicTimer m_timer;
};

}
