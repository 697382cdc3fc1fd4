// Closing a document: what goes, what is told, what every call says afterwards,
// and what happens to work in flight.
#include "platform/foundation/Exception.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using Platform::ObjectDisposedException;
using vkit::BitmapBox;
using vkit::RenderBlockRequest;
using vkit::VLK_Document;

class DisposeDocumentTest : public SteppedDocumentTest {
protected:
    DocumentPtr OpenDocument() {
        const auto pDocument = Await(VLK_Document::OpenAsync(MakeFile(), 2000, ""))->m_pDocument;
        pDocument->SetOwner(m_pOwner);
        return pDocument;
    }
};

TEST_F(DisposeDocumentTest, TellsOfEachPageAndLetsGoOfTheEngineWhenItsOwnerDoes) {
    const DocumentPtr pDocument = OpenDocument();
    pDocument->GetPageSize(0);
    pDocument->GetPageSize(2);
    m_pOwner->TakeEvents();
    pDocument->DeleteFileOnClose(true);
    pDocument->Dispose();
    EXPECT_TRUE(std::filesystem::exists(m_folder / "a.pdf")) << "whatever the host switched on";
    EXPECT_TRUE(pDocument->IsDisposed());
    EXPECT_EQ(m_pOwner->TakeEvents(), (Texts{"unloaded 0", "unloaded 2"}));
    EXPECT_EQ(m_pEngine->LivePages(), 0);
    EXPECT_NE(pDocument->PdfDoc(), nullptr) << "the owner names it in its closing event";
    pDocument->ReleasePdfDoc();
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
    EXPECT_EQ(m_pEngine->Count(EngineOp::ReleaseReader), 1);
    m_host.ClearDebug();
    pDocument->Dispose();
    EXPECT_TRUE(m_host.DebugOutput().empty());
}

TEST_F(DisposeDocumentTest, EveryCallAfterwardsSaysSo) {
    const DocumentPtr pDocument = OpenDocument();
    pDocument->GetPageSize(0);
    const auto pEntry = pDocument->ReLoadPageIndex(0);
    const auto pPage = pEntry->m_pPageHandle->m_pPage;
    BitmapBox box;
    pDocument->Dispose();
    VLK_Document& document = *pDocument;
    int nCall = 0;
    for (const auto& fnCall : std::initializer_list<std::function<void()>>{
             [&] { document.ReloadWithPassword(""); }, [&] { document.LoadPageAsync(0); },
             [&] { document.EnsurePageEntry(0); }, [&] { document.ReLoadPageIndex(0); },
             [&] { document.InsertPageEntry(pEntry, 0); }, [&] { document.GetPageSize(0); },
             [&] { document.PeekPageSize(0); }, [&] { document.ClearPageInfoVector(); },
             [&] { document.RenderPageBlock(Block(pPage, 0, 0, 8, 8), box); },
             [&] { document.PagePointToDevicePoint(0, 0, 0, 8, 8, 0, {}); },
             [&] { document.PageCount(); }, [&] { document.SetOwner(m_pOwner); }}) {
        EXPECT_THROW(fnCall(), ObjectDisposedException) << "call " << nCall++;
    }
    document.AddPageUse(pEntry, 1); // what is in flight still counts
    EXPECT_EQ(pEntry->m_nUseCount, 1);
    document.ReleasePdfDoc();
    EXPECT_EQ(document.PdfDoc(), nullptr);
}

TEST_F(DisposeDocumentTest, FailingHandlerIsHeardAndStillAllIsClosed) {
    const DocumentPtr pDocument = OpenDocument();
    pDocument->GetPageSize(0);
    pDocument->GetPageSize(1);
    m_pOwner->fnOnUnloaded = [](std::int32_t) { throw Platform::AccessDeniedException(); };
    EXPECT_THROW(pDocument->Dispose(), Platform::AccessDeniedException);
    EXPECT_TRUE(pDocument->IsDisposed());
    EXPECT_EQ(m_pEngine->LivePages(), 0);
    pDocument->ReleasePdfDoc();
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
}

