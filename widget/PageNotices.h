// What is wrong with a page, said on the page's place: that it cannot be read,
// is missing from the file, or was too much.
//
// Lifetime: goes before the control that it works on.
// Threads: UI thread only. Errors: a failure of drawing fails the frame.
#pragma once

#include <QString>
#include <functional>

#include "document/PageFailure.h"
#include "platform/foundation/Event.h"
#include "widget/PageSign.h"

namespace velko::vkit {

class PDFViewCtrl;
class RenderCanvasEventArgs;

// A sentence for the reader: what is wrong with the page, and what to do.
QString ReasonOf(const PageFailure& failure);

class PageNotices {
public:
    // The pixel ratio of the screen is asked for at each frame.
    PageNotices(PDFViewCtrl& control, std::function<double()> fnPixelRatio);
    ~PageNotices();
    PageNotices(const PageNotices&) = delete;
    PageNotices& operator=(const PageNotices&) = delete;

private:
    void Draw(const RenderCanvasEventArgs& args);

    PDFViewCtrl& m_control;
    const std::function<double()> m_fnPixelRatio;
    Windows::Foundation::EventRegistrationToken m_drawToken;
    Windows::Foundation::EventRegistrationToken m_changeToken;
    PageSign m_sign;
};

}
