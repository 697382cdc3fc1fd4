// The road of a document that asks for a password.

#include "control/IJudgePasswordHelper.h"
#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"
#include "control/dialogs/PasswordDialog.h"
#include "document/VLK_Document.h"
#include "platform/ui/Window.h"
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
    }
    ~PasswordTest() override { pWindow.reset(); }

    bool IsDialogOpen() { return Parts().OpenPasswordDialog() != nullptr; }
    // Types into the dialog and presses OK.
    void Answer(const char* szPassword) {
        const auto pDialog = Parts().OpenPasswordDialog();
        ASSERT_TRUE(pDialog);
        pDialog->ActiveBox()->TakeTyped(szPassword);
        pDialog->OnOkClick();
    }
    // No dialog, nobody who listens for its sake, and one event for the open.
    void ExpectGivenUp(const Strings& docEvents) {
        EXPECT_EQ(DocEvents(), docEvents);
        EXPECT_TRUE(completed.is_done());
        EXPECT_TRUE(pWindow->BackRequested.empty());
        EXPECT_TRUE(pWindow->SizeChanged.empty());
    }

    std::shared_ptr<Windows::UI::Xaml::Window> pWindow =
        Windows::UI::Xaml::Window::Create(pControl);
    std::shared_ptr<Operation> pOperation;
    decltype(pOperation->Record()->m_completion.get_task()) completed;
};

TEST_F(PasswordTest, TheOpenEndsWhileTheQuestionStands) {
    EXPECT_TRUE(DocEvents().empty());
    EXPECT_FALSE(Parts().IsProgressRingVisible());
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(pControl->GetPageCount(), 0);
    EXPECT_EQ(pOperation->GetFileName(), "locked.pdf");
    EXPECT_TRUE(IsDialogOpen());
}

TEST_F(PasswordTest, AnAcceptedPasswordTellsFirstAndShowsThen) {
    Answer("wrong");
    EXPECT_TRUE(IsDialogOpen());
    EXPECT_EQ(pControl->GetPageCount(), 0);
    bool bViewerInEvent = true;
    bool bDialogInEvent = true;
    InEvent("OpenDoc", [&] {
        bViewerInEvent = pControl->HasViewer();
        bDialogInEvent = IsDialogOpen();
    });
    Answer("reader");
    EXPECT_FALSE(bViewerInEvent); // the old document's, if any, is no viewer of this one
    EXPECT_FALSE(bDialogInEvent);
    EXPECT_TRUE(pControl->HasViewer());
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 0 0", "Mode 1->1"}));
    EXPECT_EQ(pControl->GetPageCount(), 5);
    EXPECT_EQ(completed.get()->m_nErrorCode, ErrorCode::e_ErrSuccess);
    EXPECT_EQ(pControl->PasswordJudge(), nullptr);
    pOperation->OnPasswordOK(); // an answer acts once
    pOperation->OnPasswordCancel();
    EXPECT_EQ(DocEvents().size(), 2U);
    EXPECT_EQ(Open("locked.pdf", "owner"), ErrorCode::e_ErrSuccess);
    EXPECT_FALSE(IsDialogOpen());
}

TEST_F(PasswordTest, AReaderWhoGivesUpLeavesTheDocumentAttached) {
    EXPECT_TRUE(pWindow->RequestBack());
    ExpectGivenUp({"OpenDoc 6 1"});
    EXPECT_NE(pControl->GetPDFDoc(), nullptr);
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_EQ(completed.get()->m_nErrorCode, ErrorCode::e_ErrPassword);
    EXPECT_FALSE(pWindow->RequestBack());
}

TEST_F(PasswordTest, ClosingGivesUp) {
    pControl->CloseDocument();
    ExpectGivenUp({"OpenDoc 6 1", "CloseDoc 0 0"});
    EXPECT_FALSE(pOperation->JudgePassword("reader"));
    EXPECT_EQ(pOperation->GetFileName(), "");
    pOperation->OnPasswordOK();
    EXPECT_EQ(DocEvents().size(), 2U);
}

