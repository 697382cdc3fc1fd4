// Memory for the engine, with a limit on a single block and on all of them.
//
// A refused request is not always the end of an operation: the library may
// make room and ask again. `AllocationWatch` tells whether a request stayed
// refused for want of memory, in which case whatever was made meanwhile may be
// incomplete. A block above `kMaxBlockBytes` is no such case: no memory helps.
//
// Threads: any; a watch sees its own thread's requests only.
#pragma once

#include <mupdf/fitz.h>

#include <cstddef>
#include <cstdint>

namespace velko::engines::mupdf {

inline constexpr std::size_t kMaxEngineBytes = std::size_t{512} << 20;
inline constexpr std::size_t kMaxBlockBytes = std::size_t{256} << 20;

// For `fz_new_context`; lives as long as the process.
const fz_alloc_context* CappedAllocator();

// Bytes that the engine holds now.
std::size_t EngineBytes();

class AllocationWatch {
public:
    AllocationWatch();
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    bool WasRefused() const;

    // Bytes taken less bytes given back by this thread since the start; 0 when
    // more was given back.
    std::size_t NetBytes() const;

private:
    std::int64_t m_nBytesBefore;
    std::uint64_t m_nRefusedBefore;
};

// Makes the N-th request from now on this thread fail for good, for tests of
// what a refusal leaves behind; 0 for none. Returns whether the one before struck.
bool RefuseAllocation(std::uint64_t nCall);

}
