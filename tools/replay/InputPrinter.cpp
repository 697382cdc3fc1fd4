#include "tools/replay/InputPrinter.h"

namespace velko::replay {

void InputPrinter::Print(const char* szName) {
    m_output.Print(JsonObject().Add("event", "Input").Add("name", szName));
}

void InputPrinter::OnManipulationStarted(const Sender&, ManipulationStartedArgs&) {
    Print("OnManipulationStarted");
}

void InputPrinter::OnManipulationDelta(const Sender&, ManipulationDeltaArgs&) {
    Print("OnManipulationDelta");
}

void InputPrinter::OnManipulationCompleted(const Sender&, ManipulationCompletedArgs&) {
    Print("OnManipulationCompleted");
}

void InputPrinter::OnPointerPressed(const Sender&, PointerArgs&) {
    Print("OnPointerPressed");
}

void InputPrinter::OnPointerMoved(const Sender&, PointerArgs&) {
    Print("OnPointerMoved");
}

void InputPrinter::OnPointerReleased(const Sender&, PointerArgs&) {
    Print("OnPointerReleased");
}

void InputPrinter::OnPointerEntered(const Sender&, PointerArgs&) {
    Print("OnPointerEntered");
}

void InputPrinter::OnPointerExited(const Sender&, PointerArgs&) {
    Print("OnPointerExited");
}

void InputPrinter::OnPointerCaptureLost(const Sender&, PointerArgs&) {
    Print("OnPointerCaptureLost");
}

void InputPrinter::OnPointerCanceled(const Sender&, PointerArgs&) {
    Print("OnPointerCanceled");
}

void InputPrinter::OnPointerWheelChanged(const Sender&, PointerArgs&) {
    Print("OnPointerWheelChanged");
}

void InputPrinter::OnHolding(const Sender&, HoldingArgs&) {
    Print("OnHolding");
}

void InputPrinter::OnTapped(const Sender&, TappedArgs&) {
    Print("OnTapped");
}

void InputPrinter::OnCompositionScaleChanged(const Sender&) {
    Print("OnCompositionScaleChanged");
}

void InputPrinter::OnSizeChanged(const Sender&, const Windows::UI::Xaml::SizeChangedEventArgs&) {
    Print("OnSizeChanged");
}

}
