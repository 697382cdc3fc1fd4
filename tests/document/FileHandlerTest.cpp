// Blocking reads over the asynchronous file: which bytes, from where, and what
// happens when the file does not answer.
#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

#include "document/VLKS_FileHandler.h"
#include "platform/concurrency/ThreadPool.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "tests/support/FileOnDisk.h"

namespace velko::testing {
namespace {

using Platform::Fake::TestHost;
using vkit::VLKS_FileHandler;
using vkit::VLKS_FileHandlerReadWrite;
using Data = std::vector<std::uint8_t>;

constexpr std::uint32_t kLimit = 31457280;

class FileHandlerTest : public ::testing::Test {
protected:
    // A file of that size with a mark at its start and one over its end.
    std::string Make(std::uint64_t nSize) {
        m_folder.WriteSparse("a.pdf", nSize - 10, "0123456789");
        std::ofstream(m_folder / "a.pdf", std::ios::binary | std::ios::app) << "abcdefghij";
        return m_folder / "a.pdf";
    }
    // Tells the size that the file has, unless another is given.
    void Open(const std::string& strPath, bool bPreload = true, std::int32_t nSize = 0) {
        nSize = nSize > 0 ? nSize : static_cast<std::int32_t>(std::filesystem::file_size(strPath));
        m_pReadWrite->SetFile(TemporaryFolder::File(strPath), nSize);
        m_handler.SetReadWrite(m_pReadWrite);
        if (bPreload) {
            EXPECT_TRUE(m_pReadWrite->PreloadFile());
        }
        m_nReads = m_calls.Count("pread");
    }
    std::string Read(std::uint64_t nOffset, std::uint32_t nSize) {
        Data bytes(nSize, 0xEE);
        const bool bRead = m_handler.ReadBlock(bytes, nOffset, nSize);
        EXPECT_TRUE(bRead || bytes == Data(nSize, 0)) << "the destination is zeroed";
        return bRead ? std::string(bytes.begin(), bytes.end()) : "nothing";
    }
    // Reads of the file since `Open`.
    int FileReads() { return m_calls.Count("pread") - m_nReads; }

