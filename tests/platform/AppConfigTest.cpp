#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "settings/AppConfig.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Platform::Fake::TestHost;
using velko::vkit::AppConfig;
using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationDataCreateDisposition;
using Windows::Storage::ISettingsValues;
using Windows::UI::Color;

// What a getter gives, as text, so that one table holds every type.
std::string Text(bool bValue) {
    return bValue ? "true" : "false";
}
std::string Text(Color cr) {
    return std::to_string(cr.ToArgb());
}
std::string Text(const std::string& strValue) {
    return "'" + strValue + "'";
}
std::string Text(float fValue) {
    return std::to_string(fValue);
}
std::string Text(std::int32_t nValue) {
    return std::to_string(nValue);
}

struct Row {
    const char* pszKey;
    const char* pszType;
    std::string strAbsent;
    std::string strOtherType;
    std::function<std::string()> fnGet;
    std::function<std::string()> fnSet; // sets a value of its own and tells its text
};

#define ROW(KEY, TYPE, ABSENT, OTHER, VALUE)                             \
    Row {                                                                \
#KEY, TYPE, ABSENT, OTHER, [] { return Text(AppConfig::KEY()); }, [] { \
            const auto value = VALUE;                              \
            AppConfig::KEY(value);                                 \
            return Text(value);                                    \
        } \
    }

std::vector<Row> Rows() {
    const std::string strWhite = std::to_string(0xFFFFFFFFU);
    return {
        ROW(IsAutoSave, "Boolean", "true", "true", false),
        ROW(PageBackgroundColor, "UInt32", strWhite, strWhite, (Color{128, 16, 32, 48})),
        ROW(VwsServerUrl, "Platform.String", "''", "''", std::string("https://vws.example")),
        ROW(DefaultPageWidth, "Single", Text(459.0F), Text(459.0F), 100.5F),
        ROW(InsertPageMaxCount, "Int32", "1000", "1000", std::int32_t{-7}),
        // Off when they were never stored, on when they are stored as something else.
        ROW(IsAllowLanchUrlForForm, "Boolean", "false", "true", true),
        ROW(IsAutoReflowMode, "Boolean", "false", "true", true),
    };
}

#undef ROW

class AppConfigTest : public testing::Test {
protected:
    ~AppConfigTest() override { AppConfig::Close(); }

    std::shared_ptr<ISettingsValues> Stored() const {
        return host.Data()
            .LocalSettings()
            ->CreateContainer("AppSetting", ApplicationDataCreateDisposition::Always)
            ->Values();
    }

    TestHost host;
};

TEST_F(AppConfigTest, EveryKeyHasItsDefaultItsTypeAndItsAnswerToAForeignType) {
    for (const Row& row : Rows()) {
        EXPECT_EQ(row.fnGet(), row.strAbsent) << row.pszKey << " before Init";
    }
    AppConfig::Init();
    const auto pStored = Stored();
    for (const Row& row : Rows()) {
        EXPECT_EQ(row.fnGet(), row.strAbsent) << row.pszKey;
        const std::string strSet = row.fnSet();
        EXPECT_NE(strSet, row.strAbsent) << row.pszKey;
        EXPECT_EQ(row.fnGet(), strSet) << row.pszKey;
        ASSERT_TRUE(pStored->HasKey(row.pszKey));
        EXPECT_STREQ(pStored->TryLookup(row.pszKey)->TypeName(), row.pszType) << row.pszKey;
        pStored->Insert(row.pszKey, PropertyValue::Create<std::int64_t>(1));
        EXPECT_EQ(row.fnGet(), row.strOtherType) << row.pszKey;
    }
}

TEST_F(AppConfigTest, AColourIsStoredAsOneNumber) {
    AppConfig::Init();
    AppConfig::PageBackgroundColor(Color{128, 16, 32, 48});
    EXPECT_EQ(Stored()->TryLookup("PageBackgroundColor")->Get<std::uint32_t>(), 0x80102030U);
    EXPECT_EQ(AppConfig::PageBackgroundColor(), (Color{128, 16, 32, 48}));
}

TEST_F(AppConfigTest, ASetterIsInForceWhateverTheStore) {
    EXPECT_THROW(AppConfig::IsAutoSave(false), Platform::NullReferenceException);
    StorageCalls calls;
    calls.Fail("", ENOSPC, 1, true);
    AppConfig::Init();
    AppConfig::IsAutoSave(false);
    host.Data().Flush();
    EXPECT_FALSE(AppConfig::IsAutoSave());
    EXPECT_TRUE(host.Data().Failure());
}

TEST_F(AppConfigTest, WhatIsSetTogetherHoldsWholeOrNotAtAll) {
    AppConfig::Init();
    EXPECT_THROW(AppConfig::SetTogether([] {
                     AppConfig::IsAutoSave(false);
                     throw Platform::ReadFaultException();
                 }),
                 Platform::ReadFaultException);
    EXPECT_TRUE(AppConfig::IsAutoSave());
}

TEST_F(AppConfigTest, TheFirstInitHolds) {
    AppConfig::Init();
    AppConfig::IsAutoSave(false);
    const TemporaryFolder folder;
    Windows::Storage::ApplicationData::SetCurrent(
        Windows::Storage::OpenApplicationData(folder.Path()));
    AppConfig::Init();
    EXPECT_FALSE(AppConfig::IsAutoSave());
    AppConfig::Close();
    AppConfig::Init();
    EXPECT_TRUE(AppConfig::IsAutoSave());
}

TEST_F(AppConfigTest, TheTokenIsTwelveBytesInHexadecimal) {
    const std::string strToken = AppConfig::GetAppToken();
    EXPECT_EQ(strToken.size(), 24U);
    EXPECT_EQ(strToken.find_first_not_of("0123456789abcdef"), std::string::npos);
}

}
