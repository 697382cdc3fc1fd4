// The places that the reader has jumped from, to go back to and forth again.
//
// A place is a page point at the window's top left, with zoom and rotation.
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <optional>
#include <vector>

#include "widget/ViewKeeper.h"

namespace velko::vkit {

class ViewHistory {
public:
    static constexpr std::size_t kMostPlaces = 100; // the oldest go

    // Before a jump: notes the present place, and forgets what lay ahead.
    void Leave(PDFViewCtrl& control);

    bool CanGoBack() const { return !m_back.empty(); }
    bool CanGoForward() const { return !m_forward.empty(); }
    // The zoom that the reader had at the place is brought back too.
    void GoBack(PDFViewCtrl& control) { Go(control, m_back, m_forward); }
    void GoForward(PDFViewCtrl& control) { Go(control, m_forward, m_back); }

    void Clear();

private:
    using Places = std::vector<ViewKeeper>;

    static void Push(Places& places, const std::optional<ViewKeeper>& place);
    static void Go(PDFViewCtrl& control, Places& from, Places& to);

    Places m_back; // the latest last
    Places m_forward;
};

}
