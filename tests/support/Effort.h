// How much of a random test runs.
//
// Threads: any.
#pragma once

#include <cstdlib>

namespace velko::testing {

// A number of seeds, rounds or steps: the first for `./test`, the second for
// `./test --long`.
template <class Number>
Number Share(Number nQuick, Number nLong) {
    return std::getenv("VELKO_LONG_TESTS") != nullptr ? nLong : nQuick;
}

}
