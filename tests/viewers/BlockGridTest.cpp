// How a page is cut into blocks, and which of them are displayed.
#include "tests/viewers/ViewerFixture.h"
#include "viewers/core/PageGeometry.h"

namespace velko::testing {

namespace {

using vkit::BlockState;
using vkit::Render_PageDavidBlock;

class BlockGridTest : public ViewerTest {};

TEST(BlockGrid, CountsWholeScreens) {
    struct Case {
        std::int32_t nWidth, nHeight;
        Render_PageDavidBlock grid;
    };
    for (const Case& c : {Case{1000, 800, {1, 1}},
                          {999, 1599, {1, 1}},
                          {1001, 1600, {2, 1}},
                          {2000, 2399, {2, 2}},
                          {3001, 2400, {3, 3}},
                          {0, 0, {1, 1}}}) {
        EXPECT_EQ(vkit::CalcBlockGrid({c.nWidth, c.nHeight, 0, 0}, {1000.0, 800.0}), c.grid)
            << c.nWidth << " x " << c.nHeight;
    }
    EXPECT_EQ(vkit::CalcBlockGrid({640, 640, 0, 0}, {0.0, 1.0}), (Render_PageDavidBlock{10, 10}));
}

TEST(BlockGrid, SidesAreTruncatedAndBounded) {
    EXPECT_EQ(vkit::TruncateSide(99.99F), 99);
    EXPECT_EQ(vkit::TruncateSide(-5.0F), 0);
    EXPECT_EQ(vkit::TruncateSide(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(vkit::TruncateSide(1e30F), 1'000'000);
}

TEST_F(BlockGridTest, TheRestOfTheDivisionGoesToTheLastRowAndColumn) {
    w.Open(MakePages(1, 305, 703), 100, 200);
    const vkit::PageItemState item = w.ItemOf(0);
    ASSERT_EQ(item.grid, (Render_PageDavidBlock{3, 3}));
    ASSERT_EQ(item.blocks.size(), 9U);
    std::int64_t nArea = 0;
    for (std::size_t n = 0; n < item.blocks.size(); ++n) {
        const BlockState& block = item.blocks[n];
        const std::size_t nRow = n / 3;
        const std::size_t nCol = n % 3;
        EXPECT_EQ(block.nBlockId, static_cast<std::int32_t>(n) + 1);
        EXPECT_EQ(block.screenRect.dbOffsetX, 101.0 * nCol);
        EXPECT_EQ(block.screenRect.dbOffsetY, 234.0 * nRow);
        EXPECT_EQ(block.screenRect.nWidth, nCol == 2 ? 103 : 101);
        EXPECT_EQ(block.screenRect.nHeight, nRow == 2 ? 235 : 234);
        nArea += std::int64_t{block.screenRect.nWidth} * block.screenRect.nHeight;
    }
    EXPECT_EQ(nArea, 305 * 703);
}

TEST_F(BlockGridTest, OnlyBlocksThatShareAnAreaWithTheScreenAreDisplayed) {
    w.Open(MakePages(3, 300, 600), 100, 200);
    const auto fnDisplayed = [&](std::int32_t nPage) {
        std::vector<std::int32_t> ids;
        for (const BlockState& block : w.ItemOf(nPage).blocks) {
            if (block.bIsDisplay) {
                ids.push_back(block.nBlockId);
            }
        }
        return ids;
    };
    EXPECT_EQ(fnDisplayed(0), std::vector<std::int32_t>{1}); // the others only touch
    w.Viewer().MoveScreen(1, 1);
    EXPECT_EQ(fnDisplayed(0), (std::vector<std::int32_t>{1, 2, 4, 5}));
    w.Viewer().MoveScreen(199, 99);
    EXPECT_EQ(fnDisplayed(0), std::vector<std::int32_t>{5});
}

TEST_F(BlockGridTest, TheEngineGetsThePagePlacedAtTheBlocksOffset) {
    w.Open(MakePages(1, 300, 600), 100, 200);
    w.Viewer().MoveScreen(250, 150); // inside rows 1, 2 and columns 1, 2
    w.Settle();
    std::vector<std::pair<float, float>> origins;
    for (const EngineCall& call : w.pEngine->Calls(EngineOp::StartRender)) {
        EXPECT_EQ(call.nWidth, 100);
        EXPECT_EQ(call.nHeight, 200);
        origins.emplace_back(call.matrix.E, call.matrix.F - 600.0F); // the page's top left
    }
    EXPECT_EQ(origins, (std::vector<std::pair<float, float>>{
                           {-100, -200}, {-200, -200}, {-100, -400}, {-200, -400}}));
}

TEST_F(BlockGridTest, OnlyAChangedGridIsWritten) {
    w.Open(MakePages(1, 100, 200), 100, 200);
    EXPECT_EQ(w.host.CountDebug("ContinueViewerPageItem::DividToBlock: 0, [0 * 0] --> [1 * 1]\n"),
              1U);
    w.host.ClearDebug();
    w.Settle();
    // The grid follows the size at the end of a zoom, and only then.
    w.Viewer().PageScaled({0, 0}, 2.0, false, false);
    EXPECT_EQ(w.ItemOf(0).grid, (Render_PageDavidBlock{1, 1}));
    w.host.ClearDebug();
    w.Viewer().MoveScreen(10, 10); // the gesture's bitmaps go
    EXPECT_EQ(w.host.CountDebug("ContinueViewerPageItem::DividToBlock: 0, [1 * 1] --> [2 * 2]\n"),
              1U);
    w.host.ClearDebug();
    w.Viewer().MoveScreen(10, 10);
    EXPECT_FALSE(w.host.DebugContains("DividToBlock"));
}

}

}
