// Looks that a markup switches between.
//
// A group is in the first of its states of which a trigger is active, or in none.
// Entering a state makes its changes, leaving it takes them back.
// Threads: UI thread only. Lifetime: a group belongs to the panel whose markup it is part
// of; its changes may refer to that panel and what is below it, weakly.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/StateTrigger.h"

namespace Windows::UI::Xaml {

struct VisualState {
    std::string Name;
    std::vector<std::shared_ptr<StateTriggerBase>> StateTriggers;
    std::function<void()> Enter;
    std::function<void()> Leave;
};

class VisualStateGroup : public std::enable_shared_from_this<VisualStateGroup> {
public:
    // Enters the state that holds now.
    static std::shared_ptr<VisualStateGroup> Create(std::vector<VisualState> states);

    std::string CurrentState() const; // empty in none

private:
    explicit VisualStateGroup(std::vector<VisualState> states) : m_states(std::move(states)) {}
    const VisualState* StateThatHolds() const;
    void Evaluate();

    const std::vector<VisualState> m_states;
    const VisualState* m_pCurrent = nullptr;
};

}
