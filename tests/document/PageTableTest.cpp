// The table of pages: which entries there are, when the engine is asked, what
// the owner hears and on which thread.
#include <thread>

#include "platform/foundation/Exception.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using common::EngineException;
using Platform::Fake::OffUiScope;
using vkit::VLK_Document;
using vkit::WPPDFPage;
using Windows::Foundation::Rect;

using PageTableTest = SteppedDocumentTest;
using LoadPageTest = SteppedDocumentTest;

TEST_F(PageTableTest, SizeMakesTheEntryOnceAndTellsTheOwnerAtOnce) {
    m_pEngine->SetPages({MakePage(100, 200), MakePage(300, 400, 1), MakePage(100, 200)});
    const DocumentPtr pDocument = WrapDocument();
    const auto pEnsured = pDocument->EnsurePageEntry(2); // as a load makes it
    EXPECT_FALSE(pEnsured->m_bAnnotsLoaded);
    {
        const OffUiScope offUi; // the caller's thread, whichever it is
        const auto pSize = pDocument->GetPageSize(1);
        ASSERT_NE(pSize, nullptr);
        EXPECT_EQ(pSize->fWidth, 400.0F) << "after the page's own rotation";
        EXPECT_EQ(pSize->fHeight, 300.0F);
        EXPECT_EQ(pDocument->GetPageSize(1), pSize);
    }
    EXPECT_EQ(pDocument->ReLoadPageIndex(1)->m_nRotation, 1);
    EXPECT_TRUE(pDocument->ReLoadPageIndex(1)->m_bAnnotsLoaded);
    for (int nTime = 0; nTime < 2; ++nTime) {
        pDocument->GetPageSize(2);
        EXPECT_TRUE(pEnsured->m_bAnnotsLoaded);
        EXPECT_EQ(pDocument->EnsurePageEntry(2), pEnsured);
    }
    EXPECT_EQ(m_pOwner->TakeEvents(), (Texts{"loaded 2", "loaded 1 off ui"}));
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage), 2);
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetAnnotCount, 1), 0);
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetAnnotCount, 2), 1);
}

TEST_F(PageTableTest, EntryMadeOffTheUiThreadIsToldThroughItsQueue) {
    const DocumentPtr pDocument = WrapDocument();
    {
        const OffUiScope offUi;
        pDocument->EnsurePageEntry(0);
    }
    EXPECT_TRUE(m_pOwner->TakeEvents().empty());
    EXPECT_EQ(m_host.Dispatcher().Pending(concurrency::priority::normal), 1U);
    m_host.Drain();
    EXPECT_EQ(m_pOwner->TakeEvents(), Texts{"loaded 0"});
    {
        const OffUiScope offUi;
        pDocument->EnsurePageEntry(1);
    }
    pDocument->Dispose();
    m_pOwner->TakeEvents();
    m_host.Drain();
    EXPECT_TRUE(m_pOwner->TakeEvents().empty()) << "a closed document loads no page";
}

TEST_F(PageTableTest, OutOfRangeGivesNothingAndAsksNobody) {
    const DocumentPtr pDocument = WrapDocument();
    for (const std::int32_t nPageIndex : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(pDocument->GetPageSize(nPageIndex), nullptr);
        EXPECT_EQ(pDocument->EnsurePageEntry(nPageIndex), nullptr);
        EXPECT_EQ(pDocument->ReLoadPageIndex(nPageIndex), nullptr);
    }
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage), 0);
    EXPECT_TRUE(m_host.DebugOutput().empty());
    EXPECT_THROW(pDocument->PeekPageSize(3), EngineException);
    EXPECT_EQ(pDocument->PeekPageSize(2)->fHeight, 792.0F);
    EXPECT_EQ(pDocument->ReLoadPageIndex(2), nullptr) << "a peek leaves the table alone";
}

TEST_F(PageTableTest, InsertTellsWhetherTheKeyWasNew) {
    const DocumentPtr pDocument = WrapDocument();
    for (const bool bNew : {true, false}) {
        const auto pEntry = std::make_shared<WPPDFPage>();
        pEntry->m_pPageHandle = std::make_shared<vkit::VLK_PageHandle>();
        EXPECT_EQ(pDocument->InsertPageEntry(pEntry, 7), bNew);
        EXPECT_EQ(pDocument->ReLoadPageIndex(7), pEntry);
    }
    EXPECT_THROW(pDocument->InsertPageEntry(nullptr, 0), Platform::NullReferenceException);
}

