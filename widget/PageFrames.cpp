#include "widget/PageFrames.h"

#include <algorithm>
#include <cmath>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"
#include "widget/PageColors.h"

namespace velko::vkit {

using Windows::Foundation::Rect;

namespace {

// At 3 to 1 and more from the paper, and seen from what is around it.
QColor LineAround(const QColor& paper) {
    constexpr int kOnLight = 140;
    constexpr int kOnDark = 120;
    const int nTone = paper.lightness() > 127 ? kOnLight : kOnDark;
    return QColor(nTone, nTone, nTone);
}

}

// Outside of the page, of which no pixel goes.
void PageFrames::Draw(const RenderCanvasEventArgs& args) {
    const auto place = Control().GetPageScreenRect(args.nPageIndex);
    if (!place) {
        return;
    }
    const double dbLine = std::max(1.0, std::round(PixelRatio()));
    const double dbLeft = std::round(place->dbOffsetX) - dbLine / 2.0;
    const double dbTop = std::round(place->dbOffsetY) - dbLine / 2.0;
    const float fScaleX = Control().CompositionScaleX();
    const float fScaleY = Control().CompositionScaleY();
    const Rect rc(static_cast<float>(dbLeft) / fScaleX, static_cast<float>(dbTop) / fScaleY,
                  static_cast<float>(place->nWidth + dbLine) / fScaleX,
                  static_cast<float>(place->nHeight + dbLine) / fScaleY);
    args.Canvas->DrawRectWidth(rc, LineAround(ToQColor(Control().PageBgColor())).rgb(),
                               static_cast<float>(dbLine));
}

}
