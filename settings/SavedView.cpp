#include "settings/SavedView.h"

#include "platform/storage/ApplicationData.h"

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;

namespace {

// A value of another type is a failure.
template <class T>
void Take(const PropertySet& values, const char* szKey, T& value) {
    if (values.HasKey(szKey)) {
        value = values.Lookup(szKey).Get<T>();
    }
}

// A value of another type counts as absent.
template <class T>
void TakeIfTyped(const PropertySet& values, const char* szKey, T& value) {
    if (values.HasKey(szKey) && values.Lookup(szKey).Is<T>()) {
        value = values.Lookup(szKey).Get<T>();
    }
}

}

bool WasSavedWide(const PropertySet& values) {
    bool bWide = false;
    Take(values, SavedViewKey::kRotatedScreen, bWide);
    return bWide;
}

PDFViewerState PDFViewerState::ReadFrom(const PropertySet& values, bool bIsWide) {
    PDFViewerState state;
    if (WasSavedWide(values) == bIsWide) {
        Take(values, SavedViewKey::kScale, state.Scale);
        Take(values, SavedViewKey::kOffsetX, state.OffsetX);
        Take(values, SavedViewKey::kOffsetY, state.OffsetY);
    }
    Take(values, SavedViewKey::kViewState, state.ViewState);
    Take(values, SavedViewKey::kCurrentPageIndex, state.CurrentPageIndex);
    Take(values, SavedViewKey::kRotate, state.Rotate);
    Take(values, SavedViewKey::kIsSDToLocalFile, state.IsSDToLocalFile);
    TakeIfTyped(values, SavedViewKey::kReflowScale, state.ReflowScale);
    TakeIfTyped(values, SavedViewKey::kIsReflowShowPicture, state.IsReflowShowPicture);
    return state;
}

void WriteSavedPlace(PropertySet& values, std::int32_t nPageIndex, double dbOffsetX,
                     double dbOffsetY) {
    values.Insert(SavedViewKey::kCurrentPageIndex, PropertyValue::Create(nPageIndex));
    values.Insert(SavedViewKey::kOffsetX, PropertyValue::Create(dbOffsetX));
    values.Insert(SavedViewKey::kOffsetY, PropertyValue::Create(dbOffsetY));
}

void WriteSavedReflow(PropertySet& values, double dbScale, bool bShowPicture) {
    values.Insert(SavedViewKey::kReflowScale, PropertyValue::Create(dbScale));
    values.Insert(SavedViewKey::kIsReflowShowPicture, PropertyValue::Create(bShowPicture));
}

std::string FindSavedViewToken(const std::string& strPath) {
    for (const auto& entry : ApplicationData::Current()->MostRecentlyUsedList()->Entries()) {
        if (entry.Metadata == strPath) {
            return entry.Token;
        }
    }
    return {};
}

PropertyValue::Composite FindSavedView(const std::string& strPath) {
    const std::string strToken = FindSavedViewToken(strPath);
    if (strToken.empty()) {
        return nullptr;
    }
    const auto value = ApplicationData::Current()->LocalSettings()->Values()->TryLookup(strToken);
    const bool bIsSet = value && value->Is<PropertyValue::Composite>();
    return bIsSet ? value->Get<PropertyValue::Composite>() : nullptr;
}

}
