// The painted canvas against the page's pattern, and against failing devices.
#include <algorithm>
#include <cmath>

#include "tests/viewers/ViewerFixture.h"

namespace velko::testing {

namespace {

class FramePixelsTest : public ViewerTest {
protected:
    FramePixelsTest() { w.ShowPixels(); }

    // Every pixel of the canvas is the page point's colour under it, or grey.
    // Points on the border of two squares of the pattern are left out.
    void ExpectPattern() {
        const auto frame = w.Device().FrontImage();
        const auto [nWidth, nHeight] = frame.Size();
        int nWrong = 0;
        int nChecked = 0;
        for (std::uint32_t y = 0; y < nHeight; ++y) {
            for (std::uint32_t x = 0; x < nWidth; ++x) {
                const auto wanted = Wanted(x, y);
                nChecked += wanted ? 1 : 0;
                nWrong += wanted && frame.At(x, y) != *wanted ? 1 : 0;
            }
        }
        EXPECT_EQ(nWrong, 0);
        EXPECT_GT(nChecked, static_cast<int>(nWidth * nHeight / 2));
    }

private:
    std::optional<std::uint32_t> Wanted(std::uint32_t x, std::uint32_t y) {
        for (const vkit::PageItemState& item : w.State().items) {
            const vkit::Render_ScreenOffsetInfo& rc = item.screenRect;
            // Blocks land on whole pixels, page and all.
            const double dbX = x + 0.5 - std::floor(rc.dbOffsetX + 0.5);
            const double dbY = y + 0.5 - std::floor(rc.dbOffsetY + 0.5);
            if (dbX < 0 || dbY < 0 || dbX >= rc.nWidth || dbY >= rc.nHeight) {
                continue;
            }
            return PageColor(item, dbX, dbY);
        }
        return 0xFFE0E0E0U;
    }
    std::optional<std::uint32_t> PageColor(const vkit::PageItemState& item, double dbX,
                                           double dbY) {
        const vkit::Render_ScreenOffsetInfo& rc = item.screenRect;
        const auto pt = w.pDocument->DevicePointToPagePoint(
            item.nPageIndex, 0, 0, rc.nWidth, rc.nHeight, item.nRotate,
            {static_cast<float>(dbX), static_cast<float>(dbY)});
        const auto fnNearBorder = [](float f) {
            return std::abs(f / 8.0F - std::round(f / 8.0F)) < 0.001F;
        };
        if (fnNearBorder(pt.X) || fnNearBorder(pt.Y)) {
            return std::nullopt;
        }
        return PatternColor(item.nPageIndex, {pt.X, pt.Y});
    }
};

TEST_F(FramePixelsTest, BlocksJoinToThePageWithoutSeams) {
    for (const std::int32_t nTurn : {0, 1, 2, 3}) {
        for (const double dbScale : {0.7, 1.0, 1.37, 2.9}) {
            w.Make(std::vector<ScriptedPage>(5, MakePage(151, 233, nTurn == 2 ? 1 : 0)), 160, 120);
            w.pOwner->dbFit = dbScale;
            w.Viewer().SetRotate(nTurn);
            w.Viewer().InitLayOut(1, 0.0, 0.0, 0.0);
            w.Viewer().MoveScreen(101, 37);
            w.Settle();
            SCOPED_TRACE(::testing::Message() << "turn " << nTurn << " scale " << dbScale);
            ExpectPattern();
        }
    }
}

TEST_F(FramePixelsTest, AFewMovesLaterStill) {
    w.Open(MakePages(5, 151, 233), 160, 120);
    for (const double dbMove : {33.3, 77.7, -12.5, 140.25, 200.0, -60.6}) {
        w.Viewer().MoveScreen(dbMove, 0);
        w.Settle();
        ExpectPattern();
    }
    w.Viewer().PageScaled({80, 60}, 2.2, false, false);
    w.Viewer().PageScaled({80, 60}, 2.2, false, true);
    w.Settle();
    ExpectPattern();
}

// --- failing devices ---

// Fails the N-th call of each kind for N = 1, 2, ... until none fails, and
// expects the viewer to be whole after the next layout.
TEST_F(FramePixelsTest, EveryDeviceCallMayFailOnce) {
    for (const GraphicsCall eCall :
         {GraphicsCall::CreateBitmap, GraphicsCall::EndDraw, GraphicsCall::Present1,
          GraphicsCall::CopyFromRenderTarget, GraphicsCall::CreateSolidColorBrush}) {
        for (std::uint32_t nCall = 1;; ++nCall) {
            ASSERT_LT(nCall, 100U);
            w.Make(MakePages(5, 151, 233), 160, 120);
            const auto fnTry = [&](const std::function<void()>& fnBody) {
                try {
                    fnBody();
                } catch (const Platform::Exception&) {
                    w.host.ClearDebug();
                }
                w.Settle();
            };
            const std::uint32_t nFaultsBefore = w.Device().FaultsHappened();
            w.Device().FailCallOf(eCall, nCall);
            fnTry([&] { w.Viewer().InitLayOut(0, 0, 0, 0); });
            fnTry([&] { w.Viewer().MoveScreen(60, 0); });
            fnTry([&] { w.Viewer().PageScaled({80, 60}, 2.0, false, true); });
            const bool bFailed = w.Device().FaultsHappened() > nFaultsBefore;
            w.Device().ClearFaults();
            w.Viewer().MoveScreen(20, 0);
            w.Settle();
            SCOPED_TRACE(::testing::Message() << NameOf(eCall) << " " << nCall);
            EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsRendering; }), 0U);
            ExpectPattern();
            ASSERT_FALSE(HasFailure());
            if (!bFailed) {
                break;
            }
        }
    }
}

