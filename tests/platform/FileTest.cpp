#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/concurrency/CriticalSection.h"
#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/DataReaderWriter.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageFolder.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Platform::Fake::TestHost;
using Windows::Foundation::AsyncStatus;
using Windows::Storage::CreationCollisionOption;
using Windows::Storage::FileAccessMode;
using Windows::Storage::StorageFile;
using Windows::Storage::StorageFolder;
using Windows::Storage::Streams::DataReader;
using Windows::Storage::Streams::IRandomAccessStream;

std::shared_ptr<StorageFile> FileAt(const std::string& strPath) {
    return StorageFile::GetFileFromPathAsync(strPath).GetResults();
}

std::shared_ptr<IRandomAccessStream> Open(const std::shared_ptr<StorageFile>& pFile) {
    return pFile->OpenAsync(FileAccessMode::Read).GetResults();
}

std::string ReadAll(IRandomAccessStream& stream, std::uint32_t nCount = 1000) {
    const auto pBuffer = stream.ReadAsync(nCount).GetResults();
    return {pBuffer->Bytes().begin(), pBuffer->Bytes().end()};
}

std::string ReadAll(const std::shared_ptr<StorageFile>& pFile) {
    return ReadAll(*Open(pFile));
}

TEST(FileTest, TellsItsSizeTheTimeOfItsChangeAndWriteProtection) {
    const TemporaryFolder folder;
    const auto pFile = FileAt(folder.Write("a.pdf", "hello"));
    const timespec times[2] = {{0, 0}, {1, 500}};
    ASSERT_EQ(::utimensat(AT_FDCWD, pFile->Path().c_str(), times, 0), 0);
    const auto properties = pFile->GetBasicPropertiesAsync().GetResults();
    EXPECT_EQ(properties.Size, 5U);
    EXPECT_EQ(properties.DateModified, 116'444'736'000'000'000 + 10'000'000 + 5);
    ASSERT_EQ(::chmod(pFile->Path().c_str(), 0444), 0);
    EXPECT_EQ(pFile->Attributes(), Windows::Storage::FileAttributes::ReadOnly);
}

TEST(FileTest, ARelativePathCountsFromTheWorkingFolderOfItsMoment) {
    const TemporaryFolder folder;
    folder.Write("a.pdf", "here");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const auto operation = StorageFile::GetFileFromPathAsync("a.pdf");
    std::filesystem::current_path(before);
    EXPECT_EQ(ReadAll(operation.GetResults()), "here");
}

TEST(FileTest, StreamsReadFromTheirOwnPositions) {
    const TemporaryFolder folder;
    const auto pFile = FileAt(folder.Write("a", "0123456789"));
    const auto pFirst = Open(pFile);
    const auto pSecond = Open(pFile);
    EXPECT_EQ(pFirst->Size(), 10U);
    EXPECT_EQ(ReadAll(*pFirst, 3), "012");
    pSecond->Seek(8);
    EXPECT_EQ(ReadAll(*pSecond, 9), "89");
    EXPECT_EQ(ReadAll(*pSecond, 9), "");
    EXPECT_EQ(ReadAll(*pFirst, 3), "345");
    pFirst->Seek(std::uint64_t{1} << 63U);
    EXPECT_EQ(ReadAll(*pFirst, 3), "");
    StorageCalls calls;
    calls.Before("pread", [&] { folder.Resize("a", 4); });
    EXPECT_EQ(ReadAll(pFile), "0123"); // cut after its size was asked for
}

TEST(FileTest, BytesBeyondFourGibibytesAreReached) {
    const TemporaryFolder folder;
    constexpr std::uint64_t kOffset = (std::uint64_t{1} << 32U) + 5;
    folder.Write("sparse", "head");
    std::filesystem::resize_file(folder / "sparse", kOffset);
    std::ofstream(folder / "sparse", std::ios::binary | std::ios::app) << "tail";
    const auto pFile = FileAt(folder / "sparse");
    EXPECT_EQ(pFile->GetBasicPropertiesAsync().GetResults().Size, kOffset + 4);
    const auto pStream = Open(pFile);
    pStream->Seek(kOffset);
    EXPECT_EQ(ReadAll(*pStream), "tail");

    folder.Write("copy", "");
    pFile->CopyAndReplaceAsync(FileAt(folder / "copy")).GetResults();
    const auto pCopy = Open(FileAt(folder / "copy"));
    EXPECT_EQ(pCopy->Size(), kOffset + 4);
    EXPECT_EQ(ReadAll(*pCopy, 5), std::string("head\0", 5));
    pCopy->Seek(kOffset - 1);
    EXPECT_EQ(ReadAll(*pCopy), std::string("\0tail", 5));
    struct stat status {};
    ASSERT_EQ(::stat((folder / "copy").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 1 << 20); // the hole is still one
}

TEST(FileTest, WhatIsNoFileIsRefusedAtOnce) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    std::filesystem::create_symlink(folder / "fifo", folder / "link");
    for (const std::string& strPath :
         {folder.Path(), folder / "fifo", folder / "link", std::string("/dev/zero")}) {
        EXPECT_THROW(FileAt(strPath), Platform::AccessDeniedException) << strPath;
    }
    EXPECT_THROW(FileAt(folder / "missing"), Platform::FileNotFoundException);
    EXPECT_THROW(FileAt(folder.Write("file", "") + "/below"), Platform::FileNotFoundException);
    EXPECT_THROW(FileAt(""), Platform::FileNotFoundException);
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_THROW(FileAt(folder / "loop"), Platform::FileNotFoundException);
}

TEST(FileTest, AFileThatVanishedFailsEveryOperation) {
    const TemporaryFolder folder;
    const auto pFile = FileAt(folder.Write("a", "x"));
    const auto pOther = FileAt(folder.Write("b", "y"));
    pFile->DeleteAsync().GetResults();
    EXPECT_THROW(Open(pFile), Platform::FileNotFoundException);
    EXPECT_THROW(pFile->GetBasicPropertiesAsync().GetResults(), Platform::FileNotFoundException);
    EXPECT_THROW(pFile->DeleteAsync().GetResults(), Platform::FileNotFoundException);
    EXPECT_THROW(pFile->CopyAndReplaceAsync(pOther).GetResults(), Platform::FileNotFoundException);
    EXPECT_THROW(Open(pFile->PinForReading()), Platform::FileNotFoundException);
    EXPECT_EQ(folder.Read("b"), "y");
}

TEST(FileTest, PinsAndOpenStreamsKeepTheirBytes) {
    const TemporaryFolder folder;
    const auto pFile = FileAt(folder.Write("a", "old bytes"));
    const auto pPin = pFile->PinForReading();
    const auto pStream = Open(pFile);
    FileAt(folder.Write("new", "NEW"))->CopyAndReplaceAsync(pFile).GetResults();
    EXPECT_EQ(ReadAll(pFile), "NEW");
    EXPECT_EQ(ReadAll(*pStream), "old bytes");
    pFile->DeleteAsync().GetResults();
    EXPECT_EQ(ReadAll(pPin), "old bytes");
    EXPECT_EQ(ReadAll(pPin->PinForReading()), "old bytes");
    EXPECT_EQ(pPin->GetBasicPropertiesAsync().GetResults().Size, 9U);
    EXPECT_EQ(pPin->Path(), folder / "a");
    pPin->CopyAndReplaceAsync(FileAt(folder / "new")).GetResults();
    EXPECT_EQ(folder.Read("new"), "old bytes");
    EXPECT_THROW(pPin->OpenAsync(FileAccessMode::ReadWrite).GetResults(),
                 Platform::AccessDeniedException);
}

TEST(FileTest, CompletionsNeedNoPoolThreadAndMayBlock) {
    TestHost host(TestHost::RealPool{1});
    const TemporaryFolder folder;
    const auto pFile = FileAt(folder.Write("a", "bytes"));
    // A pool of one thread, which waits for the read; and many completion
    // handlers, each of which waits for a read of its own.
    const auto read = concurrency::create_task([&] { return ReadAll(pFile); });
    EXPECT_EQ(read.get(), "bytes");
    constexpr int kHandlers = 20;
    std::atomic<int> nDone{0};
    for (int n = 0; n < kHandlers; ++n) {
        pFile->OpenAsync(FileAccessMode::Read).Completed([&](const auto&, AsyncStatus) {
            nDone += ReadAll(pFile) == "bytes" ? 1 : 0;
        });
    }
    EXPECT_TRUE(host.WaitUntil([&] { return nDone == kHandlers; }));
}

TEST(FileTest, AReaderLoadsInPiecesAndRefusesMoreThanItHas) {
    const TemporaryFolder folder;
    const auto pStream = Open(FileAt(folder.Write("a", "0123456789")));
    pStream->Seek(2);
    const auto pReader = DataReader::CreateDataReader(pStream);
    EXPECT_EQ(pReader->LoadAsync(3).GetResults(), 3U);
    EXPECT_EQ(pReader->LoadAsync(100).GetResults(), 5U);
    EXPECT_EQ(pReader->LoadAsync(100).GetResults(), 0U);
    std::vector<std::uint8_t> bytes(4);
    pReader->ReadBytes(bytes); // over the seam of the two pieces
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "2345");
    EXPECT_THROW(pReader->ReadBuffer(5), Platform::OutOfBoundsException);
    EXPECT_EQ(pReader->ReadBuffer(4)->Length(), 4U);
    pReader->DetachStream();
    EXPECT_THROW(pReader->LoadAsync(1), Platform::ObjectDisposedException);
}

