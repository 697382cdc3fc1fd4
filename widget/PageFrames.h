// A thin line around each page, so that a reader sees where it ends: white paper on
// a light grey does not show it.
//
// Lifetime: goes before the control that it works on.
// Threads: UI thread only. Errors: a failure of drawing fails the frame.
#pragma once

#include <functional>

#include "platform/foundation/Event.h"

namespace velko::vkit {

class PDFViewCtrl;
class RenderCanvasEventArgs;

class PageFrames {
public:
    // The pixel ratio of the screen is asked for at each frame.
    PageFrames(PDFViewCtrl& control, std::function<double()> fnPixelRatio);
    ~PageFrames();
    PageFrames(const PageFrames&) = delete;
    PageFrames& operator=(const PageFrames&) = delete;

private:
    void Draw(const RenderCanvasEventArgs& args);

    PDFViewCtrl& m_control;
    const std::function<double()> m_fnPixelRatio;
    Windows::Foundation::EventRegistrationToken m_token;
};

}
