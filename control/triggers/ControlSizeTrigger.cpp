#include "control/triggers/ControlSizeTrigger.h"

namespace velko::vkit {

std::shared_ptr<ControlSizeTrigger> ControlSizeTrigger::Create() {
    return std::shared_ptr<ControlSizeTrigger>(new ControlSizeTrigger);
}

ControlSizeTrigger::~ControlSizeTrigger() {
    Unsubscribe();
}

void ControlSizeTrigger::Unsubscribe() {
    if (const auto pTarget = m_wkTarget.lock()) {
        pTarget->SizeChanged.remove(m_token);
    }
}

void ControlSizeTrigger::TargetElement(const std::shared_ptr<Element>& pElement) {
    Unsubscribe();
    m_wkTarget = pElement;
    if (pElement) {
        m_token = pElement->SizeChanged.add([wkSelf = weak_from_this()](const auto& args) {
            if (const auto pSelf = wkSelf.lock()) {
                pSelf->OnSizeChanged(args);
            }
        });
    }
}

void ControlSizeTrigger::OnSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs& args) {
    m_dbLastHeight = args.NewSize.Height;
    m_dbLastWidth = args.NewSize.Width;
    SetActive(Holds());
}

bool ControlSizeTrigger::Holds() const {
    if (m_wkTarget.expired() || (m_dbMinHeight <= 0.0 && m_dbMinWidth <= 0.0)) {
        return false;
    }
    if (m_dbMinHeight <= 0.0) {
        return m_dbMinWidth <= m_dbLastWidth;
    }
    if (m_dbMinWidth <= 0.0) {
        return m_dbMinHeight <= m_dbLastHeight;
    }
    return m_dbMinWidth <= m_dbLastWidth && m_dbMinHeight <= m_dbLastHeight;
}

}
