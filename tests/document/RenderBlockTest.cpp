// Rendering a rectangle of a page into a bitmap, one render at a time.
#include <atomic>
#include <cstring>
#include <thread>
#include <tuple>

#include "platform/foundation/Exception.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using common::EngineException;
using concurrency::task_canceled;
using vkit::BitmapBox;
using vkit::RenderBlockRequest;
using vkit::VLK_Document;

std::uint32_t PixelAt(common::Bitmap& bitmap, std::int32_t x, std::int32_t y) {
    std::uint32_t nPixel = 0;
    std::memcpy(&nPixel,
                &bitmap.GetBuffer()[static_cast<std::size_t>(4 * (y * bitmap.GetWidth() + x))], 4);
    return nPixel;
}

class RenderBlockTest : public SteppedDocumentTest {
protected:
    RenderBlockTest() {
        std::vector<ScriptedPage> pages = MakePages(2, 96, 64);
        pages[0].annots = {{1, {8, 8, 16, 16}}, {0, {}}, {20, {40, 40, 48, 48}}};
        m_pEngine->SetPages(std::move(pages));
        m_pDocument = WrapDocument();
    }

    std::shared_ptr<pdf::PDFPage> Page(std::int32_t nPageIndex = 0) {
        m_pDocument->GetPageSize(nPageIndex);
        return m_pDocument->ReLoadPageIndex(nPageIndex)->m_pPageHandle->m_pPage;
    }
    std::shared_ptr<common::Bitmap> Render(const RenderBlockRequest& request) {
        BitmapBox box;
        EXPECT_TRUE(m_pDocument->RenderPageBlock(request, box));
        return box.pBitmap;
    }
    // A render on another thread ends only if no lock was left behind.
    void ExpectLockIsFree() {
        const auto pPage = Page(1);
        std::thread([&] { EXPECT_NE(Render(Block(pPage, 0, 0, 8, 8)), nullptr); }).join();
    }

    DocumentPtr m_pDocument;
};

TEST_F(RenderBlockTest, ScaleAppliesToBitmapAndMatrixAndSizesAreTruncated) {
    RenderBlockRequest request = Block(Page(1), -8, -16, 25, 15);
    request.fDisplayWidth = 96.9F;
    request.fDisplayHeight = 64.9F;
    request.fScale = 0.5F;
    Render(request);
    const EngineCall call = m_pEngine->Calls(EngineOp::StartRender).back();
    EXPECT_EQ(call.nWidth, 12);
    EXPECT_EQ(call.nHeight, 7);
    EXPECT_FLOAT_EQ(call.matrix.A, 0.5F);
    EXPECT_FLOAT_EQ(call.matrix.D, -0.5F);
    EXPECT_FLOAT_EQ(call.matrix.E, -4.0F);
    EXPECT_FLOAT_EQ(call.matrix.F, (64.0F - 16.0F) * 0.5F);
}

// Where the page is not, the bitmap has the back colour.
TEST_F(RenderBlockTest, OnlyBlackOnWhiteIsTheNormalColourMode) {
    const std::tuple<std::uint32_t, std::uint32_t, std::int32_t> cases[] = {
        {0xFFFFFFFFU, 0xFF000000U, 0},
        {0xFFFFFFFFU, 0xFF000001U, 2},
        {0xFFFFFFFEU, 0xFF000000U, 2},
        {0xFF102030U, 0xFFFFFFFFU, 2}};
    for (const auto& [nBack, nFore, nMode] : cases) {
        RenderBlockRequest request = Block(Page(1), 8, 8, 20, 20);
        request.nBackColor = nBack;
        request.nForeColor = nFore;
        const auto pBitmap = Render(request);
        EXPECT_EQ(PixelAt(*pBitmap, 19, 7), nBack);
        EXPECT_NE(PixelAt(*pBitmap, 8, 8), nBack);
        const EngineCall call = m_pEngine->Calls(EngineOp::StartRender).back();
        EXPECT_EQ(call.nColorMode, nMode);
        EXPECT_TRUE(nMode == 0 || (call.nBackColor == nBack && call.nForeColor == nFore));
    }
}