TEST_F(FramePixelsTest, ALostDeviceIsMadeUpForByItself) {
    for (std::uint32_t nPresent = 1; nPresent < 8; ++nPresent) {
        w.Make(MakePages(5, 151, 233), 160, 120);
        const std::uint32_t nFaultsBefore = w.Device().FaultsHappened();
        w.Device().LoseDeviceAtPresent(nPresent);
        w.Viewer().InitLayOut(0, 0, 0, 0);
        w.Settle();
        w.Viewer().MoveScreen(60, 0);
        w.Settle();
        for (int n = 0; n < 4; ++n) {
            w.Viewer().UpdateViewer(); // frames alone; the reader does nothing
            w.Settle();
        }
        ASSERT_EQ(w.Device().FaultsHappened(), nFaultsBefore + 1) << nPresent;
        EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsDisplay && !b.bHasBitmap; }), 0U);
        ExpectPattern();
    }
}

// No move and no further frame: the block that just arrived starts anew by itself.
TEST_F(FramePixelsTest, ALossInTheFrameOfAFinishedBlockLeavesNoBlankPage) {
    for (std::uint32_t nPresent = 1; nPresent < 4; ++nPresent) {
        w.Make(MakePages(1, 151, 233), 160, 240);
        w.Device().LoseDeviceAtPresent(nPresent);
        w.Viewer().InitLayOut(0, 0, 0, 0);
        w.Settle();
        EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsDisplay && !b.bHasBitmap; }), 0U)
            << nPresent;
        EXPECT_EQ(w.CountBlocks([](const auto& b) { return b.bIsRendering; }), 0U) << nPresent;
    }
}

TEST_F(FramePixelsTest, ALossStartsOneRenderABlock) {
    w.Open(MakePages(5, 151, 233), 160, 120);
    w.Settle();
    w.pEngine->ClearLog();
    w.Device().LoseDeviceAtPresent(1);
    w.Viewer().UpdateViewer();
    w.Viewer().UpdateViewer();
    w.Viewer().UpdateViewer();
    EXPECT_EQ(w.Device().FrontImage().At(80, 60), 0xFFFFFFFFU);
    w.Settle();
    EXPECT_EQ(w.Renders(), 1);
    ExpectPattern();
}

}

}
