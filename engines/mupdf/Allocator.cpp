#include "engines/mupdf/Allocator.h"

#include <atomic>
#include <cstdlib>

#include "engines/mupdf/Operation.h"

namespace velko::engines::mupdf {

namespace {

// In front of every block; keeps the alignment of `malloc`.
struct alignas(std::max_align_t) Header {
    std::size_t nSize;
};

std::atomic<std::size_t> g_nBytes{0};

struct ThreadCounts {
    std::int64_t nBytes = 0;      // net, also negative
    std::uint64_t nRefused = 0;   // requests that stayed refused
    std::size_t nPendingSize = 0; // refused just now; a retry of that size may follow
    std::uint64_t nRefuseIn = 0;  // scripted refusal, calls to go
    bool bRefuseStruck = false;
};
thread_local ThreadCounts t_counts;

void SettlePending(std::size_t nGranted) {
    if (t_counts.nPendingSize != 0) {
        if (t_counts.nPendingSize != nGranted) {
            ++t_counts.nRefused;
        }
        t_counts.nPendingSize = 0;
    }
}

bool IsScriptedRefusal() {
    if (t_counts.nRefuseIn == 0 || --t_counts.nRefuseIn != 0) {
        return false;
    }
    t_counts.bRefuseStruck = true;
    ++t_counts.nRefused;
    return true;
}

// A single block beyond all measure is the file's fault and refused every time;
// it does not count, as what needs it is left out for good.
void Refuse(std::size_t nSize) {
    SettlePending(nSize);
    if (nSize <= kMaxBlockBytes) {
        t_counts.nPendingSize = nSize;
    }
}

bool Reserve(std::size_t nSize) {
    if (nSize > kMaxBlockBytes) {
        return false;
    }
    if (g_nBytes.fetch_add(nSize, std::memory_order_relaxed) + nSize > kMaxEngineBytes) {
        g_nBytes.fetch_sub(nSize, std::memory_order_relaxed);
        return false;
    }
    return true;
}

void Unreserve(std::size_t nSize) {
    g_nBytes.fetch_sub(nSize, std::memory_order_relaxed);
}

Header* HeaderOf(void* pBlock) {
    return static_cast<Header*>(pBlock) - 1;
}

void* Grow(void* pOld, std::size_t nSize) {
    Header* const pOldHeader = pOld != nullptr ? HeaderOf(pOld) : nullptr;
    const std::size_t nOldSize = pOldHeader != nullptr ? pOldHeader->nSize : 0;
    Operation::Poll();
    if (IsScriptedRefusal() || !Reserve(nSize)) {
        Refuse(nSize);
        return nullptr;
    }
    auto* const pHeader = static_cast<Header*>(std::realloc(pOldHeader, nSize + sizeof(Header)));
    if (pHeader == nullptr) {
        Unreserve(nSize);
        Refuse(nSize);
        return nullptr;
    }
    Unreserve(nOldSize);
    SettlePending(nSize);
    pHeader->nSize = nSize;
    t_counts.nBytes += static_cast<std::int64_t>(nSize) - static_cast<std::int64_t>(nOldSize);
    return pHeader + 1;
}

void Free(void*, void* pBlock) {
    if (pBlock == nullptr) {
        return;
    }
    Header* const pHeader = HeaderOf(pBlock);
    Unreserve(pHeader->nSize);
    t_counts.nBytes -= static_cast<std::int64_t>(pHeader->nSize);
    std::free(pHeader);
}

void* Malloc(void*, std::size_t nSize) {
    return Grow(nullptr, nSize);
}

void* Realloc(void* pUser, void* pOld, std::size_t nSize) {
    if (nSize == 0) {
        Free(pUser, pOld);
        return nullptr;
    }
    return Grow(pOld, nSize);
}

}

const fz_alloc_context* CappedAllocator() {
    static const fz_alloc_context allocator = {nullptr, &Malloc, &Realloc, &Free};
    return &allocator;
}

std::size_t EngineBytes() {
    return g_nBytes.load(std::memory_order_relaxed);
}

AllocationWatch::AllocationWatch()
    : m_nBytesBefore(t_counts.nBytes), m_nRefusedBefore(t_counts.nRefused) {}

AllocationWatch::~AllocationWatch() {
    SettlePending(0);
}

bool AllocationWatch::WasRefused() const {
    return t_counts.nRefused != m_nRefusedBefore || t_counts.nPendingSize != 0;
}

std::size_t AllocationWatch::NetBytes() const {
    const std::int64_t nNet = t_counts.nBytes - m_nBytesBefore;
    return nNet > 0 ? static_cast<std::size_t>(nNet) : 0;
}

bool RefuseAllocation(std::uint64_t nCall) {
    const bool bStruck = t_counts.bRefuseStruck;
    t_counts.nRefuseIn = nCall;
    t_counts.bRefuseStruck = false;
    return bStruck;
}

}
