#include "settings/AppConfig.h"

#include <memory>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/foundation/PropertyValue.h"
#include "platform/storage/ApplicationData.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationData;
using Windows::Storage::ApplicationDataCreateDisposition;
using Windows::Storage::ISettingsValues;
using Windows::UI::Color;

namespace {

std::shared_ptr<ISettingsValues> g_pValues; // written by Init and Close alone

template <class T>
struct Fallback {
    T absent;    // the key was never set
    T otherType; // it is stored with another type
};

template <class T>
T Read(const char* pszKey, const Fallback<T>& fallback) {
    const auto value = g_pValues ? g_pValues->TryLookup(pszKey) : std::nullopt;
    if (!value) {
        return fallback.absent;
    }
    return value->Is<T>() ? value->Get<T>() : fallback.otherType;
}

template <class T>
T Read(const char* pszKey, T fallback) {
    return Read<T>(pszKey, Fallback<T>{fallback, fallback});
}

template <class T>
void Write(const char* pszKey, T value) {
    if (!g_pValues) {
        throw Platform::NullReferenceException("the settings are not open");
    }
    g_pValues->Insert(pszKey, PropertyValue::Create<T>(std::move(value)));
}

Color ReadColor(const char* pszKey, Color crFallback) {
    return Color::FromArgb(Read<std::uint32_t>(pszKey, crFallback.ToArgb()));
}

}

void AppConfig::Init() {
    if (g_pValues) {
        return;
    }
    g_pValues = ApplicationData::Current()
                    ->LocalSettings()
                    ->CreateContainer("AppSetting", ApplicationDataCreateDisposition::Always)
                    ->Values();
}

void AppConfig::Close() {
    g_pValues.reset();
}

void AppConfig::SetTogether(const std::function<void()>& fnSet) {
    ApplicationData::Current()->InTransaction(fnSet);
}

std::string AppConfig::GetAppToken() {
    return "5d0e83c91fa6427be4189c3f";
}

bool AppConfig::IsAnalyticsEnable() {
    return Read<bool>("IsAnalyticsEnable", false);
}
void AppConfig::IsAnalyticsEnable(bool bValue) {
    Write<bool>("IsAnalyticsEnable", bValue);
}

Color AppConfig::PageBackgroundColor() {
    return ReadColor("PageBackgroundColor", Windows::UI::Colors::White);
}
void AppConfig::PageBackgroundColor(Color crValue) {
    Write<std::uint32_t>("PageBackgroundColor", crValue.ToArgb());
}

Color AppConfig::PageForegroundColor() {
    return ReadColor("PageForegroundColor", Windows::UI::Colors::Black);
}
void AppConfig::PageForegroundColor(Color crValue) {
    Write<std::uint32_t>("PageForegroundColor", crValue.ToArgb());
}

std::int32_t AppConfig::PageScanColors() {
    return Read<std::int32_t>("PageScanColors", 0);
}
void AppConfig::PageScanColors(std::int32_t nValue) {
    Write<std::int32_t>("PageScanColors", nValue);
}

double AppConfig::ReflowTextScale() {
    return Read<double>("ReflowTextScale", 0.0);
}
void AppConfig::ReflowTextScale(double dbValue) {
    Write<double>("ReflowTextScale", dbValue);
}

bool AppConfig::IsAutoSave() {
    return Read<bool>("IsAutoSave", true);
}
void AppConfig::IsAutoSave(bool bValue) {
    Write<bool>("IsAutoSave", bValue);
}

bool AppConfig::IsHighlightFormField() {
    return Read<bool>("IsHighlightFormField", true);
}
void AppConfig::IsHighlightFormField(bool bValue) {
    Write<bool>("IsHighlightFormField", bValue);
}

std::string AppConfig::VwsServerUrl() {
    return Read<std::string>("VwsServerUrl", "");
}
void AppConfig::VwsServerUrl(const std::string& strValue) {
    Write<std::string>("VwsServerUrl", strValue);
}

std::string AppConfig::AppStoreUrl() {
    return Read<std::string>("AppStoreUrl", "");
}
void AppConfig::AppStoreUrl(const std::string& strValue) {
    Write<std::string>("AppStoreUrl", strValue);
}

bool AppConfig::IsAllowPopupAlertDialog() {
    return Read<bool>("IsAllowPopupAlertDialog", true);
}
void AppConfig::IsAllowPopupAlertDialog(bool bValue) {
    Write<bool>("IsAllowPopupAlertDialog", bValue);
}

// The two settings below count as on when they are stored as something else,
// although they are off when they were never stored: hosts rely on it.
bool AppConfig::IsAllowLanchUrlForForm() {
    return Read<bool>("IsAllowLanchUrlForForm", Fallback<bool>{false, true});
}
void AppConfig::IsAllowLanchUrlForForm(bool bValue) {
    Write<bool>("IsAllowLanchUrlForForm", bValue);
}

bool AppConfig::IsAutoReflowMode() {
    return Read<bool>("IsAutoReflowMode", Fallback<bool>{false, true});
}
void AppConfig::IsAutoReflowMode(bool bValue) {
    Write<bool>("IsAutoReflowMode", bValue);
}

bool AppConfig::IsAutoReflowModeDlgFirstOpen() {
    return Read<bool>("IsAutoReflowModeDlgFirstOpen", true);
}
void AppConfig::IsAutoReflowModeDlgFirstOpen(bool bValue) {
    Write<bool>("IsAutoReflowModeDlgFirstOpen", bValue);
}

float AppConfig::DefaultPageWidth() {
    return Read<float>("DefaultPageWidth", 459.0F);
}
void AppConfig::DefaultPageWidth(float fValue) {
    Write<float>("DefaultPageWidth", fValue);
}

float AppConfig::DefaultPageHeight() {
    return Read<float>("DefaultPageHeight", 594.0F);
}
void AppConfig::DefaultPageHeight(float fValue) {
    Write<float>("DefaultPageHeight", fValue);
}

float AppConfig::DefaultPageMargin() {
    return Read<float>("DefaultPageMargin", 5.0F);
}
void AppConfig::DefaultPageMargin(float fValue) {
    Write<float>("DefaultPageMargin", fValue);
}

std::int32_t AppConfig::InsertPageMaxCount() {
    return Read<std::int32_t>("InsertPageMaxCount", 1000);
}
void AppConfig::InsertPageMaxCount(std::int32_t nValue) {
    Write<std::int32_t>("InsertPageMaxCount", nValue);
}

}
