// A piece of engine work that can be carried out in steps.
#pragma once

#include <cstdint>

namespace velko::common {

class IPauseCallback; // always absent in this component: 0 is handed over

class Progressive {
public:
    static constexpr std::int32_t kToBeContinued = 1;
    static constexpr std::int32_t kFinished = 2;

    virtual ~Progressive() = default;

    // `kToBeContinued`, `kFinished`, or another value for a failure. May raise.
    virtual std::int32_t Continue() = 0;
};

}
