#include "component/KeptView.h"

#include <algorithm>

#include "control/PDFViewCtrl.h"
#include "platform/storage/ApplicationData.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;
using Windows::Storage::AccessCache::AccessListEntry;

namespace {

bool IsSameSet(const PropertySet& one, const PropertySet& other) {
    return one.Size() == other.Size() && std::all_of(one.begin(), one.end(), [&](const auto& item) {
               const auto& [strKey, value] = item;
               return strKey == "FileTime" ||
                      (other.HasKey(strKey) && other.Lookup(strKey).Value() == value.Value());
           });
}

}

std::optional<KeptView> TakeView(PDFViewCtrl& control, const PropertySet& hostValues) {
    const auto pFile = control.GetDocumentFile();
    if (!pFile) {
        return std::nullopt;
    }
    const auto pValues = std::make_shared<PropertySet>(hostValues);
    control.SaveViewState(*pValues);
    return KeptView{pFile->Path(), pValues};
}

void StoreView(const KeptView& view) {
    const auto pData = ApplicationData::Current();
    pData->InTransaction([&] {
        const std::string strToken = pData->MostRecentlyUsedList()->Add(view.strPath, view.strPath);
        pData->LocalSettings()->Values()->Insert(strToken, PropertyValue::Create(view.pValues));
    });
}

std::optional<KeptView> FindView(const std::string& strPath) {
    const auto pData = ApplicationData::Current();
    for (const AccessListEntry& entry : pData->MostRecentlyUsedList()->Entries()) {
        if (entry.Metadata != strPath) {
            continue;
        }
        const auto value = pData->LocalSettings()->Values()->TryLookup(entry.Token);
        if (value && value->Is<PropertyValue::Composite>()) {
            return KeptView{strPath, value->Get<PropertyValue::Composite>()};
        }
        break;
    }
    return std::nullopt;
}

std::vector<std::string> RecentFiles() {
    std::vector<std::string> files;
    for (const AccessListEntry& entry :
         ApplicationData::Current()->MostRecentlyUsedList()->Entries()) {
        files.push_back(entry.Metadata);
    }
    return files;
}

void ForgetAllViews() {
    const auto pData = ApplicationData::Current();
    if (RecentFiles().empty()) {
        return;
    }
    pData->InTransaction([&] {
        for (const AccessListEntry& entry : pData->MostRecentlyUsedList()->Entries()) {
            pData->LocalSettings()->Values()->Remove(entry.Token);
            pData->MostRecentlyUsedList()->Remove(entry.Token);
        }
    });
}

bool IsSamePlace(const KeptView& one, const KeptView& other) {
    return one.strPath == other.strPath && IsSameSet(*one.pValues, *other.pValues);
}

}
