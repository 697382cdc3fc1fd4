// The way out: raises input events on a panel until it is closed.
//
// A raise never throws: what a subscriber fails with goes to `Failures`, and
// whoever raised goes on.
// Threads: UI thread only.
#pragma once

#include <memory>

#include "platform/foundation/FailureSink.h"
#include "platform/ui/SwapChainPanel.h"

namespace Platform::Gestures {

class PanelEvents {
public:
    using Panel = Windows::UI::Xaml::Controls::SwapChainPanel;

    explicit PanelEvents(std::shared_ptr<Panel> pPanel);

    template <class Args>
    void Raise(Windows::Foundation::Event<Args&> Panel::*pEvent, Args& args) {
        if (m_bClosed) {
            return;
        }
        const std::shared_ptr<Panel> pKeep = m_pPanel;
        m_failures.Run([&] { (*pKeep.*pEvent).raise(args); });
    }

    // Nothing is raised, or told to who listens for failures, from now on.
    void Close();
    bool IsClosed() const { return m_bClosed; }

    // Whether the panel wants gestures rather than leaving them to the system.
    bool WantsManipulations() const;
    const Panel& Target() const { return *m_pPanel; }

    FailureSink& Failures() { return m_failures; }

private:
    const std::shared_ptr<Panel> m_pPanel;
    FailureSink m_failures{"a handler of input"};
    bool m_bClosed = false;
};

}
