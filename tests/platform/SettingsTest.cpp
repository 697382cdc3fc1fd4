#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Platform::Fake::TestHost;
using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;
using Windows::Storage::ApplicationDataCreateDisposition;
using Windows::Storage::OpenApplicationData;

std::vector<PropertyValue> OneOfEachType() {
    auto pInner = std::make_shared<PropertySet>();
    pInner->Insert("deep", PropertyValue::Create<double>(0.1));
    auto pComposite = std::make_shared<PropertySet>();
    pComposite->Insert("", PropertyValue::Create<std::string>("empty key"));
    pComposite->Insert("flag", PropertyValue::Create<bool>(true));
    pComposite->Insert("inner", PropertyValue::Create<PropertyValue::Composite>(pInner));
    pComposite->Insert(
        "none", PropertyValue::Create<PropertyValue::Composite>(std::make_shared<PropertySet>()));
    pComposite->Insert("single", PropertyValue::Create<float>(-0.0F));
    return {PropertyValue::Create<bool>(false),
            PropertyValue::Create<bool>(true),
            PropertyValue::Create<std::int32_t>(std::numeric_limits<std::int32_t>::min()),
            PropertyValue::Create<std::int64_t>(std::numeric_limits<std::int64_t>::max()),
            PropertyValue::Create<std::uint32_t>(0xFFFFFFFFU),
            PropertyValue::Create<float>(std::nextafter(0.1F, 1.0F)),
            PropertyValue::Create<float>(std::numeric_limits<float>::denorm_min()),
            PropertyValue::Create<double>(-0.0),
            PropertyValue::Create<double>(std::numeric_limits<double>::quiet_NaN()),
            PropertyValue::Create<double>(std::numeric_limits<double>::infinity()),
            PropertyValue::Create<double>(1.0),
            PropertyValue::Create<std::string>(""),
            PropertyValue::Create<std::string>(std::string("nul\0 and \xFF\xFE", 11)),
            PropertyValue::Create<PropertyValue::Composite>(pComposite)};
}

// Type and value as text; numbers with their last bit.
std::string Text(const PropertyValue& value) {
    std::ostringstream text;
    text << value.TypeName() << std::hexfloat << ' ';
    std::visit(
        [&](const auto& held) {
            if constexpr (requires { held->Lookup(""); }) {
                for (const auto& [strKey, member] : *held) {
                    text << '{' << strKey << ": " << Text(member) << '}';
                }
            } else {
                text << held;
            }
        },
        value.Value());
    return text.str();
}

void SetNumber(ApplicationData& data, const std::string& strKey, std::int32_t nValue) {
    data.LocalSettings()->Values()->Insert(strKey, PropertyValue::Create<std::int32_t>(nValue));
}

// The same, on the disk when it returns.
void StoreNumber(ApplicationData& data, const std::string& strKey, std::int32_t nValue) {
    SetNumber(data, strKey, nValue);
    data.Flush();
}

std::int32_t NumberAt(ApplicationData& data, const std::string& strKey) {
    const auto value = data.LocalSettings()->Values()->TryLookup(strKey);
    return value ? value->Get<std::int32_t>() : -1;
}

TEST(SettingsTest, EveryTypeComesBackExactlyInAnotherLife) {
    const TemporaryFolder folder;
    const auto values = OneOfEachType();
    {
        const auto pValues = OpenApplicationData(folder.Path())->LocalSettings()->Values();
        for (std::size_t n = 0; n < values.size(); ++n) {
            pValues->Insert(std::to_string(n), PropertyValue::Create<bool>(true)); // replaced
            pValues->Insert(std::to_string(n), values[n]);
        }
    }
    const auto pValues = OpenApplicationData(folder.Path())->LocalSettings()->Values();
    for (std::size_t n = 0; n < values.size(); ++n) {
        const auto value = pValues->TryLookup(std::to_string(n));
        ASSERT_TRUE(value) << n;
        EXPECT_EQ(Text(*value), Text(values[n]));
    }
    pValues->Remove("0");
    pValues->Remove("never there");
    EXPECT_FALSE(pValues->HasKey("0"));
    EXPECT_THROW(pValues->Insert("x", PropertyValue::Create<PropertyValue::Composite>(nullptr)),
                 Platform::InvalidArgumentException);
}

