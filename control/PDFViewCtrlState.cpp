// The saved view of a document: written into the host's property set, read from
// where the host has put it.

#include <chrono>
#include <memory>
#include <string>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "document/VLK_Document.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

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

void SaveFileFacts(PropertySet& values, VLK_Document& document) {
    const auto pFile = document.File();
    Put<std::string>(values, SavedViewKey::kFileName, pFile ? pFile->Name() : std::string());
    Put<std::int64_t>(values, SavedViewKey::kFileTime, UniversalTimeNow());
    if (pFile) {
        Put<std::uint32_t>(values, SavedViewKey::kFileSize, document.FileSize());
        Put<std::string>(values, SavedViewKey::kPasswordProtected,
                         document.GetEncryptKind() == 0 ? "0" : "1");
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
    Put<std::int32_t>(values, SavedViewKey::kViewState, GetPageLayoutMode());
    if (GetPageLayoutMode() != LayoutMode::kReflow) {
        Put<std::int32_t>(values, SavedViewKey::kRotate, pViewer ? pViewer->GetRotate() : 0);
        Put<double>(values, SavedViewKey::kScale, pViewer ? pViewer->GetScale() : 1.0);
    }
    const auto pPosition = pViewer ? pViewer->GetPagePosition() : nullptr;
    if (pPosition) {
        WriteSavedPlace(values, pPosition->nPageIndex, pPosition->dbOffsetX, pPosition->dbOffsetY);
    }
    const Size size = GetCanvasSize();
    Put<bool>(values, SavedViewKey::kRotatedScreen, size.Width > size.Height);
    if (pViewer) {
        pViewer->SaveViewerState(values);
    }
}

std::shared_ptr<PDFViewerState> PDFViewCtrl::LoadViewState() {
    const auto pDocument = OpenDocument();
    const auto pFile = pDocument ? pDocument->File() : nullptr;
    const auto pSaved = FindSavedView(pFile ? pFile->Path() : std::string());
    if (!pSaved) {
        return std::make_shared<PDFViewerState>();
    }
    const Size size = GetCanvasSize();
    return std::make_shared<PDFViewerState>(
        PDFViewerState::ReadFrom(*pSaved, size.Width > size.Height));
}

}
