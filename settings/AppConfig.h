// The settings of the component and of its host, kept in the container
// "AppSetting" of the application's local settings.
//
// Call `Init` once before the first use; without it every getter gives its
// default and every setter raises `NullReferenceException`. A getter gives its
// default for a key that was never set, and a value of its own for one that is
// stored with another type; the two differ for some keys. A setter is in force
// when it returns and is stored behind; see `ApplicationData` for when, and for
// the failures of that, none of which is raised here.
//
// Threads: the UI thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/foundation/Color.h"

namespace velko::vkit {

class AppConfig {
public:
    AppConfig() = delete;

    // Opens the container; nothing when it is open. Raises when the process has no
    // application data.
    static void Init();
    // Lets go of the store, so that the next `Init` opens the one in force then.
    static void Close();

    // Runs `fnSet`; what it sets is stored together.
    static void SetTogether(const std::function<void()>& fnSet);

    // The application's token: 24 lower-case hexadecimal digits.
    static std::string GetAppToken();

    static bool IsAnalyticsEnable();
    static void IsAnalyticsEnable(bool bValue);

    static Windows::UI::Color PageBackgroundColor();
    static void PageBackgroundColor(Windows::UI::Color crValue);

    static Windows::UI::Color PageForegroundColor();
    static void PageForegroundColor(Windows::UI::Color crValue);

    // What becomes of scans in such colours: 0 turned, 1 dimmed, 2 left. In force for
    // what is rendered from then on.
    static std::int32_t PageScanColors();
    static void PageScanColors(std::int32_t nValue);

    // The scale of reflowed text that was chosen last; 0: none.
    static double ReflowTextScale();
    static void ReflowTextScale(double dbValue);

    static bool IsAutoSave();
    static void IsAutoSave(bool bValue);

    static bool IsHighlightFormField();
    static void IsHighlightFormField(bool bValue);

    static std::string VwsServerUrl();
    static void VwsServerUrl(const std::string& strValue);

    static std::string AppStoreUrl();
    static void AppStoreUrl(const std::string& strValue);

    static bool IsAllowPopupAlertDialog();
    static void IsAllowPopupAlertDialog(bool bValue);

    static bool IsAllowLanchUrlForForm();
    static void IsAllowLanchUrlForForm(bool bValue);

    static bool IsAutoReflowMode();
    static void IsAutoReflowMode(bool bValue);

    static bool IsAutoReflowModeDlgFirstOpen();
    static void IsAutoReflowModeDlgFirstOpen(bool bValue);

    static float DefaultPageWidth(); // points, as the height and the margin
    static void DefaultPageWidth(float fValue);

    static float DefaultPageHeight();
    static void DefaultPageHeight(float fValue);

    static float DefaultPageMargin();
    static void DefaultPageMargin(float fValue);

    static std::int32_t InsertPageMaxCount();
    static void InsertPageMaxCount(std::int32_t nValue);
};

}
