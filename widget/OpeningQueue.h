// Which open a view works on, and which one it is asked for next.
//
// The control opens one document after another and calls none off, so a view has
// one open under way at most; of what is asked for meanwhile only the last counts.
//
//   Idle      nothing is under way
//   Running   an open is under way and its outcome is waited for
//   Arrived   the same, and the control shows the document already
//   Replaced  an open is under way, but another document is wanted in its place
//   Dropped   an open is under way, but no document is wanted any more
//
//   Idle                 -- Begin -->   Running
//   Running              -- Arrive -->  Arrived; nothing in the other states
//   all but Idle         -- Replace --> Replaced, with the request of this call
//   all but Idle         -- Drop -->    Dropped; nothing in Idle
//   all but Idle         -- End -->     Idle
//
// Other calls are mistakes of the caller (asserted in debug builds).
// Threads: a value.
#pragma once

#include <memory>
#include <optional>

#include "platform/foundation/SecretText.h"
#include "widget/FilePath.h"

namespace velko::vkit {

class OpenedFile;

class OpeningQueue {
public:
    enum class State { Idle, Running, Arrived, Replaced, Dropped };

    struct Request {
        FilePath path;
        Platform::SecretText password;
        std::shared_ptr<OpenedFile> pFile{}; // that was looked at; empty: by the path
    };

    // What becomes of an open that has ended.
    struct Ended {
        State eState = State::Idle;  // as it was before the end
        Request request;             // that has ended
        std::optional<Request> next; // to open now; only when it was replaced
    };

    bool IsIdle() const { return m_eState == State::Idle; }
    bool IsDropped() const { return m_eState == State::Dropped; }

    void Begin(Request request);
    void Arrive();
    void Replace(Request next);
    void Drop();
    Ended End();

private:
    State m_eState = State::Idle;
    Request m_request; // under way
    std::optional<Request> m_next;
};

}
