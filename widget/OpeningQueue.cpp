#include "widget/OpeningQueue.h"

#include <cassert>
#include <utility>

namespace velko::vkit {

void OpeningQueue::Begin(Request request) {
    assert(IsIdle());
    m_eState = State::Running;
    m_request = std::move(request);
}

void OpeningQueue::Arrive() {
    if (m_eState == State::Running) {
        m_eState = State::Arrived;
    }
}

void OpeningQueue::Replace(Request next) {
    assert(!IsIdle());
    m_eState = State::Replaced;
    m_next = std::move(next);
}

void OpeningQueue::Drop() {
    if (!IsIdle()) {
        m_eState = State::Dropped;
        m_next.reset();
    }
}

OpeningQueue::Ended OpeningQueue::End() {
    assert(!IsIdle());
    return {std::exchange(m_eState, State::Idle), std::exchange(m_request, {}),
            std::exchange(m_next, std::nullopt)};
}

}
