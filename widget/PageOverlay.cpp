#include "widget/PageOverlay.h"

#include <utility>

#include "control/PDFViewCtrl.h"

namespace velko::vkit {

PageOverlay::PageOverlay(PDFViewCtrl& control, std::function<double()> fnPixelRatio)
    : m_control(control), m_fnPixelRatio(std::move(fnPixelRatio)) {
    m_token =
        m_control.RenderCanvasEvent.add([this](const auto&, const auto& pArgs) { Draw(*pArgs); });
}

PageOverlay::~PageOverlay() {
    m_control.RenderCanvasEvent.remove(m_token);
}

}
