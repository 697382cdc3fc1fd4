// Requests to go back, from each kind of source that the device has.
//
// Threads: UI thread only.
#pragma once

#include <functional>

#include "platform/ui/Window.h"

namespace velko::vkit {

// Until the tokens are removed from the window's events; that of a kind that there is
// not stays as it is.
void HearBackRequests(Windows::UI::Xaml::Window& window,
                      const std::function<void(Windows::UI::Xaml::BackRequest&)>& fnHandler,
                      Windows::Foundation::EventRegistrationToken& tkPressed,
                      Windows::Foundation::EventRegistrationToken& tkRequested);

}
