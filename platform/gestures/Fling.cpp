#include "platform/gestures/Fling.h"

#include <algorithm>
#include <cmath>

namespace Platform::Gestures {

namespace {

// In 1/96 inch a second.
constexpr double kSlowest = 80.0;
constexpr double kFastest = 8000.0;
constexpr double kEnd = 40.0;
// The speed falls to 1/e of itself in this time.
constexpr double kDecaySeconds = 0.325;

}

Fling::Fling(Point ptDirection, double dbSpeed, double dbEndSpeed)
    : m_ptDirection(ptDirection), m_dbSpeed(dbSpeed), m_dbEndSpeed(dbEndSpeed) {}

std::optional<Fling> Fling::From(Point ptVelocity, float fUnit) {
    const double dbSpeed = std::hypot(ptVelocity.X, ptVelocity.Y);
    if (!(dbSpeed >= kSlowest * fUnit) || !std::isfinite(dbSpeed)) {
        return std::nullopt;
    }
    const Point ptDirection{static_cast<float>(ptVelocity.X / dbSpeed),
                            static_cast<float>(ptVelocity.Y / dbSpeed)};
    return Fling(ptDirection, std::min(dbSpeed, kFastest * fUnit), kEnd * fUnit);
}

InputTime Fling::Duration() const {
    const std::chrono::duration<double> seconds(kDecaySeconds * std::log(m_dbSpeed / m_dbEndSpeed));
    return std::chrono::duration_cast<InputTime>(seconds);
}

double Fling::DistanceAt(InputTime sinceLift) const {
    if (sinceLift >= Duration()) {
        return (m_dbSpeed - m_dbEndSpeed) * kDecaySeconds;
    }
    const double dbSeconds = std::chrono::duration<double>(sinceLift).count();
    return m_dbSpeed * kDecaySeconds * -std::expm1(-dbSeconds / kDecaySeconds);
}

}
