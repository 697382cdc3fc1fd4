#include "widget/PageFrames.h"

#include <algorithm>
#include <cmath>
#include <utility>

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

PageFrames::PageFrames(PDFViewCtrl& control, std::function<double()> fnPixelRatio)
    : m_control(control), m_fnPixelRatio(std::move(fnPixelRatio)) {
    m_token =
        m_control.RenderCanvasEvent.add([this](const auto&, const auto& pArgs) { Draw(*pArgs); });
}

PageFrames::~PageFrames() {
    m_control.RenderCanvasEvent.remove(m_token);
}

// Outside of the page, of which no pixel goes.
void PageFrames::Draw(const RenderCanvasEventArgs& args) {
    const auto place = m_control.GetPageScreenRect(args.nPageIndex);
    if (!place) {
        return;
    }
    const double dbLine = std::max(1.0, std::round(m_fnPixelRatio()));
    const double dbLeft = std::round(place->dbOffsetX) - dbLine / 2.0;
    const double dbTop = std::round(place->dbOffsetY) - dbLine / 2.0;
    const float fScaleX = m_control.CompositionScaleX();
    const float fScaleY = m_control.CompositionScaleY();
    const Rect rc(static_cast<float>(dbLeft) / fScaleX, static_cast<float>(dbTop) / fScaleY,
                  static_cast<float>(place->nWidth + dbLine) / fScaleX,
                  static_cast<float>(place->nHeight + dbLine) / fScaleY);
    args.Canvas->DrawRectWidth(rc, LineAround(ToQColor(m_control.PageBgColor())).rgb(),
                               static_cast<float>(dbLine));
}

}
