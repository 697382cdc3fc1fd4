// The host's input sink: it hears of every input event over the canvas, so that
// a host can build tools on top of the control.
//
// The sink gets the events beside the control's own handling and as they are:
// nothing marks them handled before. `OnManipulationStarted` runs twice for
// each gesture. `pSender` is the canvas's panel, for `OnSizeChanged` the control.
// Threads: UI thread only. An exception goes to whoever raised the event.
#pragma once

#include <memory>

#include "platform/ui/Element.h"
#include "platform/ui/Input.h"

namespace velko::vkit {

class IUIExtensionsEvents {
public:
    using Sender = std::shared_ptr<Windows::UI::Xaml::FrameworkElement>;
    using ManipulationStartedArgs = Windows::UI::Xaml::Input::ManipulationStartedRoutedEventArgs;
    using ManipulationDeltaArgs = Windows::UI::Xaml::Input::ManipulationDeltaRoutedEventArgs;
    using ManipulationCompletedArgs =
        Windows::UI::Xaml::Input::ManipulationCompletedRoutedEventArgs;
    using PointerArgs = Windows::UI::Xaml::Input::PointerRoutedEventArgs;
    using HoldingArgs = Windows::UI::Xaml::Input::HoldingRoutedEventArgs;
    using TappedArgs = Windows::UI::Xaml::Input::TappedRoutedEventArgs;

    virtual ~IUIExtensionsEvents() = default;

    virtual void OnManipulationStarted(const Sender& pSender, ManipulationStartedArgs& args) = 0;
    virtual void OnManipulationDelta(const Sender& pSender, ManipulationDeltaArgs& args) = 0;
    virtual void OnManipulationCompleted(const Sender& pSender,
                                         ManipulationCompletedArgs& args) = 0;
    virtual void OnPointerPressed(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerMoved(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerReleased(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerEntered(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerExited(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerCaptureLost(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerCanceled(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnPointerWheelChanged(const Sender& pSender, PointerArgs& args) = 0;
    virtual void OnHolding(const Sender& pSender, HoldingArgs& args) = 0;
    virtual void OnTapped(const Sender& pSender, TappedArgs& args) = 0;
    // The platform has no arguments for this one: ask the panel.
    virtual void OnCompositionScaleChanged(const Sender& pSender) = 0;
    virtual void OnSizeChanged(const Sender& pSender,
                               const Windows::UI::Xaml::SizeChangedEventArgs& args) = 0;
};

}
