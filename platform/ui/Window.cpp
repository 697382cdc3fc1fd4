#include "platform/ui/Window.h"

#include <utility>

#include "platform/foundation/FirstFailure.h"
#include "platform/system/Environment.h"

namespace Windows::UI::ViewManagement {

void InputPane::Occlude(const Foundation::Rect& rc) {
    const bool bWasShown = m_rcOccluded.Height > 0.0F;
    const bool bShown = !rc.IsEmpty() && rc.Height > 0.0F;
    const Foundation::Rect rcBefore = std::exchange(m_rcOccluded, bShown ? rc : Foundation::Rect());
    if (m_rcOccluded == rcBefore || (!bShown && !bWasShown)) {
        return;
    }
    InputPaneVisibilityEventArgs args;
    args.OccludedRect = m_rcOccluded;
    (bShown ? Showing : Hiding).raise(args);
}

}

namespace Windows::UI::Xaml {

namespace {

std::weak_ptr<Window>& CurrentWindow() {
    static std::weak_ptr<Window> s_wkCurrent;
    return s_wkCurrent;
}

}

Window::Window(std::shared_ptr<FrameworkElement> pContent) : m_pContent(std::move(pContent)) {}

std::shared_ptr<Window> Window::Create(std::shared_ptr<FrameworkElement> pContent) {
    if (!pContent) {
        throw Platform::InvalidArgumentException("a window without a content");
    }
    const std::shared_ptr<Window> pWindow(new Window(std::move(pContent)));
    pWindow->m_pContent->HostWindow(pWindow);
    CurrentWindow() = pWindow;
    return pWindow;
}

Window::~Window() {
    m_pContent->HostWindow({});
}

std::shared_ptr<Window> Window::Of(const FrameworkElement& element) {
    const auto pParent = element.Parent();
    return pParent ? Of(*pParent) : element.HostWindow();
}

std::shared_ptr<Window> Window::Current() {
    return CurrentWindow().lock();
}

Window::CurrentScope::CurrentScope(std::shared_ptr<Window> pWindow)
    : m_wkBefore(std::exchange(CurrentWindow(), std::move(pWindow))) {}

Window::CurrentScope::~CurrentScope() {
    CurrentWindow() = m_wkBefore;
}

Foundation::Rect Window::Bounds() const {
    return {0.0F, 0.0F, static_cast<float>(m_pContent->ActualWidth()),
            static_cast<float>(m_pContent->ActualHeight())};
}

void Window::TellSize() {
    const Foundation::Rect rc = Bounds();
    m_sizeTold = {rc.Width, rc.Height};
    SizeChanged.raise(m_sizeTold);
}

// --- keys ------------------------------------------------------------------

std::shared_ptr<Controls::Control> Window::FocusedElement() const {
    const auto pFocused = m_wkFocused.lock();
    return pFocused && pFocused->IsLoaded() ? pFocused : nullptr;
}

bool Window::Focus(const std::shared_ptr<Controls::Control>& pElement, FocusState eState) {
    m_wkFocused = pElement;
    m_eFocusState = eState;
    FocusMoved.raise();
    return m_wkFocused.lock() == pElement;
}

void Window::LoseFocus(const Controls::Control& element) {
    if (m_wkFocused.lock().get() == &element) {
        m_wkFocused.reset();
        m_eFocusState = FocusState::Unfocused;
    }
}

bool Window::PressKey(const std::shared_ptr<FrameworkElement>& pElement, std::int32_t nKey) {
    const auto pSelf = shared_from_this();
    Platform::FirstFailure failure;
    failure.Run([&] { KeyDown.raise(Core::KeyEventArgs{nKey}); });
    Input::KeyRoutedEventArgs args;
    args.Key = nKey;
    args.OriginalSource = pElement;
    for (auto pAt = pElement; pAt && !args.Handled; pAt = pAt->Parent()) {
        failure.Run([&] { pAt->KeyDown.raise(args); });
    }
    failure.Rethrow();
    return args.Handled;
}

IDialogs& Window::CurrentDialogs() {
    const auto pWindow = Current();
    if (!pWindow || !pWindow->Dialogs()) {
        throw Platform::NullReferenceException("there is no window to show a dialog in");
    }
    return *pWindow->Dialogs();
}

// --- back ------------------------------------------------------------------

bool Window::RequestBack() {
    const auto pSelf = shared_from_this();
    BackRequest request;
    BackPressed.raise(request);
    if (!request.Handled) {
        BackRequested.raise(request);
    }
    return request.Handled;
}

// --- the pointer -----------------------------------------------------------

void Window::PointerCursor(Core::CoreCursorType eCursor) {
    if (std::exchange(m_ePointerCursor, eCursor) != eCursor) {
        PointerCursorChanged.raise();
    }
}

Window::WaitScope::WaitScope(std::shared_ptr<Window> pWindow)
    : m_pWindow(std::move(pWindow)),
      m_eBefore(m_pWindow ? m_pWindow->PointerCursor() : Core::CoreCursorType::Arrow) {
    if (m_pWindow) {
        m_pWindow->PointerCursor(Core::CoreCursorType::Wait);
    }
}

Window::WaitScope::~WaitScope() {
    if (m_pWindow) {
        m_pWindow->PointerCursor(m_eBefore);
    }
}

}

namespace Windows::Foundation::Metadata {

bool ApiInformation::IsTypePresent(const std::string& strType) {
    return Platform::Environment()->IsTypePresent(strType);
}

}
