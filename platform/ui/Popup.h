// An element that shows its child above everything else in the window, from the top left
// of its parent on. It takes no room there.
//
// The child is in the tree, and loaded, while the popup is open. A popup counts as
// loaded only then: its `Loaded` comes once the child is laid out.
// Units, threads: as `Element.h`.
#pragma once

#include <memory>

#include "platform/ui/Element.h"

namespace Windows::UI::Xaml::Controls::Primitives {

class Popup : public FrameworkElement {
public:
    Popup() : FrameworkElement(Xaml::HorizontalAlignment::Left, Xaml::VerticalAlignment::Top) {}
    const std::shared_ptr<FrameworkElement>& Child() const { return m_pChild; }
    void Child(std::shared_ptr<FrameworkElement> pChild);
    bool IsOpen() const { return m_bOpen; }
    void IsOpen(bool bOpen);
    bool TakesRoom() const override { return false; }

    Foundation::Event<> Closed;

protected:
    bool IsToBeLoaded() const override { return m_bOpen; }

private:
    void ShowChild();
    void HideChild();

    std::shared_ptr<FrameworkElement> m_pChild;
    bool m_bOpen = false;
};

}
