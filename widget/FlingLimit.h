// Where one page is shown at a time, a flick turns one page, however short it is:
// the inertia of a pan goes on until the page that it goes to has come to its
// place, and ends there. From within a page that is wider than the screen it begins
// no turn by itself.
//
// Units: device pixels. Lifetime: goes before the window and the control that it works on.
// Threads: UI thread only.
#pragma once

#include <cstdint>
#include <optional>
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
    // How far each of the two pages has to go to its place; 0 or less: it is there.
    struct Way {
        double dbToLater = 0.0;
        double dbToEarlier = 0.0;
    };

    void OnMoved(bool bInertial);
    void BeginTurn(const std::vector<std::int32_t>& pages);
    void PutBack(const std::vector<std::int32_t>& pages);
    void CarryOn();
    bool HasTurned() const;
    std::optional<Way> WayLeft() const; // empty while no page is turned
    double LeftEdge() const;            // of the first of the pages
    double ScreenWidth() const;

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
    Windows::Foundation::EventRegistrationToken m_token;
    std::vector<std::int32_t> m_pages; // on the screen when the finger moved last
    double m_dbLeft = 0.0;             // of the first of them, at the last step
    double m_dbPush = 0.0;             // of a flick, the least step in its direction
};

}
