// A button that draws nothing: it takes the keys from a text box, so that the
// on-screen keyboard goes.
//
// Threads: UI thread only.
#pragma once

#include "platform/ui/Controls.h"

namespace velko::vkit {

class NonVisibilityButton final : public Windows::UI::Xaml::Controls::Button {
public:
    NonVisibilityButton() { IsTabStop(false); }
    bool IsDrawn() const override { return false; }
};

}
