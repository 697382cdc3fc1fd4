#include <gtest/gtest.h>

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

TEST_F(AppConfigTest, AValueIsStoredAsItsTypeAndAForeignTypeGivesAFallback) {
    EXPECT_TRUE(AppConfig::IsAutoSave()) << "before Init";
    EXPECT_THROW(AppConfig::IsAutoSave(false), Platform::NullReferenceException);
    AppConfig::Init();
    AppConfig::IsAutoSave(false);
    EXPECT_FALSE(AppConfig::IsAutoSave());
    AppConfig::PageBackgroundColor(Color{128, 16, 32, 48});
    EXPECT_EQ(AppConfig::PageBackgroundColor(), (Color{128, 16, 32, 48}));
    EXPECT_EQ(Stored()->TryLookup("PageBackgroundColor")->Get<std::uint32_t>(), 0x80102030U);
    EXPECT_FALSE(AppConfig::IsAllowLanchUrlForForm()); // never stored
    for (const char* pszKey : {"IsAutoSave", "PageBackgroundColor", "IsAllowLanchUrlForForm"}) {
        Stored()->Insert(pszKey, PropertyValue::Create<std::int64_t>(1));
    }
    EXPECT_TRUE(AppConfig::IsAutoSave());
    EXPECT_EQ(AppConfig::PageBackgroundColor(), Windows::UI::Colors::White);
    EXPECT_TRUE(AppConfig::IsAllowLanchUrlForForm());
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

}
