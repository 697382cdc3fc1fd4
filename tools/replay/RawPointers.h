// Fingers and a mouse that move as a script says, as events of the platform.
//
// Each step takes 8 ms of the session's input time, whatever time really
// passes, so that the same script makes the same gesture on every machine.
// Units: the canvas's logical ones. Threads: the UI thread.
// Errors: what the control answers an event with first is raised at the end,
// when everything is up again.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <QEvent>
#include <QEventPoint>

#include "platform/foundation/FirstFailure.h"
#include "platform/foundation/Geometry.h"

namespace velko::replay {

class Session;

class RawPointers {
public:
    using Point = Windows::Foundation::Point;

    enum class Lift {
        AtRest,  // after a pause, so that nothing moves on
        AtSpeed, // in the midst of the movement
    };

    explicit RawPointers(Session& session) : m_session(session) {}

    void DragMouse(Point ptFrom, Point ptTo, std::int32_t nSteps, Lift eLift);

    // Fingers that move together from one set of places to another.
    void MoveFingers(const std::vector<Point>& from, const std::vector<Point>& to,
                     std::int32_t nSteps, Lift eLift);

private:
    void SendMouse(QEvent::Type eType, Point pt);
    void SendTouch(QEventPoint::State eState, const std::vector<Point>& fingers);
    void Deliver(const std::function<void()>& fnSend);
    void PauseBefore(Lift eLift);

    Session& m_session;
    Platform::FirstFailure m_failure;
};

}