TEST_F(PageTableTest, ClearGivesPagesUpExceptThoseInUse) {
    const DocumentPtr pDocument = WrapDocument();
    for (const std::int32_t nPageIndex : {2, 0, 1}) {
        pDocument->GetPageSize(nPageIndex);
    }
    const auto pIdle = pDocument->ReLoadPageIndex(0);
    const auto pInUse = pDocument->ReLoadPageIndex(1);
    const auto pHandle = pIdle->m_pPageHandle;
    pDocument->AddPageUse(pInUse, 1);
    m_pOwner->TakeEvents();
    pDocument->ClearPageInfoVector();
    EXPECT_EQ(m_pOwner->TakeEvents(), (Texts{"unloaded 0", "unloaded 1", "unloaded 2"}));
    EXPECT_EQ(m_host.DebugOutput(), Texts{"VLK_Document::ClearPageInfoVector\n"});
    EXPECT_EQ(pIdle->m_pPageHandle, nullptr);
    EXPECT_EQ(pHandle->m_pPage, nullptr) << "whoever kept the handle has no page either";
    EXPECT_NE(pIdle->m_pPageSize, nullptr);
    EXPECT_FALSE(pIdle->m_bAnnotsLoaded);
    ASSERT_NE(pInUse->m_pPageHandle, nullptr);
    EXPECT_NE(pInUse->m_pPageHandle->m_pPage, nullptr);
    EXPECT_EQ(m_pEngine->LivePages(), 1);
    EXPECT_EQ(pDocument->ReLoadPageIndex(1), nullptr) << "in use, but no longer in the table";
    pDocument->AddPageUse(pInUse, -1);
    pDocument->GetPageSize(0);
    EXPECT_EQ(m_pOwner->TakeEvents(), Texts{"loaded 0"});
    EXPECT_NE(pDocument->ReLoadPageIndex(0), pIdle);
}

TEST_F(PageTableTest, DroppedPageComesBackWhole) {
    std::vector<ScriptedPage> pages = MakePages(2);
    pages[0].nParseSteps = 3;
    m_pEngine->SetPages(std::move(pages));
    const DocumentPtr pDocument = WrapDocument();
    pDocument->InsertPageEntry(std::make_shared<WPPDFPage>(), 0);
    m_pEngine->FailCall(EngineOp::StartParse, 1);
    EXPECT_THROW(pDocument->ReLoadPageIndex(0), EngineException);
    EXPECT_EQ(m_host.DebugOutput(), Texts{"ReLoadPageIndex:0\n"});

    const auto pEntry = pDocument->ReLoadPageIndex(0);
    ASSERT_NE(pEntry->m_pPageHandle, nullptr);
    EXPECT_TRUE(pEntry->m_pPageHandle->m_pPage->IsParsed());
    EXPECT_FALSE(pEntry->m_bAnnotsLoaded);
    EXPECT_EQ(m_host.DebugOutput(),
              (Texts{"ReLoadPageIndex:0\n", "ReLoadPageIndex:0\n",
                     "ReLoadParserPageIndex Completed:0\n", "ReLoadPageIndex Completed:0\n"}));
    EXPECT_TRUE(m_pOwner->TakeEvents().empty());
}

TEST_F(PageTableTest, FailingEngineLeavesTheTableAsItWas) {
    const DocumentPtr pDocument = WrapDocument();
    m_pEngine->FailPage(EngineOp::GetPage, 0);
    EXPECT_THROW(pDocument->GetPageSize(0), EngineException);
    EXPECT_THROW(pDocument->EnsurePageEntry(0), EngineException);
    EXPECT_TRUE(m_pOwner->TakeEvents().empty());
    m_pEngine->ClearFailures();
    std::thread([&] { EXPECT_NE(pDocument->GetPageSize(0), nullptr); }).join(); // no lock is left
    m_pEngine->FailCall(EngineOp::GetAnnotCount, 1);
    pDocument->EnsurePageEntry(1);
    EXPECT_THROW(pDocument->GetPageSize(1), EngineException);
    EXPECT_FALSE(pDocument->ReLoadPageIndex(1)->m_bAnnotsLoaded);
    EXPECT_NE(pDocument->GetPageSize(1), nullptr);
}

TEST_F(PageTableTest, TwoThatMakeOneEntryAtOnceShareIt) {
    const DocumentPtr pDocument = WrapDocument();
    std::shared_ptr<WPPDFPage> pInner;
    m_pEngine->OnCall(EngineOp::GetPage, [&](const EngineCall&) {
        m_pEngine->OnCall(EngineOp::GetPage, nullptr);
        pInner = pDocument->EnsurePageEntry(0); // comes in between
    });
    const auto pOuter = pDocument->EnsurePageEntry(0);
    ASSERT_NE(pInner, nullptr);
    EXPECT_EQ(pOuter, pInner);
    EXPECT_EQ(m_pOwner->TakeEvents(), Texts{"loaded 0"});
    EXPECT_EQ(m_pEngine->LivePages(), 1);
}

TEST_F(PageTableTest, HandlersMayFailAndCallBack) {
    const DocumentPtr pDocument = WrapDocument();
    m_pOwner->fnOnLoaded = [](std::int32_t) { throw Platform::AccessDeniedException(); };
    EXPECT_THROW(pDocument->GetPageSize(0), Platform::AccessDeniedException);
    EXPECT_NE(pDocument->GetPageSize(0), nullptr) << "the entry was made all the same";

    m_pOwner->fnOnLoaded = [&](std::int32_t nPageIndex) {
        if (nPageIndex == 1) {
            pDocument->GetPageSize(2);
        }
    };
    pDocument->GetPageSize(1);
    m_pOwner->TakeEvents();
    m_pOwner->fnOnUnloaded = [&](std::int32_t) { pDocument->Dispose(); };
    pDocument->ClearPageInfoVector();
    EXPECT_EQ(m_pOwner->TakeEvents(),
              (Texts{"unloaded 0", "unloaded 0", "unloaded 1", "unloaded 2"}))
        << "the inner close tells of each page, the outer clear then stops";
    EXPECT_EQ(m_pEngine->LivePages(), 0);
}

