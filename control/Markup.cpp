#include "control/Markup.h"

#include <memory>

#include "control/VelkoViewControl.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Markup.h"
#include "platform/ui/SwapChainPanel.h"

namespace velko::vkit {

namespace {

namespace Xaml = Windows::UI::Xaml;

std::shared_ptr<Xaml::FrameworkElement> BuildControl() {
    auto pLayout = std::make_shared<Xaml::Controls::Grid>();
    pLayout->Name(kLayoutPart);

    auto pViewControl = VelkoViewControl::Create();
    pViewControl->Name(kViewControlPart);
    pLayout->AppendChild(pViewControl);

    auto pAppBar = std::make_shared<Xaml::Controls::Grid>();
    pAppBar->Name(kAppBarPart);
    pAppBar->Visibility(Xaml::Visibility::Collapsed);
    pLayout->AppendChild(pAppBar);

    auto pRing = std::make_shared<Xaml::Controls::ProgressRing>();
    pRing->Name(kProgressRingPart);
    pRing->Visibility(Xaml::Visibility::Collapsed);
    pLayout->AppendChild(pRing);
    return pLayout;
}

std::shared_ptr<Xaml::FrameworkElement> BuildViewControlPage() {
    auto pPanel = std::make_shared<Xaml::Controls::SwapChainPanel>();
    pPanel->Name("ViewCtrl");
    return pPanel;
}

void RegisterUnlessThere(const char* szKey, Xaml::Markup::Builder fnBuilder) {
    if (!Xaml::Markup::HasMarkup(szKey)) {
        Xaml::Markup::RegisterMarkup(szKey, std::move(fnBuilder));
    }
}

}

void RegisterControlMarkup() {
    RegisterUnlessThere(kPDFViewCtrlStyle, BuildControl);
    RegisterUnlessThere(kVelkoViewControlPage, BuildViewControlPage);
}

}
