// Counts what viewers of this process did since its start; for tools.
//
// Threads: any.
#pragma once

#include <atomic>
#include <cstdint>

namespace velko::vkit {

class ViewerCounters {
public:
    ViewerCounters() = delete;

    static std::uint64_t BlocksCreated() { return s_nBlocks.load(std::memory_order_relaxed); }
    static void CountBlock() { s_nBlocks.fetch_add(1, std::memory_order_relaxed); }

private:
    static inline std::atomic<std::uint64_t> s_nBlocks{0};
};

}
