#include "tests/engine/EngineConformance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "platform/concurrency/Cancellation.h"
#include "tests/engine/EngineFixture.h"

namespace velko::testing {

using common::ErrorCode;
using common::Progressive;
using common::vxbase::Matrix2D;
using common::vxbase::RectF;

namespace {

constexpr std::uint32_t kBottomLeft = 0xFFFF0000U;  // red
constexpr std::uint32_t kBottomRight = 0xFF00FF00U; // green
constexpr std::uint32_t kTopLeft = 0xFF0000FFU;     // blue
constexpr std::uint32_t kTopRight = 0xFFFFFF00U;    // yellow

// A page of 200 by 100 points with its corner at (10, 20), a quarter in each of
// the four colours.
ScriptedPage QuarteredPage(std::int32_t nRotation = 0) {
    ScriptedPage page;
    page.rcBox = {10.0F, 20.0F, 210.0F, 120.0F};
    page.nRotation = nRotation;
    page.ePaper = ScriptedPage::Paper::None;
    page.rects = {{{10.0F, 20.0F, 110.0F, 70.0F}, kBottomLeft},
                  {{110.0F, 20.0F, 210.0F, 70.0F}, kBottomRight},
                  {{10.0F, 70.0F, 110.0F, 120.0F}, kTopLeft},
                  {{110.0F, 70.0F, 210.0F, 120.0F}, kTopRight}};
    return page;
}

// The colours of the quarters as they stand on the screen, row by row.
std::array<std::uint32_t, 4> QuartersOf(common::Bitmap& bitmap) {
    const std::int32_t x = bitmap.GetWidth() / 4;
    const std::int32_t y = bitmap.GetHeight() / 4;
    return {PixelAt(bitmap, x, y), PixelAt(bitmap, 3 * x, y), PixelAt(bitmap, x, 3 * y),
            PixelAt(bitmap, 3 * x, 3 * y)};
}

// The quarters of `QuarteredPage` after so many quarter turns clockwise.
std::array<std::uint32_t, 4> TurnedQuarters(std::int32_t nTurns) {
    std::array<std::uint32_t, 4> q = {kTopLeft, kTopRight, kBottomLeft, kBottomRight};
    for (std::int32_t i = 0; i < (nTurns & 3); ++i) {
        q = {q[2], q[0], q[3], q[1]};
    }
    return q;
}

}

class EngineConformance : public ::testing::TestWithParam<ConformanceCase> {
protected:
    std::shared_ptr<pdf::PDFDoc> Create(const DocumentDescription& description) {
        m_pReader = m_pEngine->MakeReader(description);
        return CreateDoc(m_pReader);
    }
    std::shared_ptr<pdf::PDFDoc> Open(const std::vector<ScriptedPage>& pages) {
        auto pDoc = Create({pages, {}, {}});
        EXPECT_EQ(pDoc->Load({}), ErrorCode::e_ErrSuccess);
        return pDoc;
    }
    std::shared_ptr<pdf::PDFPage> OpenPage(const ScriptedPage& page) {
        return Open({page})->GetPage(0);
    }

