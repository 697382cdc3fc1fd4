// Blocking reads over the asynchronous file: which bytes, from where, and what
// happens when the file does not answer.
#include <gtest/gtest.h>

#include <limits>
#include <numeric>

#include "document/VLKS_FileHandler.h"
#include "document/VLK_Image.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"

namespace velko::testing {
namespace {

using Platform::Fake::FileCompletion;
using Platform::Fake::FileFailure;
using Platform::Fake::MemoryStorageFile;
using Platform::Fake::TestHost;
using vkit::VLKS_FileHandler;
using vkit::VLKS_FileHandlerReadWrite;
using Data = MemoryStorageFile::Data;

constexpr std::uint32_t kLimit = 31457280;
const char* const kOpenError = "status ERROR!!!!!\n";
const char* const kLoadError = "LoadAsync status ERROR!!!!!\n";

// No two stretches of it that a test compares are alike.
Data MakeBytes(std::size_t nSize) {
    Data bytes(nSize);
    for (std::size_t nIndex = 0; nIndex < nSize; ++nIndex) {
        bytes[nIndex] = static_cast<std::uint8_t>(nIndex * 7 + nIndex / 251 + 1);
    }
    return bytes;
}

// A little more than the head that is held in memory; made once.
const Data& LargeBytes() {
    static const Data s_bytes = MakeBytes(kLimit + 10);
    return s_bytes;
}

Data Part(const Data& bytes, std::size_t nOffset, std::size_t nSize) {
    const auto itFirst = bytes.begin() + static_cast<std::ptrdiff_t>(nOffset);
    return {itFirst, itFirst + static_cast<std::ptrdiff_t>(nSize)};
}

class FileHandlerTest : public ::testing::Test {
protected:
    void Open(Data bytes, bool bPreload = true) {
        const std::size_t nSize = bytes.size();
        m_pFile = MemoryStorageFile::Create("/docs/a.pdf", std::move(bytes));
        m_pReadWrite->SetFile(m_pFile, static_cast<std::int32_t>(nSize));
        m_handler.SetReadWrite(m_pReadWrite);
        if (bPreload) {
            m_bPreloaded = m_pReadWrite->PreloadFile();
        }
    }

    Data Read(std::uint64_t nOffset, std::uint32_t nSize) {
        Data bytes(nSize, 0xEE);
        EXPECT_TRUE(m_handler.ReadBlock(bytes, nOffset, nSize)) << nOffset << " + " << nSize;
        return bytes;
    }

