// The way out: raises input events on a panel until it is closed.
//
// A raise never throws: what a subscriber fails with goes to `OnFailure`, or to
// the log when that is empty, and whoever raised goes on.
// Threads: UI thread only.
#pragma once

#include <exception>
#include <functional>
#include <memory>

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
        try {
            (*pKeep.*pEvent).raise(args);
        } catch (...) {
            Report(std::current_exception());
        }
    }

    // Nothing is raised or reported to `OnFailure` from now on.
    void Close();
    bool IsClosed() const { return m_bClosed; }

    // Whether the panel wants gestures rather than leaving them to the system.
    bool WantsManipulations() const;
    const Panel& Target() const { return *m_pPanel; }

    std::function<void(std::exception_ptr)> OnFailure;

private:
    void Report(std::exception_ptr pFailure);

    const std::shared_ptr<Panel> m_pPanel;
    bool m_bClosed = false;
};

}
