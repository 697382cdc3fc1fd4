// A piece of engine work that can be carried out in steps.
//
// Threads: one at a time; any thread may take the next step. Letting go of it
// is legal at any time and leaves the rest undone.
#pragma once

#include <cstdint>

namespace velko::common {

class IPauseCallback; // always absent in this component: 0 is handed over

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
