// What the widget draws over the pages, page by page and within each frame.
//
// Lifetime: goes before the control that it works on.
// Threads: UI thread only. Errors: a failure of drawing fails the frame.
#pragma once

#include <functional>

#include "platform/foundation/Event.h"

namespace velko::vkit {

class PDFViewCtrl;
class RenderCanvasEventArgs;

class PageOverlay {
public:
    enum class Over { Pages, PagesAndText }; // text: of pages set anew

    // The pixel ratio of the screen is asked for at each frame.
    PageOverlay(PDFViewCtrl& control, std::function<double()> fnPixelRatio,
                Over eOver = Over::Pages);
    virtual ~PageOverlay();
    PageOverlay(const PageOverlay&) = delete;
    PageOverlay& operator=(const PageOverlay&) = delete;

protected:
    virtual void Draw(const RenderCanvasEventArgs& args) = 0;

    PDFViewCtrl& Control() const { return m_control; }
    double PixelRatio() const { return m_fnPixelRatio(); }

private:
    PDFViewCtrl& m_control;
    const std::function<double()> m_fnPixelRatio;
    Windows::Foundation::EventRegistrationToken m_pageToken;
    Windows::Foundation::EventRegistrationToken m_textToken; // of none over pages alone
};

}
