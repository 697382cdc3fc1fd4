// What a layout step allocates: nothing for a block, whatever their number.
#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/viewers/ViewerFixture.h"

namespace {

std::atomic<std::size_t> g_nAllocations{0};

void* Allocate(std::size_t nSize) {
    g_nAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* pMemory = std::malloc(nSize == 0 ? 1 : nSize)) {
        return pMemory;
    }
    throw std::bad_alloc();
}

}

void* operator new(std::size_t nSize) {
    return Allocate(nSize);
}
void* operator new[](std::size_t nSize) {
    return Allocate(nSize);
}
void operator delete(void* pMemory) noexcept {
    std::free(pMemory);
}
void operator delete[](void* pMemory) noexcept {
    std::free(pMemory);
}
void operator delete(void* pMemory, std::size_t) noexcept {
    std::free(pMemory);
}
void operator delete[](void* pMemory, std::size_t) noexcept {
    std::free(pMemory);
}

namespace velko::testing {

namespace {

// Allocations of one small move inside a page of `nBlocksAcross` squared blocks,
// all displayed ones rendered. The frame is the recording device's affair, so
// the canvas has none.
std::size_t AllocationsOfAMove(int nBlocksAcross) {
    ViewerWorld w;
    w.host.Environment().SetDesignMode(true); // a canvas without a device paints nothing
    const auto fSide = static_cast<float>(100 * nBlocksAcross);
    w.Open(MakePages(1, fSide, fSide), 100, 100);
    EXPECT_EQ(w.ItemOf(0).blocks.size(), static_cast<std::size_t>(nBlocksAcross * nBlocksAcross));
    w.Viewer().MoveScreen(20, 20);
    w.Settle();
    const std::size_t nBefore = g_nAllocations;
    w.Viewer().MoveScreen(2, 2);
    const std::size_t nUsed = g_nAllocations - nBefore;
    EXPECT_EQ(w.Laid().front(),
              (Place{0, -22, -22, static_cast<int>(fSide), static_cast<int>(fSide)}));
    return nUsed;
}

TEST(AllocationTest, AStepAllocatesNothingPerBlock) {
    const std::size_t nFew = AllocationsOfAMove(3);
    const std::size_t nMany = AllocationsOfAMove(30);
    EXPECT_EQ(nMany, nFew);
    RecordProperty("allocations_of_a_step", static_cast<int>(nFew));
    EXPECT_LE(nFew, 24U);
}

}

}
