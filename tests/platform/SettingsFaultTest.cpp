#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "tests/platform/FaultyVfs.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationData;
using Windows::Storage::OpenApplicationData;

void Insert(ApplicationData& data, const char* pszKey, std::int32_t nValue) {
    data.LocalSettings()->Values()->Insert(pszKey, PropertyValue::Create<std::int32_t>(nValue));
}

std::int32_t Lookup(ApplicationData& data, const char* pszKey) {
    const auto value = data.LocalSettings()->Values()->TryLookup(pszKey);
    return value ? value->Get<std::int32_t>() : -1;
}

void InsertPair(ApplicationData& data, std::int32_t nValue) {
    data.InTransaction([&] {
        Insert(data, "a", nValue);
        Insert(data, "b", nValue);
    });
}

// Each write and each synchronisation of a transaction fails in its turn. The
// pair is the old one or the new one, and the store works on.
TEST(SettingsFaultTest, AFailedWriteLeavesTheOldPairOrTheNewOne) {
    const TemporaryFolder folder;
    const FaultyVfs vfs;
    const auto pData = OpenApplicationData(folder.Path());
    InsertPair(*pData, 0);
    for (const bool bForEver : {false, true}) {
        int nFailures = 0;
        for (std::int32_t nRun = 1;; ++nRun) {
            const std::int32_t nBefore = Lookup(*pData, "a");
            vfs.FailWrite(nRun, bForEver);
            bool bRaised = false;
            try {
                InsertPair(*pData, nBefore + 1);
            } catch (const Platform::Exception&) {
                bRaised = true;
            }
            const bool bMet = vfs.HasFailed();
            vfs.FailWrite(0, false);
            const std::int32_t nAfter = Lookup(*pData, "a");
            EXPECT_EQ(nAfter, Lookup(*pData, "b")) << nRun;
            EXPECT_TRUE(nAfter == nBefore + 1 || (bRaised && nAfter == nBefore)) << nRun;
            EXPECT_EQ(Lookup(*OpenApplicationData(folder.Path()), "b"), nAfter) << nRun;
            if (!bMet) {
                break;
            }
            ++nFailures;
        }
        EXPECT_GT(nFailures, 3);
    }
    InsertPair(*pData, 1000);
    EXPECT_EQ(Lookup(*pData, "b"), 1000);
}

TEST(SettingsFaultTest, WritesAfterALostTransactionDoNotSlipOutAlone) {
    const TemporaryFolder folder;
    const FaultyVfs vfs;
    const auto pData = OpenApplicationData(folder.Path());
    InsertPair(*pData, 0);
    // A text too large for the page cache's patience spills, and the spill fails.
    const std::string strHuge(40'000'000, 'x');
    EXPECT_THROW(pData->InTransaction([&] {
        Insert(*pData, "a", 1);
        vfs.FailWrite(1, true);
        EXPECT_THROW(
            pData->LocalSettings()->Values()->Insert("huge", PropertyValue::Create(strHuge)),
            Platform::Exception);
        vfs.FailWrite(0, false);
        Insert(*pData, "b", 1);
    }),
                 Platform::Exception);
    EXPECT_EQ(Lookup(*pData, "a"), 0);
    EXPECT_EQ(Lookup(*pData, "b"), 0);
}

constexpr const char* kFolderVariable = "VELKO_TEST_KILLED_WRITER_FOLDER";

// The other process of the test below: writes pairs for ever and tells of each
// with a byte on its standard output.
TEST(SettingsFaultTest, DISABLED_WriterThatIsKilled) {
    const char* pszFolder = std::getenv(kFolderVariable);
    ASSERT_NE(pszFolder, nullptr) << "only to be started by KilledWriterLeavesWholePairs";
    const auto pData = OpenApplicationData(pszFolder);
    for (std::int32_t n = 1;; ++n) {
        InsertPair(*pData, n);
        ASSERT_EQ(::write(3, "x", 1), 1);
    }
}

class Writer {
public:
    explicit Writer(const std::string& strFolder) {
        int fds[2];
        EXPECT_EQ(::pipe2(fds, O_CLOEXEC), 0);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, fds[1], 3);
        ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        ::setenv(kFolderVariable, strFolder.c_str(), 1);
        std::string strProgram = "/proc/self/exe";
        std::string strFilter = "--gtest_filter=*.DISABLED_WriterThatIsKilled";
        std::string strDisabled = "--gtest_also_run_disabled_tests";
        char* const arguments[] = {strProgram.data(), strFilter.data(), strDisabled.data(),
                                   nullptr};
        EXPECT_EQ(
            ::posix_spawn(&m_nProcess, strProgram.c_str(), &actions, nullptr, arguments, environ),
            0);
        ::posix_spawn_file_actions_destroy(&actions);
        ::unsetenv(kFolderVariable);
        ::close(fds[1]);
        m_nOutput = fds[0];
    }
    ~Writer() { ::close(m_nOutput); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Waits until so many pairs are stored; then kills it in whatever it does next.
    int KillAfter(int nPairs) {
        char byte = 0;
        int nSeen = 0;
        while (nSeen < nPairs && ::read(m_nOutput, &byte, 1) == 1) {
            ++nSeen;
        }
        ::kill(m_nProcess, SIGKILL);
        int nStatus = 0;
        ::waitpid(m_nProcess, &nStatus, 0);
        EXPECT_TRUE(WIFSIGNALED(nStatus));
        while (::read(m_nOutput, &byte, 1) == 1) {
            ++nSeen;
        }
        return nSeen;
    }

private:
    pid_t m_nProcess = 0;
    int m_nOutput = -1;
};

TEST(SettingsFaultTest, KilledWriterLeavesWholePairs) {
    const TemporaryFolder folder;
    for (const int nPairs : {1, 2, 5, 9, 14}) {
        const int nStored = Writer(folder.Path()).KillAfter(nPairs);
        EXPECT_GE(nStored, nPairs);
        const auto pData = OpenApplicationData(folder.Path());
        const std::int32_t nA = Lookup(*pData, "a");
        EXPECT_EQ(nA, Lookup(*pData, "b"));
        EXPECT_TRUE(nA == nStored || nA == nStored + 1) << nA << " of " << nStored;
        EXPECT_FALSE(std::filesystem::exists(folder / "settings.db.corrupt1"));
    }
}

}
