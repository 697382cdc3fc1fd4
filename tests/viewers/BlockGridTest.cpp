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

}

}
