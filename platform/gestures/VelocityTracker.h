// How fast a pointer moves when it is lifted.
//
// Judged by the last tenth of a second only, so that an earlier haste does not
// count, and none at all once the pointer has come to rest before the lift.
//
// Units: logical a second. Threads: one at a time.
#pragma once

#include <vector>

#include "platform/gestures/RawInput.h"

namespace Platform::Gestures {

class VelocityTracker {
public:
    void Clear();
    // A time before the last one begins anew: the clock was set.
    void Add(InputTime time, Point ptAt);
    // Zero too when the places span too short a time to tell.
    Point At(InputTime timeOfLift) const;

private:
    struct Sample {
        InputTime time;
        Point ptAt;
    };
    std::vector<Sample> m_samples; // oldest first
    InputTime m_lastMoved{0};
};

}
