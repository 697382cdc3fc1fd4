#include "control/dialogs/ContentHostedDialog.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

#include "control/dialogs/BackRequests.h"
#include "control/dialogs/DialogMarkup.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "platform/ui/Input.h"

namespace velko::vkit {

namespace Xaml = Windows::UI::Xaml;

namespace {

constexpr std::chrono::seconds kAutoCloseAfter{4};

std::shared_ptr<Xaml::Controls::Panel> FindPanel(
    const std::shared_ptr<Xaml::FrameworkElement>& pElement) {
    if (auto pPanel = std::dynamic_pointer_cast<Xaml::Controls::Panel>(pElement)) {
        return pPanel;
    }
    for (const auto& pChild : pElement->Children()) {
        if (auto pPanel = FindPanel(pChild)) {
            return pPanel;
        }
    }
    return nullptr;
}

std::shared_ptr<Xaml::Controls::Panel> PanelOfWindow() {
    const auto pWindow = Xaml::Window::Current();
    auto pPanel = pWindow ? FindPanel(pWindow->Content()) : nullptr;
    if (!pPanel) {
        throw Platform::InvalidCastException("the window has no panel that a dialog can open over");
    }
    return pPanel;
}

}

ContentHostedDialog::ContentHostedDialog() {
    DefaultStyleKey = kContentHostedDialogStyle;
}

ContentHostedDialog::~ContentHostedDialog() = default;

std::shared_ptr<ContentHostedDialog> ContentHostedDialog::Create() {
    RegisterDialogMarkup();
    return std::shared_ptr<ContentHostedDialog>(new ContentHostedDialog);
}

std::shared_ptr<ContentHostedDialog> ContentHostedDialog::Self() {
    return std::static_pointer_cast<ContentHostedDialog>(shared_from_this());
}

// A handler for events of others, which does nothing once the dialog is gone.
template <class F>
auto ContentHostedDialog::WhileAlive(F fnHandler) {
    return [wkSelf = std::weak_ptr<ContentHostedDialog>(Self()), fnHandler](auto&&... args) {
        if (const auto pSelf = wkSelf.lock()) {
            fnHandler(*pSelf, args...);
        }
    };
}

void ContentHostedDialog::OnApplyTemplate() {
    const auto pLayoutRoot =
        std::dynamic_pointer_cast<Panel>(GetTemplateChild(kDialogLayoutRootPart));
    if (!pLayoutRoot) {
        throw Platform::InvalidCastException("the style has no panel as its LayoutRoot");
    }
    m_pLayoutRoot = pLayoutRoot;
    m_pNonVisibilityBtn = std::dynamic_pointer_cast<Xaml::Controls::Control>(
        GetTemplateChild(kNonVisibilityButtonPart));
    pLayoutRoot->Tapped.add(
        WhileAlive([](ContentHostedDialog& self, auto& args) { self.OnLayoutRootTapped(args); }));
}

// --- opening ---------------------------------------------------------------

void ContentHostedDialog::Open() {
    const auto pSelf = Self();
    auto pPopup = m_pPopup.lock();
    if (!m_bIsOpen) {
        ApplyTemplate(); // before the content is loaded, which it would move
        NoteParent();
        const auto pRoot = m_wkHost.expired() ? PanelOfWindow() : nullptr;
        m_bIsOpen = true;
        LeaveParent();
        Visibility(Xaml::Visibility::Visible);
        if (!pPopup) {
            m_pPopup = pPopup = std::make_shared<Popup>();
        }
        pPopup->Child(pSelf);
        m_pRootPanel = pRoot;
        PlacePopup(pPopup);
    }
    pPopup->Closed.remove(m_tkPopupClosed);
    pPopup->Loaded.remove(m_tkPopupLoaded);
    m_tkPopupClosed =
        pPopup->Closed.add(WhileAlive(std::mem_fn(&ContentHostedDialog::OnPopupClosed)));
    m_tkPopupLoaded =
        pPopup->Loaded.add(WhileAlive(std::mem_fn(&ContentHostedDialog::OnPopupLoaded)));
    pPopup->IsOpen(true);
}

void ContentHostedDialog::NoteParent() {
    m_eHostVisibility = Visibility();
    const auto pContent = Xaml::Controls::ContentOwnerOf(*this);
    const auto pPanel = pContent ? nullptr : std::dynamic_pointer_cast<Panel>(Parent());
    m_pHostContent = pContent;
    m_pHostPanel = pPanel;
    m_wkHost = pContent ? std::static_pointer_cast<Element>(pContent) : pPanel;
}

void ContentHostedDialog::LeaveParent() {
    if (const auto pPanel = m_pHostPanel.lock()) {
        const auto& children = pPanel->Children();
        const auto it = std::find(children.begin(), children.end(), shared_from_this());
        m_nHostIndex = static_cast<std::size_t>(it - children.begin());
        pPanel->RemoveChild(shared_from_this());
    } else if (const auto pContent = m_pHostContent.lock()) {
        pContent->Content(nullptr);
    }
}

void ContentHostedDialog::PlacePopup(const std::shared_ptr<Popup>& pPopup) {
    if (const auto pContent = m_pHostContent.lock()) {
        pContent->Content(pPopup);
        WatchHost(pContent);
        return;
    }
    const auto pHostPanel = m_pHostPanel.lock();
    const auto pPanel = pHostPanel ? pHostPanel : m_pRootPanel.lock();
    pPanel->AppendChild(pPopup);
    WatchHost(pPanel);
}

void ContentHostedDialog::WatchHost(const std::shared_ptr<Element>& pHost) {
    m_wkHost = pHost;
    m_tkHostSizeChanged = pHost->SizeChanged.add(
        WhileAlive([](ContentHostedDialog& self, const auto&) { self.OnHostSizeChanged(); }));
}

void ContentHostedDialog::UnwatchHost() {
    if (const auto pHost = m_wkHost.lock()) {
        pHost->SizeChanged.remove(m_tkHostSizeChanged);
    }
    m_wkHost.reset();
}

// --- open ------------------------------------------------------------------

void ContentHostedDialog::OnPopupLoaded() {
    ApplyTemplate();
    StartAutoClose();
    OnHostSizeChanged();
    SubscribeToBack();
}

void ContentHostedDialog::StartAutoClose() {
    if (!m_bAutoClose || m_pAutoCloseTimer) {
        return;
    }
    m_pAutoCloseTimer = Platform::Environment()->CreateTimer();
    m_pAutoCloseTimer->Interval(kAutoCloseAfter);
    m_pAutoCloseTimer->Tick.add(WhileAlive(std::mem_fn(&ContentHostedDialog::OnAutoCloseTick)));
    m_pAutoCloseTimer->Start();
}

void ContentHostedDialog::OnAutoCloseTick() {
    m_pAutoCloseTimer->Stop();
    Close();
}

void ContentHostedDialog::OnHostSizeChanged() {
    const auto pHost = m_wkHost.lock();
    const auto pLayoutRoot = m_pLayoutRoot.lock();
    if (!m_bIsOpen || !pHost || !pLayoutRoot) {
        return;
    }
    pLayoutRoot->Width(pHost->ActualWidth());
    pLayoutRoot->Height(pHost->ActualHeight());
    if (const auto pContent = Content(); pContent && m_bIsContentFullScreen) {
        pContent->Width(pHost->ActualWidth());
        pContent->Height(pHost->ActualHeight());
    }
}

void ContentHostedDialog::OnLayoutRootTapped(Xaml::Input::TappedRoutedEventArgs& args) {
    const auto pSelf = Self();
    if (args.OriginalSource != m_pLayoutRoot.lock()) {
        return;
    }
    const auto pWindow = Window::Of(*this);
    const auto pButton = m_pNonVisibilityBtn.lock();
    if (pWindow && pButton && pWindow->InputPane().OccludedRect().Height != 0.0F) {
        pButton->Focus(Xaml::FocusState::Programmatic);
    }
    if (m_bIsLightDismissEnabled) {
        Close();
    }
    args.Handled = true;
}

void ContentHostedDialog::SubscribeToBack() {
    UnsubscribeFromBack();
    const auto pWindow = Window::Of(*this);
    m_wkWindow = pWindow;
    if (pWindow) {
        HearBackRequests(*pWindow, WhileAlive(std::mem_fn(&ContentHostedDialog::OnBackRequested)),
                         m_tkBackPressed, m_tkBackRequested);
    }
}

void ContentHostedDialog::UnsubscribeFromBack() {
    if (const auto pWindow = m_wkWindow.lock()) {
        pWindow->BackPressed.remove(m_tkBackPressed);
        pWindow->BackRequested.remove(m_tkBackRequested);
    }
    m_wkWindow.reset();
}

void ContentHostedDialog::OnBackRequested(Xaml::BackRequest& args) {
    args.Handled = true;
    Close();
}

// --- closing ---------------------------------------------------------------

// The popup may be closed by whoever holds it.
void ContentHostedDialog::OnPopupClosed() {
    Close();
}

void ContentHostedDialog::Close() {
    if (!m_bIsOpen) {
        return;
    }
    const auto pSelf = Self();
    m_bIsOpen = false; // first: what closes may come back here
    UnsubscribeFromBack();
    if (const auto pTimer = std::exchange(m_pAutoCloseTimer, nullptr)) {
        pTimer->Stop();
    }
    const auto pPopup = m_pPopup.lock();
    Platform::FirstFailure failure;
    if (pPopup) {
        pPopup->Closed.remove(m_tkPopupClosed);
        pPopup->Loaded.remove(m_tkPopupLoaded);
        failure.Run([&] { pPopup->IsOpen(false); });
        failure.Run([&] { pPopup->Child(nullptr); });
    }
    UnwatchHost();
    failure.Run([&] { ReturnToParent(pPopup); });
    failure.Rethrow();
}

void ContentHostedDialog::ReturnToParent(const std::shared_ptr<Popup>& pPopup) {
    if (const auto pContent = m_pHostContent.lock()) {
        pContent->Content(shared_from_this());
        Visibility(m_eHostVisibility);
        return;
    }
    const auto pPanel = pPopup ? pPopup->Parent() : nullptr;
    if (pPanel) {
        pPanel->RemoveChild(pPopup);
    }
    if (const auto pHost = m_pHostPanel.lock()) {
        pHost->InsertChild(m_nHostIndex, shared_from_this());
        Visibility(m_eHostVisibility);
    } else {
        m_pPopup.reset();
        m_pRootPanel.reset();
        Visibility(Xaml::Visibility::Collapsed);
    }
}

}
