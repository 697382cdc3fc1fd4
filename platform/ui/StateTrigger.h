// What turns a visual state on and off.
//
// Threads: UI thread only. Errors: a handler's failure goes to whoever changed what
// the trigger watches.
#pragma once

#include "platform/foundation/Event.h"

namespace Windows::UI::Xaml {

class StateTriggerBase {
public:
    virtual ~StateTriggerBase() = default;
    bool IsActive() const { return m_bActive; }
    Foundation::Event<> ActiveChanged;

protected:
    void SetActive(bool bActive) {
        if (m_bActive != bActive) {
            m_bActive = bActive;
            ActiveChanged.raise();
        }
    }

private:
    bool m_bActive = false;
};

}
