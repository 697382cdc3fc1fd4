#include <gtest/gtest.h>
#include <sys/stat.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "platform/storage/StorageFolder.h"
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

void ExpectSame(const PropertyValue& actual, const PropertyValue& expected);

void ExpectSameSet(const PropertySet& actual, const PropertySet& expected) {
    ASSERT_EQ(actual.Size(), expected.Size());
    for (const auto& [strKey, value] : expected) {
        ASSERT_TRUE(actual.HasKey(strKey)) << strKey;
        ExpectSame(actual.Lookup(strKey), value);
    }
}

void ExpectSame(const PropertyValue& actual, const PropertyValue& expected) {
    ASSERT_STREQ(actual.TypeName(), expected.TypeName());
    if (expected.Is<PropertyValue::Composite>()) {
        ExpectSameSet(*actual.Get<PropertyValue::Composite>(),
                      *expected.Get<PropertyValue::Composite>());
    } else if (expected.Is<double>()) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(actual.Get<double>()),
                  std::bit_cast<std::uint64_t>(expected.Get<double>()));
    } else if (expected.Is<float>()) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(actual.Get<float>()),
                  std::bit_cast<std::uint32_t>(expected.Get<float>()));
    } else {
        EXPECT_EQ(actual.Value(), expected.Value());
    }
}

void SetNumber(ApplicationData& data, const std::string& strKey, std::int32_t nValue) {
    data.LocalSettings()->Values()->Insert(strKey, PropertyValue::Create<std::int32_t>(nValue));
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
        SCOPED_TRACE(n);
        const auto value = pValues->TryLookup(std::to_string(n));
        ASSERT_TRUE(value);
        ExpectSame(*value, values[n]);
    }
    EXPECT_TRUE(pValues->HasKey("0"));
    pValues->Remove("0");
    pValues->Remove("never there");
    EXPECT_FALSE(pValues->HasKey("0"));
    EXPECT_FALSE(pValues->TryLookup("0"));
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
    const auto pFlat = pRoot->CreateContainer("a/b", eAlways);
    const auto pNested = pRoot->CreateContainer("a", eAlways)->CreateContainer("b", eAlways);
    pFlat->Values()->Insert("key", PropertyValue::Create<std::int32_t>(1));
    pNested->Values()->Insert("key", PropertyValue::Create<std::int32_t>(2));
    EXPECT_FALSE(pRoot->Values()->HasKey("key"));
    const auto pAgain = OpenApplicationData(folder.Path())->LocalSettings();
    EXPECT_EQ(pAgain->CreateContainer("a/b", eExisting)->Values()->TryLookup("key")->Get<int>(), 1);
    EXPECT_EQ(pAgain->CreateContainer("a", eExisting)
                  ->CreateContainer("b", eExisting)
                  ->Values()
                  ->TryLookup("key")
                  ->Get<int>(),
              2);
}

TEST(SettingsTest, TheFolderIsMadeAtOnceAndTheStoreAtTheFirstWrite) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder / "new/deep");
    EXPECT_EQ(pData->LocalFolder(), folder / "new/deep");
    struct stat status {};
    ASSERT_EQ(::stat(pData->LocalFolder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    const auto pRoot = pData->LocalSettings();
    const auto pValues = pRoot->CreateContainer("empty", ApplicationDataCreateDisposition::Always)
                             ->CreateContainer("full", ApplicationDataCreateDisposition::Always)
                             ->Values();
    pRoot->CreateContainer("empty", ApplicationDataCreateDisposition::Existing);
    EXPECT_FALSE(pValues->HasKey("x"));
    EXPECT_FALSE(pValues->TryLookup("x"));
    EXPECT_TRUE(pData->MostRecentlyUsedList()->Entries().empty());
    pValues->Remove("x");
    pData->MostRecentlyUsedList()->Remove("token");
    EXPECT_TRUE(std::filesystem::is_empty(pData->LocalFolder()));
    pValues->Insert("x", PropertyValue::Create<bool>(true));
    EXPECT_TRUE(std::filesystem::exists(pData->LocalFolder() + "/settings.db"));
    const auto pOther = OpenApplicationData(folder / "new/deep")->LocalSettings();
    EXPECT_TRUE(pOther->CreateContainer("empty", ApplicationDataCreateDisposition::Existing)
                    ->CreateContainer("full", ApplicationDataCreateDisposition::Existing)
                    ->Values()
                    ->HasKey("x"));
    EXPECT_EQ(pData->LocalStorageFolder()->Path(), pData->LocalFolder());
}

TEST(SettingsTest, ATransactionIsStoredWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    const auto pOther = OpenApplicationData(folder.Path());
    SetNumber(*pData, "a", 1);
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
        EXPECT_EQ(NumberAt(*pOther, "a"), 1); // not out yet
    });
    EXPECT_EQ(NumberAt(*pOther, "a"), 3);
    EXPECT_EQ(NumberAt(*pOther, "b"), -1);
    EXPECT_EQ(NumberAt(*pOther, "c"), 5);
}

