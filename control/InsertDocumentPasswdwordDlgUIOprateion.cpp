#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"

#include <utility>

#include "control/PDFViewCtrl.h"
#include "control/dialogs/ContentHostedDialog.h"
#include "document/VLK_Document.h"
#include "platform/foundation/FirstFailure.h"

namespace velko::vkit {

using velko::common::ErrorCode;

InsertDocumentPasswdwordDlgUIOprateion::InsertDocumentPasswdwordDlgUIOprateion(
    std::shared_ptr<VLK_DocOpenRecord> pRecord, std::weak_ptr<PDFViewCtrl> wkControl)
    : m_pRecord(std::move(pRecord)), m_wkControl(std::move(wkControl)) {}

bool InsertDocumentPasswdwordDlgUIOprateion::IsDocumentOpen() const {
    return m_pRecord->m_pDocument && !m_pRecord->m_pDocument->IsDisposed();
}

bool InsertDocumentPasswdwordDlgUIOprateion::JudgePassword(const std::string& strPassword) {
    return IsDocumentOpen() && m_pRecord->m_pDocument->ReloadWithPassword(strPassword);
}

std::string InsertDocumentPasswdwordDlgUIOprateion::GetFileName() {
    const auto pFile = IsDocumentOpen() ? m_pRecord->m_pDocument->File() : nullptr;
    return pFile ? pFile->Name() : std::string();
}

bool InsertDocumentPasswdwordDlgUIOprateion::TakeAnswer() {
    return !std::exchange(m_bAnswered, true);
}

void InsertDocumentPasswdwordDlgUIOprateion::CloseDialog() {
    if (const auto pDialog = HostedDialog()) {
        pDialog->Close();
    }
}

void InsertDocumentPasswdwordDlgUIOprateion::OnPasswordOK() {
    if (!m_bAnswered && IsDocumentOpen()) {
        m_pRecord->m_nErrorCode = ErrorCode::e_ErrSuccess;
    }
    Answer([this](PDFViewCtrl& control) {
        control.AttachDocument(m_pRecord->m_pDocument);
        control.TellAndShow();
    });
}

void InsertDocumentPasswdwordDlgUIOprateion::OnPasswordCancel() {
    Answer([this](PDFViewCtrl& control) {
        control.RaiseOpenDoc(m_pRecord->m_pDocument, ErrorCode::e_ErrUnknown, 1);
    });
}

template <class F>
void InsertDocumentPasswdwordDlgUIOprateion::Answer(F fnAct) {
    if (!TakeAnswer()) {
        return;
    }
    const auto pSelf = shared_from_this(); // the control gives its reference away
    Platform::FirstFailure failure;
    failure.Run([this] { CloseDialog(); });
    const auto pControl = m_wkControl.lock();
    if (pControl && IsDocumentOpen()) {
        pControl->ForgetPasswordOperation(*this);
        failure.Run([&] { fnAct(*pControl); });
    }
    VLK_DocOpenRecord::Complete(m_pRecord);
    failure.Rethrow();
}

}
