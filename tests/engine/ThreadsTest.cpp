// Several threads in one document, and what never waits.

#include <thread>

#include "tests/engine/MuPdfFixture.h"

namespace velko::testing {

class ThreadsTest : public MuPdfTest {};

TEST_F(ThreadsTest, FourThreadsDrawWhatOneDraws) {
    constexpr std::int32_t kPages = 6;
    constexpr int kThreads = 4;
    constexpr int kRounds = 4;
    const auto pDoc = OpenDoc(MixedDocument(kPages));
    ASSERT_TRUE(pDoc);
    std::vector<std::shared_ptr<common::Bitmap>> wanted;
    for (std::int32_t i = 0; i < kPages; ++i) {
        const auto pPage = pDoc->GetPage(i);
        wanted.push_back(Render(pPage, WholePage(*pPage, 1.5)));
    }
    const auto pFresh = OpenDoc(MixedDocument(kPages)); // nothing kept of it yet
    std::atomic<int> nWrong = 0;
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < kThreads; ++nThread) {
        threads.emplace_back([&, nThread] {
            for (std::int32_t i = 0; i < kPages * kRounds; ++i) {
                const std::int32_t nPage = (i + nThread) % kPages;
                const auto pPage = pFresh->GetPage(nPage);
                const auto pPicture = Render(pPage, WholePage(*pPage, 1.5));
                nWrong += Compare(*wanted[static_cast<std::size_t>(nPage)], *pPicture).nPixels;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nWrong, 0);
}

TEST_F(ThreadsTest, DocumentsOpenAndCloseWhileOthersDraw) {
    std::atomic<int> nFailures = 0;
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < 4; ++nThread) {
        threads.emplace_back([&, nThread] {
            for (int i = 0; i < 8; ++i) {
                auto pDoc = OpenDoc(MixedDocument(1 + nThread % 3));
                auto pPage = pDoc ? pDoc->GetPage(0) : nullptr;
                pDoc.reset(); // the page keeps it
                nFailures += pPage && Render(pPage, WholePage(*pPage)) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nFailures, 0);
}

TEST_F(ThreadsTest, SizesAndMatricesDoNotWaitForAParse) {
    const auto pReader = std::make_shared<MemoryReader>(MixedDocument(200));
    const auto pDoc = CreateDoc(pReader);
    ASSERT_EQ(pDoc->Load({}), common::ErrorCode::e_ErrSuccess);
    const int nReads = pReader->Reads();
    pReader->BeSlowUntil(MemoryReader::Clock::time_point::max());
    std::thread parser([&] { pDoc->GetPage(0)->StartParse(0, nullptr, 0); });
    while (pReader->Reads() == nReads) {
        std::this_thread::yield();
    }

    // The parser sits in a read with the document's lock. A call below that
    // waited for it would never come back.
    for (std::int32_t i = 0; i < pDoc->GetPageCount(); ++i) {
        const auto pPage = pDoc->GetPage(i);
        EXPECT_FLOAT_EQ(pPage->GetWidth(), 300.0F);
        EXPECT_FLOAT_EQ(pPage->GetHeight(), 200.0F);
        EXPECT_EQ(pPage->GetRotation(), 0);
        EXPECT_EQ(pPage->GetAnnotCount(), 0);
        EXPECT_FALSE(pPage->IsParsed());
        EXPECT_FLOAT_EQ(pPage->GetDisplayMatrix(0, 0, 300, 200, 0).A, 1.0F);
    }
    EXPECT_EQ(pDoc->GetPasswordType(), 1);
    pReader->BeSlowUntil({});
    parser.join();
}

}
