// The component's classes by name, its template and its end.

#include "component/Component.h"
#include "component/XamlMetaDataProvider.h"
#include "control/Markup.h"
#include "platform/ui/Markup.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

class ComponentTest : public ControlFixture {};

TEST_F(ComponentTest, ClassesAreMadeByTheirNames) {
    vkit::RegisterComponent();
    const auto pFactory =
        Platform::GetActivationFactory<vkit::IElementFactory>("velko.vkit.PDFViewCtrl");
    const auto pMade = std::dynamic_pointer_cast<vkit::PDFViewCtrl>(pFactory->ActivateInstance());
    ASSERT_NE(pMade, nullptr);
    EXPECT_EQ(pMade->GetPageCount(), 0);
    const auto pRecords = std::dynamic_pointer_cast<vkit::IRecordFactory>(
        vkit::DllGetActivationFactory("velko.vkit.VLK_Image"));
    ASSERT_TRUE(pRecords);
    EXPECT_TRUE(pRecords->ActivateInstance());
    EXPECT_THROW(vkit::DllGetActivationFactory("velko.vkit.Nothing"),
                 Platform::ClassNotRegisteredException);
    const vkit::XamlMetaDataProvider provider;
    EXPECT_EQ(provider.GetXamlType("velko.vkit.VelkoViewControl")->BaseTypeName,
              "Windows.UI.Xaml.Controls.UserControl");
    EXPECT_EQ(provider.GetXamlType("velko.vkit"), nullptr);
}

TEST_F(ComponentTest, MayUnloadOnceNoControlLives) {
    Show();
    Open();
    EXPECT_EQ(vkit::DllCanUnloadNow(), Platform::S_FALSE);
    pControl.reset();
    host.Drain();
    EXPECT_EQ(vkit::DllCanUnloadNow(), Platform::S_OK);
    EXPECT_EQ(pEngine->LiveDocs(), 0);
    EXPECT_EQ(pGraphics->LiveBitmaps(), 0);
}

TEST_F(ComponentTest, AStyleOfTheHostNeedsTheRightParts) {
    namespace Xaml = Windows::UI::Xaml;
    const auto fnRegister = [](std::shared_ptr<Xaml::FrameworkElement> pViewControl) {
        Xaml::Markup::RegisterMarkup(vkit::kPDFViewCtrlStyle, [pViewControl] {
            const auto pRoot = std::make_shared<Xaml::Controls::Grid>();
            pRoot->Name("Layout");
            if (pViewControl) {
                pViewControl->Name("ViewControl");
                pRoot->AppendChild(pViewControl);
            }
            return pRoot;
        });
    };
    fnRegister(std::make_shared<Xaml::Controls::Grid>());
    const auto pOther = vkit::PDFViewCtrl::Create();
    EXPECT_THROW(pOther->ApplyTemplate(), Platform::InvalidCastException);
    fnRegister(nullptr);
    EXPECT_THROW(pOther->ApplyTemplate(), Platform::NullReferenceException);
    fnRegister(vkit::VelkoViewControl::Create());
    EXPECT_NO_THROW(pOther->ApplyTemplate()); // ring and bar may be missing
    const auto opening = pOther->OpenPdfDocument(File(), "");
    EXPECT_TRUE(vkit::ControlParts(*pOther).IsProgressRingVisible());
    Run(opening);
    EXPECT_FALSE(vkit::ControlParts(*pOther).IsProgressRingVisible());
    Xaml::Markup::UnregisterMarkup(vkit::kPDFViewCtrlStyle);
}

}
}
