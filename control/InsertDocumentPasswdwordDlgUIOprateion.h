// Carries out what a password dialog decides, for one protected document.
//
// Lifetime: made by the control when an open asks for a password; the dialog
// holds it, and it the dialog weakly. It does nothing for a document that was closed
// meanwhile or a control that is gone, but always completes the record's event.
// Threads: UI thread only.
#pragma once

#include <memory>
#include <string>

#include "control/IJudgePasswordHelper.h"
#include "control/VLK_DocOpenRecord.h"

namespace velko::vkit {

class ContentHostedDialog;
class PDFViewCtrl;

class InsertDocumentPasswdwordDlgUIOprateion final
    : public IJudgePasswordHelper,
      public std::enable_shared_from_this<InsertDocumentPasswdwordDlgUIOprateion> {
public:
    InsertDocumentPasswdwordDlgUIOprateion(std::shared_ptr<VLK_DocOpenRecord> pRecord,
                                           std::weak_ptr<PDFViewCtrl> wkControl);

    // Closed before the answer acts.
    void HostedDialog(const std::shared_ptr<ContentHostedDialog>& pDialog) {
        m_wkHostedDialog = pDialog;
    }
    std::shared_ptr<ContentHostedDialog> HostedDialog() const { return m_wkHostedDialog.lock(); }

    bool JudgePassword(const std::string& strPassword) override;
    std::string GetFileName() override;
    void OnPasswordOK() override;
    void OnPasswordCancel() override;

    const std::shared_ptr<VLK_DocOpenRecord>& Record() const { return m_pRecord; }

private:
    // False when the reader has answered before, so that an answer acts once.
    bool TakeAnswer();
    bool IsDocumentOpen() const;
    void CloseDialog();
    template <class F>
    void Answer(F fnAct);

    std::shared_ptr<VLK_DocOpenRecord> m_pRecord;
    std::weak_ptr<PDFViewCtrl> m_wkControl;
    std::weak_ptr<ContentHostedDialog> m_wkHostedDialog;
    bool m_bAnswered = false;
};

}
