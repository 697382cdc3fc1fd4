// What a process leaves that is killed while it saves: it is this program,
// started anew for one test, with a folder and the number of the call that it
// must not survive.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/storage/FileLock.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageFolder.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Windows::Storage::StorageFile;
using Windows::Storage::StorageFolder;

constexpr const char* kFolder = "VELKO_KILL_FOLDER";
constexpr const char* kCall = "VELKO_KILL_CALL";
constexpr const char* kNameless = "VELKO_KILL_NAMELESS";

std::string Environment(const char* pszName) {
    const char* const pszValue = std::getenv(pszName);
    return pszValue == nullptr ? std::string() : pszValue;
}

void SaveUnderLock(const std::string& strFolder) {
    const auto pFolder = StorageFolder::FromPath(strFolder);
    const auto pLock = pFolder->LockAsync("target", std::chrono::seconds(0)).AsTask().get();
    const auto pTarget = StorageFile::FromPath(strFolder + "/target");
    const auto version = pTarget->GetVersionAsync().AsTask().get();
    TemporaryFolder::File(strFolder + "/new")
        ->ReplaceUnchangedAsync(pTarget, version)
        .AsTask()
        .get();
}

TEST(KillTest, DISABLED_Child) {
    StorageCalls calls;
    if (Environment(kNameless) == "no") {
        calls.Fail("tmpfile", EOPNOTSUPP);
    }
    calls.Before(
        "", [] { ::raise(SIGKILL); }, std::atoi(Environment(kCall).c_str()));
    SaveUnderLock(Environment(kFolder));
}

// True when it was killed, false when it came to its end.
bool RunChild() {
    const pid_t idChild = ::fork();
    if (idChild == 0) {
        ::execl("/proc/self/exe", "child", "--gtest_filter=KillTest.DISABLED_Child",
                "--gtest_also_run_disabled_tests", "--gtest_brief=1", nullptr);
        ::_exit(1);
    }
    int nStatus = 0;
    EXPECT_EQ(::waitpid(idChild, &nStatus, 0), idChild);
    EXPECT_TRUE(WIFSIGNALED(nStatus) || WEXITSTATUS(nStatus) == 0) << nStatus;
    return WIFSIGNALED(nStatus);
}

TEST(KillTest, AKilledProcessLeavesAWholeFileAndTheNextSaveNothingElse) {
    const std::string strOld(100'000, 'o');
    const std::string strNew(150'000, 'n');
    for (const char* pszNameless : {"yes", "no"}) {
        const TemporaryFolder folder;
        folder.Write("new", strNew);
        ::setenv(kFolder, folder.Path().c_str(), 1);
        ::setenv(kNameless, pszNameless, 1);
        int nCall = 0;
        for (bool bKilled = true; bKilled;) {
            folder.Write("target", strOld);
            ::setenv(kCall, std::to_string(++nCall).c_str(), 1);
            bKilled = RunChild();
            const std::string strAfter = folder.Read("target");
            EXPECT_TRUE(strAfter == strNew || (bKilled && strAfter == strOld)) << nCall;
            SaveUnderLock(folder.Path());             // the dead process's lock is free
            EXPECT_EQ(folder.Entries(), 3U) << nCall; // the lock's file is the third
        }
        EXPECT_GT(nCall, 20);
    }
}

} // namespace
