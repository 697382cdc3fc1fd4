#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/concurrency/Task.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/AsyncWait.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/Buffer.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageStreamTransaction.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Platform::Fake::TestHost;
using Windows::Storage::FileAccessMode;
using Windows::Storage::StorageFile;
using Windows::Storage::StorageStreamTransaction;
using Windows::Storage::Streams::IBuffer;
using Windows::Storage::Streams::IRandomAccessStream;
using Windows::Storage::Streams::VectorBuffer;

std::shared_ptr<IBuffer> Bytes(std::string_view strBytes) {
    return std::make_shared<VectorBuffer>(
        std::vector<std::uint8_t>(strBytes.begin(), strBytes.end()));
}

std::string ReadFrom(IRandomAccessStream& stream, std::uint64_t nPosition) {
    stream.Seek(nPosition);
    const auto pBuffer = stream.ReadAsync(1000).GetResults();
    return {pBuffer->Bytes().begin(), pBuffer->Bytes().end()};
}

std::shared_ptr<StorageStreamTransaction> Begin(const std::string& strPath) {
    return StorageFile::FromPath(strPath)->OpenTransactedWriteAsync().AsTask().get();
}

TEST(StreamWriteTest, WritesCutsAndLengthensInPlaceAndOnlyWhereItMay) {
    const TemporaryFolder folder;
    const auto pFile = folder.File(folder.Write("a", "0123456789"));
    const auto pStream = pFile->OpenAsync(FileAccessMode::ReadWrite).AsTask().get();
    pStream->Seek(4);
    EXPECT_EQ(pStream->WriteAsync(Bytes("ab")).AsTask().get(), 2U);
    EXPECT_EQ(pStream->WriteAsync(Bytes("c")).AsTask().get(), 1U);
    EXPECT_EQ(folder.Read("a"), "0123abc789");
    pStream->SetSize(5);
    EXPECT_EQ(pStream->WriteAsync(Bytes("z")).AsTask().get(), 1U);
    pStream->FlushAsync().AsTask().get();
    EXPECT_EQ(folder.Read("a"), std::string("0123a\0\0z", 8));
    EXPECT_EQ(pStream->Size(), 8U);
    {
        StorageCalls calls;
        calls.Fail("pwrite", ENOSPC);
        EXPECT_THROW(pStream->WriteAsync(Bytes("never")).AsTask().get(),
                     Platform::DiskFullException);
    }
    EXPECT_EQ(pStream->WriteAsync(Bytes("!")).AsTask().get(), 1U);
    EXPECT_EQ(folder.Read("a"), std::string("0123a\0\0z!", 9));

    for (const auto& pRead : {pFile, pFile->PinForReading()}) {
        const auto pReading = pRead->OpenAsync(FileAccessMode::Read).AsTask().get();
        EXPECT_THROW(pReading->WriteAsync(Bytes("x")).AsTask().get(),
                     Platform::AccessDeniedException);
        EXPECT_THROW(pReading->SetSize(0), Platform::AccessDeniedException);
    }
    EXPECT_EQ(pStream->Size(), 9U);
}

TEST(TransactionTest, TheFileIsUntouchedUntilTheCommitAndWholeAfterIt) {
    const TemporaryFolder folder;
    for (const bool bThere : {true, false}) {
        if (bThere) {
            folder.Write("a", "old");
            ASSERT_EQ(::chmod((folder / "a").c_str(), 0640), 0);
        } else {
            std::filesystem::remove(folder / "a");
        }
        const auto pTransaction = Begin(folder / "a");
        const auto pStream = pTransaction->Stream();
        EXPECT_EQ(pStream->Size(), 0U);
        pStream->WriteAsync(Bytes("new bytes")).AsTask().get();
        EXPECT_EQ(ReadFrom(*pStream, 4), "bytes");
        EXPECT_EQ(folder.Read("a"), bThere ? "old" : "");
        pTransaction->CommitAsync().AsTask().get();
        EXPECT_EQ(folder.Read("a"), "new bytes");
        EXPECT_EQ(folder.Entries(), 1U);
        EXPECT_EQ(ReadFrom(*pStream, 0), "new bytes");
        EXPECT_THROW(pStream->WriteAsync(Bytes("x")).AsTask().get(),
                     Platform::AccessDeniedException);
        EXPECT_THROW(pTransaction->CommitAsync().AsTask().get(), Platform::ObjectDisposedException);
        if (bThere) {
            struct stat status {};
            ASSERT_EQ(::stat((folder / "a").c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 07777U, 0640U);
        }
    }
}

// On file systems with files that have no name, and on others.
TEST(TransactionTest, OneLetGoOrFailedLeavesNothing) {
    for (const int nNameless : {0, EOPNOTSUPP}) {
        const TemporaryFolder folder;
        folder.Write("a", "old");
        StorageCalls calls;
        if (nNameless != 0) {
            calls.Fail("tmpfile", nNameless, 1, true);
        }
        auto pTransaction = Begin(folder / "a");
        const auto pStream = pTransaction->Stream();
        pStream->WriteAsync(Bytes("new")).AsTask().get();
        EXPECT_EQ(folder.Entries(), nNameless != 0 ? 2U : 1U);
        pTransaction.reset();
        EXPECT_EQ(folder.Entries(), 1U);
        for (const char* pszCall : {"fchmod", "fsync", "rename"}) {
            pTransaction = Begin(folder / "a");
            calls.Fail(pszCall, EIO);
            EXPECT_THROW(pTransaction->CommitAsync().AsTask().get(), Platform::WriteFaultException);
            EXPECT_EQ(folder.Entries(), 1U) << pszCall;
            EXPECT_THROW(pTransaction->CommitAsync().AsTask().get(),
                         Platform::ObjectDisposedException);
        }
        EXPECT_EQ(folder.Read("a"), "old");
    }
}

TEST(AsyncWaitTest, APoolThreadHasTheOutcomeOrLearnsThatItsPoolEnds) {
    const TemporaryFolder folder;
    const auto pFile = folder.File(folder.Write("a", "old"));
    StorageCalls calls;
    concurrency::task<std::uint64_t> read;
    {
        TestHost host(TestHost::RealPool{1});
        const auto fnSize = [pFile] { return WaitFor(pFile->GetBasicPropertiesAsync()).Size; };
        EXPECT_EQ(concurrency::create_task(fnSize).get(), 3U);
        calls.Fail("fstat", EIO);
        EXPECT_THROW(concurrency::create_task(fnSize).get(), Platform::ReadFaultException);
        calls.Hold("fstat");
        read = concurrency::create_task(fnSize);
        EXPECT_TRUE(calls.WaitForHeld());
    }
    EXPECT_THROW(read.get(), concurrency::task_canceled);
}

}
