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
    : PageOverlay(control, std::move(fnPixelRatio), Over::PagesAndText) {
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout([this] { Look(); });
}

// A timer may come early, and was perhaps started for another page: the frame that it
// asks for starts it anew for what is left.
bool SlowPages::IsSlow(std::int32_t nPage) {
    const auto [it, bCame] = m_blank.try_emplace(nPage);
    if (bCame) {
        it->second.start();
    }
    const qint64 nLeftMs = kPatienceMs - it->second.elapsed();
    if (nLeftMs > 0 && !m_timer.isActive()) {
        m_timer.start(static_cast<int>(nLeftMs));
    }
    return nLeftMs <= 0;
}

void SlowPages::Draw(const RenderCanvasEventArgs& args) {
    const std::int32_t nPage = args.nPageIndex;
    if (Control().HasInk(nPage) || Control().PageFailureOf(nPage)) {
        m_blank.erase(nPage);
        return;
    }
    const auto place = Control().GetPageScreenRect(nPage);
    if (!place || !IsSlow(nPage)) {
        return;
    }
    const QColor paper = ToQColor(Control().PageBgColor());
    const QColor ink = ToQColor(Control().PageFgColor());
    m_sign.Show(QStringLiteral("This page is being drawn…"), {paper, Between(paper, ink), false},
                PixelRatio());
    m_sign.Draw(*args.Canvas->GetDeviceContext(), *place);
}

// A frame says it of those that are still blank.
void SlowPages::Look() {
    const auto pages = Control().GetVisiblePages();
    std::erase_if(m_blank, [&](const auto& item) {
        return std::find(pages.begin(), pages.end(), item.first) == pages.end();
    });
    if (!m_blank.empty()) {
        Control().UpdateViewer();
    }
}

}
