#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/fake/TestHost.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "settings/AppConfig.h"

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
    const std::string strBlack = std::to_string(0xFF000000U);
    return {
        ROW(IsAnalyticsEnable, "Boolean", "false", "false", true),
        ROW(PageBackgroundColor, "UInt32", strWhite, strWhite, (Color{128, 16, 32, 48})),
        ROW(PageForegroundColor, "UInt32", strBlack, strBlack, (Color{1, 2, 3, 4})),
        ROW(IsAutoSave, "Boolean", "true", "true", false),
        ROW(IsHighlightFormField, "Boolean", "true", "true", false),
        ROW(VwsServerUrl, "Platform.String", "''", "''", std::string("https://vws.example")),
        ROW(AppStoreUrl, "Platform.String", "''", "''", std::string("https://store.example")),
        ROW(IsAllowPopupAlertDialog, "Boolean", "true", "true", false),
        ROW(IsAllowLanchUrlForForm, "Boolean", "false", "true", true),
        ROW(IsAutoReflowMode, "Boolean", "false", "true", true),
        ROW(IsAutoReflowModeDlgFirstOpen, "Boolean", "true", "true", false),
        ROW(DefaultPageWidth, "Single", Text(459.0F), Text(459.0F), 100.5F),
        ROW(DefaultPageHeight, "Single", Text(594.0F), Text(594.0F), 200.25F),
        ROW(DefaultPageMargin, "Single", Text(5.0F), Text(5.0F), 0.125F),
        ROW(InsertPageMaxCount, "Int32", "1000", "1000", std::int32_t{-7}),
    };
}

#undef ROW

class AppConfigTest : public testing::Test {
protected:
    ~AppConfigTest() override { AppConfig::Close(); }

    std::shared_ptr<ISettingsValues> Stored() const {
        return host.Data()
            .LocalSettings()
            ->CreateContainer("AppSetting", ApplicationDataCreateDisposition::Existing)
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

TEST_F(AppConfigTest, FailuresOfTheStoreAreRaisedBySettersAndInitAlone) {
    EXPECT_THROW(AppConfig::IsAutoSave(false), Platform::NullReferenceException);
    host.Data().FailWrite(1);
    EXPECT_THROW(AppConfig::Init(), Platform::WriteFaultException);
    AppConfig::Init();
    host.Data().FailWrite(1);
    EXPECT_THROW(AppConfig::IsAutoSave(false), Platform::WriteFaultException);
    EXPECT_TRUE(AppConfig::IsAutoSave());
}

TEST_F(AppConfigTest, TheFirstInitHolds) {
    AppConfig::Init();
    AppConfig::IsAutoSave(false);
    Windows::Storage::ApplicationData::SetCurrent(
        std::make_shared<Platform::Fake::MemoryApplicationData>());
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