TEST_F(DisposeDocumentTest, DocumentThatIsNeverClosedLeavesNothingBehind) {
    DocumentPtr pDocument = OpenDocument();
    pDocument->GetPageSize(0);
    pDocument.reset();
    EXPECT_EQ(m_pEngine->LivePages(), 0);
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
    EXPECT_EQ(m_pEngine->Count(EngineOp::ReleaseReader), 1);
}

using DisposeInFlightTest = ThreadedDocumentTest;

TEST_F(DisposeInFlightTest, CloseWaitsForNoLoad) {
    DocumentPtr pDocument = WrapDocument();
    pDocument->GetPageSize(0);
    const auto pGate = m_pEngine->Hold(EngineOp::StartParse, 0);
    const auto pending = pDocument->LoadPageAsync(0);
    ASSERT_TRUE(pGate->WaitUntilReached());
    pDocument->Dispose(); // returns although the load is held
    pDocument->ReleasePdfDoc();
    pDocument.reset();
    EXPECT_FALSE(pending.is_done());
    pGate->Open();
    EXPECT_THROW(Await(pending), concurrency::task_canceled);
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
}

TEST_F(DisposeInFlightTest, CloseWaitsForNoRenderAndThoseThatWaitGoAway) {
    DocumentPtr pDocument = WrapDocument();
    pDocument->GetPageSize(0);
    const auto pGate = m_pEngine->Hold(EngineOp::StartRender);
    RenderBlockRequest request =
        Block(pDocument->ReLoadPageIndex(0)->m_pPageHandle->m_pPage, 0, 0, 8, 8);
    const auto fnRender = [pDocument, request] {
        BitmapBox box;
        return pDocument->RenderPageBlock(request, box);
    };
    const auto running = concurrency::create_task(fnRender);
    ASSERT_TRUE(pGate->WaitUntilReached());
    const auto waiting = concurrency::create_task(fnRender);
    m_pOwner->TakeEvents();
    pDocument->Dispose();
    pGate->Open();
    EXPECT_TRUE(Await(running)) << "its page kept the engine alive";
    EXPECT_EQ(m_pOwner->TakeEvents(), Texts{"unloaded 0"}) << "nobody hears of the late render";
    try {
        Await(waiting);
        ADD_FAILURE() << "rendered after the close";
    } catch (const concurrency::task_canceled&) { // it waited for the lock already
    } catch (const ObjectDisposedException&) {    // or it had not come so far
    }
    EXPECT_EQ(m_pEngine->Count(EngineOp::CreateBitmap), 1);
}

// A page that is brought back is parsed under the page lock; closing ends that
// parse at its next step.
TEST_F(DisposeInFlightTest, CloseEndsALongParse) {
    std::vector<ScriptedPage> pages = MakePages(1);
    pages[0].nParseSteps = INT32_MAX;
    m_pEngine->SetPages(std::move(pages));
    const DocumentPtr pDocument = WrapDocument();
    const auto pEntry = std::make_shared<vkit::WPPDFPage>();
    pDocument->InsertPageEntry(pEntry, 0);
    const auto pGate = m_pEngine->Hold(EngineOp::StartParse, 0);
    const auto pending = pDocument->LoadPageAsync(0);
    ASSERT_TRUE(pGate->WaitUntilReached());
    pGate->Open();
    pDocument->Dispose();
    EXPECT_THROW(Await(pending), concurrency::task_canceled);
    EXPECT_EQ(pEntry->m_pPageHandle, nullptr);
    EXPECT_EQ(m_host.CountDebug("ReLoadPageIndex Completed:0\n"), 0U);
}

// A disk that hangs holds the load, not the close, and not for ever the load.
TEST_F(DisposeInFlightTest, CloseEndsAWaitForTheFile) {
    constexpr std::uint64_t kBeyondTheHead = 31457280 + 1000;
    m_pEngine->SetLoadReads(true);
    const auto opening = VLK_Document::OpenAsync(MakeFile(kBeyondTheHead), kBeyondTheHead, "");
    const DocumentPtr pDocument = Await(opening)->m_pDocument;
    StorageCalls calls;
    calls.Hold("pread");
    const auto pending =
        concurrency::create_task([&] { return pDocument->ReloadWithPassword(""); });
    ASSERT_TRUE(calls.WaitForHeld());
    pDocument->Dispose();
    EXPECT_FALSE(Await(pending)) << "although the disk still hangs";
}

}
}