TEST_F(RenderBlockTest, FlagsChooseContentAndAnnotations) {
    for (std::uint32_t nFlags = 0; nFlags < 4; ++nFlags) {
        m_pEngine->ClearLog();
        m_pDocument->RenderFlags(nFlags);
        RenderBlockRequest request = Block(Page(), 0, 0, 96, 64);
        m_pDocument->FillRenderState(request);
        m_pDocument->RenderFlags(7); // what comes later does not reach the request
        Render(request);
        EXPECT_EQ(m_pEngine->Count(EngineOp::StartRender), (nFlags & 1U) != 0 ? 1 : 0);
        EXPECT_EQ(m_pEngine->Count(EngineOp::RenderAnnot), (nFlags & 2U) != 0 ? 2 : 0)
            << "the entry of the list that is no annotation is left out";
    }
}

TEST_F(RenderBlockTest, HiddenAnnotationTypesAreLeftOut) {
    m_pDocument->AddHiddenAnnotType(20);
    RenderBlockRequest request = Block(Page(), 0, 0, 96, 64);
    m_pDocument->FillRenderState(request);
    m_pDocument->AddHiddenAnnotType(1); // what comes later does not reach the request
    Render(request);
    const auto calls = m_pEngine->Calls(EngineOp::RenderAnnot);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].nIndex, 0);
}

TEST_F(RenderBlockTest, OwnerHearsOfEachRenderWithItsMatrixAndMayRenderItself) {
    const RenderBlockRequest request = Block(Page(), -4, -4, 16, 16);
    int nDepth = 0;
    m_pOwner->fnOnRendered = [&](const vkit::RenderPageEventArgs& args) {
        EXPECT_FLOAT_EQ(args.Matrix.E, -4.0F);
        if (++nDepth == 1) {
            Render(request);
        }
    };
    m_pOwner->TakeEvents();
    Render(request);
    EXPECT_EQ(m_pOwner->TakeEvents(), (Texts{"rendered 0", "rendered 0"}));
    m_pDocument->SetOwner({});
    Render(request);
    EXPECT_TRUE(m_pOwner->TakeEvents().empty());
}

TEST_F(RenderBlockTest, NoOtherRenderStartsWhileAHandlerRuns) {
    std::thread other;
    std::atomic<bool> bStarted = false;
    int nDuring = -1;
    const auto pOtherPage = Page(1);
    m_pOwner->fnOnRendered = [&](const vkit::RenderPageEventArgs& args) {
        if (args.PageIndex != 0) {
            return;
        }
        other = std::thread([&, pOtherPage] {
            bStarted = true;
            bStarted.notify_one();
            Render(Block(pOtherPage, 0, 0, 8, 8));
        });
        bStarted.wait(false);
        for (int nTurn = 0; nTurn < 500 && m_pEngine->Count(EngineOp::CreateBitmap) < 2; ++nTurn) {
            std::this_thread::yield();
        }
        nDuring = m_pEngine->Count(EngineOp::CreateBitmap);
    };
    Render(Block(Page(), 0, 0, 8, 8));
    other.join();
    EXPECT_EQ(nDuring, 1);
    EXPECT_EQ(m_pEngine->Count(EngineOp::CreateBitmap), 2);
}

TEST_F(RenderBlockTest, CancelledRequestNeverReachesTheEngine) {
    const concurrency::cancellation_token_source source;
    RenderBlockRequest request = Block(Page(), 0, 0, 8, 8);
    request.token = source.get_token();
    source.cancel();
    BitmapBox box;
    EXPECT_THROW(m_pDocument->RenderPageBlock(request, box), task_canceled);
    EXPECT_EQ(box.pBitmap, nullptr);
    EXPECT_EQ(m_pEngine->Count(EngineOp::CreateBitmap), 0);
    ExpectLockIsFree();
}

