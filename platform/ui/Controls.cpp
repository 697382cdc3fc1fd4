#include "platform/ui/Controls.h"

#include <utility>

#include "platform/ui/Markup.h"
#include "platform/ui/VisualState.h"
#include "platform/ui/Window.h"

namespace Windows::UI::Xaml::Controls {

Panel::~Panel() = default;

std::shared_ptr<FrameworkElement> UserControl::Content() const {
    return Children().empty() ? nullptr : Children().front();
}

void UserControl::Content(std::shared_ptr<FrameworkElement> pContent) {
    if (const auto pOld = Content()) {
        RemoveChild(pOld);
    }
    if (pContent) {
        AppendChild(std::move(pContent));
    }
}

// --- templates -------------------------------------------------------------

void ContentControl::ApplyTemplate() {
    if (m_bTemplateApplied) {
        return;
    }
    const auto pSelf = shared_from_this();
    const auto pRoot = Markup::LoadMarkup(DefaultStyleKey);
    m_bTemplateApplied = true;
    m_pTemplateRoot = pRoot;
    try {
        AppendChild(pRoot);
        ShowContent();
        OnApplyTemplate();
    } catch (...) {
        RemoveTemplate();
        throw;
    }
}

void ContentControl::ReapplyTemplate() {
    RemoveTemplate();
    ApplyTemplate();
}

void ContentControl::RemoveTemplate() {
    m_bTemplateApplied = false;
    if (const auto pRoot = std::exchange(m_pTemplateRoot, nullptr)) {
        RemoveChild(pRoot);
    }
}

std::shared_ptr<FrameworkElement> ContentControl::GetTemplateChild(const std::string& strName) {
    return m_pTemplateRoot ? m_pTemplateRoot->FindName(strName) : nullptr;
}

void ContentControl::Content(std::shared_ptr<FrameworkElement> pContent) {
    const auto pOld = std::exchange(m_pContent, std::move(pContent));
    const auto pParent = pOld ? pOld->Parent() : nullptr;
    if (pParent && pOld != m_pContent) {
        pParent->RemoveChild(pOld);
    }
    ShowContent();
}

namespace {

std::shared_ptr<FrameworkElement> FindPresenter(const std::shared_ptr<FrameworkElement>& pElement) {
    if (std::dynamic_pointer_cast<ContentPresenter>(pElement)) {
        return pElement;
    }
    for (const auto& pChild : pElement->Children()) {
        if (auto pFound = FindPresenter(pChild)) {
            return pFound;
        }
    }
    return nullptr;
}

}

void ContentControl::ShowContent() {
    const auto pPlace = m_pTemplateRoot ? FindPresenter(m_pTemplateRoot) : shared_from_this();
    if (m_pContent && pPlace && m_pContent->Parent() != pPlace) {
        pPlace->AppendChild(m_pContent);
    }
}

std::shared_ptr<ContentControl> ContentOwnerOf(const FrameworkElement& element) {
    for (auto pAbove = element.Parent(); pAbove; pAbove = pAbove->Parent()) {
        if (auto pOwner = std::dynamic_pointer_cast<ContentControl>(pAbove)) {
            return pOwner->Content().get() == &element ? pOwner : nullptr;
        }
    }
    return nullptr;
}

// --- what holds text -------------------------------------------------------

void TextBlock::Text(const std::string& strText) {
    if (m_strText != strText) {
        m_strText = strText;
        InvalidateLayout();
    }
}

void Button::Text(const std::string& strText) {
    if (m_strText != strText) {
        m_strText = strText;
        InvalidateLayout();
    }
}

void PasswordBox::Password(Platform::SecretText password) {
    m_password = std::move(password);
    PasswordSet.raise();
}

// --- keys ------------------------------------------------------------------

Xaml::FocusState Control::FocusState() const {
    const auto pWindow = Window::Of(*this);
    return pWindow && pWindow->FocusedElement().get() == this ? pWindow->FocusStateNow()
                                                              : Xaml::FocusState::Unfocused;
}

bool Control::Focus(Xaml::FocusState eState) {
    const auto pWindow = Window::Of(*this);
    return pWindow && IsLoaded() && IsShown() &&
           pWindow->Focus(std::static_pointer_cast<Control>(shared_from_this()), eState);
}

}
