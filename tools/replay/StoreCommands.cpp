// Commands that a host's use of the stores stands behind: settings and the
// saved view of a document.
#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "component/KeptView.h"
#include "control/PDFViewCtrl.h"
#include "platform/storage/ApplicationData.h"
#include "settings/AppConfig.h"
#include "tools/replay/BoxedJson.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

using velko::vkit::AppConfig;
using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;

// How a setting is read as JSON and set from the field "value".
struct Setting {
    const char* szKey;
    JsonText (*fnGet)();
    void (*fnSet)(const CommandFields& fields);
};

template <auto fnGet>
JsonText Get() {
    return fnGet();
}

template <bool (*fnGet)(), void (*fnSet)(bool)>
constexpr Setting BoolSetting(const char* szKey) {
    return {szKey, Get<fnGet>, [](const CommandFields& fields) { fnSet(fields.Bool("value")); }};
}

template <float (*fnGet)(), void (*fnSet)(float)>
constexpr Setting FloatSetting(const char* szKey) {
    return {szKey, Get<fnGet>, [](const CommandFields& fields) { fnSet(fields.Float("value")); }};
}

template <std::string (*fnGet)(), void (*fnSet)(const std::string&)>
constexpr Setting TextSetting(const char* szKey) {
    return {szKey, Get<fnGet>, [](const CommandFields& fields) { fnSet(fields.Text("value")); }};
}

std::string ColorText(Windows::UI::Color color) {
    std::array<char, 10> text{};
    std::snprintf(text.data(), text.size(), "#%08X", color.ToArgb());
    return text.data();
}

template <Windows::UI::Color (*fnGet)(), void (*fnSet)(Windows::UI::Color)>
constexpr Setting ColorSetting(const char* szKey) {
    return {szKey, []() -> JsonText { return ColorText(fnGet()); },
            [](const CommandFields& fields) { fnSet(fields.Color("value")); }};
}

template <std::int32_t (*fnGet)(), void (*fnSet)(std::int32_t)>
constexpr Setting IntSetting(const char* szKey) {
    return {szKey, Get<fnGet>, [](const CommandFields& fields) { fnSet(fields.Int("value")); }};
}

#define VLK_SETTING(KIND, KEY) KIND<&AppConfig::KEY, &AppConfig::KEY>(#KEY)

constexpr std::array<Setting, 16> kSettings{{
    VLK_SETTING(BoolSetting, IsAnalyticsEnable),
    VLK_SETTING(ColorSetting, PageBackgroundColor),
    VLK_SETTING(ColorSetting, PageForegroundColor),
    VLK_SETTING(IntSetting, PageScanColors),
    VLK_SETTING(BoolSetting, IsAutoSave),
    VLK_SETTING(BoolSetting, IsHighlightFormField),
    VLK_SETTING(TextSetting, VwsServerUrl),
    VLK_SETTING(TextSetting, AppStoreUrl),
    VLK_SETTING(BoolSetting, IsAllowPopupAlertDialog),
    VLK_SETTING(BoolSetting, IsAllowLanchUrlForForm),
    VLK_SETTING(BoolSetting, IsAutoReflowMode),
    VLK_SETTING(BoolSetting, IsAutoReflowModeDlgFirstOpen),
    VLK_SETTING(FloatSetting, DefaultPageWidth),
    VLK_SETTING(FloatSetting, DefaultPageHeight),
    VLK_SETTING(FloatSetting, DefaultPageMargin),
    VLK_SETTING(IntSetting, InsertPageMaxCount),
}};

#undef VLK_SETTING

const Setting& SettingByKey(const std::string& strKey) {
    for (const Setting& setting : kSettings) {
        if (strKey == setting.szKey) {
            return setting;
        }
    }
    throw FormatError("unknown setting \"" + strKey + "\"");
}

// Stores a value as it stands, past the setter and its type.
void StoreBoxed(const std::string& strKey, const PropertyValue& value) {
    using Windows::Storage::ApplicationDataCreateDisposition;
    ApplicationData::Current()
        ->LocalSettings()
        ->CreateContainer("AppSetting", ApplicationDataCreateDisposition::Always)
        ->Values()
        ->Insert(strKey, value);
}

void RunSetting(Session&, const CommandFields& fields, JsonObject& result) {
    const Setting& setting = SettingByKey(fields.Text("key"));
    if (fields.Has("type")) {
        StoreBoxed(setting.szKey, Box(fields.Text("type"), fields.Value("value")));
    } else if (fields.Has("value")) {
        setting.fnSet(fields);
    }
    result.Add("value", setting.fnGet());
}

void RunSaveState(Session& session, const CommandFields&, JsonObject& result) {
    if (const auto view = velko::vkit::TakeView(session.Control())) {
        velko::vkit::StoreView(*view);
        result.Add("values", SetText(*view->pValues));
        return;
    }
    PropertySet values; // of a document without a file; a failure without a document
    session.Control().SaveViewState(values);
    result.Add("values", SetText(values));
}

}

std::span<const CommandEntry> StoreCommands() {
    static constexpr std::array<CommandEntry, 2> kCommands{{
        {"setting", RunSetting},
        {"save_state", RunSaveState},
    }};
    return kCommands;
}

}