    TestHost m_host;
    const Data m_bytes = MakeBytes(1000);
    std::shared_ptr<MemoryStorageFile> m_pFile;
    std::shared_ptr<VLKS_FileHandlerReadWrite> m_pReadWrite =
        std::make_shared<VLKS_FileHandlerReadWrite>();
    VLKS_FileHandler m_handler;
    bool m_bPreloaded = false;
};

TEST_F(FileHandlerTest, FileOfExactlyTheLimitIsServedFromMemory) {
    const Data& bytes = LargeBytes();
    Open(Part(bytes, 0, kLimit));
    ASSERT_TRUE(m_bPreloaded);
    EXPECT_EQ(m_pFile->Reads(), (std::vector<MemoryStorageFile::ReadRecord>{{0, kLimit}}));
    EXPECT_EQ(Read(kLimit - 1, 1), Part(bytes, kLimit - 1, 1));
    EXPECT_EQ(Read(0, 64), Part(bytes, 0, 64));
    EXPECT_EQ(m_pFile->Reads().size(), 1U);
    EXPECT_EQ(m_handler.GetSize(), kLimit);
}

TEST_F(FileHandlerTest, SpanThatEndsBeyondTheLimitGoesToTheFileWhole) {
    const Data& bytes = LargeBytes();
    Open(bytes);
    EXPECT_EQ(m_pFile->Reads().back().Count, kLimit) << "no more than the head is preloaded";
    EXPECT_EQ(Read(kLimit - 8, 8), Part(bytes, kLimit - 8, 8));
    EXPECT_EQ(m_pFile->Reads().size(), 1U);
    EXPECT_EQ(Read(kLimit - 7, 8), Part(bytes, kLimit - 7, 8));
    EXPECT_EQ(m_pFile->Reads().back(), (MemoryStorageFile::ReadRecord{kLimit - 7, 8}));
    EXPECT_EQ(m_pFile->Opens(), 2U) << "every read of the file has a stream of its own";
}

TEST_F(FileHandlerTest, ReadsStayOnTheBytesOfTheOpening) {
    const Data& bytes = LargeBytes();
    Open(bytes);
    m_pFile->SetBytes(Data(100, 0));
    EXPECT_EQ(Read(kLimit, 10), Part(bytes, kLimit, 10));
    m_pFile->DeleteAsync();
    EXPECT_EQ(Read(kLimit - 5, 10), Part(bytes, kLimit - 5, 10));
}

TEST_F(FileHandlerTest, SpanBeyondTheEndIsRefused) {
    Open(m_bytes);
    Data bytes(10, 0xEE);
    constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint64_t nOffset : {std::uint64_t{991}, std::uint64_t{1001}, kHuge - 4}) {
        EXPECT_FALSE(m_handler.ReadBlock(bytes, nOffset, 10)) << nOffset;
        EXPECT_EQ(bytes, Data(10, 0)) << "the destination is zeroed first";
        EXPECT_EQ(m_handler.ReadBytes(nOffset, 10), nullptr);
    }
    EXPECT_EQ(Read(990, 10), Part(m_bytes, 990, 10));
    EXPECT_TRUE(m_handler.ReadBlock({}, 1000, 0));
}

TEST_F(FileHandlerTest, BufferShorterThanTheDestinationRaises) {
    Open(m_bytes);
    Data bytes(20);
    EXPECT_THROW(m_handler.ReadBlock(bytes, 0, 10), Platform::OutOfBoundsException);
    // A file that lies about its size gives fewer bytes than were asked for.
    const auto pShort = MemoryStorageFile::Create("/docs/short.pdf", MakeBytes(15));
    const auto pReadWrite = std::make_shared<VLKS_FileHandlerReadWrite>();
    pReadWrite->SetFile(pShort, 40);
    m_handler.SetReadWrite(pReadWrite);
    EXPECT_THROW(m_handler.ReadBlock(bytes, 0, 20), Platform::OutOfBoundsException);
    EXPECT_FALSE(m_handler.ReadBlock(bytes, 15, 20)) << "nothing came at all";
}

TEST_F(FileHandlerTest, FailedOpenAndFailedLoadGiveNothingAndOneLine) {
    Open(m_bytes, false);
    for (const FileFailure eFailure : {FileFailure::AccessDenied, FileFailure::Canceled}) {
        m_host.ClearDebug();
        m_pFile->FailOpen(eFailure);
        EXPECT_EQ(m_pReadWrite->ReadBytes(0, 10), nullptr);
        EXPECT_EQ(m_host.DebugOutput(), std::vector<std::string>{kOpenError});
        m_pFile->FailOpen(FileFailure::None);

        m_host.ClearDebug();
        m_pFile->FailRead(1, eFailure);
        EXPECT_EQ(m_pReadWrite->ReadBytes(0, 10), nullptr);
        EXPECT_EQ(m_host.DebugOutput(), std::vector<std::string>{kLoadError});
    }
    EXPECT_EQ(Read(0, 10), Part(m_bytes, 0, 10));
}

TEST_F(FileHandlerTest, FailedPreloadIsReportedAndLeavesZeros) {
    Open(m_bytes, false);
    EXPECT_EQ(Read(3, 4), Part(m_bytes, 3, 4)) << "without a preload the file serves";
    m_pFile->FailRead(1, FileFailure::ReadFault);
    EXPECT_FALSE(m_pReadWrite->PreloadFile());
    EXPECT_EQ(m_host.CountDebug(kLoadError), 1U);
    EXPECT_EQ(Read(3, 4), Data(4, 0));
    m_pFile->FailOpen(FileFailure::FileNotFound);
    EXPECT_FALSE(m_pReadWrite->PreloadFile());
    EXPECT_EQ(m_host.CountDebug(kOpenError), 1U);
}

// Whatever a stage raises, the thread that waits must wake.
class BrokenFile final : public Windows::Storage::StorageFile {
public:
    enum class Fault { OpenRaises, SeekRaises, ReadRaises, Abandoned };
    explicit BrokenFile(Fault eFault) : m_eFault(eFault) {}

