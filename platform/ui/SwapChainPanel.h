// The element that shows a swap chain, and that input over it is reported on.
// Units: sizes and positions are logical; device = logical times the composition scale.
// Lifetime: the panel shares the chain with whoever draws into it and with the window that shows
// it. A handler of any event may destroy that window. Threads: the UI thread only.
#pragma once

#include <memory>

#include "platform/concurrency/Scheduler.h"
#include "platform/graphics/Graphics.h"
#include "platform/ui/Element.h"
#include "platform/ui/Input.h"

namespace Windows::UI::Xaml::Controls {

class SwapChainPanel : public FrameworkElement {
public:
    float CompositionScaleX() const { return m_fScaleX; }
    float CompositionScaleY() const { return m_fScaleY; }

    // Set by the toolkit's window. Raises `CompositionScaleChanged` when one differs.
    void CompositionScale(float fScaleX, float fScaleY);

    // Takes the composition scale and the size in one step: both are in force
    // before any handler runs; the panel's own subscribers of the scale come
    // first, then those of the size.
    void ArrangeAtScale(Foundation::Size size, float fScaleX, float fScaleY);

    // As above for a whole tree that this panel stands in: all sizes and the
    // scale are in force before any handler runs, and the panel hears first.
    void ArrangeAtScale(FrameworkElement& root, Foundation::Size size, float fScaleX,
                        float fScaleY);

    // What the panel shows from now on; may be empty.
    void SetSwapChain(std::shared_ptr<Windows::Graphics::IDXGISwapChain2> pSwapChain);
    const std::shared_ptr<Windows::Graphics::IDXGISwapChain2>& SwapChain() const {
        return m_pSwapChain;
    }

    Foundation::Event<> CompositionScaleChanged;
    Foundation::Event<> SwapChainChanged; // for the toolkit's window

    // Input over the panel, raised by the toolkit's window or a test.
    Input::ManipulationMode ManipulationMode = Input::ManipulationMode::All;
    Foundation::Event<Input::ManipulationStartedRoutedEventArgs&> ManipulationStarted;
    Foundation::Event<Input::ManipulationDeltaRoutedEventArgs&> ManipulationDelta;
    Foundation::Event<Input::ManipulationCompletedRoutedEventArgs&> ManipulationCompleted;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerPressed;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerMoved;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerReleased;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerEntered;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerExited;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerCaptureLost;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerCanceled;
    Foundation::Event<Input::PointerRoutedEventArgs&> PointerWheelChanged;
    Foundation::Event<Input::HoldingRoutedEventArgs&> Holding;
    Foundation::Event<Input::TappedRoutedEventArgs&> Tapped;

private:
    float m_fScaleX = 1.0F;
    float m_fScaleY = 1.0F;
    std::shared_ptr<Windows::Graphics::IDXGISwapChain2> m_pSwapChain;
};

}
