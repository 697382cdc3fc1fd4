// How often this program has asked for heap memory. A program that calls this
// has its global operators replaced. Threads: any.
#pragma once

#include <cstdint>

namespace Platform::Fake {

std::uint64_t HeapAllocations();

}
