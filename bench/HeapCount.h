// How often this program has asked for heap memory; linking the .cpp replaces
// the global operators. Threads: any.
#pragma once

#include <cstdint>

namespace velko::bench {

std::uint64_t HeapAllocations();

}
