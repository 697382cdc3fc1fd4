// What the program counts from its start on, for the `stats` command.
//
// Threads: any; the numbers are read one by one, not as one moment's picture.
#pragma once

#include <atomic>
#include <cstdint>

namespace velko::replay {

struct Counters {
    std::atomic<std::int64_t> nEngineOpens{0};   // engine documents made
    std::atomic<std::int64_t> nEngineRenders{0}; // pages, blocks and reflow bands drawn
};

// Highest resident size of this process, KiB.
std::int64_t PeakRssKb();

}
