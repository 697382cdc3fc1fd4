#include "widget/SlowPages.h"

#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"
#include "widget/PageColors.h"

namespace velko::vkit {

namespace {

constexpr int kPatienceMs = 150; // what comes sooner needs no word

QColor Between(const QColor& one, const QColor& other) {
    return QColor((one.red() + other.red()) / 2, (one.green() + other.green()) / 2,
                  (one.blue() + other.blue()) / 2);
}

}

SlowPages::SlowPages(PDFViewCtrl& control, std::function<double()> fnPixelRatio)
    : m_control(control), m_fnPixelRatio(std::move(fnPixelRatio)) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(kPatienceMs);
    m_timer.callOnTimeout([this] { Look(); });
    m_token =
        m_control.RenderCanvasEvent.add([this](const auto&, const auto& pArgs) { Draw(*pArgs); });
}

SlowPages::~SlowPages() {
    m_control.RenderCanvasEvent.remove(m_token);
}

bool SlowPages::IsSlow(std::int32_t nPage) {
    const auto [it, bCame] = m_blank.try_emplace(nPage);
    if (bCame) {
        it->second.start();
        m_timer.start();
    }
    return it->second.hasExpired(kPatienceMs - 1);
}

void SlowPages::Draw(const RenderCanvasEventArgs& args) {
    const std::int32_t nPage = args.nPageIndex;
    if (m_control.HasInk(nPage) || m_control.PageFailureOf(nPage)) {
        m_blank.erase(nPage);
        return;
    }
    const auto place = m_control.GetPageScreenRect(nPage);
    if (!place || !IsSlow(nPage)) {
        return;
    }
    const QColor paper = ToQColor(m_control.PageBgColor());
    const QColor ink = ToQColor(m_control.PageFgColor());
    m_sign.Show(QStringLiteral("This page is being drawn…"), {paper, Between(paper, ink), false},
                m_fnPixelRatio());
    m_sign.Draw(*args.Canvas->GetDeviceContext(), *place);
}

// A frame says it of those that are still blank.
void SlowPages::Look() {
    const auto pages = m_control.GetVisiblePages();
    std::erase_if(m_blank, [&](const auto& item) {
        return std::find(pages.begin(), pages.end(), item.first) == pages.end();
    });
    if (!m_blank.empty()) {
        m_control.UpdateViewer();
    }
}

}
