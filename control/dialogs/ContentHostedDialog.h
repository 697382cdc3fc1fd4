// Shows its content above a page: it moves itself into a popup when it opens, and
// back to its place when it closes.
//
// It may be declared in a panel, be the content of a content control, or stand
// nowhere; then it opens over the first panel of `Window::Current` and is collapsed
// when it is closed. It may open again after closing. While it is open it takes
// every request to go back, and closes at it.
// Units: logical. Threads: UI thread only. Lifetime: the popup that stands in the tree holds it
// while it is open. Errors: raises what the platform fails with, also where there is no
// panel to open over.
#pragma once

#include <memory>

#include "platform/ui/Popup.h"
#include "platform/ui/Window.h"

namespace Windows::UI::Xaml {
class DispatcherTimer;
}

namespace velko::vkit {

class ContentHostedDialog final : public Windows::UI::Xaml::Controls::ContentControl {
public:
    static std::shared_ptr<ContentHostedDialog> Create();
    ~ContentHostedDialog() override;

    void Open();
    void Close();
    bool IsOpen() const { return m_bIsOpen; }

    bool IsLightDismissEnabled() const { return m_bIsLightDismissEnabled; }
    void IsLightDismissEnabled(bool bEnabled) { m_bIsLightDismissEnabled = bEnabled; }
    // After 4 seconds. Both this and the next are read when it comes up.
    bool AutoClose() const { return m_bAutoClose; }
    void AutoClose(bool bClose) { m_bAutoClose = bClose; }
    bool IsContentFullScreen() const { return m_bIsContentFullScreen; }
    void IsContentFullScreen(bool bFullScreen) { m_bIsContentFullScreen = bFullScreen; }

private:
    using Element = Windows::UI::Xaml::FrameworkElement;
    using Panel = Windows::UI::Xaml::Controls::Panel;
    using Popup = Windows::UI::Xaml::Controls::Primitives::Popup;
    using Token = Windows::Foundation::EventRegistrationToken;
    using Window = Windows::UI::Xaml::Window;

    ContentHostedDialog();
    void OnApplyTemplate() override;
    std::shared_ptr<ContentHostedDialog> Self();
    template <class F>
    auto WhileAlive(F fnHandler);

    void NoteParent();
    void LeaveParent();
    void PlacePopup(const std::shared_ptr<Popup>& pPopup);
    void WatchHost(const std::shared_ptr<Element>& pHost);
    void UnwatchHost();
    void ReturnToParent(const std::shared_ptr<Popup>& pPopup);
    void SubscribeToBack();
    void UnsubscribeFromBack();
    void StartAutoClose();

    void OnPopupLoaded();
    void OnPopupClosed();
    void OnHostSizeChanged();
    void OnLayoutRootTapped(Windows::UI::Xaml::Input::TappedRoutedEventArgs& args);
    void OnBackRequested(Windows::UI::Xaml::BackRequest& args);
    void OnAutoCloseTick();

    bool m_bIsLightDismissEnabled = false;
    bool m_bAutoClose = false;
    bool m_bIsContentFullScreen = false;
    bool m_bIsOpen = false;
    std::weak_ptr<Popup> m_pPopup; // the tree holds it
    std::weak_ptr<Panel> m_pHostPanel;
    std::size_t m_nHostIndex = 0; // its place there
    std::weak_ptr<Windows::UI::Xaml::Controls::ContentControl> m_pHostContent;
    std::weak_ptr<Panel> m_pRootPanel;
    Windows::UI::Xaml::Visibility m_eHostVisibility = Windows::UI::Xaml::Visibility::Visible;
    std::weak_ptr<Element> m_wkHost; // whichever of these it opened over
    Token m_tkHostSizeChanged;
    Token m_tkPopupClosed;
    Token m_tkPopupLoaded;
    std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> m_pAutoCloseTimer;
    std::weak_ptr<Window> m_wkWindow; // of the back subscriptions
    Token m_tkBackPressed;
    Token m_tkBackRequested;
    std::weak_ptr<Panel> m_pLayoutRoot;
    std::weak_ptr<Windows::UI::Xaml::Controls::Control> m_pNonVisibilityBtn;
};

}
