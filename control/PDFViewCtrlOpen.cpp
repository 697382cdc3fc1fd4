// Every way from a host's call to a shown document, and back to none.

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"
#include "control/PDFViewCtrl_p.h"
#include "control/VLK_DocOpenRecord.h"
#include "control/VelkoViewControl.h"
#include "control/dialogs/ContentHostedDialog.h"
#include "control/dialogs/PasswordDialog.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/system/Debug.h"
#include "settings/AppConfig.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

using Platform::SecretText;
using velko::common::ErrorCode;
namespace Xaml = Windows::UI::Xaml;
using OpenResult = std::shared_ptr<VLK_DocOpenResult>;
using FilePtr = std::shared_ptr<Windows::Storage::StorageFile>;

// The document layer counts bytes in 32 bits.
OpenResult TooLarge() {
    auto pResult = std::make_shared<VLK_DocOpenResult>();
    pResult->m_nErrorCode = ErrorCode::e_ErrUnsupported;
    return pResult;
}

concurrency::task<OpenResult> OpenFile(concurrency::task<FilePtr> file, SecretText password) {
    const FilePtr pFile = co_await file;
    if (!pFile) {
        const auto opening = VLK_Document::OpenAsync(nullptr, 0, std::move(password));
        co_return co_await opening;
    }
    const auto asking = pFile->GetBasicPropertiesAsync().AsTask();
    const Windows::Storage::BasicProperties properties = co_await asking;
    if (properties.Size > VLK_Document::kMaxFileSize) {
        co_return TooLarge();
    }
    const auto opening = VLK_Document::OpenAsync(pFile, static_cast<std::uint32_t>(properties.Size),
                                                 std::move(password));
    co_return co_await opening;
}

// Without a context to come back to the steps follow each other at once, also
// while the UI thread is busy with making its first window.
concurrency::task<OpenResult> OpenOffUiThread(concurrency::task<FilePtr> file,
                                              SecretText password) {
    const concurrency::context::scope noContext(nullptr);
    return OpenFile(std::move(file), std::move(password));
}

// A saved view may be older than the file: its page may be gone by now.
PDFViewerState FitTo(const VLK_Document& document, PDFViewerState state) {
    const std::int32_t nLastPage = std::max(document.PageCount() - 1, 0);
    state.CurrentPageIndex = std::clamp(state.CurrentPageIndex, 0, nLastPage);
    if (!std::isfinite(state.Scale) || state.Scale < 0.0 || !std::isfinite(state.OffsetX) ||
        !std::isfinite(state.OffsetY)) {
        const PDFViewerState defaults;
        state.Scale = defaults.Scale;
        state.OffsetX = defaults.OffsetX;
        state.OffsetY = defaults.OffsetY;
    }
    return state;
}

void LogOpenError(ErrorCode nErrorCode) {
    Platform::Debug::OutputDebugString(std::string("PageView::OpenPdfDocument Error: ") +
                                       velko::common::ErrorCodeName(nErrorCode) + "\n");
}

}

concurrency::task<ErrorCode> PDFViewCtrl::OpenPdfDocument(std::shared_ptr<StorageFile> pFile,
                                                          std::string strPassword) {
    SecretText password(std::move(strPassword)); // cleared whatever comes
    const auto pSelf = Enter();
    ShowProgressRing();
    auto file = concurrency::task_from_result<FilePtr>(std::move(pFile));
    return FinishOpen(OpenOffUiThread(std::move(file), std::move(password)));
}

concurrency::task<ErrorCode> PDFViewCtrl::OpenPdfDocument(std::string strPath,
                                                          std::string strPassword) {
    SecretText password(std::move(strPassword));
    const auto pSelf = Enter();
    const FileTask file = StorageFile::GetFileFromPathAsync(strPath).AsTask();
    return FinishOpenFromPath(file, OpenOffUiThread(file, std::move(password)));
}

concurrency::task<ErrorCode> PDFViewCtrl::FinishOpenFromPath(FileTask file, OpenTask opening) {
    const auto pSelf = Self();
    co_await file.settled();
    if (file.is_value() && !m_bDisposed) {
        ShowProgressRing();
    }
    const auto finishing = FinishOpen(std::move(opening));
    co_return co_await finishing;
}

concurrency::task<ErrorCode> PDFViewCtrl::FinishOpen(OpenTask opening) {
    const auto pSelf = Self();
    const OpenResult pResult = co_await opening;
    RefuseWhenDisposed(pResult->m_pDocument);
    co_return OnOpenDocResult(*pResult);
}

