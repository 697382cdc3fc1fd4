// Active while an element is at least as large as is asked for.
//
// A minimum not above 0 asks for nothing; without any the trigger is never active.
// Units: logical. Threads: UI thread only. Lifetime: knows the element weakly.
#pragma once

#include <memory>

#include "platform/ui/Element.h"
#include "platform/ui/StateTrigger.h"

namespace velko::vkit {

class ControlSizeTrigger final : public Windows::UI::Xaml::StateTriggerBase,
                                 public std::enable_shared_from_this<ControlSizeTrigger> {
public:
    using Element = Windows::UI::Xaml::FrameworkElement;

    static std::shared_ptr<ControlSizeTrigger> Create();
    ~ControlSizeTrigger() override;

    std::shared_ptr<Element> TargetElement() const { return m_wkTarget.lock(); }
    void TargetElement(const std::shared_ptr<Element>& pElement); // judged at its next change
    double MinHeight() const { return m_dbMinHeight; }
    void MinHeight(double dbHeight) { m_dbMinHeight = dbHeight; }
    double MinWidth() const { return m_dbMinWidth; }
    void MinWidth(double dbWidth) { m_dbMinWidth = dbWidth; }

private:
    ControlSizeTrigger() = default;
    void OnSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs& args);
    bool Holds() const;
    void Unsubscribe();

    std::weak_ptr<Element> m_wkTarget;
    Windows::Foundation::EventRegistrationToken m_token;
    double m_dbMinHeight = 0.0;
    double m_dbMinWidth = 0.0;
    double m_dbLastHeight = 0.0;
    double m_dbLastWidth = 0.0;
};

}
