#include "platform/gestures/PanelEvents.h"

#include <string>
#include <utility>

#include "platform/foundation/Describe.h"
#include "platform/system/Debug.h"

namespace Platform::Gestures {

PanelEvents::PanelEvents(std::shared_ptr<Panel> pPanel) : m_pPanel(std::move(pPanel)) {
    if (!m_pPanel) {
        throw InvalidArgumentException("input without a panel");
    }
}

void PanelEvents::Close() {
    m_bClosed = true;
    OnFailure = nullptr;
}

bool PanelEvents::WantsManipulations() const {
    using Windows::UI::Xaml::Input::ManipulationMode;
    return !m_bClosed && m_pPanel->ManipulationMode == ManipulationMode::All;
}

void PanelEvents::Report(std::exception_ptr pFailure) {
    if (const auto fnReport = OnFailure) { // a copy: the call may close this
        fnReport(std::move(pFailure));
        return;
    }
    Debug::OutputDebugString("unhandled failure in a handler of input: " + Describe(pFailure) +
                             "\n");
}

}