void PDFViewCtrl::RefuseWhenDisposed(const std::shared_ptr<VLK_Document>& pDocument) {
    if (!m_bDisposed) {
        return;
    }
    if (pDocument) {
        pDocument->Dispose();
    }
    throw Platform::ObjectDisposedException("the viewer control was disposed meanwhile");
}

ErrorCode PDFViewCtrl::OnOpenDocResult(const VLK_DocOpenResult& result) {
    const auto pDocument = result.m_pDocument;
    const ErrorCode nErrorCode = result.m_nErrorCode;
    CloseDocument(false); // the old document goes whatever the outcome
    RefuseWhenDisposed(pDocument);
    if (!pDocument) {
        HideProgressRing();
        return nErrorCode;
    }
    if (nErrorCode == ErrorCode::e_ErrPassword) {
        AttachDocument(pDocument);
        ShowPasswordDialog(std::make_shared<VLK_DocOpenRecord>(pDocument, nErrorCode));
    } else if (pDocument->PageCount() == 0) {
        AttachDocument(pDocument);
        RaiseOpenDoc(pDocument, nErrorCode, 0);
    } else if (nErrorCode == ErrorCode::e_ErrSuccess) {
        AttachDocument(pDocument);
        if (ShowOpenedDocument()) {
            RaiseOpenDoc(pDocument, nErrorCode, 0);
        }
    } else {
        LogOpenError(nErrorCode);
    }
    HideProgressRing();
    return nErrorCode;
}

void PDFViewCtrl::AttachDocument(const std::shared_ptr<VLK_Document>& pDocument) {
    // A host may attach another document inside `CloseDocEvent`. That one is
    // closed too; a host that does so each time does not keep us here for ever.
    constexpr int kRounds = 2;
    for (int nRound = 0; nRound < kRounds && m_pDocument && m_pDocument != pDocument; ++nRound) {
        CloseDocument(false);
    }
    RefuseWhenDisposed(pDocument);
    m_pDocument = pDocument;
    m_pDocument->SetOwner(std::shared_ptr<IDocumentOwner>(Self(), this));
}

bool PDFViewCtrl::ShowOpenedDocument() {
    ApplyTemplate(); // a document may open before the control stands in a window
    const auto pManager = m_pPageViewMgr;
    if (!pManager) {
        throw Platform::NullReferenceException("the control was unloaded: reapply its template");
    }
    const auto pDocument = m_pDocument;
    m_pViewerState = LoadViewState();
    if (AppConfig::IsAutoReflowMode()) {
        m_pViewerState->ViewState = LayoutMode::kReflow;
    }
    const PDFViewerState state = FitTo(*pDocument, *m_pViewerState);
    const std::int32_t nOldMode = m_nLayoutMode;
    const std::int32_t nNewMode = pManager->ModeToShow(
        state.ViewState == LayoutMode::kNone ? LayoutMode::kSinglePage : state.ViewState);
    m_nLayoutMode = nNewMode;
    pManager->ChangeViewer(nNewMode, pDocument, Canvas());
    pManager->InitLayOut(state.CurrentPageIndex, state.Scale, state.OffsetX, state.OffsetY);
    if (m_pDocument != pDocument) {
        return false;
    }
    PageLayoutModeChangedEvent.raise(Self(), std::make_shared<PageLayoutModeChangedEventArgs>(
                                                 pDocument->PdfDoc(), nOldMode, nNewMode));
    return m_pDocument == pDocument;
}

void PDFViewCtrl::RaiseOpenDoc(const std::shared_ptr<VLK_Document>& pDocument, ErrorCode nErrorCode,
                               std::int32_t nCanceled) {
    OpenDocEvent.raise(Self(),
                       std::make_shared<DocEventArgs>(pDocument->PdfDoc(), nErrorCode, nCanceled));
}

// A host's handler that fails leaves no document without a viewer.
void PDFViewCtrl::TellAndShow() {
    const auto pDocument = m_pDocument;
    Platform::FirstFailure failure;
    failure.Run([&] { RaiseOpenDoc(pDocument, ErrorCode::e_ErrSuccess, 0); });
    if (m_pDocument == pDocument) {
        failure.Run([this] { ShowOpenedDocument(); });
    }
    failure.Rethrow();
}

void PDFViewCtrl::ShowPasswordDialog(const std::shared_ptr<VLK_DocOpenRecord>& pRecord) {
    m_pPasswordOperation =
        std::make_shared<InsertDocumentPasswdwordDlgUIOprateion>(pRecord, Self());
    OpenPasswordDialog();
}

