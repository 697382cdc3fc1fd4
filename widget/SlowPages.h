// Says on a page's place that it is being drawn, when nothing of it has come up for
// a while: a reader who sees blank paper cannot know whether it is the page.
//
// Lifetime: goes before the control that it works on.
// Threads: UI thread only. Errors: a failure of drawing fails the frame.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <map>

#include "platform/foundation/Event.h"
#include "widget/PageSign.h"

namespace velko::vkit {

class PDFViewCtrl;
class RenderCanvasEventArgs;

class SlowPages {
public:
    // The pixel ratio of the screen is asked for at each frame.
    SlowPages(PDFViewCtrl& control, std::function<double()> fnPixelRatio);
    ~SlowPages();
    SlowPages(const SlowPages&) = delete;
    SlowPages& operator=(const SlowPages&) = delete;

private:
    void Draw(const RenderCanvasEventArgs& args);
    bool IsSlow(std::int32_t nPage);
    void Look();

    PDFViewCtrl& m_control;
    const std::function<double()> m_fnPixelRatio;
    Windows::Foundation::EventRegistrationToken m_token;
    QTimer m_timer;
    std::map<std::int32_t, QElapsedTimer> m_blank; // pages in sight, since they came
    PageSign m_sign;
};

}
