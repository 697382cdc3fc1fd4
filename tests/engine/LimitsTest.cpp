// Time budgets, aborts and the bound on what is kept.

#include <chrono>
#include <thread>

#include "engines/mupdf/Allocator.h"
#include "engines/mupdf/PageCache.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/Scheduler.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/engine/ReflowFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using engines::mupdf::PageCache;
using engines::mupdf::SetBudgets;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {

// Far above what is needed, far below what the work would take.
constexpr milliseconds kPatience{5000};

milliseconds Since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

struct HostilePage {
    const char* szName;
    std::string strContent;
    std::string strResources;
    std::vector<std::string> objects; // from `kFirstExtraObject` on
    bool bCovers = false;             // may draw over what came before
};

std::string StreamObject(const std::string& strEntries, const std::string& strData) {
    return "<< " + strEntries + " /Length " + std::to_string(strData.size()) + " >>\nstream\n" +
           strData + "\nendstream";
}

std::vector<HostilePage> HostilePages() {
    const std::string strForm = "/Type /XObject /Subtype /Form /BBox [0 0 612 792] ";
    const std::string strMask = "/ExtGState << /G << /SMask << /S /Luminosity /G 10 0 R >> >> >>";
    return {
        {"tiny dashes", "[0.0001] 0 d 1 w 0 0 m 1000000 1000000 l S", "", {}},
        {"tiny tiles",
         "/Pattern cs /P scn 0 0 612 792 re f",
         "/Pattern << /P 10 0 R >>",
         {StreamObject("/Type /Pattern /PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 1 1] "
                       "/XStep 0.001 /YStep 0.001 /Resources << >>",
                       "1 0 0 rg 0 0 1 1 re f")},
         true},
        {"a form in itself",
         "/X Do",
         "/XObject << /X 10 0 R >>",
         {StreamObject(strForm + "/Resources << /XObject << /X 10 0 R >> >>", "/X Do /X Do")}},
        {"a mask in itself",
         "/G gs 0 0 612 792 re f",
         strMask,
         {StreamObject(strForm + "/Group << /S /Transparency >> /Resources << " + strMask + " >>",
                       "/G gs 0 0 9 9 re f")}},
        {"a picture beyond memory",
         "q 612 0 0 792 0 0 cm /X Do Q",
         "/XObject << /X 10 0 R >>",
         {StreamObject("/Type /XObject /Subtype /Image /Width 100000 /Height 100000 "
                       "/BitsPerComponent 8 /ColorSpace /DeviceRGB",
                       "abc")}},
        {"a million saved states", std::string(1'000'000, 'q'), "", {}},
        {"a million open arrays", std::string(1'000'000, '['), "", {}},
        {"numbers beyond all paper", "1e9 w 0 0 m 1e38 1 l 3 3 3 3 1e38 1e38 c S", "", {}, true},
    };
}

// Returns once the engine is at work on another thread: its memory changes.
void WaitForWork() {
    const std::size_t nBefore = engines::mupdf::EngineBytes();
    while (engines::mupdf::EngineBytes() == nBefore) {
        std::this_thread::yield();
    }
}

}

class LimitsTest : public MuPdfTest {};

// Whole or not, as the renderer tells it.
std::shared_ptr<common::Bitmap> RenderTelling(const std::shared_ptr<pdf::PDFPage>& pPage,
                                              bool* pbIncomplete) {
    const View view = WholePage(*pPage);
    auto pBitmap = CreateBitmap(view.nWidth, view.nHeight);
    pBitmap->FillRect(kWhite, {0, 0, view.nWidth, view.nHeight});
    const auto pRenderer = CreateRenderer(pBitmap);
    const auto matrix = pPage->GetDisplayMatrix(0, 0, view.nPageWidth, view.nPageHeight, 0);
    pRenderer->StartRender(pPage, matrix, nullptr);
    *pbIncomplete = pRenderer->IsIncomplete();
    return pBitmap;
}

