#include "platform/gestures/PanelEvents.h"

#include <utility>

#include "platform/foundation/Exception.h"

namespace Platform::Gestures {

PanelEvents::PanelEvents(std::shared_ptr<Panel> pPanel) : m_pPanel(std::move(pPanel)) {
    if (!m_pPanel) {
        throw InvalidArgumentException("input without a panel");
    }
}

void PanelEvents::Close() {
    m_bClosed = true;
    m_failures.Listen(nullptr);
}

bool PanelEvents::WantsManipulations() const {
    using Windows::UI::Xaml::Input::ManipulationMode;
    return !m_bClosed && m_pPanel->ManipulationMode == ManipulationMode::All;
}

}
