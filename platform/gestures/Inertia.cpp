#include "platform/gestures/Inertia.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform::Gestures {

namespace {

using namespace std::chrono_literals;

// A frame that took longer delays the fling and does not make it leap.
constexpr InputTime kLongestFrame = 50ms;
constexpr double kLongestStepOfPanel = 0.75;

}

Inertia::Inertia(PanelEvents& events, Manipulation& manipulation,
                 std::shared_ptr<IEnvironment> pEnvironment,
                 std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> pTimer)
    : m_events(events),
      m_manipulation(manipulation),
      m_pEnvironment(std::move(pEnvironment)),
      m_pTimer(std::move(pTimer)) {}

void Inertia::Start(const Fling& fling) {
    ++m_nStarted;
    m_fling = fling;
    m_ptFrom = m_manipulation.Position();
    m_lastTick = m_pEnvironment->MonotonicTime();
    m_elapsed = InputTime::zero();
    m_dbTravelled = 0.0;
    m_pTimer->Start();
}

bool Inertia::Stop() {
    if (!IsRunning()) {
        return false;
    }
    m_fling.reset();
    m_pTimer->Stop();
    m_manipulation.End();
    return true;
}

double Inertia::LongestStep() const {
    const Point ptDirection = m_fling->Direction();
    const auto reach = [](double dbExtent, float fShare) {
        return dbExtent * kLongestStepOfPanel / std::max(std::fabs(fShare), 1e-6F);
    };
    return std::min(reach(m_events.Target().ActualWidth(), ptDirection.X),
                    reach(m_events.Target().ActualHeight(), ptDirection.Y));
}

bool Inertia::Advance() {
    const InputTime now = m_pEnvironment->MonotonicTime();
    m_elapsed += std::clamp(now - std::exchange(m_lastTick, now), InputTime::zero(), kLongestFrame);
    const double dbGoal = m_fling->DistanceAt(m_elapsed);
    const double dbStep = std::min(dbGoal - m_dbTravelled, LongestStep());
    m_dbTravelled += dbStep;
    const bool bArrived = m_dbTravelled >= dbGoal || dbStep <= 0.0;
    const bool bGoesOn = m_elapsed < m_fling->Duration() || !bArrived;
    const auto fWay = static_cast<float>(m_dbTravelled);
    const Point ptTo{m_ptFrom.X + m_fling->Direction().X * fWay,
                     m_ptFrom.Y + m_fling->Direction().Y * fWay};
    return m_manipulation.MoveTo(ptTo, 1.0F, true) && bGoesOn;
}

void Inertia::OnTick() {
    const std::uint64_t nThis = m_nStarted;
    if (IsRunning() && !Advance() && m_nStarted == nThis) {
        Stop();
    }
}

}
