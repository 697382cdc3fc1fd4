// A piece of engine work that can be carried out in steps.
//
// Threads: one at a time; any thread may take the next step. Letting go of it
// is legal at any time and leaves the rest undone.
#pragma once

#include <cstdint>

namespace velko::common {

// Lets the caller stop a piece of work that it cannot wait for. An engine that is
// given one asks it now and then on the working thread, waits of its own excepted,
// and leaves off when it says so: nothing of what was done is kept, the first step of
// the progress says `kToBeContinued`, and the next does all of it, without asking.
class IPauseCallback {
public:
    virtual ~IPauseCallback() = default;
    virtual bool NeedToPauseNow() = 0; // does not raise; once true, true for good
};

class Progressive {
public:
    static constexpr std::int32_t kToBeContinued = 1;
    static constexpr std::int32_t kFinished = 2;
    static constexpr std::int32_t kCutShort = 3; // ended for want of time; what came is there

    virtual ~Progressive() = default;

    // Does one step and answers `kToBeContinued`, `kFinished`, or another value
    // for a failure. Any answer but the first is the last: asked again it is the
    // same, and nothing is done. May raise what its operation raises; that is an
    // end too.
    virtual std::int32_t Continue() = 0;
};

}
