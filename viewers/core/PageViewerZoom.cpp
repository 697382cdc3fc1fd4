// The steps of a zoom, as far as they are the same for every viewer of pages.
//
// During a gesture nothing is rendered: the blocks of the new layout take the
// bitmaps of the old scale, by page and block number. The end of the gesture
// keeps the last frame as a backdrop while the blocks are rendered.
#include <algorithm>
#include <cmath>

#include "platform/foundation/FirstFailure.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

void PageViewerBase::ShowZoomStep(bool bComplete) {
    m_bZoomOpen = true;
    StartRenders(true);
    if (bComplete) {
        CompleteGesture();
    } else {
        PaintCanvas();
    }
}

// A frame that fails must not keep the gesture from ending.
void PageViewerBase::CompleteGesture() {
    Platform::FirstFailure steps;
    steps.Run([&] { PaintCanvas(); });
    steps.Run([&] { EndGesture(); });
    steps.Rethrow();
}

void PageViewerBase::EndGesture() {
    m_bZoomOpen = false;
    if (HasItems()) {
        if (const auto pCanvas = m_pCanvas) {
            m_standIns.TakeSnapshot(*pCanvas);
        }
        StartVisibleRenders();
    }
    EmptyScaleCache();
}

double PageViewerBase::DestinationScale(double dbScale) {
    return std::clamp<double>(dbScale > 0.0 ? dbScale : GetScale(), m_dbLeastScale, GetMaxScale());
}

void PageViewerBase::ZoomAtScreenCentre(double dbScale) {
    const Point ptCentre = {static_cast<float>(m_dbScreenWidth * 0.5),
                            static_cast<float>(m_dbScreenHeight * 0.5)};
    const double dbWanted = std::isfinite(dbScale) ? dbScale : GetScale(); // of an empty area
    OnPageScaled(ptCentre, DestinationScale(dbWanted), false, false);
}

}
