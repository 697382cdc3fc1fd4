// Turns the raw input over a panel into the panel's events: pointers, taps,
// holding, manipulations, the wheel.
//
// Every `ManipulationStarted` is followed by its `ManipulationCompleted`: also
// when pointers are lost, the panel is unloaded or comes to leave gestures to
// the system (then with the next input), and when handlers throw, call back in
// or close this object. A new contact, a wheel or a touchpad stops an inertia.
// While something touches, touchpad gestures are dropped.
//
// Lifetime: shared, and closed by the window that feeds it; it may be closed and
// let go inside any event. Threads: UI thread only. Units: logical.
// Errors: none leaves the functions; what a handler throws goes to `OnFailure`.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "platform/gestures/ContactGesture.h"
#include "platform/gestures/Inertia.h"
#include "platform/gestures/Manipulation.h"
#include "platform/gestures/PanelEvents.h"
#include "platform/gestures/PinchGesture.h"
#include "platform/gestures/RawInput.h"
#include "platform/gestures/ScrollGesture.h"

namespace Platform::Gestures {

class PanelInput : public std::enable_shared_from_this<PanelInput> {
public:
    // What the display and the user's settings make of a distance and a frame.
    struct Settings {
        float fReach = 10.0F; // how far a press may stray and still tap, logical
        float fUnit = 1.0F;   // logical units of 1/96 inch
        std::chrono::nanoseconds frame = std::chrono::milliseconds(16);
    };

    static std::shared_ptr<PanelInput> Create(std::shared_ptr<IEnvironment> pEnvironment,
                                              std::shared_ptr<PanelEvents::Panel> pPanel);
    ~PanelInput();
    PanelInput(const PanelInput&) = delete;
    PanelInput& operator=(const PanelInput&) = delete;

    void Configure(const Settings& settings);

    // Records whose place is no number are passed over.
    void Apply(const PointerFrame& frame);
    void Apply(const ScrollRecord& record);
    void Apply(const PinchRecord& record);

    // The pointers that touch went without being lifted: to another window, or
    // taken by the system. An inertia runs on.
    enum class Loss { Capture, Canceled };
    void LosePointers(Loss eLoss);

    void StopInertia();
    bool IsInertiaRunning() const { return m_inertia.IsRunning(); }
    bool IsAnyDown() const { return m_contacts.IsAnyDown(); }

    // Everything that is under way completes.
    void Stop();

    // As `Stop`, and nothing is raised any more.
    void Close();

    void OnFailure(FailureSink::Listener fnReport);

private:
    using Timer = std::shared_ptr<Windows::UI::Xaml::DispatcherTimer>;

    PanelInput(std::shared_ptr<IEnvironment> pEnvironment,
               std::shared_ptr<PanelEvents::Panel> pPanel);
    void Connect();
    void OnTick(const Timer& pTimer, void (PanelInput::*pfnTick)());
    void OnFrame();
    void OnHeld();
    void OnSilence();
    void RaisePointer(const PointerRecord& record);
    void RaiseLoss(const PointerRecord& record, Loss eLoss);
    void LoseThoseThatLeft(const PointerFrame& frame);

    PanelEvents m_events;
    const std::shared_ptr<PanelEvents::Panel> m_pPanel;
    const Timer m_pFrameTimer;
    const Timer m_pHoldTimer;
    const Timer m_pSilenceTimer;
    Manipulation m_manipulation;
    Inertia m_inertia;
    ContactGesture m_contacts;
    ScrollGesture m_scroll;
    PinchGesture m_pinch;
    std::vector<std::function<void()>> m_unsubscribe;
};

}
