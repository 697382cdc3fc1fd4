// Gathers the fine steps of one axis of a wheel into whole notches.
//
// What is short of a notch waits for more; it is forgotten when the wheel turns
// back, and after a pause, so that a touch of the wheel much later does not
// finish what an earlier one began.
//
// Units: 120 a notch. Threads: one at a time.
#pragma once

#include <cstdint>

#include "platform/gestures/RawInput.h"

namespace Platform::Gestures {

class WheelNotches {
public:
    // The whole notches that are due now, with the sign of `nStep`; else 0.
    std::int32_t Take(std::int32_t nStep, InputTime time);

private:
    std::int64_t m_nRest = 0;
    InputTime m_last{0};
};

}
