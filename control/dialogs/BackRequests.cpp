#include "control/dialogs/BackRequests.h"

#include "platform/system/Environment.h"

namespace velko::vkit {

using Windows::Foundation::EventRegistrationToken;
using Windows::Foundation::Metadata::ApiInformation;

void HearBackRequests(Windows::UI::Xaml::Window& window,
                      const std::function<void(Windows::UI::Xaml::BackRequest&)>& fnHandler,
                      EventRegistrationToken& tkPressed, EventRegistrationToken& tkRequested) {
    if (ApiInformation::IsTypePresent("Windows.Phone.UI.Input.HardwareButtons")) {
        tkPressed = window.BackPressed.add(fnHandler);
    }
    if (ApiInformation::IsTypePresent("Windows.UI.Core.SystemNavigationManager")) {
        tkRequested = window.BackRequested.add(fnHandler);
    }
}

}
