#include "platform/ui/Element.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/FirstFailure.h"

namespace Windows::UI::Xaml {

void FrameworkElement::Visibility(Xaml::Visibility eVisibility) {
    if (m_eVisibility == eVisibility) {
        return;
    }
    m_eVisibility = eVisibility;
    Platform::FirstFailure failure;
    failure.Run([&] { VisibilityChanged.raise(eVisibility); });
    failure.Run([this] { InvalidateLayout(); });
    failure.Rethrow();
}

bool FrameworkElement::IsShown() const {
    const auto pParent = Parent();
    return m_eVisibility == Xaml::Visibility::Visible && (!pParent || pParent->IsShown());
}

std::shared_ptr<FrameworkElement> FrameworkElement::Root() {
    const auto pParent = Parent();
    return pParent ? pParent->Root() : shared_from_this();
}

void FrameworkElement::AppendChild(std::shared_ptr<FrameworkElement> pChild) {
    InsertChild(m_children.size(), std::move(pChild));
}

void FrameworkElement::InsertChild(std::size_t nIndex, std::shared_ptr<FrameworkElement> pChild) {
    if (!pChild || pChild->IsAtOrAbove(*this)) {
        throw Platform::InvalidArgumentException("not an element that can become a child here");
    }
    pChild->LeaveParent();
    pChild->m_wkParent = weak_from_this();
    const auto nPlace = static_cast<std::ptrdiff_t>(std::min(nIndex, m_children.size()));
    m_children.insert(m_children.begin() + nPlace, pChild);
    Platform::FirstFailure failure;
    failure.Run([this] { InvalidateLayout(); });
    failure.Run([&] { pChild->LoadIfInLoadedTree(); });
    failure.Rethrow();
}

void FrameworkElement::LeaveParent() {
    if (const auto pParent = Parent()) {
        pParent->RemoveChild(shared_from_this());
    }
}

void FrameworkElement::RemoveChild(const std::shared_ptr<FrameworkElement>& pChild) {
    const auto it = std::find(m_children.begin(), m_children.end(), pChild);
    if (it == m_children.end()) {
        return;
    }
    const std::shared_ptr<FrameworkElement> pRemoved = *it; // `pChild` may be the list's own
    m_children.erase(it);
    pRemoved->m_wkParent.reset();
    Platform::FirstFailure failure;
    failure.Run([&] { pRemoved->RaiseUnloaded(); });
    failure.Run([this] { InvalidateLayout(); });
    failure.Rethrow();
}

bool FrameworkElement::IsAtOrAbove(const FrameworkElement& element) const {
    if (this == &element) {
        return true;
    }
    const auto pParent = element.Parent();
    return pParent && IsAtOrAbove(*pParent);
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
    const auto it = std::find_if(m_children.begin(), m_children.end(), [](const auto& pChild) {
        return !pChild->m_bLoaded && pChild->IsToBeLoaded();
    });
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

void FrameworkElement::LoadIfInLoadedTree() {
    const auto pParent = Parent();
    if (pParent && pParent->m_bLoaded && IsToBeLoaded()) {
        RaiseLoaded();
    }
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

}