TEST_F(LimitsTest, AParseBeyondItsBudgetKeepsWhatItHas) {
    const auto pDoc = OpenDoc(NestedFormsDocument(12));
    ASSERT_TRUE(pDoc);
    SetBudgets({.parse = milliseconds(100), .render = milliseconds(200)});
    const auto pPage = pDoc->GetPage(0);
    const auto start = Clock::now();
    EXPECT_EQ(pPage->StartParse(0, nullptr, 0)->Continue(), common::Progressive::kCutShort);
    EXPECT_FALSE(pPage->IsParsed());
    bool bIncomplete = false;
    const auto pBitmap = RenderTelling(pPage, &bIncomplete);
    EXPECT_TRUE(bIncomplete);
    EXPECT_LT(Since(start), kPatience);
    EXPECT_EQ(PixelAt(*pBitmap, 50, 50), 0xFFFF0000U) << "what came before the bomb";
}

// For a caller that can wait for so many questions.
class Impatience final : public common::IPauseCallback {
public:
    explicit Impatience(int nQuestions) : m_nLeft(nQuestions) {}
    bool NeedToPauseNow() override { return m_nLeft-- <= 0; }

private:
    int m_nLeft;
};

TEST_F(LimitsTest, WhatACallerCannotWaitForIsDoneWholeAtAnotherTime) {
    using common::Progressive;
    const auto pDoc = OpenDoc(StrokesDocument(1000));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    for (const int nQuestions : {0, 1, 5, 20}) {
        Impatience impatience(nQuestions);
        const auto pProgress = pPage->StartParse(0, &impatience, 0);
        EXPECT_EQ(pProgress->Continue(), Progressive::kToBeContinued) << nQuestions;
        EXPECT_FALSE(pPage->IsParsed()) << "nothing half done is kept";
    }
    Impatience impatience(3);
    const auto pReflow = CreateReflow(pPage);
    pReflow->SetScreenSize(300.0F, 400.0F);
    const auto pProgress = pReflow->StartParse(&impatience);
    EXPECT_EQ(pProgress->Continue(), Progressive::kToBeContinued);
    EXPECT_EQ(pReflow->GetContentHeight(), 0);
    EXPECT_EQ(pProgress->Continue(), Progressive::kFinished);
    EXPECT_EQ(pProgress->Continue(), Progressive::kFinished);
    EXPECT_GT(pReflow->GetContentHeight(), 0);
    EXPECT_TRUE(pPage->IsParsed());
    Impatience none(0); // what is known takes no time
    EXPECT_EQ(pReflow->StartParse(&none)->Continue(), Progressive::kFinished);

    const auto pBomb = OpenDoc(NestedFormsDocument(12))->GetPage(0);
    Impatience brief(50);
    EXPECT_EQ(pBomb->StartParse(0, &brief, 0)->Continue(), Progressive::kToBeContinued);
}

// A machine that was busy for a while must not leave half a page for ever.
TEST_F(LimitsTest, WhatWasCutShortComesOutWholeWhenItIsAskedForAnew) {
    const auto pDoc = OpenDoc(StrokesDocument(1000));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    bool bIncomplete = false;
    const auto pWanted = RenderTelling(pPage, &bIncomplete);
    EXPECT_FALSE(bIncomplete);
    SetBudgets({.render = milliseconds(0)});
    RenderTelling(pPage, &bIncomplete);
    EXPECT_TRUE(bIncomplete);

    PageCache::Instance().SetLimits({1, 1});
    OpenDoc(MixedDocument())->GetPage(0)->StartParse(0, nullptr, 0); // takes the page's place
    PageCache::Instance().SetLimits({});
    SetBudgets({.parse = milliseconds(0)});
    RenderTelling(pPage, &bIncomplete);
    EXPECT_TRUE(bIncomplete);
    SetBudgets({});
    RenderTelling(pPage, &bIncomplete);
    EXPECT_TRUE(bIncomplete) << "each block of the page would take the whole time again";
    EXPECT_EQ(pPage->StartParse(0, nullptr, 1)->Continue(), common::Progressive::kFinished);
    EXPECT_EQ(Compare(*RenderTelling(pPage, &bIncomplete), *pWanted).nPixels, 0);
    EXPECT_FALSE(bIncomplete);
}

