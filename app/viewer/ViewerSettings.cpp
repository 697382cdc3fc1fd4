#include "app/viewer/ViewerSettings.h"

#include <cstdint>
#include <memory>

#include "platform/storage/ApplicationData.h"

namespace velko::viewer {

using Windows::Foundation::PropertyValue;
using Windows::Storage::ApplicationData;
using Windows::Storage::ApplicationDataCreateDisposition;

namespace {

constexpr const char* kWidth = "WindowWidth";
constexpr const char* kHeight = "WindowHeight";
constexpr const char* kMaximized = "WindowMaximized";
constexpr const char* kOwnWindows = "OwnWindows";
constexpr const char* kSideWidth = "SideWidth";
constexpr const char* kSideTab = "SideTab";
constexpr const char* kSideShown = "SideShown";
constexpr std::int32_t kUsualSide = 250;
constexpr const char* kReloads = "ReloadChanged";
constexpr std::int32_t kSmallestEdge = 100;
constexpr std::int32_t kLargestEdge = 16384;

auto Values() {
    return ApplicationData::Current()
        ->LocalSettings()
        ->CreateContainer("Viewer", ApplicationDataCreateDisposition::Always)
        ->Values();
}

template <class T>
T Read(const char* szKey, T fallback) {
    const auto value = Values()->TryLookup(szKey);
    return value && value->Is<T>() ? value->Get<T>() : fallback;
}

bool IsEdge(std::int32_t nEdge) {
    return nEdge >= kSmallestEdge && nEdge <= kLargestEdge;
}

}

std::optional<QSize> ViewerSettings::WindowSize() {
    const QSize size(Read<std::int32_t>(kWidth, 0), Read<std::int32_t>(kHeight, 0));
    return IsEdge(size.width()) && IsEdge(size.height()) ? std::optional(size) : std::nullopt;
}

bool ViewerSettings::IsMaximized() {
    return Read<bool>(kMaximized, false);
}

void ViewerSettings::KeepWindow(QSize size, bool bMaximized) {
    ApplicationData::Current()->InTransaction([&] {
        const auto pValues = Values();
        pValues->Insert(kWidth, PropertyValue::Create<std::int32_t>(size.width()));
        pValues->Insert(kHeight, PropertyValue::Create<std::int32_t>(size.height()));
        pValues->Insert(kMaximized, PropertyValue::Create<bool>(bMaximized));
    });
}

bool ViewerSettings::OpensOwnWindows() {
    return Read<bool>(kOwnWindows, false);
}

void ViewerSettings::OpensOwnWindows(bool bOwn) {
    Values()->Insert(kOwnWindows, PropertyValue::Create<bool>(bOwn));
}

int ViewerSettings::SideWidth() {
    const auto nWidth = Read<std::int32_t>(kSideWidth, kUsualSide);
    return IsEdge(nWidth) ? nWidth : kUsualSide;
}

void ViewerSettings::KeepSideWidth(int nWidth) {
    Values()->Insert(kSideWidth, PropertyValue::Create<std::int32_t>(nWidth));
}

int ViewerSettings::KeptSideTab() {
    return Read<std::int32_t>(kSideTab, 0);
}

void ViewerSettings::KeepSideTab(int nTab) {
    Values()->Insert(kSideTab, PropertyValue::Create<std::int32_t>(nTab));
}

bool ViewerSettings::ShowsSide() {
    return Read<bool>(kSideShown, false);
}

void ViewerSettings::KeepSideShown(bool bShown) {
    Values()->Insert(kSideShown, PropertyValue::Create<bool>(bShown));
}

bool ViewerSettings::ReloadsChanged() {
    return Read<bool>(kReloads, true);
}

void ViewerSettings::ReloadsChanged(bool bReload) {
    Values()->Insert(kReloads, PropertyValue::Create<bool>(bReload));
}

}
