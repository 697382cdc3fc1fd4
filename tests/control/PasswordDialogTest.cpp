// The dialog that asks for a password, with a judge of the test's.
#include "control/IJudgePasswordHelper.h"
#include "platform/ui/Popup.h"
#include "tests/control/DialogFixture.h"

namespace velko::testing {
namespace {

using Windows::System::VirtualKey;
using Xaml::Visibility;
using Xaml::Controls::Button;
using Xaml::Controls::PasswordBox;

class Judge : public vkit::IJudgePasswordHelper {
public:
    bool JudgePassword(const std::string& strPassword) override {
        log.push_back("judge " + strPassword);
        eCursor = Xaml::Window::Current()->PointerCursor();
        return strPassword == "right";
    }
    std::string GetFileName() override { return "locked.pdf"; }
    void OnPasswordOK() override { log.emplace_back("ok"); }
    void OnPasswordCancel() override { log.emplace_back("cancel"); }
    std::vector<std::string> log;
    Windows::UI::Core::CoreCursorType eCursor{}; // while it judged
};

class PasswordDialogTest : public DialogFixture {
protected:
    // The height of what a toolkit would show.
    static constexpr double kBoxHeight = 30.0;

    void Open(const char* szFamily, Size size) {
        ShowWindow(szFamily, size);
        for (const char* szPanel : {"PortraitPanel", "LandscapePanel"}) {
            Find(*Find(*pDialog, szPanel), "PasswordBox")->Height(kBoxHeight);
        }
        pDialog->JudgePassword(pJudge);
        pHosted->Content(pDialog);
        pHosted->Open();
    }
    std::shared_ptr<FrameworkElement> Panel(bool bLandscape) {
        return Find(*pDialog, bLandscape ? "LandscapePanel" : "PortraitPanel");
    }
    std::shared_ptr<FrameworkElement> Part(const char* szName) {
        return Find(*Panel(pDialog->IsLandscape()), szName);
    }
    bool IsHintShown(const char* szName, bool bLandscape = false) {
        return Find(*Panel(bLandscape), szName)->Visibility() == Visibility::Visible;
    }
    PasswordBox& Box() { return *pDialog->ActiveBox(); }
    void Type(const char* szText) { Box().TakeTyped(szText); }
    void Press(const char* szButton) {
        std::dynamic_pointer_cast<Button>(Part(szButton))->Click.raise();
    }
    bool HasBoxKeys() { return pWindow->FocusedElement() == pDialog->ActiveBox(); }

