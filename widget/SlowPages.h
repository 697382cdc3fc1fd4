// Says on a page's place that it is being drawn, when nothing of it has come up for
// a while: a reader who sees blank paper cannot know whether it is the page.
//
// Lifetime, threads, errors: as `PageOverlay`.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <map>

#include "widget/PageOverlay.h"
#include "widget/PageSign.h"

namespace velko::vkit {

class SlowPages final : public PageOverlay {
public:
    SlowPages(PDFViewCtrl& control, std::function<double()> fnPixelRatio);

protected:
    void Draw(const RenderCanvasEventArgs& args) override;

private:
    bool IsSlow(std::int32_t nPage);
    void Look();

    QTimer m_timer;
    std::map<std::int32_t, QElapsedTimer> m_blank; // pages in sight, since they came
    PageSign m_sign;
};

}
