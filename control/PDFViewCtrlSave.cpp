// Edits of the host, and the ways from a changed document to a file.

#include <string>
#include <utility>

#include "control/PDFViewCtrl_p.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/storage/FileSavePicker.h"
#include "platform/ui/MessageDialog.h"
#include "platform/ui/Window.h"
#include "settings/AppConfig.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::PropertyValue;
using Windows::Storage::Pickers::FileSavePicker;
using Windows::Storage::Pickers::PickerLocationId;
using Windows::UI::Popups::MessageDialog;
using Windows::UI::Popups::UICommand;
using Windows::UI::Xaml::Window;
using DocumentPtr = std::shared_ptr<VLK_Document>;

constexpr std::int32_t kYes = 0;
constexpr std::int32_t kNo = 1;

MessageDialog::CommandPtr MakeCommand(const char* szLabel, std::int32_t nId) {
    return std::make_shared<UICommand>(UICommand{szLabel, PropertyValue::Create(nId)});
}

bool IsReadOnly(const Windows::Storage::StorageFile& file) {
    return (file.Attributes() & Windows::Storage::FileAttributes::ReadOnly) != 0;
}

}

// --- saving ----------------------------------------------------------------

concurrency::task<bool> PDFViewCtrl::SaveDocument() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    const auto pFile = pDocument ? pDocument->File() : nullptr;
    if (!pFile) {
        return concurrency::task_from_result<bool>(false);
    }
    auto pSave = pDocument->BeginSave();
    if (IsReadOnly(*pFile)) {
        return PromptSaveAs(pSelf, pDocument, std::move(pSave), AskSaveAs());
    }
    ShowProgressRing();
    return SaveInPlace(pDocument, std::move(pSave));
}

concurrency::task<bool> PDFViewCtrl::SaveInPlace(DocumentPtr pDocument,
                                                 std::shared_ptr<void> /*pSave*/) {
    const auto pSelf = Self();
    if (!pDocument->File() || !AppConfig::IsAutoSave()) {
        co_return false; // the ring stays
    }
    const auto saving = pDocument->SaveAndReplaceAsync(m_fnSaveCheck);
    co_await saving.settled();
    HideProgressRing();
    saving.get();
    co_return true;
}

// Holds the control weakly: a question that is open keeps nobody alive.
concurrency::task<bool> PDFViewCtrl::PromptSaveAs(std::weak_ptr<PDFViewCtrl> wkControl,
                                                  DocumentPtr pDocument,
                                                  std::shared_ptr<void> /*pSave*/,
                                                  CommandTask asking) {
    const auto pChosen = co_await asking;
    if (!pChosen || pChosen->Id.Get<std::int32_t>() != kYes) {
        co_return false;
    }
    const FileTask picking = PickSaveFile(wkControl, *pDocument);
    const auto pFile = co_await picking;
    if (!pFile) {
        throw Platform::NullReferenceException("no file was chosen");
    }
    if (pDocument->IsDisposed()) {
        throw concurrency::task_canceled();
    }
    const auto saving = pDocument->SaveToFileAsync(pFile);
    co_await saving;
    co_return false; // the document stays with its file, which is as it was
}

PDFViewCtrl::CommandTask PDFViewCtrl::AskSaveAs() {
    const Window::CurrentScope inOwnWindow(Window::Of(*this));
    m_pSaveQuestion = std::make_unique<MessageDialog>("Save as annother PDF?", "Save");
    m_pSaveQuestion->Commands = {MakeCommand("YES", kYes), MakeCommand("NO", kNo)};
    m_pSaveQuestion->DefaultCommandIndex = 0;
    return m_pSaveQuestion->ShowAsync().AsTask();
}

PDFViewCtrl::FileTask PDFViewCtrl::PickSaveFile(const std::weak_ptr<PDFViewCtrl>& wkControl,
                                                const VLK_Document& document) {
    const auto pControl = wkControl.lock();
    if (!pControl || document.IsDisposed()) {
        throw concurrency::task_canceled();
    }
    const auto pWindow = Window::Of(*pControl);
    if (!pWindow) { // it was taken out meanwhile
        throw concurrency::task_canceled();
    }
    const Window::CurrentScope inOwnWindow(pWindow);
    auto& pPicker = pControl->m_pSavePicker;
    pPicker = std::make_unique<FileSavePicker>();
    pPicker->SuggestedStartLocation = PickerLocationId::DocumentsLibrary;
    pPicker->FileTypeChoices["PDF Files"] = {".pdf"};
    pPicker->SuggestedFileName = document.File()->Name();
    return pPicker->PickSaveFileAsync().AsTask();
}

// Whoever waits for an answer is told that there will be none.
void PDFViewCtrl::GiveUpSavePrompt() {
    const auto pQuestion = std::move(m_pSaveQuestion);
    const auto pPicker = std::move(m_pSavePicker);
}

concurrency::task<bool> PDFViewCtrl::SaveDocumentAs(std::shared_ptr<StorageFile> pFile) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        return concurrency::task_from_result<bool>(false);
    }
    return FinishSaveAs(pDocument, pDocument->BeginSave(), std::move(pFile));
}

concurrency::task<bool> PDFViewCtrl::FinishSaveAs(DocumentPtr pDocument,
                                                  std::shared_ptr<void> /*pSave*/,
                                                  std::shared_ptr<StorageFile> pFile) {
    const auto pSelf = Self();
    const auto saving = pDocument->SaveToFileAsync(pFile);
    const bool bSaved = co_await saving;
    if (bSaved && !pDocument->IsDisposed()) {
        const auto binding = pDocument->RebindFile(pFile);
        co_await binding;
    }
    co_return bSaved;
}

void PDFViewCtrl::SetSaveCheck(SaveCheck fnCheck) {
    const auto pSelf = Enter();
    m_fnSaveCheck.swap(fnCheck);
}

concurrency::task<void> PDFViewCtrl::AcceptChangedFile() {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument ? pDocument->AcceptChangedFile() : concurrency::task_from_result<void>();
}

void PDFViewCtrl::RaiseSaveProgress(float fDone) {
    if (const auto pDocument = m_pDocument) {
        SaveProgressEvent.raise(
            Self(), std::make_shared<SaveProgressEventArgs>(pDocument->PdfDoc(), fDone));
    }
}

// --- editing ---------------------------------------------------------------

concurrency::task<void> PDFViewCtrl::EditPage(
    std::int32_t nPageIndex, std::function<void(velko::pdf::IAnnotEditor&)> fnEdit) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        return concurrency::task_from_result<void>();
    }
    return FinishEdit(pDocument, nPageIndex, pDocument->EditAsync(std::move(fnEdit)));
}

// An edit that fails half way has its first half shown.
concurrency::task<void> PDFViewCtrl::FinishEdit(DocumentPtr pDocument, std::int32_t nPageIndex,
                                                concurrency::task<void> editing) {
    const auto pSelf = Self();
    co_await editing.settled();
    Platform::FirstFailure failure;
    failure.Run([&] { editing.get(); });
    if (!m_bDisposed && OpenDocument() == pDocument) {
        failure.Run([&] { UpdatePageAfterAnnotEdit(nPageIndex); });
    }
    failure.Rethrow();
}

}