TEST_F(PasswordTest, AnotherDocumentGivesUpTheFirstAndMayAskItself) {
    const std::weak_ptr<vkit::PasswordDialog> wkFirst = Parts().OpenPasswordDialog();
    EXPECT_EQ(Open("second.pdf"), ErrorCode::e_ErrPassword);
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 6 1", "CloseDoc 0 0"}));
    EXPECT_TRUE(wkFirst.expired());
    EXPECT_EQ(pControl->PasswordJudge()->GetFileName(), "second.pdf");
    pOperation->OnPasswordOK(); // too late
    EXPECT_TRUE(IsDialogOpen());
    Answer("reader");
    EXPECT_EQ(pControl->GetDocumentFile()->Name(), "second.pdf");
    ExpectGivenUp({"OpenDoc 6 1", "CloseDoc 0 0", "OpenDoc 0 0", "Mode 1->1"});
}

TEST_F(PasswordTest, AControlThatLeavesItsWindowGivesUp) {
    pControl->RaiseUnloaded();
    ExpectGivenUp({"OpenDoc 6 1"});
    EXPECT_FALSE(IsDialogOpen());
}

TEST_F(PasswordTest, ADisposedControlGivesUp) {
    const std::weak_ptr<vkit::PasswordDialog> wkDialog = Parts().OpenPasswordDialog();
    pControl->Dispose();
    ExpectGivenUp({"OpenDoc 6 1", "CloseDoc 0 0"});
    EXPECT_TRUE(wkDialog.expired());
}

TEST_F(PasswordTest, AnAnswerAfterTheControlIsGoneOnlyEndsTheWait) {
    const std::weak_ptr<vkit::PasswordDialog> wkDialog = Parts().OpenPasswordDialog();
    pWindow.reset();
    pControl.reset();
    host.Drain();
    EXPECT_TRUE(wkDialog.expired());
    pOperation->OnPasswordOK();
    EXPECT_TRUE(completed.is_done());
    EXPECT_TRUE(DocEvents().empty());
}

TEST_F(PasswordTest, AHostThatClosesInTheEventGetsNoViewer) {
    InEvent("OpenDoc", [&] { pControl->CloseDocument(); });
    Answer("reader");
    EXPECT_EQ(DocEvents(), (Strings{"OpenDoc 0 0", "CloseDoc 0 0"}));
    EXPECT_EQ(Parts().PageViewMgr()->GetViewer(), nullptr);
    EXPECT_TRUE(completed.is_done());
}

TEST_F(PasswordTest, AHostWhoseHandlerFailsGetsItsViewer) {
    InEvent("OpenDoc", [] { throw std::runtime_error("the host's"); });
    EXPECT_THROW(Answer("reader"), std::runtime_error);
    EXPECT_TRUE(pControl->HasViewer());
    EXPECT_FALSE(IsDialogOpen());
    EXPECT_TRUE(completed.is_done());
}

TEST_F(PasswordTest, AHostThatClosesWhenItIsGivenUpClosesOnce) {
    InEvent("OpenDoc", [&] { pControl->CloseDocument(); });
    pControl->CloseDocument();
    ExpectGivenUp({"OpenDoc 6 1", "CloseDoc 0 0"});
}

TEST_F(PasswordTest, AHostMayAskInItsOwnWay) {
    pControl->IsPasswordDialogEnabled(false);
    EXPECT_EQ(Open("second.pdf"), ErrorCode::e_ErrPassword);
    EXPECT_FALSE(IsDialogOpen());
    const auto pJudge = pControl->PasswordJudge();
    EXPECT_FALSE(pJudge->JudgePassword("wrong"));
    EXPECT_TRUE(pJudge->JudgePassword("reader"));
    pJudge->OnPasswordOK();
    EXPECT_TRUE(pControl->HasViewer());
}

TEST_F(PasswordTest, AControlWithoutAWindowAsksWhenItHasOne) {
    pControl->RaiseUnloaded();
    pWindow.reset();
    pControl->ReapplyTemplate();
    EXPECT_EQ(Open("second.pdf"), ErrorCode::e_ErrPassword);
    EXPECT_FALSE(IsDialogOpen());
    pWindow = Windows::UI::Xaml::Window::Create(pControl);
    pControl->RaiseLoaded();
    EXPECT_TRUE(IsDialogOpen());
}

}
}