TEST_F(LimitsTest, WaitingForBytesCountsAgainstNoBudget) {
    PdfPage page;
    page.strContent =
        "0 0 1 rg 600 780 12 12 re f\n" + std::string(40'000, ' '); // reads of its own
    const std::string strBytes = MakePdf({page});
    const auto pWhole = OpenDoc(strBytes);
    const auto pReader = std::make_shared<MemoryReader>(strBytes);
    const auto pDoc = CreateDoc(pReader);
    ASSERT_EQ(pDoc->Load({}), common::ErrorCode::e_ErrSuccess);
    SetBudgets({.parse = milliseconds(200)});
    const int nReads = pReader->Reads();
    pReader->BeSlowUntil(Clock::now() + milliseconds(400));
    bool bIncomplete = true;
    const auto pPage = pDoc->GetPage(0);
    const auto pBitmap = RenderTelling(pPage, &bIncomplete);
    ASSERT_GT(pReader->Reads(), nReads);
    EXPECT_FALSE(bIncomplete);
    EXPECT_TRUE(pPage->IsParsed());
    EXPECT_EQ(Compare(*pBitmap, *RenderTelling(pWhole->GetPage(0), &bIncomplete)).nPixels, 0);
}

// The pool reads what `Load` did not get to, so that a jump reads nothing.
TEST_F(LimitsTest, SizesAreReadAheadOnThePool) {
    class HandRunPool final : public concurrency::scheduler {
    public:
        void schedule(concurrency::work fnWork) override { works.push_back(std::move(fnWork)); }
        std::vector<concurrency::work> works;
    };
    const auto pPool = std::make_shared<HandRunPool>();
    concurrency::set_task_pool(pPool);
    SetBudgets({.table = milliseconds(0)});
    const auto pReader = std::make_shared<MemoryReader>(NestedFormsDocument(1, 300));
    auto pDoc = CreateDoc(pReader);
    EXPECT_EQ(pDoc->Load({}), common::ErrorCode::e_ErrSuccess);
    concurrency::set_task_pool(nullptr);
    ASSERT_EQ(pPool->works.size(), 1U);
    pPool->works.front()();
    const int nReads = pReader->Reads();
    EXPECT_FLOAT_EQ(pDoc->GetPage(250)->GetWidth(), 350.0F);
    EXPECT_EQ(pReader->Reads(), nReads);
}

TEST_F(LimitsTest, HostilePagesEndInTimeAndKeepWhatCameBefore) {
    SetBudgets({.parse = milliseconds(500), .render = milliseconds(500)});
    for (const HostilePage& hostile : HostilePages()) {
        SCOPED_TRACE(hostile.szName);
        PdfPage page;
        page.strContent = "0 0 1 rg 600 780 12 12 re f\n" + hostile.strContent;
        page.strExtra = "/Resources << " + hostile.strResources + " >>";
        PdfOptions options;
        options.extraObjects = hostile.objects;
        const auto pDoc = OpenDoc(MakePdf({page}, options));
        ASSERT_TRUE(pDoc);
        const auto pPage = pDoc->GetPage(0);
        const auto start = Clock::now();
        View view = WholePage(*pPage);
        view.nHeight = 20; // the top, where nothing is drawn over the blue square
        const auto pBitmap = Render(pPage, view);
        Render(pPage, WholePage(*pPage, 2.0));
        EXPECT_LT(Since(start), kPatience);
        EXPECT_TRUE(hostile.bCovers || PixelAt(*pBitmap, 606, 6) == 0xFF0000FFU);
    }
}

TEST_F(LimitsTest, AParseAndARenderAreAbortedWhileTheyWork) {
    for (const bool bParse : {true, false}) {
        const auto pDoc = OpenDoc(bParse ? NestedFormsDocument(12) : StrokesDocument(60'000));
        ASSERT_TRUE(pDoc);
        const auto pPage = pDoc->GetPage(0);
        if (!bParse) {
            pPage->StartParse(0, nullptr, 0);
        }
        View view = WholePage(*pPage, 4.0);
        const auto pAbort = std::make_shared<std::atomic<bool>>(false);
        view.pAbort = pAbort;
        Clock::time_point timeSet;
        std::thread aborter([&] {
            WaitForWork();
            *pAbort = true;
            timeSet = Clock::now();
        });
        EXPECT_THROW(Render(pPage, view), concurrency::task_canceled);
        const auto timeEnd = Clock::now();
        aborter.join();
        EXPECT_LT(timeEnd - timeSet, milliseconds(500));
        EXPECT_EQ(pPage->IsParsed(), !bParse);
    }
}

// Sizes that `Load` did not get to are read beside a parse, not after it.
TEST_F(LimitsTest, SizesReadLateDoNotWaitForAParse) {
    SetBudgets({.table = milliseconds(0)});
    const auto pReader = std::make_shared<MemoryReader>(NestedFormsDocument(12, 300));
    const auto pDoc = CreateDoc(pReader);
    ASSERT_EQ(pDoc->Load({}), common::ErrorCode::e_ErrSuccess);

    // A read that fails shows, and the next one serves.
    pReader->FailRead(1, true);
    EXPECT_EQ(EngineCodeOf([&] { pDoc->GetPage(250); }), common::ErrorCode::e_ErrFile);
    pReader->StopFailing();

    View view = WholePage(*pDoc->GetPage(0));
    const auto pAbort = std::make_shared<std::atomic<bool>>(false);
    view.pAbort = pAbort;
    std::atomic<bool> bEnded = false;
    std::thread parser([&] {
        EXPECT_THROW(Render(pDoc->GetPage(0), view), concurrency::task_canceled);
        bEnded = true;
    });
    WaitForWork();
    for (const std::int32_t nPage : {300, 70, 150, 1}) {
        EXPECT_FLOAT_EQ(pDoc->GetPage(nPage)->GetWidth(), 100.0F + static_cast<float>(nPage));
    }
    EXPECT_FALSE(bEnded);
    *pAbort = true;
    parser.join();
}

TEST_F(LimitsTest, KeptPagesStayWithinTheBoundAndComeBackAlike) {
    constexpr int kPages = 12;
    const auto pDoc = OpenDoc(MixedDocument(kPages));
    ASSERT_TRUE(pDoc);
    std::vector<std::shared_ptr<common::Bitmap>> pictures;
    for (std::int32_t i = 0; i < kPages; ++i) {
        const auto pPage = pDoc->GetPage(i);
        pictures.push_back(Render(pPage, WholePage(*pPage)));
    }
    PageCache& cache = PageCache::Instance();
    const std::size_t nAll = cache.Bytes();
    ASSERT_GE(cache.Count(), static_cast<std::size_t>(kPages));

    cache.SetLimits({nAll / 3, nAll / 3});
    EXPECT_LE(cache.Bytes(), nAll / 3);
    EXPECT_LT(cache.Count(), static_cast<std::size_t>(kPages));
    for (std::int32_t i = 0; i < kPages; ++i) {
        const auto pPage = pDoc->GetPage(i);
        const auto pAgain = Render(pPage, WholePage(*pPage));
        EXPECT_EQ(Compare(*pictures[static_cast<std::size_t>(i)], *pAgain).nPixels, 0) << i;
        EXPECT_LE(cache.Bytes(), nAll / 3);
    }

    // A bound that no page meets keeps the one that is in use.
    cache.SetLimits({1, 1});
    const auto pPage = pDoc->GetPage(5);
    EXPECT_EQ(Compare(*pictures[5], *Render(pPage, WholePage(*pPage))).nPixels, 0);
    EXPECT_EQ(cache.Count(), 1U);
}

TEST_F(LimitsTest, ClosingADocumentGivesItsMemoryBack) {
    PageCache& cache = PageCache::Instance();
    const std::size_t nCount = cache.Count();
    for (int i = 0; i < 3; ++i) {
        auto pDoc = OpenDoc(MixedDocument(3));
        ASSERT_TRUE(pDoc);
        pDoc->GetPage(0)->StartParse(0, nullptr, 0);
        EXPECT_GT(cache.Count(), nCount);
        pDoc.reset();
        EXPECT_EQ(cache.Count(), nCount);
    }
}

}