TEST_F(LoadPageTest, FirstLoadMakesTheEntryAndAHandleOfItsOwn) {
    std::vector<ScriptedPage> pages = MakePages(2);
    pages[1].rcBox = {10, 20, 110, 220};
    m_pEngine->SetPages(std::move(pages));
    const DocumentPtr pDocument = WrapDocument();
    const auto pending = pDocument->LoadPageAsync(1);
    EXPECT_TRUE(m_pEngine->Calls(EngineOp::GetPage).empty()) << "it runs on the pool";
    const auto pFirst = Await(pending);
    EXPECT_EQ(pDocument->PageBox(pFirst), Rect(10, 20, 100, 200));
    EXPECT_TRUE(pFirst->m_pPage->IsParsed());
    m_host.Drain();
    EXPECT_EQ(m_pOwner->TakeEvents(), Texts{"loaded 1"});
    EXPECT_EQ(m_host.DebugOutput(), Texts{"LoadPageAsync 1\n"});

    const auto pSecond = Await(pDocument->LoadPageAsync(1));
    EXPECT_NE(pSecond, pFirst) << "the first one is not the table's";
    EXPECT_EQ(pSecond, pDocument->ReLoadPageIndex(1)->m_pPageHandle);
    EXPECT_EQ(pSecond->m_pPage, pFirst->m_pPage);
    EXPECT_EQ(pDocument->PageBox(pSecond), Rect(10, 20, 100, 200));
    EXPECT_EQ(Await(pDocument->LoadPageAsync(1)), pSecond);
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage), 1);
}

TEST_F(LoadPageTest, KnownPageStartsItsParseAndIsNotSteppedToItsEnd) {
    std::vector<ScriptedPage> pages = MakePages(1);
    pages[0].nParseSteps = 5;
    m_pEngine->SetPages(std::move(pages));
    const DocumentPtr pDocument = WrapDocument();
    pDocument->GetPageSize(0); // annotations loaded, page box still empty
    const auto pHandle = Await(pDocument->LoadPageAsync(0));
    EXPECT_FALSE(pHandle->m_pPage->IsParsed());
    EXPECT_EQ(m_pEngine->Count(EngineOp::StartParse), 1);
    EXPECT_EQ(m_host.DebugOutput(),
              (Texts{"LoadPageAsync 0\n", "LoadPageAsync --- Parser Completely: 0\n"}));
    EXPECT_EQ(pDocument->PageBox(pHandle), Rect(0, 0, 612, 792));
    EXPECT_TRUE(pDocument->ReLoadPageIndex(0)->m_bAnnotsLoaded) << "a load leaves the flag alone";
}

TEST_F(LoadPageTest, CancelledBeforeItStartsAsksNobody) {
    const DocumentPtr pDocument = WrapDocument();
    const concurrency::cancellation_token_source source;
    const auto pending = pDocument->LoadPageAsync(0, source.get_token());
    source.cancel();
    EXPECT_THROW(Await(pending), concurrency::task_canceled);
    const auto pClosed = pDocument->LoadPageAsync(0);
    pDocument->Dispose();
    EXPECT_THROW(Await(pClosed), concurrency::task_canceled);
    EXPECT_EQ(m_pEngine->Count(EngineOp::GetPage), 0);
}

TEST_F(LoadPageTest, EveryFailingEngineCallEndsTheLoadAndTheNextOneWorks) {
    for (const std::int32_t nPageIndex : {-1, 3}) {
        EXPECT_THROW(Await(WrapDocument()->LoadPageAsync(nPageIndex)), EngineException);
    }
    for (const EngineOp eOp : {EngineOp::GetPage, EngineOp::StartParse}) {
        bool bMet = true;
        for (int nCall = 1; bMet; ++nCall) {
            ASSERT_LT(nCall, 10) << static_cast<int>(eOp);
            const DocumentPtr pDocument = WrapDocument();
            const int nBefore = m_pEngine->FailuresRaised();
            m_pEngine->FailCall(eOp, nCall);
            const auto pending = pDocument->LoadPageAsync(2);
            m_host.Drain();
            bMet = m_pEngine->FailuresRaised() > nBefore;
            EXPECT_EQ(pending.is_failure(), bMet);
            m_pEngine->ClearFailures();
            if (bMet) {
                EXPECT_THROW(pending.get(), EngineException);
            }
            EXPECT_NE(Await(pDocument->LoadPageAsync(2)), nullptr);
        }
    }
}

}
}