TEST(FolderTest, CreatesAndFindsFiles) {
    const TemporaryFolder folder;
    const auto pFolder = StorageFolder::FromPath(folder.Path());
    const auto fnCreate = [&](CreationCollisionOption eOption) {
        return pFolder->CreateFileAsync("a.pdf", eOption).GetResults();
    };
    EXPECT_EQ(pFolder->TryGetItemAsync("a.pdf").GetResults(), nullptr);
    fnCreate(CreationCollisionOption::FailIfExists);
    folder.Write("a.pdf", "kept");
    EXPECT_EQ(ReadAll(fnCreate(CreationCollisionOption::OpenIfExists)), "kept");
    EXPECT_THROW(fnCreate(CreationCollisionOption::FailIfExists), Platform::Exception);
    EXPECT_EQ(fnCreate(CreationCollisionOption::GenerateUniqueName)->Name(), "a (2).pdf");
    EXPECT_EQ(fnCreate(CreationCollisionOption::GenerateUniqueName)->Name(), "a (3).pdf");
    const auto pReader = Open(pFolder->GetFileAsync("a.pdf").GetResults());
    fnCreate(CreationCollisionOption::ReplaceExisting);
    EXPECT_EQ(folder.Read("a.pdf"), "");
    EXPECT_EQ(ReadAll(*pReader), "kept");
    for (const char* pszName : {"", ".", "..", "b/c"}) {
        EXPECT_THROW(pFolder->TryGetItemAsync(pszName).GetResults(),
                     Platform::InvalidArgumentException)
            << pszName;
    }
}

}