TEST_F(RenderBlockTest, EveryFailureEndsTheRenderAndFreesTheLock) {
    const RenderBlockRequest request = Block(Page(), 0, 0, 96, 64);
    int nMet = 0;
    for (const EngineOp eOp :
         {EngineOp::StartParse, EngineOp::CreateBitmap, EngineOp::CreateRenderer,
          EngineOp::StartRender, EngineOp::GetAnnotCount, EngineOp::GetAnnot,
          EngineOp::RenderAnnot}) {
        bool bMet = true;
        for (int nCall = 1; bMet; ++nCall) {
            ASSERT_LT(nCall, 10) << static_cast<int>(eOp);
            const int nBefore = m_pEngine->FailuresRaised();
            m_pEngine->FailCall(eOp, nCall);
            BitmapBox box;
            try {
                m_pDocument->RenderPageBlock(request, box);
            } catch (const EngineException&) {
                EXPECT_EQ(box.pBitmap, nullptr);
            }
            bMet = m_pEngine->FailuresRaised() > nBefore;
            nMet += bMet ? 1 : 0;
            m_pEngine->ClearFailures();
            EXPECT_EQ(box.pBitmap == nullptr, bMet) << static_cast<int>(eOp) << " " << nCall;
            box.pBitmap.reset();
            EXPECT_EQ(m_pEngine->LiveBitmaps(), 0);
            ExpectLockIsFree();
        }
    }
    EXPECT_GE(nMet, 10);
    m_pOwner->fnOnRendered = [](const auto&) { throw Platform::AccessDeniedException(); };
    BitmapBox box;
    EXPECT_THROW(m_pDocument->RenderPageBlock(request, box), Platform::AccessDeniedException);
    m_pOwner->fnOnRendered = nullptr;
    ExpectLockIsFree();
}

TEST_F(RenderBlockTest, SizesThatNoBitmapHasAreRefused) {
    BitmapBox box;
    for (const float fScale : {0.0F, -1.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
        RenderBlockRequest request = Block(Page(), 0, 0, 8, 8);
        request.fScale = fScale;
        EXPECT_THROW(m_pDocument->RenderPageBlock(request, box), EngineException) << fScale;
    }
    EXPECT_THROW(m_pDocument->RenderPageBlock({}, box), Platform::NullReferenceException);
    ExpectLockIsFree();
}

class RenderThreadsTest : public ThreadedDocumentTest {
protected:
    concurrency::task<bool> Start(const DocumentPtr& pDocument, std::int32_t nPageIndex,
                                  const concurrency::cancellation_token_source& source) {
        pDocument->GetPageSize(nPageIndex);
        RenderBlockRequest request =
            Block(pDocument->ReLoadPageIndex(nPageIndex)->m_pPageHandle->m_pPage, 0, 0, 16, 16);
        request.token = source.get_token();
        return concurrency::create_task([pDocument, request] {
            BitmapBox box;
            return pDocument->RenderPageBlock(request, box) && box.pBitmap != nullptr;
        });
    }
};

TEST_F(RenderThreadsTest, CancelledWhileItWaitsForTheLockNeverReachesTheEngine) {
    const DocumentPtr pDocument = WrapDocument();
    const auto pGate = m_pEngine->Hold(EngineOp::StartRender, 0);
    const concurrency::cancellation_token_source first;
    const concurrency::cancellation_token_source second;
    const auto running = Start(pDocument, 0, first);
    ASSERT_TRUE(pGate->WaitUntilReached());
    const auto waiting = Start(pDocument, 1, second);
    second.cancel();
    pGate->Open();
    EXPECT_TRUE(Await(running));
    EXPECT_THROW(Await(waiting), task_canceled);
    EXPECT_EQ(m_pEngine->Count(EngineOp::CreateBitmap), 1);
}

TEST_F(RenderThreadsTest, CancelledWhileTheEngineDrawsEndsEarly) {
    const DocumentPtr pDocument = WrapDocument();
    const auto pGate = m_pEngine->Hold(EngineOp::StartRender, 0);
    const concurrency::cancellation_token_source source;
    const auto running = Start(pDocument, 0, source);
    ASSERT_TRUE(pGate->WaitUntilReached());
    source.cancel();
    EXPECT_THROW(Await(running), task_canceled);
    EXPECT_EQ(m_pEngine->AbortedRenders(), 1);
    EXPECT_EQ(m_pEngine->LiveBitmaps(), 0);
    EXPECT_TRUE(Await(Start(pDocument, 1, {})));
}

}
}