void PDFViewCtrl::OpenPasswordDialog() {
    const auto pOperation = m_pPasswordOperation;
    const auto pWindow = Xaml::Window::Of(*this);
    if (!pOperation || pOperation->HostedDialog() || !m_bIsPasswordDialogEnabled || !pWindow ||
        !IsLoaded()) {
        return;
    }
    const Xaml::Window::CurrentScope inOwnWindow(pWindow);
    const auto pHosted = ContentHostedDialog::Create();
    const auto pDialog = PasswordDialog::Create();
    pDialog->JudgePassword(pOperation);
    pOperation->HostedDialog(pHosted);
    pHosted->Content(pDialog);
    pHosted->AutomationName("Password");
    pHosted->IsLightDismissEnabled(false);
    pHosted->AutoClose(false);
    pHosted->Open();
}

// The wait for a password ends with the event that a reader who gives up makes.
void PDFViewCtrl::GiveUpPassword() {
    if (const auto pOperation = m_pPasswordOperation) {
        pOperation->OnPasswordCancel();
    }
}

std::shared_ptr<Windows::Storage::StorageFile> PDFViewCtrl::GetDocumentFile() {
    return WithDocument(std::shared_ptr<StorageFile>(), &VLK_Document::File);
}

std::shared_ptr<velko::pdf::PDFDoc> PDFViewCtrl::GetPDFDoc() {
    const auto pSelf = Enter();
    return m_pDocument ? m_pDocument->PdfDoc() : nullptr;
}

void PDFViewCtrl::SetPDFDoc(const std::shared_ptr<PDFDoc>& pPdfDoc) {
    const auto pSelf = Enter();
    if (m_pDocument && m_pDocument->PdfDoc() == pPdfDoc) {
        return;
    }
    const auto pDocument = std::make_shared<VLK_Document>(pPdfDoc);
    AttachDocument(pDocument);
    TellAndShow();
}

void PDFViewCtrl::CloseDocument() {
    const auto pSelf = Enter();
    CloseDocument(true);
}

void PDFViewCtrl::CloseDocument(bool bClearViewer) {
    Platform::FirstFailure failure;
    const auto pDocument = m_pDocument;
    failure.Run([this] { GiveUpPassword(); });
    if (m_pDocument && m_pDocument == pDocument && m_pDocument != m_pClosingDocument) {
        failure.Run([this] { CloseOpenDocument(); });
    }
    // A document that a host attached inside `CloseDocEvent` keeps its viewer.
    if (bClearViewer && m_pDocument == m_pClosingDocument) {
        failure.Run([this] { ClearViewer(); });
    }
    failure.Rethrow();
}

void PDFViewCtrl::CloseOpenDocument() {
    const auto pSelf = Self();
    const auto pDocument = m_pDocument;
    const auto pPdfDoc = pDocument->PdfDoc();
    m_pClosingDocument = pDocument;
    Platform::FirstFailure failure;
    failure.Run([&] { pDocument->Dispose(); });
    failure.Run([this] { GiveUpSavePrompt(); });
    failure.Run([&] {
        CloseDocEvent.raise(pSelf,
                            std::make_shared<DocEventArgs>(pPdfDoc, ErrorCode::e_ErrSuccess, 0));
    });
    pDocument->ReleasePdfDoc();
    if (m_pDocument == pDocument) {
        m_pDocument.reset();
    }
    if (m_pClosingDocument == pDocument) {
        m_pClosingDocument.reset();
    }
    LetHandlersGo();
    failure.Rethrow();
}

void PDFViewCtrl::ForgetPasswordOperation(const InsertDocumentPasswdwordDlgUIOprateion& operation) {
    if (m_pPasswordOperation.get() == &operation) {
        m_pPasswordOperation.reset();
    }
}

void PDFViewCtrl::ClearViewer() {
    const auto pManager = m_pPageViewMgr;
    const auto pViewer = Viewer();
    if (!pViewer) {
        return;
    }
    Platform::FirstFailure failure;
    failure.Run([&] { pViewer->ClearScreen(); });
    if (pManager->LayoutMode() == LayoutMode::kReflow) { // whose viewer leaves its last frame
        failure.Run([&] { Canvas()->ClearAndPresent(); });
    }
    failure.Run([&] { pViewer->CloseViewer(); });
    if (pManager->GetViewer() == pViewer) {
        pManager->SetViewer(nullptr);
    }
    failure.Rethrow();
}

}