    std::string Path() const override { return "/broken"; }
    std::string Name() const override { return "broken"; }
    std::uint32_t Attributes() const override { return 0; }
    std::shared_ptr<StorageFile> PinForReading() override {
        return std::make_shared<BrokenFile>(m_eFault);
    }
    Windows::Foundation::AsyncOperation<Windows::Storage::BasicProperties> GetBasicPropertiesAsync()
        override {
        throw Platform::AccessDeniedException();
    }
    Windows::Foundation::AsyncOperation<
        std::shared_ptr<Windows::Storage::Streams::IRandomAccessStream>>
    OpenAsync(Windows::Storage::FileAccessMode) override {
        if (m_eFault == Fault::OpenRaises) {
            throw Platform::AccessDeniedException();
        }
        using StreamPtr = std::shared_ptr<Windows::Storage::Streams::IRandomAccessStream>;
        if (m_eFault == Fault::Abandoned) {
            return concurrency::task_completion_event<StreamPtr>().get_task();
        }
        return concurrency::task_from_result<StreamPtr>(std::make_shared<Stream>(m_eFault));
    }
    Windows::Foundation::AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile>) override {
        throw Platform::AccessDeniedException();
    }
    Windows::Foundation::AsyncAction DeleteAsync() override {
        throw Platform::AccessDeniedException();
    }

private:
    class Stream final : public Windows::Storage::Streams::IRandomAccessStream {
    public:
        explicit Stream(Fault eFault) : m_eFault(eFault) {}
        std::uint64_t Size() const override { return 100; }
        void Seek(std::uint64_t) override {
            if (m_eFault == Fault::SeekRaises) {
                throw Platform::ReadFaultException();
            }
        }
        Windows::Foundation::AsyncOperation<std::shared_ptr<Windows::Storage::Streams::IBuffer>>
        ReadAsync(std::uint32_t) override {
            throw Platform::ReadFaultException();
        }

    private:
        Fault m_eFault;
    };

    Fault m_eFault;
};

TEST(BrokenFileTest, EveryWaitEnds) {
    using Fault = BrokenFile::Fault;
    const std::pair<Fault, const char*> kCases[] = {{Fault::OpenRaises, kOpenError},
                                                    {Fault::SeekRaises, kOpenError},
                                                    {Fault::ReadRaises, kLoadError},
                                                    {Fault::Abandoned, kOpenError}};
    for (const auto& [eFault, szLine] : kCases) {
        const TestHost host;
        VLKS_FileHandlerReadWrite readWrite;
        readWrite.SetFile(std::make_shared<BrokenFile>(eFault), 100);
        EXPECT_EQ(readWrite.ReadBytes(0, 10), nullptr);
        EXPECT_FALSE(readWrite.PreloadFile());
        EXPECT_EQ(host.DebugOutput(), (std::vector<std::string>{szLine, szLine}));
    }
}

TEST_F(FileHandlerTest, WithoutAFileNothingIsRead) {
    Data bytes(10, 0xEE);
    EXPECT_FALSE(m_handler.ReadBlock(bytes, 0, 10)) << "no read-write object yet";
    m_handler.SetReadWrite(m_pReadWrite);
    EXPECT_FALSE(m_pReadWrite->PreloadFile());
    EXPECT_FALSE(m_handler.ReadBlock(bytes, 0, 10));
    EXPECT_EQ(m_handler.GetSize(), 0U);
    EXPECT_THROW(m_pReadWrite->SetFile(nullptr, -1), Platform::InvalidArgumentException);
}

TEST_F(FileHandlerTest, ReleaseEndsTheHandlerAndItsFile) {
    Open(m_bytes);
    const std::weak_ptr<VLKS_FileHandlerReadWrite> wkReadWrite = m_pReadWrite;
    m_pReadWrite.reset();
    EXPECT_TRUE(m_handler.Release());
    EXPECT_TRUE(wkReadWrite.expired());
    EXPECT_TRUE(m_handler.Release());
    Data bytes(10);
    EXPECT_THROW(m_handler.ReadBlock(bytes, 0, 10), Platform::ObjectDisposedException);
    EXPECT_THROW(m_handler.GetSize(), Platform::ObjectDisposedException);
    EXPECT_THROW(m_handler.ReadBytes(0, 1), Platform::ObjectDisposedException);
    EXPECT_THROW(m_handler.SetReadWrite(nullptr), Platform::ObjectDisposedException);
}

TEST(ImageTest, DisposeEndsTheHandler) {
    vkit::VLK_Image image;
    const std::shared_ptr<VLKS_FileHandler> pHandler = image.FileHandler();
    EXPECT_EQ(pHandler->ReadBytes(0, 0), nullptr);
    EXPECT_EQ(image.FrameCount(), 0);
    image.Dispose();
    image.Dispose();
    EXPECT_THROW(image.FileHandler(), Platform::ObjectDisposedException);
    EXPECT_THROW(image.FrameCount(), Platform::ObjectDisposedException);
    EXPECT_THROW(pHandler->GetSize(), Platform::ObjectDisposedException);
}

}
}