    const std::unique_ptr<ConformanceEngine> m_pEngine = GetParam().fnMake();
    std::shared_ptr<MemoryReader> m_pReader; // of the last document made
};

INSTANTIATE_TEST_SUITE_P(Engines, EngineConformance, ::testing::ValuesIn(ConformanceCases()),
                         [](const auto& info) { return info.param.szName; });

TEST_P(EngineConformance, LoadAsksForThePasswordUntilItIsRight) {
    const auto pDoc = Create({{QuarteredPage(), QuarteredPage()}, "user", "owner"});
    EXPECT_EQ(pDoc->GetPageCount(), 0);
    EXPECT_EQ(pDoc->Load({}), ErrorCode::e_ErrPassword);
    EXPECT_EQ(pDoc->Load("wrong"), ErrorCode::e_ErrPassword);
    EXPECT_EQ(pDoc->GetPageCount(), 0);
    EXPECT_NE(EngineCodeOf([&] { pDoc->GetPage(0); }), ErrorCode::e_ErrSuccess);

    ASSERT_EQ(pDoc->Load("user"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pDoc->GetPageCount(), 2);
    EXPECT_EQ(pDoc->GetPasswordType(), 2);
    EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFCU);

    // A failed call leaves what is loaded as it was; a good one replaces it.
    const auto pPage = pDoc->GetPage(1);
    EXPECT_EQ(pDoc->Load("wrong"), ErrorCode::e_ErrPassword);
    EXPECT_EQ(pDoc->GetPageCount(), 2);
    EXPECT_EQ(QuartersOf(*Render(pPage, WholePage(*pPage))), TurnedQuarters(0));
    ASSERT_EQ(pDoc->Load("owner"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pDoc->GetPasswordType(), 3);
    EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFFU);
    EXPECT_EQ(QuartersOf(*Render(pPage, WholePage(*pPage))), TurnedQuarters(0));
}

TEST_P(EngineConformance, OpenDocumentsNeedNoPassword) {
    const auto pDoc = Create({{QuarteredPage()}, {}, {}});
    ASSERT_EQ(pDoc->Load("not needed"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pDoc->GetPasswordType(), pdf::PDFDoc::kNoPassword);
    EXPECT_EQ(pDoc->GetEncryptionType(), 0);
    EXPECT_EQ(pDoc->GetUserPermissions(), 0xFFFFFFFFU);
}

TEST_P(EngineConformance, TheReaderIsReleasedOnceWithTheLastReference) {
    auto pDoc = Open({QuarteredPage()});
    auto pPage = pDoc->GetPage(0);
    const std::weak_ptr<pdf::PDFDoc> wkDoc = pDoc;
    pDoc.reset();
    EXPECT_EQ(m_pReader->Releases(), 0);
    EXPECT_EQ(QuartersOf(*Render(pPage, WholePage(*pPage))), TurnedQuarters(0));
    pPage.reset();
    EXPECT_TRUE(wkDoc.expired());
    EXPECT_EQ(m_pReader->Releases(), 1);
    EXPECT_EQ(m_pReader->BadReads(), 0);
}

TEST_P(EngineConformance, DrawingFollowsTheDisplayMatrixInEveryRotation) {
    for (std::int32_t nRotation = 0; nRotation < 4; ++nRotation) {
        const auto pDoc = Open({ScriptedPage(), QuarteredPage(nRotation)});
        const auto pPage = pDoc->GetPage(1);
        EXPECT_EQ(pPage->GetIndex(), 1);
        EXPECT_EQ(pPage->GetRotation(), nRotation);
        EXPECT_FLOAT_EQ(pPage->GetWidth(), nRotation % 2 != 0 ? 100.0F : 200.0F);
        EXPECT_FLOAT_EQ(pPage->GetHeight(), nRotation % 2 != 0 ? 200.0F : 100.0F);
        for (const std::int32_t nIndex : {-1, 2, 1'000'000}) {
            EXPECT_EQ(EngineCodeOf([&] { pDoc->GetPage(nIndex); }), ErrorCode::e_ErrParam);
        }
        for (std::int32_t nRotate = 0; nRotate < 4; ++nRotate) {
            for (const double dbScale : {0.5, 1.0, 3.0}) {
                const auto pBitmap = Render(pPage, WholePage(*pPage, dbScale, nRotate));
                EXPECT_EQ(QuartersOf(*pBitmap), TurnedQuarters(nRotation + nRotate))
                    << nRotation << " " << nRotate << " " << dbScale;
            }
        }
    }
}

TEST_P(EngineConformance, BlocksJoinedAreTheWholePage) {
    const auto pPage = OpenPage(QuarteredPage(1));
    for (int nCase = 0; nCase < 12; ++nCase) {
        View whole = WholePage(*pPage, std::array{0.5, 2.0, 3.0}[nCase % 3], nCase / 3);
        if (nCase % 2 != 0) {
            whole.nBackColor = 0xFF202830U;
            whole.nForeColor = 0xFFE0E0D0U;
        }
        const auto pWhole = Render(pPage, whole);
        auto pJoined = CreateBitmap(whole.nWidth, whole.nHeight);
        constexpr std::int32_t kBlock = 70;
        for (View block = whole; block.nTop < whole.nHeight; block.nTop += kBlock) {
            for (block.nLeft = 0; block.nLeft < whole.nWidth; block.nLeft += kBlock) {
                block.nWidth = std::min(kBlock, whole.nWidth - block.nLeft);
                block.nHeight = std::min(kBlock, whole.nHeight - block.nTop);
                const auto pBlock = Render(pPage, block);
                for (std::int32_t y = 0; y < block.nHeight; ++y) {
                    std::copy_n(
                        pBlock->GetBuffer().data() + std::ptrdiff_t{y} * block.nWidth * 4,
                        block.nWidth * 4,
                        pJoined->GetBuffer().data() +
                            (std::ptrdiff_t{block.nTop + y} * whole.nWidth + block.nLeft) * 4);
                }
            }
        }
        const Difference difference = Compare(*pWhole, *pJoined);
        EXPECT_EQ(difference.nPixels, 0) << "case " << nCase << ", by " << difference.nMax;
    }
}

// Content is cut off at the page; what the page leaves open and what is not the
// page's keeps the bitmap's colour.
TEST_P(EngineConformance, DrawingTouchesWhatThePageDrawsAlone) {
    constexpr std::uint32_t kOwn = 0xFF123456U;
    const auto fnDraw = [&](const RectF& rc) {
        ScriptedPage page = QuarteredPage();
        page.rects = {{rc, kBottomLeft}};
        const auto pPage = OpenPage(page);
        auto pBitmap = CreateBitmap(300, 200);
        pBitmap->FillRect(kOwn, {0, 0, 300, 200});
        CreateRenderer(pBitmap)->StartRender(pPage, pPage->GetDisplayMatrix(50, 50, 200, 100, 0),
                                             nullptr);
        return pBitmap;
    };
    const auto pQuarter = fnDraw({10.0F, 20.0F, 110.0F, 70.0F});
    const auto pBeyond = fnDraw({-500.0F, -500.0F, 900.0F, 900.0F});
    for (const auto& [x, y, bOfPage, bInQuarter] :
         {std::tuple(50, 149, true, true), std::tuple(149, 100, true, true),
          std::tuple(150, 100, true, false), std::tuple(50, 99, true, false),
          std::tuple(249, 149, true, false), std::tuple(49, 100, false, false),
          std::tuple(250, 100, false, false), std::tuple(150, 49, false, false),
          std::tuple(150, 150, false, false)}) {
        EXPECT_EQ(PixelAt(*pBeyond, x, y), bOfPage ? kBottomLeft : kOwn) << x << " " << y;
        EXPECT_EQ(PixelAt(*pQuarter, x, y), bInQuarter ? kBottomLeft : kOwn) << x << " " << y;
    }
}

TEST_P(EngineConformance, ParsingIsMarkedAndItsProgressEnds) {
    const auto pPage = OpenPage(QuarteredPage());
    EXPECT_FALSE(pPage->IsParsed());
    const auto pProgress = pPage->StartParse(0, nullptr, 0);
    ASSERT_TRUE(pProgress);
    EXPECT_EQ(pProgress->Continue(), Progressive::kFinished);
    EXPECT_TRUE(pPage->IsParsed());
}

TEST_P(EngineConformance, AnnotationsAreDrawnOneByOne) {
    ScriptedPage page = QuarteredPage();
    page.annots = {{5, {20.0F, 30.0F, 60.0F, 50.0F}, 0xFF00FFFFU},
                   {0, {}, 0},
                   {13, {120.0F, 80.0F, 160.0F, 100.0F}, 0xFFFF00FFU}};
    const auto pPage = OpenPage(page);
    ASSERT_EQ(pPage->GetAnnotCount(), 3);
    const auto pSquare = pPage->GetAnnot(0);
    const auto pStamp = pPage->GetAnnot(2);
    ASSERT_TRUE(pSquare);
    EXPECT_EQ(pSquare->GetType(), 5);
    EXPECT_FALSE(pPage->GetAnnot(1));
    ASSERT_TRUE(pStamp);
    EXPECT_EQ(pStamp->GetType(), 13);
    for (const std::int32_t nIndex : {-1, 3}) {
        EXPECT_NE(EngineCodeOf([&] { pPage->GetAnnot(nIndex); }), ErrorCode::e_ErrSuccess);
    }

    // The content leaves them out; each then draws itself and nothing else.
    auto pBitmap = Render(pPage, WholePage(*pPage));
    EXPECT_EQ(PixelAt(*pBitmap, 20, 80), kBottomLeft);
    const auto pRenderer = CreateRenderer(pBitmap);
    const Matrix2D matrix = pPage->GetDisplayMatrix(0, 0, 200, 100, 0);
    EXPECT_TRUE(pRenderer->RenderAnnot(pSquare, matrix));
    EXPECT_EQ(PixelAt(*pBitmap, 11, 80), 0xFF00FFFFU);
    EXPECT_EQ(PixelAt(*pBitmap, 48, 80), 0xFF00FFFFU);
    EXPECT_EQ(PixelAt(*pBitmap, 52, 80), kBottomLeft);
    EXPECT_EQ(PixelAt(*pBitmap, 130, 30), kTopRight);
    EXPECT_TRUE(pRenderer->RenderAnnot(pStamp, matrix));
    EXPECT_EQ(PixelAt(*pBitmap, 130, 30), 0xFFFF00FFU);
}

TEST_P(EngineConformance, ASetAbortFlagEndsADrawingAsCancelled) {
    ScriptedPage page = QuarteredPage();
    page.annots = {{5, {20.0F, 30.0F, 60.0F, 50.0F}, 0xFF00FFFFU}};
    const auto pPage = OpenPage(page);
    auto pBitmap = CreateBitmap(200, 100);
    const auto pRenderer = CreateRenderer(pBitmap);
    const auto pAbort = std::make_shared<std::atomic<bool>>(true);
    pRenderer->SetAbortFlag(pAbort);
    const Matrix2D matrix = pPage->GetDisplayMatrix(0, 0, 200, 100, 0);
    EXPECT_THROW(pRenderer->StartRender(pPage, matrix, nullptr), concurrency::task_canceled);
    EXPECT_THROW(pRenderer->RenderAnnot(pPage->GetAnnot(0), matrix), concurrency::task_canceled);
    EXPECT_EQ(PixelAt(*pBitmap, 100, 50), 0U);

    // A flag that is not set changes nothing, and an abort leaves no trace.
    *pAbort = false;
    pRenderer->StartRender(pPage, matrix, nullptr);
    EXPECT_EQ(QuartersOf(*pBitmap), TurnedQuarters(0));
}

TEST_P(EngineConformance, BitmapsAreZeroAndFillClipped) {
    const auto pBitmap = CreateBitmap(10, 5);
    EXPECT_EQ(pBitmap->GetWidth(), 10);
    EXPECT_EQ(pBitmap->GetHeight(), 5);
    ASSERT_EQ(pBitmap->GetBuffer().size(), 200U);
    EXPECT_EQ(PixelAt(*pBitmap, 9, 4), 0U);
    pBitmap->FillRect(0xFF102030U, {-5, -5, 3, 2});
    pBitmap->FillRect(0x80FF0000U, {8, 3, 100, 100});
    pBitmap->FillRect(kWhite, {5, 1, 4, 4}); // nothing
    EXPECT_EQ(PixelAt(*pBitmap, 0, 0), 0xFF102030U);
    EXPECT_EQ(PixelAt(*pBitmap, 2, 1), 0xFF102030U);
    EXPECT_EQ(PixelAt(*pBitmap, 3, 1), 0U);
    EXPECT_EQ(PixelAt(*pBitmap, 2, 2), 0U);
    EXPECT_EQ(PixelAt(*pBitmap, 9, 4), 0x80800000U) << "multiplied by its alpha";
    EXPECT_EQ(PixelAt(*pBitmap, 4, 2), 0U);
    EXPECT_EQ(pBitmap->GetBuffer()[2], 0x10U) << "red is the third byte";
}

TEST_P(EngineConformance, BitmapsOfScreensAreMadeAndAbsurdOnesRefused) {
    EXPECT_EQ(CreateBitmap(2 * 3840, 2 * 2160)->GetBuffer().size(), 4U * 7680 * 4320);
    EXPECT_EQ(EngineCodeOf([] { CreateBitmap(0, 5); }), ErrorCode::e_ErrParam);
    EXPECT_EQ(EngineCodeOf([] { CreateBitmap(5, -1); }), ErrorCode::e_ErrParam);
    EXPECT_EQ(EngineCodeOf([] { CreateBitmap(0x7FFFFFFF, 0x7FFFFFFF); }),
              ErrorCode::e_ErrOutOfMemory);
    const auto pFactory =
        Platform::GetActivationFactory<common::IBitmapFactory>(common::kBitmapClass);
    EXPECT_EQ(EngineCodeOf([&] { pFactory->Create(5, 5, 24, nullptr, 0); }), ErrorCode::e_ErrParam);
}

TEST_P(EngineConformance, StrangersAreRefused) {
    class OtherAnnot final : public pdf::IAnnot {
        std::int32_t GetType() const override { return 5; }
    };
    const auto pRenderer = CreateRenderer(CreateBitmap(10, 10));
    EXPECT_EQ(EngineCodeOf([&] { pRenderer->StartRender(nullptr, {}, nullptr); }),
              ErrorCode::e_ErrParam);
    EXPECT_EQ(EngineCodeOf([&] { pRenderer->RenderAnnot(std::make_shared<OtherAnnot>(), {}); }),
              ErrorCode::e_ErrParam);
    EXPECT_EQ(EngineCodeOf([] { CreateRenderer(nullptr); }), ErrorCode::e_ErrParam);
}

TEST_P(EngineConformance, MatricesWithoutAnInverseDrawNothing) {
    const auto pPage = OpenPage(QuarteredPage());
    const auto pBitmap = CreateBitmap(20, 20);
    const auto pRenderer = CreateRenderer(pBitmap);
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const Matrix2D& matrix :
         {Matrix2D{0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F}, pPage->GetDisplayMatrix(0, 0, 0, 0, 0),
          Matrix2D{kInfinity, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F},
          Matrix2D{1.0F, 0.0F, 0.0F, 1.0F, std::numeric_limits<float>::quiet_NaN(), 0.0F}}) {
        pRenderer->StartRender(pPage, matrix, nullptr);
        EXPECT_EQ(PixelAt(*pBitmap, 10, 10), 0U);
    }
}

}
