// Many threads on one document while it opens, loads, renders and closes; for
// the thread sanitizer, and for what must hold whatever the order.
#include "platform/foundation/Exception.h"
#include "tests/document/DocumentFixture.h"

namespace velko::testing {
namespace {

using vkit::BitmapBox;
using vkit::RenderBlockRequest;
using vkit::VLK_Document;

constexpr int kRounds = 500;
constexpr std::int32_t kPages = 4;

class DocumentStressTest : public ThreadedDocumentTest {
protected:
    struct Round {
        DocumentPtr pDocument;
        concurrency::cancellation_token_source source;
        std::vector<concurrency::task<std::shared_ptr<vkit::VLK_PageHandle>>> loads;
        std::vector<concurrency::task<bool>> renders;
    };

    DocumentPtr Open() {
        const auto pDocument = Await(VLK_Document::OpenAsync(m_pFile, 500, ""))->m_pDocument;
        pDocument->SetOwner(m_pOwner);
        return pDocument;
    }

    const std::shared_ptr<Windows::Storage::StorageFile> m_pFile = MakeFile(500);

    // As a viewer does: entry and page on the UI thread, the rest on the pool.
    static void StartRender(Round& round, std::int32_t nPageIndex) {
        const DocumentPtr pDocument = round.pDocument;
        const auto pEntry = pDocument->EnsurePageEntry(nPageIndex);
        RenderBlockRequest request = Block(pEntry->m_pPageHandle->m_pPage, 0, 0, 12, 12);
        pDocument->FillRenderState(request);
        request.token = round.source.get_token();
        pDocument->AddPageUse(pEntry, 1);
        round.renders.push_back(concurrency::create_task([pDocument, pEntry, request] {
            struct EndUse {
                ~EndUse() { pDocument->AddPageUse(pEntry, -1); }
                DocumentPtr pDocument;
                std::shared_ptr<vkit::WPPDFPage> pEntry;
            } const endUse{pDocument, pEntry};
            BitmapBox box;
            return pDocument->RenderPageBlock(request, box);
        }));
    }

    static void Work(Round& round, int nRound) {
        for (std::int32_t nPageIndex = 0; nPageIndex < kPages; ++nPageIndex) {
            round.loads.push_back(round.pDocument->LoadPageAsync(nPageIndex));
            StartRender(round, nPageIndex);
            round.pDocument->GetPageSize((nPageIndex + 1) % kPages);
            round.pDocument->PagePointToDevicePoint(nPageIndex, 0, 0, 20, 20, 0, {1, 1});
            if ((nRound + nPageIndex) % 5 == 0) {
                round.pDocument->ClearPageInfoVector();
            }
            round.pDocument->RenderFlags(static_cast<std::uint32_t>(nPageIndex));
            round.pDocument->AddHiddenAnnotType(nPageIndex);
        }
        if (nRound % 3 == 0) {
            round.source.cancel();
        }
    }

    template <class T>
    static int CountValues(const std::vector<concurrency::task<T>>& tasks) {
        int nValues = 0;
        for (const auto& item : tasks) {
            try {
                item.get();
                ++nValues;
            } catch (const concurrency::task_canceled&) {
            } catch (const Platform::ObjectDisposedException&) {
            }
        }
        return nValues;
    }
};

TEST_F(DocumentStressTest, AnyOrderOfWorkAndCloseEndsClean) {
    std::vector<ScriptedPage> pages = MakePages(kPages, 20, 20);
    pages[1].annots = {{1, {2, 2, 8, 8}}};
    m_pEngine->SetPages(std::move(pages));
    m_pEngine->SetLoadReads(true);
    int nLoaded = 0;
    int nRendered = 0;
    for (int nRound = 0; nRound < kRounds; ++nRound) {
        Round round;
        round.pDocument = Open();
        Work(round, nRound);
        if (nRound % 2 == 0) {
            m_host.RunUntil([] { return false; });
        }
        if (nRound % 4 == 3) { // the round's work ends before the close
            nLoaded += CountValues(round.loads);
            nRendered += CountValues(round.renders);
        }
        round.pDocument->Dispose();
        round.pDocument->ReleasePdfDoc();
        CountValues(round.loads);
        CountValues(round.renders);
        m_pEngine->ClearLog();
    }
    m_host.Drain();
    m_pOwner->TakeEvents();
    EXPECT_EQ(nLoaded, kRounds / 4 * kPages);
    EXPECT_GT(nRendered, 0);
    EXPECT_EQ(m_pEngine->PeakRenders(), 1) << "renders of one document run one after another";
    EXPECT_EQ(m_pEngine->LiveDocs(), 0);
    EXPECT_EQ(m_pEngine->LivePages(), 0);
    EXPECT_EQ(m_pEngine->LiveBitmaps(), 0);
}

}
}
