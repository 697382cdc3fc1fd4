// The places that the reader has jumped from, to go back to and forth again.
//
// A place is a page point at the window's top left, with zoom, rotation, and the fit
// that was in force there.
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <optional>
#include <vector>

#include "widget/ViewKeeper.h"

namespace velko::vkit {

class ViewZoom;

class ViewHistory {
public:
    static constexpr std::size_t kMostPlaces = 100; // the oldest go

    // Before a jump: notes the present place, and forgets what lay ahead.
    void Leave(PDFViewCtrl& control, const ViewZoom& zoom);

    bool CanGoBack() const { return !m_back.empty(); }
    bool CanGoForward() const { return !m_forward.empty(); }
    // The zoom that the reader had at the place is brought back too; a fit as a fit,
    // also where the window has got another size meanwhile.
    void GoBack(PDFViewCtrl& control, ViewZoom& zoom) { Go(control, zoom, m_back, m_forward); }
    void GoForward(PDFViewCtrl& control, ViewZoom& zoom) { Go(control, zoom, m_forward, m_back); }

    void Clear();

private:
    struct Place {
        ViewKeeper view;
        std::int32_t nFit = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };
    using Places = std::vector<Place>;

    static void Push(Places& places, PDFViewCtrl& control, const ViewZoom& zoom);
    static void Go(PDFViewCtrl& control, ViewZoom& zoom, Places& from, Places& to);

    Places m_back; // the latest last
    Places m_forward;
};

}