    std::shared_ptr<Judge> pJudge = std::make_shared<Judge>();
    std::shared_ptr<vkit::ContentHostedDialog> pHosted = vkit::ContentHostedDialog::Create();
    std::shared_ptr<vkit::PasswordDialog> pDialog = vkit::PasswordDialog::Create();
};

TEST_F(PasswordDialogTest, EachFamilyHasItsArrangement) {
    Open("Windows.Desktop", {1000, 500});
    EXPECT_FALSE(pDialog->IsLandscape());
    EXPECT_EQ(Box().ActualWidth(), 324.0);
    EXPECT_FALSE(Panel(true)->IsShown());
    EXPECT_TRUE(HasBoxKeys());
    EXPECT_TRUE(pWindow->KeyDown.empty());
    EXPECT_TRUE(pWindow->InputPane().Showing.empty());
    pHosted->Close();

    host.Environment().SetDeviceFamily("Windows.Mobile");
    pHosted->Open();
    Resize({1000, 500});
    EXPECT_TRUE(pDialog->IsLandscape());
    EXPECT_FALSE(Panel(false)->IsShown());
    EXPECT_EQ(Panel(true)->ActualWidth(), 1000.0);
    EXPECT_EQ(Panel(true)->ActualHeight(), 205.0);
    EXPECT_EQ(Box().ActualWidth(), 880.0);
    EXPECT_EQ(Part("HintBlock")->ActualWidth(), 880.0);
    EXPECT_EQ(Part("OkButton")->ActualWidth(), 200.0);
    EXPECT_EQ(Part("CancelButton")->ActualHeight(), 37.5);
    EXPECT_TRUE(HasBoxKeys()) << "the keys go with the arrangement";

    Type("half a");
    Resize({500, 500}); // not above the height
    EXPECT_FALSE(pDialog->IsLandscape());
    EXPECT_EQ(Box().Password(), "half a") << "what was typed goes along";
    EXPECT_TRUE(Find<PasswordBox>(*Panel(true), "PasswordBox")->Password().IsEmpty());
    EXPECT_EQ(Panel(false)->ActualWidth(), 500.0);
    EXPECT_EQ(Box().ActualWidth(), 400.0);
    EXPECT_EQ(Part("TitleBlock")->ActualWidth(), 440.0);
    EXPECT_EQ(Part("OkButton")->ActualWidth(), 215.0);
    EXPECT_TRUE(HasBoxKeys());
}

TEST_F(PasswordDialogTest, JudgesWhatIsTypedAndSaysWhatIsWrong) {
    Open("Windows.Desktop", {1000, 800});
    Press("OkButton");
    EXPECT_TRUE(pJudge->log.empty());
    EXPECT_TRUE(IsHintShown("EmptyPasswordHint"));
    Type("guess");
    pWindow->LoseFocus(Box());
    Press("OkButton");
    EXPECT_EQ(pJudge->eCursor, Windows::UI::Core::CoreCursorType::Wait);
    EXPECT_EQ(pWindow->PointerCursor(), Windows::UI::Core::CoreCursorType::Arrow);
    EXPECT_FALSE(IsHintShown("EmptyPasswordHint"));
    EXPECT_TRUE(IsHintShown("WrongPasswordHint"));
    EXPECT_TRUE(Box().Password().IsEmpty());
    EXPECT_TRUE(HasBoxKeys());
    Press("OkButton");
    EXPECT_FALSE(IsHintShown("WrongPasswordHint"));
    Type("right");
    EXPECT_TRUE(pWindow->PressKey(pDialog->ActiveBox(), VirtualKey::Enter));
    Press("CancelButton");
    EXPECT_EQ(pJudge->log,
              (std::vector<std::string>{"judge guess", "judge right", "ok", "cancel"}));
    EXPECT_TRUE(Box().Password().IsEmpty());
    EXPECT_FALSE(pWindow->PressKey(pDialog->ActiveBox(), VirtualKey::D));
    EXPECT_FALSE(host.DebugContains("right"));
    EXPECT_FALSE(host.DebugContains("OccludedRect"));
}

TEST_F(PasswordDialogTest, AHintComesUpAtEachAnswer) { // a screen reader speaks what comes up
    Open("Windows.Desktop", {1000, 800});
    int nShown = 0;
    for (const char* szHint : {"EmptyPasswordHint", "WrongPasswordHint"}) {
        Part(szHint)->VisibilityChanged.add(
            [&](Visibility eNow) { nShown += eNow == Visibility::Visible ? 1 : 0; });
    }
    for (int nAnswer = 1; nAnswer <= 4; ++nAnswer) {
        Type(nAnswer <= 2 ? "guess" : "");
        Press("OkButton");
        EXPECT_EQ(nShown, nAnswer);
    }
}

TEST_F(PasswordDialogTest, TheWideArrangementKeepsItsEmptyHint) {
    Open("Windows.Mobile", {800, 400});
    Press("OkButton");
    Type("guess");
    Press("OkButton");
    EXPECT_TRUE(IsHintShown("EmptyPasswordHint", true));
    EXPECT_TRUE(IsHintShown("WrongPasswordHint", true));
    EXPECT_FALSE(IsHintShown("WrongPasswordHint", false));
}

TEST_F(PasswordDialogTest, ARequestToGoBackCancelsOnce) {
    for (const char* szFamily : {"Windows.Desktop", "Windows.Mobile"}) {
        host.Environment().SetDeviceFamily(szFamily);
        if (!pWindow) {
            Open(szFamily, {400, 800});
        } else {
            pHosted->Open();
        }
        EXPECT_TRUE(pWindow->RequestBack());
        EXPECT_EQ(pJudge->log, std::vector<std::string>{"cancel"});
        EXPECT_FALSE(pHosted->IsOpen());
        EXPECT_FALSE(pWindow->RequestBack());
        pJudge->log.clear();
    }
}

TEST_F(PasswordDialogTest, TheKeyboardLiftsTheBoxByTheirOverlap) {
    Open("Windows.Mobile", {400, 800});
    const Rect rcFree = PlaceOf(Box());
    const auto fnCover = [&](float fTop) {
        pWindow->InputPane().Occlude({0, fTop, 400, 800 - fTop});
    };
    fnCover(rcFree.Y + rcFree.Height + 1);
    EXPECT_EQ(PlaceOf(Box()), rcFree) << "it does not reach the box";
    for (const float fOverlap : {7.0F, 20.0F, 3.0F}) { // each from the place without a lift
        fnCover(rcFree.Y + rcFree.Height - fOverlap);
        EXPECT_EQ(PlaceOf(Box()).Y, rcFree.Y - fOverlap);
        EXPECT_EQ(PlaceOf(Box()).X, rcFree.X);
    }
    EXPECT_EQ(host.CountDebug("IntersectsWith...\n"), 3U);
    host.ClearDebug();
    pWindow->PressKey(pDialog->ActiveBox(), VirtualKey::D);
    EXPECT_TRUE(host.DebugContains("OccludedRect: "));
    EXPECT_TRUE(host.DebugContains("\nDocPasswordBox Point: "));

    Resize({800, 400}); // the device is turned under the keyboard, which is lower now
    pWindow->InputPane().Occlude({0, 20, 800, 380});
    EXPECT_EQ(PlaceOf(Box()).Y + kBoxHeight, 20.0);
    Resize({400, 800});
    EXPECT_EQ(PlaceOf(Box()).Y + kBoxHeight, 20.0) << "measured anew in the other arrangement";
    pWindow->InputPane().Occlude({});
    EXPECT_EQ(PlaceOf(Box()), rcFree);
}

TEST_F(PasswordDialogTest, LeavesNothingBehindWhenItGoes) {
    Open("Windows.Mobile", {400, 800});
    Type("secret");
    pHosted->Close();
    EXPECT_TRUE(pWindow->SizeChanged.empty());
    EXPECT_TRUE(pWindow->KeyDown.empty());
    EXPECT_TRUE(pWindow->BackPressed.empty());
    EXPECT_TRUE(pWindow->BackRequested.empty());
    EXPECT_TRUE(pWindow->InputPane().Showing.empty());
    EXPECT_TRUE(pWindow->InputPane().Hiding.empty());
    EXPECT_TRUE(Box().Password().IsEmpty());
    EXPECT_EQ(pWindow->FocusedElement(), nullptr);
    pDialog->JudgePassword(nullptr);
    EXPECT_TRUE(host.DebugContains("OldValue is NULL\n"));
    EXPECT_TRUE(host.DebugContains("OldValue--Index: 0,NewValue is NULL\n"));
}

}
}
