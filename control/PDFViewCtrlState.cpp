// The saved view of a document: written into the host's property set, read from
// where the host has put it.

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "document/VLK_Document.h"
#include "platform/storage/ApplicationData.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;
using Windows::Storage::ApplicationData;

// The present time in units of 100 ns since 1601-01-01 UTC.
std::int64_t UniversalTimeNow() {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    constexpr std::int64_t kUnixEpoch = 116'444'736'000'000'000;
    const auto sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Ticks>(sinceUnixEpoch).count() + kUnixEpoch;
}

template <class T>
void Put(PropertySet& values, const char* szKey, T value) {
    values.Insert(szKey, PropertyValue::Create<T>(std::move(value)));
}

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

// The set that a host keeps for the file; empty when there is none.
PropertyValue::Composite SavedSet(const std::string& strPath) {
    const auto pData = ApplicationData::Current();
    for (const auto& entry : pData->MostRecentlyUsedList()->Entries()) {
        if (entry.Metadata != strPath) {
            continue;
        }
        const std::optional<PropertyValue> value =
            entry.Token.empty() ? std::nullopt
                                : pData->LocalSettings()->Values()->TryLookup(entry.Token);
        const bool bIsSet = value && value->Is<PropertyValue::Composite>();
        return bIsSet ? value->Get<PropertyValue::Composite>() : nullptr;
    }
    return nullptr;
}

void SaveFileFacts(PropertySet& values, VLK_Document& document) {
    const auto pFile = document.File();
    Put<std::string>(values, "FileName", pFile ? pFile->Name() : std::string());
    Put<std::int64_t>(values, "FileTime", UniversalTimeNow());
    if (pFile) {
        Put<std::uint32_t>(values, "FileSize", document.FileSize());
        Put<std::string>(values, "PasswordProtected", document.GetEncryptKind() == 0 ? "0" : "1");
    }
}

void SavePosition(PropertySet& values, IPDFViewer& viewer) {
    if (const auto pPosition = viewer.GetPagePosition()) {
        Put<std::int32_t>(values, "CurrentPageIndex", pPosition->nPageIndex);
        Put<double>(values, "OffsetX", pPosition->dbOffsetX);
        Put<double>(values, "OffsetY", pPosition->dbOffsetY);
    }
}

}

void PDFViewCtrl::SaveViewState(PropertySet& values) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        throw Platform::NullReferenceException("no document whose view could be saved");
    }
    const auto pViewer = Viewer();
    SaveFileFacts(values, *pDocument);
    Put<std::int32_t>(values, "ViewState", ManagerMode());
    if (ManagerMode() != LayoutMode::kReflow) {
        Put<std::int32_t>(values, "Rotate", pViewer ? pViewer->GetRotate() : 0);
        Put<double>(values, "Scale", pViewer ? pViewer->GetScale() : 1.0);
    }
    if (pViewer) {
        SavePosition(values, *pViewer);
    }
    const Size size = CanvasSize();
    Put<bool>(values, "RotatedScreen", size.Width > size.Height);
    if (pViewer) {
        pViewer->SaveViewerState(values);
    }
}

std::shared_ptr<PDFViewerState> PDFViewCtrl::LoadViewState() {
    auto pState = std::make_shared<PDFViewerState>();
    const auto pDocument = OpenDocument();
    const auto pFile = pDocument ? pDocument->File() : nullptr;
    const auto pSaved = SavedSet(pFile ? pFile->Path() : std::string());
    if (!pSaved) {
        return pState;
    }
    bool bSavedRotated = false;
    Take(*pSaved, "RotatedScreen", bSavedRotated);
    const Size size = CanvasSize();
    // Zoom and place mean something only on a screen that lies the same way.
    if (bSavedRotated == (size.Width > size.Height)) {
        Take(*pSaved, "Scale", pState->Scale);
        Take(*pSaved, "OffsetX", pState->OffsetX);
        Take(*pSaved, "OffsetY", pState->OffsetY);
    }
    Take(*pSaved, "ViewState", pState->ViewState);
    Take(*pSaved, "CurrentPageIndex", pState->CurrentPageIndex);
    Take(*pSaved, "Rotate", pState->Rotate);
    Take(*pSaved, "IsSDToLocalFile", pState->IsSDToLocalFile);
    TakeIfTyped(*pSaved, "ReflowScale", pState->ReflowScale);
    TakeIfTyped(*pSaved, "IsReflowShowPicture", pState->IsReflowShowPicture);
    return pState;
}

}
