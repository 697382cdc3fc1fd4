// How long ago this process was started.
#pragma once

#include <cstdint>
#include <optional>

namespace velko::viewer {

// Milliseconds since the start: since `nStartedAt` (nanoseconds of the wall
// clock) when it is given, else since the kernel's record of the process's
// start, which is exact to about 10 ms. Empty when the kernel tells nothing.
std::optional<double> MillisecondsSinceStart(std::optional<std::int64_t> nStartedAt);

}
