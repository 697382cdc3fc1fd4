#include "platform/fake/HeapCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::uint64_t> g_nAllocations{0};
}

// The other forms of the operators go by these; a sanitizer has forms of its own instead,
// of which temporary buffers use one.
void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept {
    g_nAllocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(nSize == 0 ? 1 : nSize);
}
void* operator new(std::size_t nSize) {
    if (void* const pMemory = operator new(nSize, std::nothrow)) {
        return pMemory;
    }
    throw std::bad_alloc();
}
void operator delete(void* pMemory) noexcept {
    std::free(pMemory);
}
void operator delete(void* pMemory, std::size_t) noexcept { // asked for by a warning
    std::free(pMemory);
}

namespace Platform::Fake {

std::uint64_t HeapAllocations() {
    return g_nAllocations.load(std::memory_order_relaxed);
}

}
