#include "platform/ui/VisualState.h"

#include <algorithm>
#include <utility>

namespace Windows::UI::Xaml {

std::shared_ptr<VisualStateGroup> VisualStateGroup::Create(std::vector<VisualState> states) {
    const std::shared_ptr<VisualStateGroup> pGroup(new VisualStateGroup(std::move(states)));
    const std::weak_ptr<VisualStateGroup> wkGroup = pGroup;
    for (const VisualState& state : pGroup->m_states) {
        for (const auto& pTrigger : state.StateTriggers) {
            pTrigger->ActiveChanged.add([wkGroup] {
                if (const auto pChanged = wkGroup.lock()) {
                    pChanged->Evaluate();
                }
            });
        }
    }
    pGroup->Evaluate();
    return pGroup;
}

std::string VisualStateGroup::CurrentState() const {
    return m_pCurrent != nullptr ? m_pCurrent->Name : std::string();
}

const VisualState* VisualStateGroup::StateThatHolds() const {
    const auto it = std::find_if(m_states.begin(), m_states.end(), [](const VisualState& state) {
        return std::any_of(state.StateTriggers.begin(), state.StateTriggers.end(),
                           [](const auto& pTrigger) { return pTrigger->IsActive(); });
    });
    return it == m_states.end() ? nullptr : &*it;
}

void VisualStateGroup::Evaluate() {
    const VisualState* const pNow = StateThatHolds();
    const VisualState* const pBefore = std::exchange(m_pCurrent, pNow);
    if (pNow == pBefore) {
        return;
    }
    if (pBefore != nullptr && pBefore->Leave) {
        pBefore->Leave();
    }
    if (pNow != nullptr && pNow->Enter) {
        pNow->Enter();
    }
}

}