TEST(SettingsTest, ContainersAreApart) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    const auto pRoot = pData->LocalSettings();
    const auto eAlways = ApplicationDataCreateDisposition::Always;
    const auto eExisting = ApplicationDataCreateDisposition::Existing;
    EXPECT_THROW(pRoot->CreateContainer("a", eExisting), Platform::FileNotFoundException);
    const auto fnSet = [](const auto& pContainer, std::int32_t nValue) {
        pContainer->Values()->Insert("key", PropertyValue::Create<std::int32_t>(nValue));
    };
    // A composite and a container of one name are apart too.
    auto pSet = std::make_shared<PropertySet>();
    pSet->Insert("key", PropertyValue::Create<std::int32_t>(3));
    pRoot->Values()->Insert("a", PropertyValue::Create<PropertyValue::Composite>(pSet));
    fnSet(pRoot->CreateContainer("a/b", eAlways), 1);
    fnSet(pRoot->CreateContainer("a", eAlways)->CreateContainer("b", eAlways), 2);
    EXPECT_FALSE(pRoot->Values()->HasKey("key"));
    pRoot->Values()->Remove("a");
    pData->Flush();
    const auto pOther = OpenApplicationData(folder.Path());
    const auto pAgain = pOther->LocalSettings();
    const auto pNested = pAgain->CreateContainer("a", eExisting)->CreateContainer("b", eExisting);
    EXPECT_EQ(pAgain->CreateContainer("a/b", eExisting)->Values()->TryLookup("key")->Get<int>(), 1);
    EXPECT_EQ(pNested->Values()->TryLookup("key")->Get<int>(), 2);
}

