// Carries an open manipulation on after the lift, in steps of a frame.
//
// No step is as long as the panel, however late a tick comes. The manipulation
// ends with it.
//
// Units: logical. Threads: UI thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/gestures/Fling.h"
#include "platform/gestures/Manipulation.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace Platform::Gestures {

class Inertia {
public:
    // `pEnvironment` gives the time; `pTimer` ticks once a frame, and its owner
    // passes each tick on to `OnTick`.
    Inertia(PanelEvents& events, Manipulation& manipulation,
            std::shared_ptr<IEnvironment> pEnvironment,
            std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pTimer);

    // Takes over the manipulation that is open.
    void Start(const Fling& fling);
    // Ends what runs, at once. Whether something did.
    bool Stop();
    bool IsRunning() const { return m_fling.has_value(); }
    void OnTick();

private:
    bool Advance(); // whether it is to go on
    double LongestStep() const;

    PanelEvents& m_events;
    Manipulation& m_manipulation;
    const std::shared_ptr<IEnvironment> m_pEnvironment;
    const std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> m_pTimer;
    std::optional<Fling> m_fling;
    std::uint64_t m_nStarted = 0;
    Point m_ptFrom;
    InputTime m_lastTick{0};
    InputTime m_elapsed{0};
    double m_dbTravelled = 0.0;
};

}
