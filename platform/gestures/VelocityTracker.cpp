#include "platform/gestures/VelocityTracker.h"

#include <algorithm>

namespace Platform::Gestures {

namespace {

using namespace std::chrono_literals;

constexpr InputTime kWindow = 100ms;
constexpr InputTime kRest = 45ms; // a pointer that moves reports more often
constexpr InputTime kShortestSpan = 5ms;

}

void VelocityTracker::Clear() {
    m_samples.clear();
}

void VelocityTracker::Add(InputTime time, Point ptAt) {
    if (!m_samples.empty() && time < m_samples.back().time) {
        Clear();
    }
    if (m_samples.empty() || m_samples.back().ptAt != ptAt) {
        m_lastMoved = time;
    }
    std::erase_if(m_samples, [&](const Sample& sample) { return sample.time < time - kWindow; });
    m_samples.push_back({time, ptAt});
}

Point VelocityTracker::At(InputTime timeOfLift) const {
    const auto itFirst =
        std::find_if(m_samples.begin(), m_samples.end(),
                     [&](const Sample& sample) { return sample.time >= timeOfLift - kWindow; });
    if (itFirst == m_samples.end() || timeOfLift - m_lastMoved > kRest) {
        return {};
    }
    const Sample& last = m_samples.back();
    const InputTime span = std::max(timeOfLift, last.time) - itFirst->time;
    if (span < kShortestSpan) {
        return {};
    }
    const float fSeconds = std::chrono::duration<float>(span).count();
    return {(last.ptAt.X - itFirst->ptAt.X) / fSeconds, (last.ptAt.Y - itFirst->ptAt.Y) / fSeconds};
}

}