    TestHost m_host;
    const TemporaryFolder m_folder;
    StorageCalls m_calls;
    std::shared_ptr<VLKS_FileHandlerReadWrite> m_pReadWrite =
        std::make_shared<VLKS_FileHandlerReadWrite>();
    VLKS_FileHandler m_handler;
    int m_nReads = 0;
};

TEST_F(FileHandlerTest, TheHeadIsHeldAndWhatEndsBeyondItIsReadWhole) {
    Open(Make(kLimit + 5));
    EXPECT_EQ(m_handler.GetSize(), kLimit + 5);
    EXPECT_EQ(Read(0, 10), "0123456789");
    EXPECT_EQ(Read(kLimit - 5, 5), "abcde");
    EXPECT_EQ(FileReads(), 0);
    EXPECT_EQ(Read(kLimit - 5, 6), "abcdef");
    EXPECT_EQ(FileReads(), 1);
    m_folder.Replace("a.pdf", "another file");
    EXPECT_EQ(Read(kLimit - 5, 10), "abcdefghij") << "it stays on the file of the opening";
}

TEST_F(FileHandlerTest, AFileOfTheLimitIsHeldWhole) {
    Open(Make(kLimit));
    EXPECT_EQ(Read(kLimit - 10, 10), "abcdefghij");
    EXPECT_EQ(FileReads(), 0);
}

// Wrong pages for the life of a document are worse than a slow start.
TEST_F(FileHandlerTest, AHeadThatDidNotComeIsReadWhenItIsAskedFor) {
    Open(Make(kLimit + 5), false);
    for (const char* const szCall : {"pread", "fstat"}) {
        m_calls.Fail(szCall, EIO);
        EXPECT_FALSE(m_pReadWrite->PreloadFile()) << szCall;
        m_calls.Pass();
        EXPECT_EQ(Read(0, 10), "0123456789") << szCall;
        EXPECT_EQ(Read(kLimit - 5, 10), "abcdefghij") << szCall;
    }
    m_calls.Fail("pread", EIO, 1, true);
    EXPECT_FALSE(m_pReadWrite->PreloadFile());
    EXPECT_EQ(Read(0, 10), "nothing");
}

TEST_F(FileHandlerTest, AHeadThatCameShortEndsWhereTheReadEnded) {
    Open(m_folder.Write("a.pdf", "0123456789abcde"), true, 40);
    EXPECT_EQ(Read(5, 10), "56789abcde");
    EXPECT_EQ(FileReads(), 0);
    EXPECT_THROW(Read(10, 10), Platform::OutOfBoundsException);
    EXPECT_EQ(Read(15, 10), "nothing");
    Data bytes(20);
    EXPECT_THROW(m_handler.ReadBlock(bytes, 0, 10), Platform::OutOfBoundsException);
}

TEST_F(FileHandlerTest, AFileWrittenInPlaceFailsAsChanged) {
    const std::string strPath = Make(kLimit + 5);
    Open(strPath);
    const auto timeOld = std::filesystem::last_write_time(strPath);
    std::filesystem::last_write_time(strPath, timeOld + std::chrono::seconds(1));
    EXPECT_THROW(Read(kLimit, 5), Platform::FileChangedException);
    EXPECT_THROW(m_handler.ReadBytes(kLimit, 5), Platform::FileChangedException);
    EXPECT_EQ(Read(0, 10), "0123456789") << "what is held was read before";
    std::filesystem::last_write_time(strPath, timeOld);
    EXPECT_EQ(Read(kLimit, 5), "fghij");
    std::filesystem::resize_file(strPath, kLimit + 6);
    std::filesystem::last_write_time(strPath, timeOld);
    EXPECT_THROW(Read(kLimit, 5), Platform::FileChangedException);
}

TEST_F(FileHandlerTest, SpanBeyondTheEndIsRefused) {
    Open(Make(1000));
    for (const std::uint64_t nOffset :
         {std::uint64_t{991}, std::uint64_t{1001}, std::numeric_limits<std::uint64_t>::max() - 4}) {
        EXPECT_EQ(Read(nOffset, 10), "nothing") << nOffset;
        EXPECT_EQ(m_handler.ReadBytes(nOffset, 10), nullptr);
    }
    EXPECT_EQ(Read(990, 10), "abcdefghij");
    EXPECT_EQ(Read(1000, 0), "");
}

// Whatever stage fails, the thread that waits wakes.
TEST_F(FileHandlerTest, AFileThatDoesNotAnswerGivesNothingAndOneLine) {
    const auto pFile = TemporaryFolder::File(Make(1000));
    m_handler.SetReadWrite(m_pReadWrite);
    for (const auto& [szCall, szLine] : {std::pair("pread", "LoadAsync status ERROR!!!!!\n"),
                                         std::pair("open", "status ERROR!!!!!\n")}) {
        m_calls.Fail(szCall, EIO, 1, true);
        m_pReadWrite->SetFile(pFile, 1000);
        m_host.ClearDebug();
        EXPECT_EQ(Read(0, 10), "nothing");
        EXPECT_FALSE(m_pReadWrite->PreloadFile());
        EXPECT_EQ(m_host.DebugOutput(), (std::vector<std::string>{szLine, szLine}));
        m_calls.Pass();
    }
    m_pReadWrite->SetFile(pFile, 1000);
    EXPECT_EQ(Read(0, 10), "0123456789");
}

// The disk may answer late or never; what it then still writes is its own.
TEST_F(FileHandlerTest, AWaitEndsThoughTheDiskHangs) {
    Open(Make(1000), false);
    m_calls.Hold("pread");
    std::thread reader([&] { EXPECT_EQ(Read(0, 10), "nothing"); });
    EXPECT_TRUE(m_calls.WaitForHeld());
    m_pReadWrite->EndWaits();
    reader.join();
    EXPECT_EQ(Read(0, 10), "nothing") << "nor does a later one wait";
}

TEST_F(FileHandlerTest, TheEndOfThePoolEndsItsWaits) {
    Open(Make(1000), false);
    concurrency::ThreadPool pool(1);
    std::atomic<bool> bEnded = false;
    m_calls.Hold("pread");
    pool.schedule([&] {
        EXPECT_EQ(Read(0, 10), "nothing");
        EXPECT_EQ(Read(0, 10), "nothing");
        bEnded = true;
    });
    EXPECT_TRUE(m_calls.WaitForHeld());
    pool.stop();
    EXPECT_TRUE(bEnded);
}

TEST_F(FileHandlerTest, WithoutAFileNothingIsReadAndReleaseEndsIt) {
    EXPECT_EQ(Read(0, 10), "nothing") << "no read-write object yet";
    m_handler.SetReadWrite(m_pReadWrite);
    EXPECT_FALSE(m_pReadWrite->PreloadFile());
    EXPECT_EQ(Read(0, 10), "nothing");
    EXPECT_EQ(m_handler.GetSize(), 0U);
    EXPECT_THROW(m_pReadWrite->SetFile(nullptr, -1), Platform::InvalidArgumentException);

    const std::weak_ptr<VLKS_FileHandlerReadWrite> wkReadWrite = m_pReadWrite;
    m_pReadWrite.reset();
    EXPECT_TRUE(m_handler.Release());
    EXPECT_TRUE(wkReadWrite.expired());
    EXPECT_TRUE(m_handler.Release());
    EXPECT_THROW(Read(0, 10), Platform::ObjectDisposedException);
    EXPECT_THROW(m_handler.GetSize(), Platform::ObjectDisposedException);
}

}
}
