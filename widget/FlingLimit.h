// Where one page is shown at a time, a flick turns one page: the inertia of a pan
// ends when the page that the finger brought in has come to its place, and begins
// no turn by itself.
//
// Lifetime: goes before the window and the control that it works on.
// Threads: UI thread only.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/foundation/Event.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class PDFViewCtrl;

class FlingLimit {
public:
    FlingLimit(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window);
    ~FlingLimit();
    FlingLimit(const FlingLimit&) = delete;
    FlingLimit& operator=(const FlingLimit&) = delete;

private:
    void OnMoved(bool bInertial);
    void PutBack(const std::vector<std::int32_t>& pages);
    bool HasTurned() const;
    double ScreenWidth() const;

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
    Windows::Foundation::EventRegistrationToken m_token;
    std::vector<std::int32_t> m_pages; // on the screen when the finger moved last
};

}
