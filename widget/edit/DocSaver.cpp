#include "widget/edit/DocSaver.h"

#include <utility>

#include "document/engine/PDFDoc.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/StorageFile.h"
#include "widget/edit/SavedCopyCheck.h"

namespace velko::vkit {

using Windows::Storage::StorageFile;

DocSaver::DocSaver(std::shared_ptr<PDFViewCtrl> pControl, ViewEdits& edits)
    : m_pControl(std::move(pControl)), m_edits(edits) {
    m_progressToken = m_pControl->SaveProgressEvent.add(
        [this](const auto&, const auto& pArgs) { emit Progress(pArgs->Done); });
    connect(&m_edits.Edits(), &DocEdits::Changed, this, &DocSaver::Begin);
}

DocSaver::~DocSaver() {
    m_pControl->SaveProgressEvent.remove(m_progressToken);
}

void DocSaver::Save() {
    Ask({Kind::InPlace, {}});
}

void DocSaver::SaveOverChanges() {
    Ask({Kind::OverChanges, {}});
}

void DocSaver::SaveAs(const FilePath& path) {
    Ask({Kind::AsOther, path.Absolute()});
}

bool DocSaver::HasOtherNames() const {
    const auto pFile = m_pControl->GetDocumentFile();
    return pFile && pFile->HasOtherNames();
}

void DocSaver::Ask(Request request) {
    if (m_bSaving || !m_pControl->GetPDFDoc()) {
        return;
    }
    m_edits.FinishWriting();
    m_bSaving = true;
    m_waiting = std::move(request);
    emit Started();
    Begin();
}

void DocSaver::Begin() {
    if (m_waiting && !m_edits.Edits().IsBusy()) {
        m_edits.Edits().Hold();
        Run(this, *std::exchange(m_waiting, std::nullopt));
    }
}

concurrency::task<void> DocSaver::Run(QPointer<DocSaver> pSelf, Request request) {
    const EditHistory::Point nPoint = pSelf->m_edits.Edits().History().Now();
    const std::weak_ptr<velko::pdf::PDFDoc> wkDocument = pSelf->m_pControl->GetPDFDoc();
    std::exception_ptr pError;
    try {
        const auto writing = pSelf->Write(std::move(request));
        co_await writing.settled();
        if (!writing.get()) {
            pError = std::make_exception_ptr(Platform::WriteFaultException("nothing was saved"));
        }
    } catch (...) {
        pError = std::current_exception();
    }
    if (!pSelf) {
        co_return;
    }
    pSelf->m_bSaving = false;
    pSelf->m_pControl->SetSaveCheck(nullptr); // it holds the document
    const auto pDocument = wkDocument.lock();
    if (pDocument && pDocument == pSelf->m_pControl->GetPDFDoc()) {
        pSelf->OnEnded(nPoint, pError);
    }
    if (pSelf) {
        pSelf->m_edits.Edits().Release();
        emit pSelf->Ended();
    }
}

concurrency::task<bool> DocSaver::Write(Request request) {
    const auto pControl = m_pControl;
    if (request.eKind == Kind::AsOther) {
        const auto writing = pControl->SaveDocumentAs(StorageFile::FromPath(request.path.Bytes()));
        co_return co_await writing;
    }
    const auto pFile = pControl->GetDocumentFile();
    if (!pFile || (pFile->Attributes() & Windows::Storage::FileAttributes::ReadOnly) != 0) {
        throw Platform::AccessDeniedException("the document's file is read-only");
    }
    if (request.eKind == Kind::OverChanges) {
        const auto accepting = pControl->AcceptChangedFile();
        co_await accepting;
    }
    pControl->SetSaveCheck([pDocument = pControl->GetPDFDoc()](const auto& pWritten) {
        CheckSavedCopy(*pWritten, *pDocument);
    });
    const auto writing = pControl->SaveDocument();
    co_return co_await writing;
}

void DocSaver::OnEnded(EditHistory::Point nPoint, const std::exception_ptr& pError) {
    if (pError) {
        emit Failed(ToSaveFailure(pError));
    } else {
        m_edits.Edits().Saved(nPoint);
        emit Saved();
    }
}

}
