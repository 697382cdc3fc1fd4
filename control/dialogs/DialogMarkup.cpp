#include "control/dialogs/DialogMarkup.h"

#include <memory>
#include <utility>
#include <vector>

#include "control/dialogs/NonVisibilityButton.h"
#include "control/triggers/ControlSizeTrigger.h"
#include "control/triggers/DeviceFamilyTrigger.h"
#include "platform/system/Environment.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Markup.h"
#include "platform/ui/VisualState.h"

namespace velko::vkit {

namespace {

namespace Xaml = Windows::UI::Xaml;
using namespace Xaml::Controls;
using Windows::Graphics::Display::DisplayInformation;
using Xaml::HorizontalAlignment;
using Xaml::ThemeBrush;
using Xaml::Thickness;
using Xaml::VerticalAlignment;
using Xaml::Visibility;
using Xaml::VisualStateGroup;

template <class T, class... Args>
std::shared_ptr<T> Make(const char* szName, Args... args) {
    auto pElement = std::make_shared<T>(args...);
    pElement->Name(szName);
    return pElement;
}

std::shared_ptr<NonVisibilityButton> MakeFocusHolder() {
    auto pButton = Make<NonVisibilityButton>(kNonVisibilityButtonPart);
    pButton->HorizontalAlignment(HorizontalAlignment::Left);
    pButton->VerticalAlignment(VerticalAlignment::Top);
    return pButton;
}

// --- the hosted dialog -----------------------------------------------------

// On a desktop the content stands in the middle, elsewhere at the top, where the
// keyboard of the screen leaves it in sight.
std::shared_ptr<VisualStateGroup> PlacesOf(const std::shared_ptr<ContentPresenter>& pPresenter) {
    auto pDesktop = std::make_shared<DeviceFamilyTrigger>();
    pDesktop->DeviceFamily("Windows.Desktop");
    const auto fnPlace = [wkPresenter = std::weak_ptr(pPresenter)](VerticalAlignment eAlignment) {
        return [wkPresenter, eAlignment] {
            if (const auto pPlaced = wkPresenter.lock()) {
                pPlaced->VerticalAlignment(eAlignment);
            }
        };
    };
    return VisualStateGroup::Create({{"Middle",
                                      {pDesktop},
                                      fnPlace(VerticalAlignment::Center),
                                      fnPlace(VerticalAlignment::Top)}});
}

std::shared_ptr<Xaml::FrameworkElement> BuildHostedDialog() {
    auto pRoot = Make<Grid>(kDialogLayoutRootPart);
    pRoot->Background(ThemeBrush::Shade);
    auto pPresenter = Make<ContentPresenter>(kContentPresenterPart);
    pPresenter->HorizontalAlignment(HorizontalAlignment::Center);
    pPresenter->VerticalAlignment(VerticalAlignment::Top);
    pRoot->AppendChild(pPresenter);
    pRoot->AppendChild(MakeFocusHolder());
    pRoot->VisualStateGroups.push_back(PlacesOf(pPresenter));
    return pRoot;
}

// --- the password dialog ---------------------------------------------------

constexpr double kSpacing = 8.0;
constexpr double kTight = 3.0; // of the wide arrangement, which has little height
constexpr Thickness kLow{10.0, 4.0, 10.0, 4.0};
constexpr Thickness kNarrow{10.0, 8.0, 10.0, 8.0};
constexpr Thickness kRoomy{28.0, 22.0, 28.0, 24.0};
constexpr double kRoomyHeight = 420.0; // 96ths of an inch, of the area around
constexpr double kRoomyWidth = 480.0;

std::shared_ptr<PasswordBox> MakeBox() {
    auto pBox = Make<PasswordBox>("PasswordBox");
    pBox->AutomationName("Password");
    pBox->PlaceholderText("Password");
    pBox->HorizontalAlignment(HorizontalAlignment::Left);
    return pBox;
}

std::shared_ptr<Button> MakeButton(const char* szName, const char* szText, bool bAccent) {
    auto pButton = Make<Button>(szName);
    pButton->Text(szText);
    pButton->IsAccent(bAccent);
    return pButton;
}

std::shared_ptr<TextBlock> MakeHint(const char* szName, const char* szText) {
    auto pHint = Make<TextBlock>(szName, TextRole::Alert);
    pHint->Text(szText);
    pHint->Visibility(Visibility::Collapsed);
    return pHint;
}

std::shared_ptr<StackPanel> MakeHints() {
    auto pHints = Make<StackPanel>("HintBlock");
    pHints->HorizontalAlignment(HorizontalAlignment::Left);
    pHints->AppendChild(MakeHint("EmptyPasswordHint", "Enter the password."));
    pHints->AppendChild(
        MakeHint("WrongPasswordHint", "That password does not open the document. Try another."));
    return pHints;
}

std::shared_ptr<StackPanel> MakeButtons() {
    auto pButtons = Make<StackPanel>("Buttons", Orientation::Horizontal, kSpacing);
    pButtons->HorizontalAlignment(HorizontalAlignment::Right);
    pButtons->AppendChild(MakeButton("OkButton", "OK", true));
    pButtons->AppendChild(MakeButton("CancelButton", "Cancel", false));
    return pButtons;
}

std::shared_ptr<StackPanel> MakeHead(Orientation eOrientation) {
    auto pTitle = Make<TextBlock>("TitleBlock", TextRole::Title);
    pTitle->Text("This document is protected");
    pTitle->HorizontalAlignment(HorizontalAlignment::Left);
    auto pFileName = Make<TextBlock>("FileNameBlock");
    pFileName->VerticalAlignment(VerticalAlignment::Center);
    auto pHead = Make<StackPanel>("Head", eOrientation, kSpacing);
    pHead->AppendChild(pTitle);
    pHead->AppendChild(pFileName);
    return pHead;
}

std::shared_ptr<Grid> MakePanel(const char* szName, Orientation eHead, const Thickness& padding,
                                double dbSpacing) {
    auto pStack = Make<StackPanel>("Lines", Orientation::Vertical, dbSpacing);
    pStack->VerticalAlignment(VerticalAlignment::Center);
    pStack->AppendChild(MakeHead(eHead));
    pStack->AppendChild(MakeBox());
    pStack->AppendChild(MakeHints());
    pStack->AppendChild(MakeButtons());
    auto pPanel = Make<Grid>(szName);
    pPanel->Background(ThemeBrush::Surface);
    pPanel->Padding(padding);
    pPanel->AppendChild(pStack);
    return pPanel;
}

// Room around the lines where the dialog has it.
std::shared_ptr<VisualStateGroup> RoomOf(const std::shared_ptr<Grid>& pPanel,
                                         const std::shared_ptr<ControlSizeTrigger>& pLarge) {
    const auto fnPad = [wkPanel = std::weak_ptr(pPanel)](const Thickness& padding) {
        return [wkPanel, padding] {
            if (const auto pPadded = wkPanel.lock()) {
                pPadded->Padding(padding);
            }
        };
    };
    return VisualStateGroup::Create({{"Roomy", {pLarge}, fnPad(kRoomy), fnPad(kNarrow)}});
}

// The trigger finds its target when the dialog is loaded: the area that the dialog
// is shown in.
std::shared_ptr<ControlSizeTrigger> FollowAreaOf(const std::shared_ptr<Grid>& pRoot) {
    constexpr double kDotsPerInch = 96.0;
    const double dbUnit = DisplayInformation::LogicalDpi() / kDotsPerInch;
    auto pLarge = ControlSizeTrigger::Create();
    pLarge->MinHeight(kRoomyHeight * dbUnit);
    pLarge->MinWidth(kRoomyWidth * dbUnit);
    pRoot->Loaded.add([wkRoot = std::weak_ptr(pRoot), pLarge] {
        const auto pLoaded = wkRoot.lock();
        for (auto pAbove = pLoaded ? pLoaded->Parent() : nullptr; pAbove;
             pAbove = pAbove->Parent()) {
            if (pAbove->Name() == kDialogLayoutRootPart) {
                pLarge->TargetElement(pAbove);
                return;
            }
        }
    });
    return pLarge;
}

std::shared_ptr<Xaml::FrameworkElement> BuildPasswordDialog() {
    auto pRoot = Make<Grid>("PasswordRoot");
    auto pLandscape = MakePanel("LandscapePanel", Orientation::Horizontal, kLow, kTight);
    pLandscape->Visibility(Visibility::Collapsed);
    pRoot->AppendChild(pLandscape);
    auto pPortrait = MakePanel("PortraitPanel", Orientation::Vertical, kNarrow, kSpacing);
    pRoot->AppendChild(pPortrait);
    pRoot->AppendChild(MakeFocusHolder());
    pRoot->VisualStateGroups.push_back(RoomOf(pPortrait, FollowAreaOf(pRoot)));
    return pRoot;
}

void RegisterUnlessThere(const char* szKey, Xaml::Markup::Builder fnBuilder) {
    if (!Xaml::Markup::HasMarkup(szKey)) {
        Xaml::Markup::RegisterMarkup(szKey, std::move(fnBuilder));
    }
}

}

void RegisterDialogMarkup() {
    RegisterUnlessThere(kContentHostedDialogStyle, BuildHostedDialog);
    RegisterUnlessThere(kPasswordDialogPage, BuildPasswordDialog);
}

}