TEST(SettingsTest, TwoConnectionsAndTheirThreadsLoseNoWrite) {
    const TemporaryFolder folder;
    const std::vector<std::shared_ptr<ApplicationData>> stores = {
        OpenApplicationData(folder.Path()), OpenApplicationData(folder.Path())};
    constexpr int kRounds = 12;
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n) {
        threads.emplace_back([&, n] {
            ApplicationData& data = *stores[static_cast<std::size_t>(n) % 2];
            for (int nRound = 0; nRound < kRounds; ++nRound) {
                data.InTransaction([&] { SetNumber(data, "count", NumberAt(data, "count") + 1); });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(NumberAt(*stores[0], "count"), 4 * kRounds - 1);
    EXPECT_EQ(NumberAt(*stores[1], "count"), 4 * kRounds - 1);
}

TEST(SettingsTest, WhatCannotBeReadIsSetAsideAndBegunAnew) {
    TestHost host;
    for (const bool bNoise : {true, false}) {
        const TemporaryFolder folder;
        SetNumber(*OpenApplicationData(folder.Path()), "a", 1);
        std::string strBytes = folder.Read("settings.db");
        ASSERT_GT(strBytes.size(), 8192U);
        // Noise from the start, or a good header over broken pages.
        strBytes.replace(bNoise ? 0 : 4096, 4096, std::string(4096, '\x5A'));
        folder.Write("settings.db", strBytes);
        host.ClearDebug();
        const auto pData = OpenApplicationData(folder.Path());
        EXPECT_EQ(NumberAt(*pData, "a"), -1);
        EXPECT_TRUE(host.DebugContains("unreadable settings set aside as " +
                                       (folder / "settings.db.corrupt1")));
        EXPECT_EQ(folder.Read("settings.db.corrupt1"), strBytes);
        SetNumber(*pData, "a", 2);
        EXPECT_EQ(NumberAt(*OpenApplicationData(folder.Path()), "a"), 2);
        folder.Write("settings.db", "not a store at all, but long enough to look like none");
        EXPECT_EQ(NumberAt(*OpenApplicationData(folder.Path()), "a"), -1);
        EXPECT_TRUE(std::filesystem::exists(folder / "settings.db.corrupt2"));
    }
}

// Breaks every page but the first, on which it changes the counter that tells
// open connections to forget what they have read.
void Damage(const TemporaryFolder& folder) {
    std::string strBytes = folder.Read("settings.db");
    strBytes.replace(4096, std::string::npos, std::string(strBytes.size() - 4096, 'Z'));
    strBytes[27] = static_cast<char>(strBytes[27] + 1);
    folder.Write("settings.db", strBytes);
}

TEST(SettingsTest, AConnectionThatMeetsDamageGoesOnWithAFreshStore) {
    const TestHost host;
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    SetNumber(*pData, "n", 1);
    Damage(folder);
    EXPECT_EQ(NumberAt(*pData, "n"), -1);
    SetNumber(*pData, "n", 2);
    Damage(folder);
    EXPECT_THROW(pData->InTransaction([&] {
        EXPECT_THROW(NumberAt(*pData, "n"), Platform::ReadFaultException);
        SetNumber(*pData, "n", 3);
    }),
                 Platform::Exception);
    EXPECT_EQ(NumberAt(*pData, "n"), -1); // begun anew after the transaction, not within
    EXPECT_TRUE(std::filesystem::exists(folder / "settings.db.corrupt2"));
}

TEST(SettingsTest, AConnectionFollowsWhenAnotherSetsTheStoreAside) {
    const TestHost host;
    const TemporaryFolder folder;
    const auto pData = OpenApplicationData(folder.Path());
    const auto pValues = pData->LocalSettings()
                             ->CreateContainer("c", ApplicationDataCreateDisposition::Always)
                             ->Values();
    SetNumber(*pData, "n", 1);
    Damage(folder);
    const auto pFresh = OpenApplicationData(folder.Path());
    SetNumber(*pFresh, "n", 2);
    EXPECT_EQ(NumberAt(*pData, "n"), 2);
    pValues->Insert("kept", PropertyValue::Create<bool>(true));
    EXPECT_TRUE(pFresh->LocalSettings()
                    ->CreateContainer("c", ApplicationDataCreateDisposition::Always)
                    ->Values()
                    ->HasKey("kept"));
    std::filesystem::remove(folder / "settings.db");
    SetNumber(*pData, "n", 3);
    EXPECT_EQ(NumberAt(*pFresh, "n"), 3);
}

TEST(SettingsTest, AStoreThatMustNotBeWrittenIsAFailureAndStaysWhereItIs) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "settings.db");
    const auto pData = OpenApplicationData(folder.Path());
    EXPECT_THROW(SetNumber(*pData, "a", 1), Platform::AccessDeniedException);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "settings.db"));
    folder.Write("plain", "");
    EXPECT_THROW(OpenApplicationData(folder / "plain/below"), Platform::Exception);
}

TEST(RecentListTest, LatestFirstWithATokenThatStaysAtMostTwentyFive) {
    const TemporaryFolder folder;
    const auto pList = OpenApplicationData(folder.Path())->MostRecentlyUsedList();
    const std::string strFirst = pList->Add("/0", "/0");
    for (int n = 1; n < 25; ++n) {
        EXPECT_NE(pList->Add("/" + std::to_string(n), "m"), strFirst);
    }
    EXPECT_EQ(pList->Add("/0", "renewed"), strFirst);
    auto entries = pList->Entries();
    ASSERT_EQ(entries.size(), 25U);
    EXPECT_EQ(entries[0].Token, strFirst);
    EXPECT_EQ(entries[0].Metadata, "renewed");
    pList->Add("/25", "newest"); // pushes out "/1", the oldest
    entries = OpenApplicationData(folder.Path())->MostRecentlyUsedList()->Entries();
    ASSERT_EQ(entries.size(), 25U);
    EXPECT_EQ(entries[0].Metadata, "newest");
    EXPECT_EQ(entries[1].Token, strFirst);
    pList->Remove(strFirst);
    EXPECT_EQ(pList->Entries().size(), 24U);
    EXPECT_NE(pList->Add("/0", "again"), "");
}

}
