#include "widget/PageOverlay.h"

#include <utility>

#include "control/PDFViewCtrl.h"

namespace velko::vkit {

PageOverlay::PageOverlay(PDFViewCtrl& control, std::function<double()> fnPixelRatio, Over eOver)
    : m_control(control), m_fnPixelRatio(std::move(fnPixelRatio)) {
    const auto fnDraw = [this](const auto&, const auto& pArgs) { Draw(*pArgs); };
    m_pageToken = m_control.RenderCanvasEvent.add(fnDraw);
    if (eOver == Over::PagesAndText) {
        m_textToken = m_control.ReflowCanvasEvent.add(fnDraw);
    }
}

PageOverlay::~PageOverlay() {
    m_control.RenderCanvasEvent.remove(m_pageToken);
    m_control.ReflowCanvasEvent.remove(m_textToken);
}

}
