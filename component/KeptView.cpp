#include "component/KeptView.h"

#include <algorithm>

#include "component/DocIdentity.h"
#include "control/PDFViewCtrl.h"
#include "platform/storage/ApplicationData.h"
#include "settings/SavedView.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;
using Windows::Storage::AccessCache::AccessListEntry;

namespace {

bool IsSameSet(const PropertySet& one, const PropertySet& other) {
    return one.Size() == other.Size() && std::all_of(one.begin(), one.end(), [&](const auto& item) {
               const auto& [strKey, value] = item;
               return strKey == SavedViewKey::kFileTime ||
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
    const auto pValues = FindSavedView(strPath);
    return pValues ? std::optional(KeptView{strPath, pValues}) : std::nullopt;
}

std::optional<KeptView> FindMovedView(
    const DocIdentity& document, const std::function<bool(const std::string& strPath)>& fnIsGone) {
    std::optional<KeptView> like;
    for (const std::string& strPath : RecentFiles()) {
        const auto pValues = FindSavedView(strPath);
        if (!pValues || strPath == document.strPath) {
            continue;
        }
        const DocIdentity identity = ReadIdentity(*pValues);
        if (IsSameFile(identity, document)) {
            return KeptView{strPath, pValues};
        }
        if (!like && HaveSameBytes(identity, document) && fnIsGone(strPath)) {
            like = KeptView{strPath, pValues};
        }
    }
    return like;
}

bool ForgetUnreadableView(const std::string& strPath) {
    const auto pValues = FindSavedView(strPath);
    if (!pValues) {
        return false;
    }
    try {
        for (const bool bIsWide : {false, true}) {
            PDFViewerState::ReadFrom(*pValues, bIsWide);
        }
        return false;
    } catch (const Platform::InvalidCastException&) {
        ApplicationData::Current()->LocalSettings()->Values()->Remove(FindSavedViewToken(strPath));
        return true;
    }
}

std::vector<std::string> RecentFiles() {
    std::vector<std::string> files;
    for (const AccessListEntry& entry :
         ApplicationData::Current()->MostRecentlyUsedList()->Entries()) {
        files.push_back(entry.Metadata);
    }
    return files;
}

void ForgetViews(const std::vector<std::string>& paths) {
    const auto pData = ApplicationData::Current();
    pData->InTransaction([&] {
        for (const AccessListEntry& entry : pData->MostRecentlyUsedList()->Entries()) {
            if (std::find(paths.begin(), paths.end(), entry.Metadata) != paths.end()) {
                pData->MostRecentlyUsedList()->Remove(entry.Token);
            }
        }
    });
}

void ForgetAllViews() {
    const auto pData = ApplicationData::Current();
    pData->InTransaction([&] {
        for (const AccessListEntry& entry : pData->MostRecentlyUsedList()->Entries()) {
            pData->MostRecentlyUsedList()->Remove(entry.Token);
        }
    });
}

bool IsSamePlace(const KeptView& one, const KeptView& other) {
    return one.strPath == other.strPath && IsSameSet(*one.pValues, *other.pValues);
}

}
