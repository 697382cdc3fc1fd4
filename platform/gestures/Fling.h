// The movement that goes on after a pan: fast at first, slower by a fixed share
// in each span of time, until it is too slow to be seen.
//
// The way covered is a function of the time alone, so that late frames change
// the steps and never where it ends.
//
// Units: logical; a second. `fUnit` is how many logical units make 1/96 inch:
// what counts as slow or fast is a matter of the hand, not of the pixels.
// Threads: a value.
#pragma once

#include <optional>

#include "platform/gestures/RawInput.h"

namespace Platform::Gestures {

class Fling {
public:
    // Empty when the velocity is too low for one; capped when very high.
    static std::optional<Fling> From(Point ptVelocity, float fUnit);

    Point Direction() const { return m_ptDirection; } // of length 1
    double DistanceAt(InputTime sinceLift) const;     // grows up to the whole way
    InputTime Duration() const;

private:
    Fling(Point ptDirection, double dbSpeed, double dbEndSpeed);

    Point m_ptDirection;
    double m_dbSpeed;
    double m_dbEndSpeed;
};

}
