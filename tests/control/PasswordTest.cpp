// The road of a document that asks for a password.

#include "control/IJudgePasswordHelper.h"
#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"
#include "document/VLK_Document.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

class PasswordTest : public ControlFixture {
protected:
    PasswordTest() {
        pEngine->SetPasswords("reader", "owner");
        Show();
    }
    std::shared_ptr<vkit::InsertDocumentPasswdwordDlgUIOprateion> Operation() {
        return std::dynamic_pointer_cast<vkit::InsertDocumentPasswdwordDlgUIOprateion>(
            pControl->PasswordJudge());
    }
};

TEST_F(PasswordTest, ARightPasswordAsksNobody) {
    EXPECT_EQ(Open("a.pdf", "reader"), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->PasswordJudge(), nullptr);
    EXPECT_EQ(DocEvents(), (Strings{"Mode 1->1", "OpenDoc 0 0"}));
}

TEST_F(PasswordTest, TheOpenEndsWhileTheQuestionStands) {
    EXPECT_EQ(Open("locked.pdf"), ErrorCode::e_ErrPassword);
    EXPECT_TRUE(DocEvents().empty());
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(pControl->GetPageCount(), 0);
    ASSERT_NE(pControl->PasswordJudge(), nullptr);
    EXPECT_EQ(pControl->PasswordJudge()->GetFileName(), "locked.pdf");
}

TEST_F(PasswordTest, AnAcceptedPasswordTellsFirstAndShowsThen) {
    Open();
    const auto pOperation = Operation();
    const auto completed = pOperation->Record()->m_completion.get_task();
    int nDialogsClosed = 0;
    pOperation->SetCloseDialog([&] { ++nDialogsClosed; });
    EXPECT_FALSE(pOperation->JudgePassword("wrong"));
    EXPECT_EQ(pControl->GetPageCount(), 0);
    EXPECT_TRUE(pOperation->JudgePassword("reader"));
    bool bViewerInEvent = true;
    InEvent("OpenDoc", [&] { bViewerInEvent = pControl->HasViewer(); });
    pOperation->OnPasswordOK();
    EXPECT_FALSE(bViewerInEvent); // the old document's, if any, is no viewer of this one
    EXPECT_TRUE(pControl->HasViewer());
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 0 0", "Mode 1->1"}));
    EXPECT_EQ(pControl->GetPageCount(), 5);
    EXPECT_EQ(completed.get()->m_nErrorCode, ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->PasswordJudge(), nullptr);
    pOperation->OnPasswordOK(); // an answer acts once
    pOperation->OnPasswordCancel();
    EXPECT_EQ(DocEvents().size(), 2U);
    EXPECT_EQ(nDialogsClosed, 1);
}

TEST_F(PasswordTest, AReaderWhoGivesUpLeavesTheDocumentAttached) {
    Open();
    const auto pOperation = Operation();
    const auto completed = pOperation->Record()->m_completion.get_task();
    pOperation->OnPasswordCancel();
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 6 1"}));
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_EQ(completed.get()->m_nErrorCode, ErrorCode::e_ErrPassword);
}

TEST_F(PasswordTest, ClosingTheDocumentWithdrawsTheQuestion) {
    Open();
    const auto pOperation = Operation();
    const auto completed = pOperation->Record()->m_completion.get_task();
    bool bDialogClosed = false;
    pOperation->SetCloseDialog([&] { bDialogClosed = true; });
    Open("b.pdf", "owner");
    EXPECT_TRUE(bDialogClosed);
    EXPECT_TRUE(completed.is_done());
    events.clear();
    EXPECT_FALSE(pOperation->JudgePassword("reader"));
    EXPECT_EQ(pOperation->GetFileName(), "");
    pOperation->OnPasswordOK();
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "b.pdf");
}

TEST_F(PasswordTest, AnAnswerAfterTheControlIsGoneOnlyEndsTheWait) {
    Open();
    const auto pOperation = Operation();
    const auto completed = pOperation->Record()->m_completion.get_task();
    pControl.reset();
    host.Drain();
    pOperation->OnPasswordOK();
    EXPECT_TRUE(completed.is_done());
    EXPECT_TRUE(DocEvents().empty());
}

TEST_F(PasswordTest, AHostThatClosesInTheEventGetsNoViewer) {
    Open();
    const auto pOperation = Operation();
    const auto completed = pOperation->Record()->m_completion.get_task();
    ASSERT_TRUE(pOperation->JudgePassword("reader"));
    InEvent("OpenDoc", [&] { pControl->CloseDocument(); });
    pOperation->OnPasswordOK();
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 0 0", "CloseDoc 0 0"}));
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_TRUE(completed.is_done());
}

}
}
