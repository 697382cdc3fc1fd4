// A host's input sink that prints each call.
#pragma once

#include "control/IUIExtensionsEvents.h"
#include "tools/replay/Output.h"

namespace velko::replay {

class InputPrinter final : public velko::vkit::IUIExtensionsEvents {
public:
    explicit InputPrinter(Output& output) : m_output(output) {} // borrowed; must outlive

    void OnManipulationStarted(const Sender&, ManipulationStartedArgs&) override;
    void OnManipulationDelta(const Sender&, ManipulationDeltaArgs&) override;
    void OnManipulationCompleted(const Sender&, ManipulationCompletedArgs&) override;
    void OnPointerPressed(const Sender&, PointerArgs&) override;
    void OnPointerMoved(const Sender&, PointerArgs&) override;
    void OnPointerReleased(const Sender&, PointerArgs&) override;
    void OnPointerEntered(const Sender&, PointerArgs&) override;
    void OnPointerExited(const Sender&, PointerArgs&) override;
    void OnPointerCaptureLost(const Sender&, PointerArgs&) override;
    void OnPointerCanceled(const Sender&, PointerArgs&) override;
    void OnPointerWheelChanged(const Sender&, PointerArgs&) override;
    void OnHolding(const Sender&, HoldingArgs&) override;
    void OnTapped(const Sender&, TappedArgs&) override;
    void OnCompositionScaleChanged(const Sender&) override;
    void OnSizeChanged(const Sender&, const Windows::UI::Xaml::SizeChangedEventArgs&) override;

private:
    void Print(const char* szName);

    Output& m_output;
};

}
