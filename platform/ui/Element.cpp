#include "platform/ui/Element.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/FirstFailure.h"
#include "platform/ui/Markup.h"

namespace Windows::UI::Xaml {

void FrameworkElement::Visibility(Xaml::Visibility eVisibility) {
    if (m_eVisibility == eVisibility) {
        return;
    }
    m_eVisibility = eVisibility;
    VisibilityChanged.raise(eVisibility);
}

void FrameworkElement::AppendChild(std::shared_ptr<FrameworkElement> pChild) {
    if (!pChild || pChild->IsAtOrAbove(*this)) {
        throw Platform::InvalidArgumentException("not an element that can become a child here");
    }
    if (const auto pOldParent = pChild->Parent()) {
        pOldParent->RemoveChild(pChild);
    }
    pChild->m_wkParent = weak_from_this();
    m_children.push_back(pChild);
    Platform::FirstFailure failure;
    failure.Run([&] { pChild->Arrange(m_size); });
    if (m_bLoaded) {
        failure.Run([&] { pChild->RaiseLoaded(); });
    }
    failure.Rethrow();
}

void FrameworkElement::RemoveChild(const std::shared_ptr<FrameworkElement>& pChild) {
    const auto it = std::find(m_children.begin(), m_children.end(), pChild);
    if (it == m_children.end()) {
        return;
    }
    const std::shared_ptr<FrameworkElement> pRemoved = *it; // `pChild` may be the list's own
    m_children.erase(it);
    pRemoved->m_wkParent.reset();
    pRemoved->RaiseUnloaded();
}

bool FrameworkElement::IsAtOrAbove(const FrameworkElement& element) const {
    if (this == &element) {
        return true;
    }
    const auto pParent = element.Parent();
    return pParent && IsAtOrAbove(*pParent);
}

void FrameworkElement::Arrange(Foundation::Size size) {
    SizeSteps steps;
    TakeSize(*this, size, steps);
    RaiseSizeChanged(steps);
}

void FrameworkElement::TakeSize(FrameworkElement& element, Foundation::Size size,
                                SizeSteps& steps) {
    if (!(size.Width >= 0.0F && size.Height >= 0.0F)) {
        throw Platform::InvalidArgumentException("an element of negative size");
    }
    if (size != element.m_size) {
        steps.push_back({element.shared_from_this(), {element.m_size, size}});
        element.m_size = size;
    }
    for (const auto& pChild : element.m_children) {
        TakeSize(*pChild, size, steps);
    }
}

void FrameworkElement::RaiseSizeChanged(const SizeSteps& steps) {
    Platform::FirstFailure failure;
    for (const SizeStep& step : steps) {
        if (step.pElement->m_size != step.args.NewSize) {
            continue; // a handler arranged anew, and that told the element
        }
        failure.Run([&] { step.pElement->SizeChanged.raise(step.args); });
    }
    failure.Rethrow();
}

std::shared_ptr<FrameworkElement> FrameworkElement::FirstChildNotLoaded() const {
    const auto it = std::find_if(m_children.begin(), m_children.end(),
                                 [](const auto& pChild) { return !pChild->m_bLoaded; });
    return it == m_children.end() ? nullptr : *it;
}

void FrameworkElement::RaiseLoaded() {
    const auto pSelf = shared_from_this();
    Platform::FirstFailure failure;
    // Asked anew each time: handlers may add and remove elements.
    while (const auto pChild = FirstChildNotLoaded()) {
        failure.Run([&] { pChild->RaiseLoaded(); });
    }
    if (!m_bLoaded) {
        m_bLoaded = true;
        failure.Run([&] { Loaded.raise(); });
    }
    failure.Rethrow();
}

void FrameworkElement::RaiseUnloaded() {
    if (!m_bLoaded) {
        return;
    }
    const auto pSelf = shared_from_this();
    m_bLoaded = false;
    Platform::FirstFailure failure;
    failure.Run([&] { Unloaded.raise(); });
    const auto children = m_children; // handlers may add and remove elements
    for (const auto& pChild : children) {
        failure.Run([&] { pChild->RaiseUnloaded(); });
    }
    failure.Rethrow();
}

std::shared_ptr<FrameworkElement> FrameworkElement::FindName(const std::string& strName) {
    if (m_strName == strName) {
        return shared_from_this();
    }
    for (const auto& pChild : m_children) {
        if (auto pFound = pChild->FindName(strName)) {
            return pFound;
        }
    }
    return nullptr;
}

Foundation::Point FrameworkElement::PositionInWindow() const {
    const auto pParent = Parent();
    const Foundation::Point ptParent = pParent ? pParent->PositionInWindow() : Foundation::Point();
    return {ptParent.X + m_ptInParent.X, ptParent.Y + m_ptInParent.Y};
}

namespace Controls {

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

}

}
