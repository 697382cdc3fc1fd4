// What a reader keeps of the settings when the disk, another process or the
// power does its worst.
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "tests/support/FileOnDisk.h"

// SQLite lets nobody replace the call that brings bytes to the disk, so it is
// put before the tests' hook here. No test cuts the power: nothing waits for the disk.
extern "C" int fdatasync(int /*nFd*/) {
    errno = StorageCalls::AskCurrent("store sync");
    return errno == 0 ? 0 : -1;
}

namespace {

using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationData;
using Windows::Storage::OpenApplicationData;
using Windows::Storage::StoreFailure;
using Cause = StoreFailure::Cause;

using DataPtr = std::shared_ptr<ApplicationData>;

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

// What another process would find.
std::int32_t Stored(const std::string& strFolder, const char* pszKey) {
    return Lookup(*OpenApplicationData(strFolder), pszKey);
}

std::vector<Cause> CausesToldBy(ApplicationData& data, const std::function<void()>& fnBody) {
    std::vector<Cause> causes;
    const auto token = data.StoreFailed().add(
        [&](const StoreFailure& failure) { causes.push_back(failure.eCause); });
    fnBody();
    data.Flush();
    data.StoreFailed().remove(token);
    return causes;
}

// Each call of a write fails in its turn, of the very first one too, which makes
// folder, file and tables. The reader's values are shown all the while, the host
// is told once, the store holds the old pair or the new one, and works on.
TEST(SettingsFaultTest, AnyFailingCallCostsNothingThatIsShownAndNeverHalfAPair) {
    for (const bool bFirstWrite : {true, false}) {
        for (const bool bForEver : {false, true}) {
            const int nError = bForEver ? ENOSPC : EIO;
            int nFailures = 0;
            for (int nNth = 1;; ++nNth) {
                SCOPED_TRACE(testing::Message() << bFirstWrite << nError << bForEver << nNth);
                const TemporaryFolder folder;
                const std::string strFolder = folder / "new/deep";
                const DataPtr pData = OpenApplicationData(strFolder);
                const std::int32_t nBefore = bFirstWrite ? -1 : 1;
                if (!bFirstWrite) {
                    InsertPair(*pData, 1);
                    pData->Flush();
                }
                StorageCalls calls;
                EXPECT_EQ(Lookup(*pData, "a"), nBefore);
                calls.Fail("", nError, nNth, bForEver);
                const auto causes = CausesToldBy(*pData, [&] {
                    InsertPair(*pData, 2);
                    pData->Flush();
                    InsertPair(*pData, 3);
                });
                EXPECT_EQ(Lookup(*pData, "b"), 3);
                const bool bMet = calls.Struck() > 0;
                calls.Pass();
                const std::int32_t nStored = Stored(strFolder, "a");
                EXPECT_EQ(nStored, Stored(strFolder, "b"));
                EXPECT_TRUE(nStored == nBefore || nStored == 2 || nStored == 3) << nStored;
                EXPECT_LE(causes.size(), 1U);
                EXPECT_TRUE(nStored == 3 || pData->Failure());
                if (bForEver) {
                    EXPECT_EQ(causes.size(), pData->Failure() ? 1U : 0U);
                }
                Insert(*pData, "c", 4); // the fault is gone
                pData->Flush();
                EXPECT_FALSE(pData->Failure());
                EXPECT_EQ(Stored(strFolder, "b"), 3);
                EXPECT_EQ(Stored(strFolder, "c"), 4);
                if (!bMet) {
                    break;
                }
                ++nFailures;
            }
            EXPECT_GT(nFailures, bFirstWrite ? 6 : 4);
        }
    }
}

// A connection of its own, as another process has it.
class Sqlite {
public:
    explicit Sqlite(const std::string& strPath) {
        EXPECT_EQ(sqlite3_open(strPath.c_str(), &m_p), 0);
    }
    ~Sqlite() { sqlite3_close(m_p); }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;
    void Run(const char* pszSql) {
        EXPECT_EQ(sqlite3_exec(m_p, pszSql, nullptr, nullptr, nullptr), 0) << sqlite3_errmsg(m_p);
    }

private:
    sqlite3* m_p = nullptr;
};

struct Trouble {
    const char* pszName;
    std::function<void(const TemporaryFolder&)> fnMake;
    std::function<void(const TemporaryFolder&)> fnEnd; // empty: none, or it never ends
    int nRead = -1;                                    // what reads as "a"
    std::optional<Cause> told = std::nullopt;
    bool bWorksAfterwards = true;
};

// A store that is in trouble when the program starts: it reads as what it holds
// or as empty, at once, and neither the reading nor the trouble touches it.
TEST(SettingsFaultTest, AStoreInTroubleIsReadWithoutATouchAndToldOnce) {
    StorageCalls calls;
    std::unique_ptr<Sqlite> pOther;
    const auto fnFree = [&](const auto&) { pOther.reset(); };
    const auto fnPass = [&](const auto&) { calls.Pass(); };
    const Trouble kTroubles[] = {
        {"read-only", [&](const auto&) { calls.Fail("store open for writing", EROFS, 1, true); },
         fnPass, 1, Cause::NotWritable},
        {"locked",
         [&](const auto& folder) {
             pOther = std::make_unique<Sqlite>(folder / "settings.db");
             pOther->Run("BEGIN EXCLUSIVE");
         },
         fnFree, -1, Cause::Locked},
        {"locked against writing",
         [&](const auto& folder) {
             pOther = std::make_unique<Sqlite>(folder / "settings.db");
             pOther->Run("BEGIN IMMEDIATE");
         },
         fnFree, 1, Cause::Locked},
        {"of a later version",
         [](const auto& folder) { Sqlite(folder / "settings.db").Run("PRAGMA user_version=3"); },
         nullptr, -1, Cause::LaterVersion, false},
        {"damaged",
         [](const auto& folder) {
             folder.Write("settings.db", std::string(9000, 'Z'));
             folder.Write("settings.db.corrupt1", "set aside before");
         },
         nullptr, -1, Cause::Damaged},
        {"of 0 bytes", [](const auto& folder) { folder.Write("settings.db", ""); }, nullptr},
        {"without tables",
         [](const auto& folder) {
             Sqlite(folder / "settings.db").Run("DROP TABLE setting; DROP TABLE recent");
         },
         nullptr},
        {"a folder",
         [](const auto& folder) {
             std::filesystem::remove(folder / "settings.db");
             std::filesystem::create_directory(folder / "settings.db");
         },
         [](const auto& folder) { std::filesystem::remove(folder / "settings.db"); }, -1,
         Cause::Failed},
    };
    for (const Trouble& trouble : kTroubles) {
        SCOPED_TRACE(trouble.pszName);
        const TemporaryFolder folder;
        {
            const DataPtr pData = OpenApplicationData(folder.Path());
            Insert(*pData, "a", 1);
            pData->Flush();
        }
        trouble.fnMake(folder);
        const std::string strBefore = folder.Read("settings.db");
        const std::size_t nEntries = folder.Entries();
        const int nWrites = calls.Count("store write") + calls.Count("store open for writing");
        const DataPtr pData = OpenApplicationData(folder.Path());
        const auto tStart = std::chrono::steady_clock::now();
        EXPECT_EQ(Lookup(*pData, "a"), trouble.nRead);
        EXPECT_TRUE(pData->MostRecentlyUsedList()->Entries().empty());
        EXPECT_LT(std::chrono::steady_clock::now() - tStart, std::chrono::seconds(2));
        EXPECT_EQ(calls.Count("store write") + calls.Count("store open for writing"), nWrites);
        EXPECT_EQ(folder.Read("settings.db"), strBefore);
        EXPECT_EQ(folder.Entries(), nEntries);

        std::optional<Cause> told =
            pData->Failure() ? std::optional(pData->Failure()->eCause) : std::nullopt;
        const auto causes = CausesToldBy(*pData, [&] {
            Insert(*pData, "b", 2);
            pData->Flush();
            Insert(*pData, "c", 3);
        });
        EXPECT_LE(causes.size() + (told ? 1 : 0), trouble.told ? 1U : 0U);
        EXPECT_EQ(causes.empty() ? told : causes.front(), trouble.told);
        EXPECT_EQ(Lookup(*pData, "b"), 2);
        EXPECT_EQ(Lookup(*pData, "c"), 3);
        if (!trouble.bWorksAfterwards) {
            EXPECT_EQ(folder.Read("settings.db"), strBefore);
            EXPECT_EQ(folder.Entries(), nEntries);
            continue;
        }
        if (trouble.fnEnd) {
            EXPECT_EQ(folder.Read("settings.db"), strBefore);
            trouble.fnEnd(folder);
        }
        Insert(*pData, "d", 4);
        pData->Flush();
        EXPECT_FALSE(pData->Failure());
        EXPECT_EQ(Stored(folder.Path(), "b"), 2);
        EXPECT_EQ(Stored(folder.Path(), "c"), 3);
        EXPECT_EQ(Stored(folder.Path(), "d"), 4);
        const bool bKept = trouble.told == Cause::Locked || trouble.nRead == 1;
        EXPECT_EQ(Stored(folder.Path(), "a"), bKept ? 1 : -1);
        if (trouble.told == Cause::Damaged) {
            EXPECT_EQ(folder.Read("settings.db.corrupt1"), "set aside before");
            EXPECT_EQ(folder.Read("settings.db.corrupt2"), strBefore);
        }
    }
}

// The disk hangs: whoever sets and asks does not notice, and the order holds.
TEST(SettingsFaultTest, NobodyWaitsForTheDiskButTheLast) {
    const TemporaryFolder folder;
    StorageCalls calls;
    DataPtr pData = OpenApplicationData(folder.Path());
    const auto here = std::this_thread::get_id();
    EXPECT_EQ(Lookup(*pData, "a"), -1);
    const int nCallsHere = calls.Count("", here);
    calls.Hold("store sync");
    InsertPair(*pData, 1);
    ASSERT_TRUE(calls.WaitForHeld());
    InsertPair(*pData, 2);
    pData->MostRecentlyUsedList()->Add("/x", "/x");
    EXPECT_EQ(Lookup(*pData, "b"), 2);
    EXPECT_EQ(Stored(folder.Path(), "b"), -1) << "and another process reads meanwhile";
    const int nCallsOfOther = calls.Count("", here) - nCallsHere;
    InsertPair(*pData, 3);
    EXPECT_EQ(calls.Count("", here), nCallsHere + nCallsOfOther);
    calls.Release();
    pData->Flush();
    EXPECT_EQ(calls.Count("", here), nCallsHere + nCallsOfOther);
    EXPECT_EQ(Stored(folder.Path(), "b"), 3);

    // What the disk has not taken by the end is stored when the last user goes.
    calls.Fail("store write", EIO, 1, true);
    InsertPair(*pData, 4);
    pData->Flush();
    EXPECT_EQ(Stored(folder.Path(), "b"), 3);
    auto pValues = pData->LocalSettings()->Values();
    calls.Pass();
    pData.reset();
    EXPECT_EQ(Stored(folder.Path(), "b"), 3);
    pValues.reset();
    EXPECT_EQ(Stored(folder.Path(), "b"), 4);
}

constexpr const char* kFolderVariable = "VELKO_TEST_KILLED_WRITER_FOLDER";

// The other process of the test below: tells its id on descriptor 3, writes pairs
// for ever and tells of each with a byte.
TEST(SettingsFaultTest, DISABLED_WriterThatIsKilled) {
    const char* pszFolder = std::getenv(kFolderVariable);
    ASSERT_NE(pszFolder, nullptr) << "only to be started by KilledWriterLeavesWholePairs";
    const auto pData = OpenApplicationData(pszFolder);
    const pid_t nSelf = ::getpid();
    ASSERT_EQ(::write(3, &nSelf, sizeof nSelf), static_cast<ssize_t>(sizeof nSelf));
    for (std::int32_t n = 1;; ++n) {
        InsertPair(*pData, n);
        pData->Flush();
        ASSERT_EQ(::write(3, "x", 1), 1);
    }
}

// Lets it store so many pairs and kills it in whatever it does next. How many it
// told of.
int KillWriterAfter(int nPairs, const std::string& strFolder) {
    ::setenv(kFolderVariable, strFolder.c_str(), 1);
    const std::string strProgram = std::filesystem::read_symlink("/proc/self/exe");
    std::FILE* const pTold = ::popen(("exec '" + strProgram +
                                      "' --gtest_also_run_disabled_tests"
                                      " --gtest_filter=*.DISABLED_WriterThatIsKilled"
                                      " 3>&1 >/dev/null")
                                         .c_str(),
                                     "re");
    ::unsetenv(kFolderVariable);
    pid_t nWriter = 0;
    EXPECT_EQ(std::fread(&nWriter, sizeof nWriter, 1, pTold), 1U);
    int nTold = 0;
    for (; std::fgetc(pTold) != EOF; ++nTold) {
        if (nTold + 1 == nPairs) {
            ::kill(nWriter, SIGKILL);
        }
    }
    EXPECT_TRUE(WIFSIGNALED(::pclose(pTold)));
    return nTold;
}

TEST(SettingsFaultTest, KilledWriterLeavesWholePairs) {
    const TemporaryFolder folder;
    for (const int nPairs : {1, 2, 5, 9, 14}) {
        const int nStored = KillWriterAfter(nPairs, folder.Path());
        EXPECT_GE(nStored, nPairs);
        const auto pData = OpenApplicationData(folder.Path());
        const std::int32_t nA = Lookup(*pData, "a");
        EXPECT_EQ(nA, Lookup(*pData, "b"));
        EXPECT_TRUE(nA == nStored || nA == nStored + 1) << nA << " of " << nStored;
        EXPECT_FALSE(std::filesystem::exists(folder / "settings.db.corrupt1"));
    }
}

}
