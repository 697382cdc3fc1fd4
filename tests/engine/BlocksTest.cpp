// Blocks of a page, joined, against the page drawn whole.

#include "tests/engine/MuPdfFixture.h"

#include <algorithm>
#include <cstring>

namespace velko::testing {

namespace {

// A curve is cut into lines anew in each block and a picture's samples are
// weighted anew, so single pixels round differently.
constexpr int kMaxChannelDifference = 16;
constexpr int kMaxDifferingPixelsInAThousand = 1;

void CopyInto(common::Bitmap& target, common::Bitmap& block, std::int32_t nLeft,
              std::int32_t nTop) {
    for (std::int32_t y = 0; y < block.GetHeight(); ++y) {
        std::memcpy(
            target.GetBuffer().data() + (std::ptrdiff_t{nTop + y} * target.GetWidth() + nLeft) * 4,
            block.GetBuffer().data() + std::ptrdiff_t{y} * block.GetWidth() * 4,
            static_cast<std::size_t>(block.GetWidth()) * 4);
    }
}

std::shared_ptr<common::Bitmap> RenderJoined(const std::shared_ptr<pdf::PDFPage>& pPage,
                                             const View& whole, std::int32_t nBlock) {
    auto pJoined = CreateBitmap(whole.nWidth, whole.nHeight);
    View block = whole;
    for (block.nTop = 0; block.nTop < whole.nHeight; block.nTop += nBlock) {
        for (block.nLeft = 0; block.nLeft < whole.nWidth; block.nLeft += nBlock) {
            block.nWidth = std::min(nBlock, whole.nWidth - block.nLeft);
            block.nHeight = std::min(nBlock, whole.nHeight - block.nTop);
            CopyInto(*pJoined, *Render(pPage, block), block.nLeft, block.nTop);
        }
    }
    return pJoined;
}

}

class BlocksTest : public MuPdfTest,
                   public ::testing::WithParamInterface<std::tuple<double, std::int32_t>> {};

TEST_P(BlocksTest, JoinedEqualTheWholePage) {
    const auto pDoc = OpenDoc(MixedDocument());
    ASSERT_TRUE(pDoc);
    const auto [dbScale, nRotate] = GetParam();
    const auto pPage = pDoc->GetPage(0);
    View view = WholePage(*pPage, dbScale, nRotate);
    for (const bool bMapped : {false, true}) {
        view.nBackColor = bMapped ? 0xFF202830U : kWhite;
        view.nForeColor = bMapped ? 0xFFE0E0D0U : kBlack;
        const auto pWhole = Render(pPage, view);
        for (const std::int32_t nBlock : {97, 256}) {
            const auto difference = Compare(*pWhole, *RenderJoined(pPage, view, nBlock));
            EXPECT_LE(difference.nMax, kMaxChannelDifference) << nBlock;
            EXPECT_LE(difference.nPixels * 1000LL,
                      std::int64_t{view.nWidth} * view.nHeight * kMaxDifferingPixelsInAThousand)
                << nBlock;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ScalesAndRotations, BlocksTest,
                         ::testing::Combine(::testing::Values(0.5, 1.0, 2.0, 4.0),
                                            ::testing::Range(0, 4)));

}
