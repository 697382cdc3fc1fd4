#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "platform/storage/FileLock.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageFolder.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Windows::Storage::FileVersion;
using Windows::Storage::StorageFile;
using Windows::Storage::StorageFolder;

// Long ago, so that the next write has another time on any disk.
std::string WriteLongAgo(const TemporaryFolder& folder, const std::string& strName,
                         const std::string& strBytes) {
    folder.Write(strName, strBytes);
    std::filesystem::last_write_time(folder / strName, {});
    return folder / strName;
}

FileVersion VersionOf(StorageFile& file) {
    return file.GetVersionAsync().AsTask().get();
}

TEST(VersionTest, OnlyTheVersionThatIsExpectedIsReplaced) {
    const TemporaryFolder folder;
    const auto pSource = folder.File(folder.Write("new", "new"));
    struct Case {
        const char* pszName;
        std::function<void()> fnOther; // what another program does to "target"
    };
    const std::vector<Case> cases = {
        {"written in place", [&] { folder.Write("target", "theirs"); }},
        {"of the same size", [&] { folder.Write("target", "OLD"); }},
        {"replaced", [&] { folder.Replace("target", "old"); }},
        {"gone", [&] { std::filesystem::remove(folder / "target"); }},
    };
    for (const Case& one : cases) {
        for (const bool bAtTheLast : {false, true}) {
            WriteLongAgo(folder, "target", "old");
            const auto pPin = folder.File(folder / "target")->PinForReading();
            StorageCalls calls;
            if (bAtTheLast) { // the renaming is prepared, and looks at the target once more
                calls.Before("linkat", one.fnOther);
            } else {
                one.fnOther();
            }
            const auto replace = pSource->ReplaceUnchangedAsync(
                StorageFile::FromPath(folder / "target"), VersionOf(*pPin));
            EXPECT_THROW(replace.AsTask().get(), Platform::FileChangedException) << one.pszName;
            EXPECT_NE(folder.Read("target"), "new") << one.pszName;
            EXPECT_EQ(folder.Entries(), std::string(one.pszName) == "gone" ? 1U : 2U);
        }
    }
}

TEST(VersionTest, EachReplacementYieldsTheVersionForTheNext) {
    const TemporaryFolder folder;
    const auto pTarget = folder.File(folder.Write("target", "old"));
    const auto pPin = pTarget->PinForReading();
    FileVersion version = VersionOf(*pPin);
    for (const char* pszBytes : {"first", "second"}) {
        version = folder.File(folder.Write("new", pszBytes))
                      ->ReplaceUnchangedAsync(pTarget, version)
                      .AsTask()
                      .get();
        EXPECT_EQ(folder.Read("target"), pszBytes);
        EXPECT_EQ(VersionOf(*pTarget), version);
    }
    EXPECT_NE(VersionOf(*pPin), version); // stays that of its bytes
    EXPECT_THROW(VersionOf(*StorageFile::FromPath(folder / "none")),
                 Platform::FileNotFoundException);
}

// Some file systems give a file another number when they meet it again.
TEST(VersionTest, AFilesNumberCountsOnlyWhereItLasts) {
    const TemporaryFolder folder;
    const auto pSource = folder.File(folder.Write("new", "new"));
    StorageCalls calls;
    for (const bool bLasts : {true, false}) {
        if (!bLasts) {
            calls.Fail("fstatfs", ENOSYS, 1, true);
        }
        const auto pTarget = folder.File(WriteLongAgo(folder, "target", "old"));
        const FileVersion version = VersionOf(*pTarget);
        WriteLongAgo(folder, "same", "old");
        std::filesystem::last_write_time(folder / "same",
                                         std::filesystem::last_write_time(folder / "target"));
        std::filesystem::rename(folder / "same", folder / "target");
        const auto replace = pSource->ReplaceUnchangedAsync(pTarget, version).AsTask();
        replace.wait();
        EXPECT_EQ(replace.is_value(), !bLasts);
        replace.mark_observed();
    }
}

TEST(VersionTest, ASourceThatIsWrittenToMeanwhileReplacesNothing) {
    const TemporaryFolder folder;
    const auto pTarget = folder.File(folder.Write("target", "old"));
    const auto pSource = folder.File(folder.Write("source", ""));
    for (const char* pszBytes : {"0123", "ten others"}) {
        for (const bool bPinned : {false, true}) {
            WriteLongAgo(folder, "source", "0123456789");
            const auto pBytes = bPinned ? pSource->PinForReading() : pSource;
            StorageCalls calls;
            calls.Before("copy_file_range", [&] { folder.Write("source", pszBytes); });
            EXPECT_THROW(pBytes->CopyAndReplaceAsync(pTarget).AsTask().get(),
                         Platform::FileChangedException);
            EXPECT_EQ(folder.Read("target"), "old");
        }
    }
}

TEST(FileLockTest, OneHolderAtATimeWhoeverWaitsGetsIt) {
    const TemporaryFolder folder;
    const auto pFolder = StorageFolder::FromPath(folder.Path());
    const auto fnLock = [&](int nSeconds, const char* pszName = "temp.pdf") {
        return pFolder->LockAsync(pszName, std::chrono::seconds(nSeconds));
    };
    auto pFirst = fnLock(0).AsTask().get();
    EXPECT_THROW(fnLock(0).AsTask().get(), Platform::FileLockedException);
    EXPECT_NE(fnLock(0, "other.pdf").AsTask().get(), nullptr);
    StorageCalls calls;
    const auto waiting = fnLock(30);
    calls.Hold("flock"); // it tries, again or for the first time
    ASSERT_TRUE(calls.WaitForHeld());
    pFirst.reset();
    calls.Release();
    EXPECT_NE(waiting.AsTask().get(), nullptr);
    // A lock file that was swept away with the folder's contents locks nobody out.
    std::filesystem::remove(folder / ".temp.pdf.lock");
    EXPECT_NE(fnLock(0).AsTask().get(), nullptr);
    EXPECT_THROW(fnLock(0, "a/b").AsTask().get(), Platform::InvalidArgumentException);
}

}
