#include "platform/gestures/WheelNotches.h"

#include <algorithm>
#include <utility>

namespace Platform::Gestures {

namespace {

constexpr std::int64_t kNotch = 120;
constexpr std::int64_t kMost = 1000 * kNotch; // in one step; more is no wheel's
constexpr std::chrono::seconds kPause{1};

}

std::int32_t WheelNotches::Take(std::int32_t nStep, InputTime time) {
    if (nStep == 0) {
        return 0;
    }
    const bool bPaused = time - std::exchange(m_last, time) > kPause;
    if (bPaused || (nStep < 0) != (m_nRest < 0)) {
        m_nRest = 0;
    }
    m_nRest = std::clamp(m_nRest + nStep, -kMost, kMost);
    const std::int64_t nWhole = m_nRest / kNotch * kNotch;
    m_nRest -= nWhole;
    return static_cast<std::int32_t>(nWhole);
}

}