TEST(SettingsTest, NothingIsMadeBeforeTheFirstChange) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder / "new/deep");
    const auto pValues = pData->LocalSettings()
                             ->CreateContainer("c", ApplicationDataCreateDisposition::Always)
                             ->Values();
    EXPECT_FALSE(pValues->HasKey("x"));
    EXPECT_TRUE(pData->MostRecentlyUsedList()->Entries().empty());
    pValues->Remove("x");
    pData->MostRecentlyUsedList()->Remove("token");
    pData->InTransaction([] {});
    pData->Flush();
    EXPECT_EQ(folder.Entries(), 0U);
    pValues->Insert("x", PropertyValue::Create<bool>(true));
    pData->Flush();
    EXPECT_TRUE(std::filesystem::exists(pData->LocalFolder() + "/settings.db"));
    struct stat status {};
    ASSERT_EQ(::stat(pData->LocalFolder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST(SettingsTest, ATransactionIsShownAndStoredWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    StoreNumber(*pData, "a", 1);
    EXPECT_THROW(pData->InTransaction([&] {
        SetNumber(*pData, "a", 2);
        pData->MostRecentlyUsedList()->Add("/x", "/x");
        throw Platform::ReadFaultException();
    }),
                 Platform::ReadFaultException);
    EXPECT_EQ(NumberAt(*pData, "a"), 1);
    EXPECT_TRUE(pData->MostRecentlyUsedList()->Entries().empty());
    pData->InTransaction([&] {
        SetNumber(*pData, "a", 3);
        EXPECT_THROW(pData->InTransaction([&] {
            SetNumber(*pData, "a", 4);
            SetNumber(*pData, "b", 4);
            throw Platform::ReadFaultException();
        }),
                     Platform::ReadFaultException);
        pData->InTransaction([&] { SetNumber(*pData, "c", 5); });
        pData->Flush(); // waits for nothing here
        EXPECT_EQ(NumberAt(*OpenApplicationData(folder.Path()), "a"), 1) << "not out yet";
    });
    pData->Flush();
    const auto pOther = OpenApplicationData(folder.Path());
    EXPECT_EQ(NumberAt(*pOther, "a"), 3);
    EXPECT_EQ(NumberAt(*pOther, "b"), -1);
    EXPECT_EQ(NumberAt(*pOther, "c"), 5);
}

TEST(SettingsTest, TwoProcessesAndTheirThreadsLoseNoChange) {
    const TemporaryFolder folder;
    const std::vector<std::shared_ptr<ApplicationData>> stores = {
        OpenApplicationData(folder.Path()), OpenApplicationData(folder.Path())};
    constexpr int kRounds = 12;
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n) {
        threads.emplace_back([&, n] {
            ApplicationData& data = *stores[static_cast<std::size_t>(n) % 2];
            const std::string strKey = std::to_string(n);
            for (int nRound = 0; nRound < kRounds; ++nRound) {
                data.InTransaction([&] { SetNumber(data, strKey, NumberAt(data, strKey) + 1); });
                data.MostRecentlyUsedList()->Add(nRound % 2 == 0 ? "/both" : "/" + strKey, strKey);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    stores[0]->Flush();
    stores[1]->Flush();
    const auto pData = OpenApplicationData(folder.Path());
    for (int n = 0; n < 4; ++n) {
        EXPECT_EQ(NumberAt(*pData, std::to_string(n)), kRounds - 1);
    }
    EXPECT_EQ(pData->MostRecentlyUsedList()->Entries().size(), 5U) << "each path once";
}

// The payload of a composite as the first version wrote it: {"d": {"": "x"}, "n": 7}.
TEST(SettingsTest, AStoreOfTheFirstVersionIsReadAndTakenOver) {
    const TemporaryFolder folder;
    sqlite3* pDatabase = nullptr;
    ASSERT_EQ(sqlite3_open((folder / "settings.db").c_str(), &pDatabase), SQLITE_OK);
    EXPECT_EQ(
        sqlite3_exec(
            pDatabase,
            "CREATE TABLE container(path TEXT PRIMARY KEY NOT NULL) WITHOUT ROWID;"
            "CREATE TABLE setting(container TEXT NOT NULL, key TEXT NOT NULL, type INTEGER NOT "
            "NULL, value, PRIMARY KEY(container, key)) WITHOUT ROWID;"
            "CREATE TABLE recent(token TEXT PRIMARY KEY NOT NULL, path TEXT UNIQUE NOT NULL,"
            " metadata TEXT NOT NULL, rank INTEGER NOT NULL) WITHOUT ROWID;"
            "INSERT INTO container VALUES('/c'); INSERT INTO recent VALUES('t', '/p', '/p', 1);"
            "INSERT INTO setting VALUES('/c', 'a', 2, 5), ('', 'torn', 8, x'05000000'),"
            " ('', 't', 8, x'02000000' || x'01000000' || 'd' || x'08' || x'01000000' ||"
            "  x'00000000' || x'07' || x'01000000' || 'x' ||"
            "  x'01000000' || 'n' || x'02' || x'0700000000000000');"
            "PRAGMA user_version=1;",
            nullptr, nullptr, nullptr),
        SQLITE_OK)
        << sqlite3_errmsg(pDatabase);
    sqlite3_close(pDatabase);
    for (const bool bTakenOver : {false, true}) {
        const auto pData = OpenApplicationData(folder.Path());
        const auto pRoot = pData->LocalSettings();
        const auto value = pRoot->Values()->TryLookup("t");
        ASSERT_TRUE(value && value->Is<PropertyValue::Composite>()) << bTakenOver;
        const auto& set = *value->Get<PropertyValue::Composite>();
        EXPECT_EQ(set.Lookup("n").Get<std::int32_t>(), 7);
        EXPECT_EQ(set.Lookup("d").Get<PropertyValue::Composite>()->Lookup("").Get<std::string>(),
                  "x");
        EXPECT_FALSE(pRoot->Values()->HasKey("torn")) << "one that nobody can read is none";
        EXPECT_EQ(pRoot->CreateContainer("c", ApplicationDataCreateDisposition::Existing)
                      ->Values()
                      ->TryLookup("a")
                      ->Get<std::int32_t>(),
                  5);
        EXPECT_EQ(pData->MostRecentlyUsedList()->Add("/p", "/p"), "t");
        pRoot->Values()->Insert("t", *value);
    }
}

// Breaks every page but the first.
void Damage(const TemporaryFolder& folder) {
    std::string strBytes = folder.Read("settings.db");
    ASSERT_GT(strBytes.size(), 8192U);
    strBytes.replace(4096, std::string::npos, std::string(strBytes.size() - 4096, 'Z'));
    folder.Write("settings.db", strBytes);
}

// What is shown outlives the file: whoever begins it anew stores all of it.
TEST(SettingsTest, AStoreThatBreaksOrGoesWhileItIsInUseIsMadeAgainWhole) {
    const TestHost host;
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    StoreNumber(*pData, "a", 1);
    pData->MostRecentlyUsedList()->Add("/x", "/x");
    pData->MostRecentlyUsedList()->Add("/y", "/y");
    StoreNumber(*pData, "b", 2);
    Damage(folder);
    StoreNumber(*pData, "c", 3);
    const auto fnExpectAll = [&] {
        const auto pOther = OpenApplicationData(folder.Path());
        EXPECT_EQ(NumberAt(*pOther, "a"), 1);
        EXPECT_EQ(NumberAt(*pOther, "b"), 2);
        EXPECT_EQ(NumberAt(*pOther, "c"), 3);
        ASSERT_EQ(pOther->MostRecentlyUsedList()->Entries().size(), 2U);
        EXPECT_EQ(pOther->MostRecentlyUsedList()->Entries()[0].Metadata, "/y");
    };
    fnExpectAll();
    EXPECT_TRUE(std::filesystem::exists(folder / "settings.db.corrupt1"));
    std::filesystem::remove(folder / "settings.db");
    StoreNumber(*pData, "d", 4);
    fnExpectAll();
}

TEST(RecentListTest, LatestFirstWithATokenThatStaysAtMostTwentyFive) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    const auto pList = pData->MostRecentlyUsedList();
    const std::string strFirst = pList->Add("/0", "/0");
    const std::string strOldest = pList->Add("/1", "m");
    SetNumber(*pData, strOldest, 1);
    SetNumber(*pData, strFirst, 2);
    for (int n = 2; n < 25; ++n) {
        EXPECT_NE(pList->Add("/" + std::to_string(n), "m"), strFirst);
    }
    EXPECT_EQ(pList->Add("/0", "renewed"), strFirst);
    EXPECT_EQ(pList->Entries().size(), 25U);
    pList->Add("/25", "newest"); // pushes out "/1", the oldest
    pData->Flush();
    const auto pAgain = OpenApplicationData(folder.Path());
    for (const auto& pEither : {pData, pAgain}) {
        EXPECT_EQ(NumberAt(*pEither, strOldest), -1) << "a place that nobody can find";
        EXPECT_EQ(NumberAt(*pEither, strFirst), 2);
        const auto entries = pEither->MostRecentlyUsedList()->Entries();
        ASSERT_EQ(entries.size(), 25U);
        EXPECT_EQ(entries[0].Metadata, "newest");
        EXPECT_EQ(entries[1].Token, strFirst);
        EXPECT_EQ(entries[1].Metadata, "renewed");
    }
    pList->Remove(strFirst);
    EXPECT_EQ(pList->Entries().size(), 24U);
}

}
