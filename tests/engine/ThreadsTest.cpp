// Several threads in one document, and what never waits.

#include <condition_variable>
#include <mutex>
#include <thread>

#include "tests/engine/MuPdfFixture.h"

namespace velko::testing {

namespace {

// Holds reads back while closed, so that whoever reads keeps the document busy.
class HeldReader final : public common::vxbase::IFileReaderCallback {
public:
    explicit HeldReader(std::string strBytes) : m_inner(std::move(strBytes)) {}
    std::uint32_t GetSize() override { return m_inner.GetSize(); }
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override {
        std::unique_lock lock(m_mutex);
        m_bWaiting = m_bClosed;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return !m_bClosed; });
        return m_inner.ReadBlock(destination, nOffset, nSize);
    }
    bool Release() override { return true; }

    void Close() {
        const std::scoped_lock lock(m_mutex);
        m_bClosed = true;
    }
    void Open() {
        const std::scoped_lock lock(m_mutex);
        m_bClosed = false;
        m_changed.notify_all();
    }
    void WaitForARead() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_bWaiting; });
    }

private:
    MemoryReader m_inner;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bClosed = false;
    bool m_bWaiting = false;
};

}

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
    const auto pReader = std::make_shared<HeldReader>(MixedDocument(200));
    const auto pDoc =
        Platform::GetActivationFactory<pdf::IPDFDocFactory>(pdf::kPDFDocClass)->Create(pReader);
    ASSERT_EQ(pDoc->Load({}), common::ErrorCode::e_ErrSuccess);
    pReader->Close();
    std::thread parser([&] { pDoc->GetPage(0)->StartParse(0, nullptr, 0); });
    pReader->WaitForARead();

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
    pReader->Open();
    parser.join();
}

}
