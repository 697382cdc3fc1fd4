#include "platform/ui/Popup.h"

#include <utility>

#include "platform/foundation/FirstFailure.h"

namespace Windows::UI::Xaml::Controls::Primitives {

void Popup::Child(std::shared_ptr<FrameworkElement> pChild) {
    HideChild();
    m_pChild = std::move(pChild);
    if (m_bOpen) {
        ShowChild();
    }
}

void Popup::ShowChild() {
    if (m_pChild) {
        AppendChild(m_pChild);
    }
}

void Popup::HideChild() {
    if (m_pChild && m_pChild->Parent().get() == this) {
        RemoveChild(m_pChild);
    }
}

void Popup::IsOpen(bool bOpen) {
    if (m_bOpen == bOpen) {
        return;
    }
    const auto pSelf = shared_from_this();
    m_bOpen = bOpen;
    Platform::FirstFailure failure;
    if (bOpen) {
        failure.Run([this] { ShowChild(); });
        failure.Run([this] { LoadIfInLoadedTree(); });
    } else {
        failure.Run([this] { RaiseUnloaded(); });
        failure.Run([this] { HideChild(); });
        failure.Run([this] { Closed.raise(); });
    }
    failure.Rethrow();
}

}
