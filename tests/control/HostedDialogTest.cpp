// A dialog that lifts itself into a popup and goes back to its place.
#include "tests/control/DialogFixture.h"

namespace velko::testing {
namespace {

using vkit::ContentHostedDialog;
using Xaml::Visibility;

class HostedDialogTest : public DialogFixture {
protected:
    HostedDialogTest() {
        pContent->Width(100.0);
        pContent->Height(50.0);
        pContent->Background(Xaml::ThemeBrush::Surface);
        pDialog->Content(pContent);
    }
    // True when somebody took the tap.
    bool Tap(const std::shared_ptr<FrameworkElement>& pSource) {
        Xaml::Input::TappedRoutedEventArgs args;
        args.OriginalSource = pSource;
        Find<Grid>(*pDialog, "LayoutRoot")->Tapped.raise(args);
        return args.Handled;
    }
    std::shared_ptr<FrameworkElement> LayoutRoot() { return Find(*pDialog, "LayoutRoot"); }
    void ExpectClosedWithNothingLeft() {
        EXPECT_FALSE(pDialog->IsOpen());
        EXPECT_TRUE(pWindow->BackRequested.empty());
        EXPECT_TRUE(pWindow->BackPressed.empty());
        EXPECT_EQ(host.Clock().RunningTimers(), 0U);
    }

