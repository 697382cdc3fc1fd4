#include "widget/ViewHistory.h"

namespace velko::vkit {

void ViewHistory::Push(Places& places, const std::optional<ViewKeeper>& place) {
    if (!place || (!places.empty() && places.back() == *place)) {
        return;
    }
    places.push_back(*place);
    if (places.size() > kMostPlaces) {
        places.erase(places.begin());
    }
}

void ViewHistory::Leave(PDFViewCtrl& control) {
    Push(m_back, ViewKeeper::Remember(control));
    m_forward.clear();
}

void ViewHistory::Go(PDFViewCtrl& control, Places& from, Places& to) {
    if (from.empty()) {
        return;
    }
    const ViewKeeper place = from.back();
    from.pop_back();
    Push(to, ViewKeeper::Remember(control));
    place.Restore(control, place.Zoom());
}

void ViewHistory::Clear() {
    m_back.clear();
    m_forward.clear();
}

}
