// Dialogs in a window without a toolkit: a panel in a window, on the manual platform.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "control/dialogs/ContentHostedDialog.h"
#include "control/dialogs/PasswordDialog.h"
#include "platform/fake/TestHost.h"
#include "platform/ui/Input.h"
#include "platform/ui/Window.h"

namespace velko::testing {

namespace Xaml = Windows::UI::Xaml;
using Windows::Foundation::Rect;
using Windows::Foundation::Size;
using Xaml::FrameworkElement;
using Xaml::Controls::Grid;

class DialogFixture : public ::testing::Test {
protected:
    void ShowWindow(const char* szFamily, Size size) {
        host.Environment().SetDeviceFamily(szFamily);
        pWindow = Xaml::Window::Create(pPage);
        Resize(size);
        pPage->RaiseLoaded();
    }
    void Resize(Size size) {
        pPage->Arrange(size);
        pWindow->TellSize();
    }
    template <class T = FrameworkElement>
    static std::shared_ptr<T> Find(FrameworkElement& above, const char* szName) {
        return std::dynamic_pointer_cast<T>(above.FindName(szName));
    }
    static Rect PlaceOf(const FrameworkElement& element) {
        const auto pt = element.PositionInWindow();
        return {pt.X, pt.Y, static_cast<float>(element.ActualWidth()),
                static_cast<float>(element.ActualHeight())};
    }

    Platform::Fake::TestHost host;
    std::shared_ptr<Grid> pPage = std::make_shared<Grid>();
    std::shared_ptr<Xaml::Window> pWindow;
};

}
