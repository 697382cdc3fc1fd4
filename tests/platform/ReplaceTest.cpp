#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/storage/StorageFile.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Windows::Storage::FileAccessMode;
using Windows::Storage::StorageFile;

std::shared_ptr<StorageFile> FileAt(const std::string& strPath) {
    return StorageFile::GetFileFromPathAsync(strPath).GetResults();
}

struct Big {
    const std::string strOld = std::string(100'000, 'o') + "OLD";
    const std::string strNew = std::string(1'200'000, 'n') + "NEW";
};

TEST(ReplaceTest, KeepsPermissionsAndLinksAndLeavesNothingAside) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "real");
    folder.Write("real/target", "old");
    ASSERT_EQ(::chmod((folder / "real/target").c_str(), 0640), 0);
    std::filesystem::create_symlink("real/target", folder / "inner");
    std::filesystem::create_symlink(folder / "inner", folder / "outer");
    const auto pSource = FileAt(folder.Write("source", "new"));
    pSource->CopyAndReplaceAsync(FileAt(folder / "outer")).GetResults();
    EXPECT_EQ(folder.Read("real/target"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "outer"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "inner"));
    struct stat status {};
    ASSERT_EQ(::stat((folder / "real/target").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "real"), {}), 1);
    EXPECT_EQ(folder.Entries(), 4U);
}

TEST(ReplaceTest, AWriteProtectedTargetIsRefusedAndOneThatVanishedMadeAgain) {
    const TemporaryFolder folder;
    const auto pSource = FileAt(folder.Write("source", "new"));
    const auto pTarget = FileAt(folder.Write("target", "old"));
    ASSERT_EQ(::chmod(pTarget->Path().c_str(), 0444), 0);
    EXPECT_THROW(pSource->CopyAndReplaceAsync(pTarget).GetResults(),
                 Platform::AccessDeniedException);
    EXPECT_EQ(folder.Read("target"), "old");
    EXPECT_EQ(folder.Entries(), 2U);
    pTarget->DeleteAsync().GetResults();
    pSource->CopyAndReplaceAsync(pTarget).GetResults();
    EXPECT_EQ(folder.Read("target"), "new");
}

TEST(ReplaceTest, ReadersSeeTheOldFileOrTheNewOneAndNothingBetween) {
    const TemporaryFolder folder;
    const Big big;
    const auto pOld = FileAt(folder.Write("old", big.strOld));
    const auto pNew = FileAt(folder.Write("new", big.strNew));
    const auto pTarget = FileAt(folder.Write("target", big.strOld));
    std::atomic<bool> bStop{false};
    std::atomic<int> nTorn{0};
    std::thread reader([&] {
        while (!bStop) {
            const std::string strSeen = folder.Read("target");
            nTorn += strSeen == big.strOld || strSeen == big.strNew ? 0 : 1;
        }
    });
    for (int n = 0; n < 10; ++n) {
        (n % 2 == 0 ? pNew : pOld)->CopyAndReplaceAsync(pTarget).GetResults();
    }
    bStop = true;
    reader.join();
    EXPECT_EQ(nTorn, 0);
}

// Every call of a replacement fails once; whatever fails, the target is whole,
// nothing stays aside, and the next try succeeds.
TEST(ReplaceTest, AFailureOfAnyCallLeavesTheTargetWhole) {
    const TemporaryFolder folder;
    const Big big;
    const auto pNew = FileAt(folder.Write("new", big.strNew));
    for (const int nError : {EIO, ENOSPC}) {
        int nNth = 0;
        int nReplaced = 0;
        int nWithout = 0; // calls that a replacement can do without
        for (bool bFailed = true; bFailed;) {
            const auto pTarget = FileAt(folder.Write("target", big.strOld));
            {
                StorageCalls calls;
                calls.Fail("", nError, ++nNth);
                const auto replace = pNew->CopyAndReplaceAsync(pTarget);
                replace.AsTask().wait();
                bFailed = calls.Struck() > 0;
                const std::string strCall = calls.Names()[bFailed ? nNth - 1 : 0];
                const bool bMatters = bFailed && strCall != "flock" && strCall != "fstatfs";
                nWithout += bFailed && !bMatters ? 1 : 0;
                EXPECT_EQ(replace.AsTask().is_failure(), bMatters) << strCall;
                if (bFailed && nError == ENOSPC && calls.Names().back() == "copy_file_range") {
                    EXPECT_THROW(replace.GetResults(), Platform::DiskFullException);
                }
                replace.AsTask().mark_observed();
            }
            const std::string strAfter = folder.Read("target");
            EXPECT_TRUE(strAfter == big.strOld || strAfter == big.strNew) << nNth;
            nReplaced += strAfter == big.strNew ? 1 : 0;
            EXPECT_EQ(folder.Entries(), 2U) << nNth;
        }
        // The last run, and the one in which only the folder's sync failed.
        EXPECT_EQ(nReplaced, nWithout + 2) << nError;
        EXPECT_GT(nNth, 12) << nError;
    }
}

TEST(ReplaceTest, BytesAreOnDiskBeforeTheNameAndTheNameBeforeTheEnd) {
    const TemporaryFolder folder;
    const auto pNew = FileAt(folder.Write("new", "new"));
    const auto pTarget = FileAt(folder.Write("target", "old"));
    const StorageCalls calls;
    pNew->CopyAndReplaceAsync(pTarget).GetResults();
    std::vector<std::string> order;
    for (const std::string& strCall : calls.Names()) {
        if (strCall == "copy_file_range" || strCall == "fsync" || strCall == "rename") {
            order.push_back(strCall);
        }
    }
    EXPECT_EQ(order, (std::vector<std::string>{"copy_file_range", "fsync", "rename", "fsync"}));
}

TEST(ReplaceTest, AFailedReadFailsTheReadAndNotTheStream) {
    const TemporaryFolder folder;
    const auto pStream =
        FileAt(folder.Write("a", "0123456789"))->OpenAsync(FileAccessMode::Read).GetResults();
    for (int nNth = 1; nNth <= 2; ++nNth) { // the look at the size, and the read itself
        StorageCalls calls;
        calls.Fail("", EIO, nNth);
        EXPECT_THROW(pStream->ReadAsync(4).GetResults(), Platform::ReadFaultException);
    }
    EXPECT_EQ(pStream->ReadAsync(4).GetResults()->Bytes()[0], '0');
}

}
