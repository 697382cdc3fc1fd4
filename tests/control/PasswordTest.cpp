// The road of a document that asks for a password.

#include "control/IJudgePasswordHelper.h"
#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"
#include "document/VLK_Document.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

class PasswordTest : public ControlFixture {
protected:
    using Operation = vkit::InsertDocumentPasswdwordDlgUIOprateion;
    PasswordTest() {
        pEngine->SetPasswords("reader", "owner");
        Show();
        EXPECT_EQ(Open("locked.pdf"), ErrorCode::e_ErrPassword);
        pOperation = std::dynamic_pointer_cast<Operation>(pControl->PasswordJudge());
        completed = pOperation->Record()->m_completion.get_task();
        pOperation->SetCloseDialog([this] { ++nDialogsClosed; });
    }
    std::shared_ptr<Operation> pOperation;
    decltype(pOperation->Record()->m_completion.get_task()) completed;
    int nDialogsClosed = 0;
};

TEST_F(PasswordTest, TheOpenEndsWhileTheQuestionStands) {
    EXPECT_TRUE(DocEvents().empty());
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(pControl->GetPageCount(), 0);
    EXPECT_EQ(pOperation->GetFileName(), "locked.pdf");
}

TEST_F(PasswordTest, AnAcceptedPasswordTellsFirstAndShowsThen) {
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
    pOperation->OnPasswordCancel();
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 6 1"}));
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_EQ(completed.get()->m_nErrorCode, ErrorCode::e_ErrPassword);
}

TEST_F(PasswordTest, ClosingTheDocumentWithdrawsTheQuestion) {
    EXPECT_EQ(Open("b.pdf", "owner"), ErrorCode::e_ErrSuccess); // which asks nobody
    EXPECT_EQ(pControl->PasswordJudge(), nullptr);
    EXPECT_EQ(nDialogsClosed, 1);
    EXPECT_TRUE(completed.is_done());
    events.clear();
    EXPECT_FALSE(pOperation->JudgePassword("reader"));
    EXPECT_EQ(pOperation->GetFileName(), "");
    pOperation->OnPasswordOK();
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "b.pdf");
}

TEST_F(PasswordTest, AnAnswerAfterTheControlIsGoneOnlyEndsTheWait) {
    pControl.reset();
    host.Drain();
    pOperation->OnPasswordOK();
    EXPECT_TRUE(completed.is_done());
    EXPECT_TRUE(DocEvents().empty());
}

TEST_F(PasswordTest, AHostThatClosesInTheEventGetsNoViewer) {
    ASSERT_TRUE(pOperation->JudgePassword("reader"));
    InEvent("OpenDoc", [&] { pControl->CloseDocument(); });
    pOperation->OnPasswordOK();
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 0 0", "CloseDoc 0 0"}));
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_TRUE(completed.is_done());
}

}
}
