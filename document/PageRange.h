// A range of pages, both ends included.
//
// Threads: an immutable value.
#pragma once

#include <cstdint>

namespace velko::vkit {

class PageRange {
public:
    PageRange(std::int32_t nFirst, std::int32_t nLast) : First(nFirst), Last(nLast) {}

    const std::int32_t First;
    const std::int32_t Last;
};

}
