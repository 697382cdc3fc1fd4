// From pointers to manipulation events: a first finger or the pressed mouse
// pans, two fingers pinch.
//
// A gesture begins when a pointer has left the reach of a tap and takes up all
// of its movement; each change of the number of pointers ends one gesture and
// begins another, so that the position never jumps inside a gesture. Every
// gesture that started also completes. A press that never moved is a tap.
// After a pinch nothing pans until all fingers are up.
//
// Units: logical, relative to the panel. Threads: UI thread only.
// Errors: what a subscriber throws passes through; the tracker's own state is
// changed before it raises, so that the next call finds it in order.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "platform/ui/SwapChainPanel.h"

namespace Platform::Qt {

class ManipulationTracker {
public:
    using Point = Windows::Foundation::Point;
    using Device = Windows::UI::Xaml::Input::PointerDeviceType;

    // `fReach`: how far a pointer may move and still tap.
    ManipulationTracker(std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> pPanel,
                        float fReach);

    // The pointers that are down now, in the order in which they came; an
    // empty list ends the gesture or makes the tap.
    void Update(Device eDevice, const std::vector<Point>& pointers);

    // The pointers went without being lifted: the gesture completes, no tap.
    void Cancel();

    // A pan by steps, as a touchpad gives it: it goes on until `Cancel`.
    void PanBy(Device eDevice, Point ptAt, Point ptStep, bool bInertial);

    bool IsManipulating() const { return m_bStarted; }

private:
    using Completed = Windows::UI::Xaml::Input::ManipulationCompletedRoutedEventArgs;

    struct Shape { // of the pointers that are down
        Point ptCentre;
        float fSpread = 0.0F; // mean distance from the centre; 0 for one pointer
    };
    static Shape Measure(const std::vector<Point>& pointers);

    void Press(Device eDevice, const std::vector<Point>& pointers);
    void MoveTo(const Shape& shape);
    void Release();
    void Start(Point ptAt);
    void RaiseDelta(const Windows::UI::Xaml::Input::ManipulationDelta& delta, bool bInertial);
    // Ends the gesture in this object; what is then to be told.
    std::optional<Completed> TakeEnding();
    void Complete(std::optional<Completed> ending);

    const std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> m_pPanel;
    const float m_fReach;
    Device m_eDevice = Device::Mouse;
    std::size_t m_nPointers = 0;
    bool m_bStarted = false;
    bool m_bMayTap = false;
    bool m_bPinched = false; // by the pointers that are down
    Shape m_pressed;
    Shape m_last;
    Windows::UI::Xaml::Input::ManipulationDelta m_cumulative;
};

}