    std::shared_ptr<ContentHostedDialog> pDialog = ContentHostedDialog::Create();
    std::shared_ptr<Grid> pContent = std::make_shared<Grid>();
};

TEST_F(HostedDialogTest, ComesFromAPanelAndGoesBackToItsPlaceThere) {
    auto pPanel = std::make_shared<Grid>();
    auto pNext = std::make_shared<Grid>();
    pPage->AppendChild(pPanel);
    pPanel->AppendChild(pDialog);
    pPanel->AppendChild(pNext);
    pDialog->Visibility(Visibility::Collapsed);
    ShowWindow("Windows.Desktop", {800, 600});
    const auto nSubscribers = pPanel->SizeChanged.Snapshot()->size();
    for (int nRound = 0; nRound < 2; ++nRound) { // it may open again
        pDialog->Open();
        pDialog->Open();
        EXPECT_EQ(pPanel->Children().size(), 2U);
        EXPECT_EQ(pPanel->Children()[0], pNext);
        EXPECT_TRUE(pDialog->IsShown());
        EXPECT_EQ(PlaceOf(*pContent), Rect(350, 275, 100, 50));
        pDialog->Close();
        EXPECT_EQ(pPanel->Children()[0], pDialog);
        EXPECT_EQ(pDialog->Visibility(), Visibility::Collapsed);
        EXPECT_EQ(pPanel->Children().size(), 2U);
        EXPECT_EQ(pPanel->SizeChanged.Snapshot()->size(), nSubscribers);
        ExpectClosedWithNothingLeft();
    }
}

TEST_F(HostedDialogTest, ComesFromAContentControlOrFromNowhere) {
    auto pHost = std::make_shared<Xaml::Controls::ContentControl>();
    pPage->AppendChild(pHost);
    pHost->Content(pDialog);
    ShowWindow("Windows.Desktop", {800, 600});
    pDialog->Open();
    EXPECT_NE(pHost->Content(), pDialog);
    EXPECT_EQ(pDialog->Parent(), pHost->Content());
    EXPECT_EQ(LayoutRoot()->ActualWidth(), 800.0);
    pDialog->Close();
    EXPECT_EQ(pHost->Content(), pDialog);
    EXPECT_TRUE(pDialog->IsShown());

    pHost->Content(nullptr);
    pDialog->Open();
    EXPECT_EQ(pPage->Children().size(), 2U) << "over the window's panel";
    Resize({400, 300});
    EXPECT_EQ(PlaceOf(*LayoutRoot()), Rect(0, 0, 400, 300));
    pDialog->Close();
    EXPECT_EQ(pPage->Children().size(), 1U);
    EXPECT_EQ(pDialog->Visibility(), Visibility::Collapsed);
    ExpectClosedWithNothingLeft();
}

TEST_F(HostedDialogTest, LiesOverAPanelThatIsAsLargeAsItsChildren) {
    auto pColumn = std::make_shared<Xaml::Controls::StackPanel>();
    auto pPanel = std::make_shared<Xaml::Controls::StackPanel>();
    auto pFirst = std::make_shared<Grid>();
    pFirst->Height(150.0);
    pPage->AppendChild(pColumn);
    pColumn->AppendChild(pPanel);
    pPanel->AppendChild(pFirst);
    pPanel->AppendChild(pDialog);
    pDialog->Visibility(Visibility::Collapsed);
    ShowWindow("Windows.Desktop", {800, 600});
    pDialog->Open();
    EXPECT_EQ(pPanel->ActualHeight(), 150.0) << "it takes no room there";
    EXPECT_EQ(PlaceOf(*LayoutRoot()), Rect(0, 0, 800, 150));
    pFirst->Height(300.0);
    EXPECT_EQ(PlaceOf(*LayoutRoot()), Rect(0, 0, 800, 300));
}

TEST_F(HostedDialogTest, OpensNowhereWithoutAWindow) {
    EXPECT_THROW(pDialog->Open(), Platform::InvalidCastException);
    EXPECT_FALSE(pDialog->IsOpen());
}

TEST_F(HostedDialogTest, ATapBesideTheContentIsTakenAndMayDismiss) {
    ShowWindow("Windows.Desktop", {800, 600});
    pDialog->Open();
    EXPECT_FALSE(Tap(pContent));
    EXPECT_TRUE(Tap(LayoutRoot()));
    EXPECT_TRUE(pDialog->IsOpen());
    pWindow->InputPane().Occlude({0, 400, 800, 200});
    EXPECT_TRUE(Tap(LayoutRoot()));
    ASSERT_TRUE(pWindow->FocusedElement()) << "the keyboard goes with the keys";
    EXPECT_EQ(pWindow->FocusedElement()->Name(), "NonVisibilityBtn");
    pDialog->IsLightDismissEnabled(true);
    EXPECT_FALSE(Tap(pContent));
    EXPECT_TRUE(Tap(LayoutRoot()));
    ExpectClosedWithNothingLeft();
}

TEST_F(HostedDialogTest, AFullScreenContentFollowsTheHost) {
    pDialog->IsContentFullScreen(true);
    ShowWindow("Windows.Desktop", {800, 600});
    pDialog->Open();
    EXPECT_EQ(PlaceOf(*pContent), Rect(0, 0, 800, 600));
    Resize({300, 700});
    EXPECT_EQ(PlaceOf(*pContent), Rect(0, 0, 300, 700));
}

TEST_F(HostedDialogTest, ClosesByItselfFourSecondsAfterItCameUp) {
    pDialog->AutoClose(true);
    ShowWindow("Windows.Desktop", {800, 600});
    for (int nRound = 0; nRound < 2; ++nRound) {
        pDialog->Open();
        host.Clock().Advance(std::chrono::milliseconds(3999));
        host.Drain();
        EXPECT_TRUE(pDialog->IsOpen());
        host.Clock().Advance(std::chrono::milliseconds(1));
        host.Drain();
        ExpectClosedWithNothingLeft();
    }
    pDialog->Open();
    pDialog->Close();
    ExpectClosedWithNothingLeft();
}

TEST_F(HostedDialogTest, TakesARequestToGoBackFromBothSources) {
    ShowWindow("Windows.Mobile", {400, 800});
    Xaml::BackRequest pressed;
    pDialog->Open();
    pWindow->BackPressed.raise(pressed);
    EXPECT_TRUE(pressed.Handled);
    ExpectClosedWithNothingLeft();
    Xaml::BackRequest requested;
    pDialog->Open();
    pWindow->BackRequested.raise(requested);
    EXPECT_TRUE(requested.Handled);
    ExpectClosedWithNothingLeft();
    EXPECT_FALSE(pWindow->RequestBack()) << "the page underneath sees it again";

    host.Environment().SetDeviceFamily("Windows.Desktop"); // without the button of a phone
    pDialog->Open();
    EXPECT_TRUE(pWindow->BackPressed.empty());
    EXPECT_TRUE(pWindow->RequestBack());
    ExpectClosedWithNothingLeft();
}

TEST_F(HostedDialogTest, ATreeThatGoesWhileItIsOpenTakesItAlong) {
    ShowWindow("Windows.Desktop", {800, 600});
    pDialog->AutoClose(true);
    pDialog->Open();
    const std::weak_ptr<ContentHostedDialog> wkDialog = pDialog;
    pPage->RaiseUnloaded();
    pWindow.reset();
    pPage.reset();
    pDialog.reset();
    EXPECT_TRUE(wkDialog.expired());
}

}
}
