#include "widget/ViewHistory.h"

#include "widget/ViewZoom.h"

namespace velko::vkit {

void ViewHistory::Push(Places& places, PDFViewCtrl& control, const ViewZoom& zoom) {
    const auto view = ViewKeeper::Remember(control);
    if (!view) {
        return;
    }
    const Place place{*view, zoom.FitMode()};
    if (!places.empty() && places.back() == place) {
        return;
    }
    places.push_back(place);
    if (places.size() > kMostPlaces) {
        places.erase(places.begin());
    }
}

void ViewHistory::Leave(PDFViewCtrl& control, const ViewZoom& zoom) {
    Push(m_back, control, zoom);
    m_forward.clear();
}

// What a fit comes to is known on its page only.
void ViewHistory::Go(PDFViewCtrl& control, ViewZoom& zoom, Places& from, Places& to) {
    if (from.empty()) {
        return;
    }
    const Place place = from.back();
    from.pop_back();
    Push(to, control, zoom);
    const double dbZoom = place.view.ZoomIn(control);
    place.view.Restore(control, dbZoom);
    zoom.SetFitMode(place.nFit);
    if (const double dbFit = zoom.FitOr(dbZoom); !zoom.IsAt(dbFit)) {
        place.view.Restore(control, dbFit);
    }
    zoom.NoteFit();
}

void ViewHistory::Clear() {
    m_back.clear();
    m_forward.clear();
}

}
