// What turns visual states on and off, by itself and in the dialogs' markup.
#include "control/triggers/ControlSizeTrigger.h"
#include "control/triggers/DeviceFamilyTrigger.h"
#include "platform/ui/VisualState.h"
#include "tests/control/DialogFixture.h"

namespace velko::testing {
namespace {

class TriggerTest : public DialogFixture {
protected:
    static std::string StateOf(FrameworkElement& above, const char* szPanel) {
        return Find<Grid>(above, szPanel)->VisualStateGroups.front()->CurrentState();
    }
};

TEST_F(TriggerTest, ASizeIsEnoughFromItsMinimumOn) {
    struct {
        double dbMinWidth;
        double dbMinHeight;
        Size size;
        bool bActive;
    } const cases[] = {
        {0, 0, {900, 900}, false},     {-1, 0, {900, 900}, false},  {100, 0, {100, 1}, true},
        {100, 0, {99.9F, 900}, false}, {0, 100, {1, 100}, true},    {0, 100, {900, 99}, false},
        {100, 50, {100, 50}, true},    {100, 50, {100, 49}, false}, {100, 50, {99, 50}, false},
    };
    for (const auto& test : cases) {
        const auto pElement = std::make_shared<Grid>();
        const auto pTrigger = vkit::ControlSizeTrigger::Create();
        pTrigger->TargetElement(pElement);
        pTrigger->MinWidth(test.dbMinWidth);
        pTrigger->MinHeight(test.dbMinHeight);
        pElement->Arrange(test.size);
        EXPECT_EQ(pTrigger->IsActive(), test.bActive)
            << test.dbMinWidth << " x " << test.dbMinHeight << " at " << test.size.Width;
        pElement->Arrange({0, 0});
        EXPECT_FALSE(pTrigger->IsActive());
    }
}

TEST_F(TriggerTest, AFamilyIsToldByItsWholeName) {
    vkit::DeviceFamilyTrigger trigger;
    trigger.DeviceFamily("Windows.Desktop");
    EXPECT_TRUE(trigger.IsActive());
    trigger.DeviceFamily("windows.desktop");
    EXPECT_FALSE(trigger.IsActive());
}

TEST_F(TriggerTest, TheDialogsMarkupFollowsFamilyAndSize) {
    const auto pHosted = vkit::ContentHostedDialog::Create();
    const auto pDialog = vkit::PasswordDialog::Create();
    pHosted->Content(pDialog);
    ShowWindow("Windows.Desktop", {1000, 800});
    pHosted->Open();
    EXPECT_EQ(StateOf(*pHosted, "LayoutRoot"), "Middle");
    EXPECT_EQ(StateOf(*pDialog, "PasswordRoot"), "Roomy");
    const auto& panel = *Find(*pDialog, "PortraitPanel");
    const double dbRoomy = panel.ActualWidth();
    const float fTop = panel.PositionInWindow().Y;
    EXPECT_FLOAT_EQ(fTop * 2 + static_cast<float>(panel.ActualHeight()), 800.0F);
    Resize({1000, 300});
    EXPECT_EQ(StateOf(*pDialog, "PasswordRoot"), "");
    EXPECT_LT(panel.ActualWidth(), dbRoomy);
    Resize({1000, 800});
    EXPECT_EQ(panel.ActualWidth(), dbRoomy) << "what a state changed is taken back";

    host.Environment().SetDeviceFamily("Windows.Mobile");
    const auto pOnPhone = vkit::ContentHostedDialog::Create();
    const auto pPhoneDialog = vkit::PasswordDialog::Create();
    pOnPhone->Content(pPhoneDialog);
    pOnPhone->Open();
    EXPECT_EQ(StateOf(*pOnPhone, "LayoutRoot"), "");
    EXPECT_EQ(Find(*pPhoneDialog, "LandscapePanel")->PositionInWindow().Y, 0.0F);
    Resize({400, 800}); // turned
    EXPECT_EQ(StateOf(*pPhoneDialog, "PasswordRoot"), "") << "a phone is not wide enough";
    Resize({500, 800});
    EXPECT_EQ(StateOf(*pPhoneDialog, "PasswordRoot"), "Roomy");
}

}
}
