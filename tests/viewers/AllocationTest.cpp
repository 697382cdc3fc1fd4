// What a layout step allocates: nothing for a block, whatever their number.
#include "platform/fake/HeapCount.h"
#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

// Allocations of one small move inside a page of `nBlocksAcross` squared blocks,
// all displayed ones rendered. The frame is the device's affair, so the canvas has none.
std::size_t AllocationsOfAMove(Layout eLayout, int nBlocksAcross) {
    ViewerWorld w;
    w.SetLayout(eLayout);
    w.host.Environment().SetDesignMode(true); // a canvas without a device paints nothing
    const auto fSide = static_cast<float>(100 * nBlocksAcross);
    w.Open(MakePages(1, fSide, fSide), 100, 100);
    EXPECT_EQ(w.ItemOf(0).blocks.size(), static_cast<std::size_t>(nBlocksAcross * nBlocksAcross));
    w.Viewer().MoveScreen(20, 20);
    w.Settle();
    const auto nBefore = Platform::Fake::HeapAllocations();
    w.Viewer().MoveScreen(2, 2);
    const auto nUsed = static_cast<std::size_t>(Platform::Fake::HeapAllocations() - nBefore);
    EXPECT_EQ(w.Laid().front(),
              (Place{0, -22, -22, static_cast<int>(fSide), static_cast<int>(fSide)}));
    return nUsed;
}

TEST(AllocationTest, AStepAllocatesNothingPerBlock) {
    for (const Layout eLayout : {Layout::Continuous, Layout::Single}) {
        const std::size_t nFew = AllocationsOfAMove(eLayout, 3);
        EXPECT_EQ(AllocationsOfAMove(eLayout, 30), nFew);
        EXPECT_LE(nFew, 24U);
    }
}

}

}
