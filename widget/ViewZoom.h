// The zoom of a view: its limits, the place that it keeps, and the fit that it
// follows.
//
// A fit stays in force until something else than its own steps zooms. It follows
// the view's size, and the pages: one page at a time is fitted as it comes; in a
// column the width is the one of the widest page that is known by now, so that no
// page on the way is wider than the window, and a whole page the one that a command
// goes to. A whole page is fitted by both of its
// sides, also a turned one. Over text set anew the zoom is its scale, and a fit waits
// until pages are shown again.
// Units: 1.0 is 100 %. Fits are the zoom modes of viewers/core/Modes.h.
// Threads: UI thread only. Errors: failures of the control are raised. All but
// `FitMode`, `SetFitMode` and the limits need a document.
#pragma once

#include <cstdint>

#include "platform/foundation/Geometry.h"

namespace velko::vkit {

class PDFViewCtrl;
class PageSteps;

class ViewZoom {
public:
    ViewZoom(PDFViewCtrl& control, const PageSteps& steps) : m_control(control), m_steps(steps) {}

    std::int32_t FitMode() const { return m_nFit; }
    void SetFitMode(std::int32_t nFit) { m_nFit = nFit; } // nothing is zoomed yet
    bool HasFit() const;                                  // and follows it

    // Less than the control's limit, which is one for gestures: a whole page may
    // need less in a small window, and so does an overview.
    double Least() const;
    double Most() const;
    double Limited(double dbZoom) const;

    // Within the limits. The view's top line stays while the page's top is in
    // sight, so that a title is not thrown out of it; else the middle.
    void ZoomTo(double dbZoom);
    // To the fit in force.
    void ZoomToFit();
    // The next step that is worth seeing, at the end of the steps the last one.
    double StepIn() const;
    double StepOut() const;
    bool IsAt(double dbZoom) const;

    // What the fit in force asks for; without one the other.
    double FitOr(double dbZoom) const;

    // After a step of the fit's own: the scale that stands now is the fit's.
    void NoteFit();
    // Ends a fit when something else has zoomed. A page that was turned to may have
    // come at another scale; true then.
    bool NoteFitLeft();
    void FollowFit(bool bTurned);
    // After a command that went to a page: in a column it decides what fits whole.
    void FollowPage();

private:
    bool ZoomsText() const;
    void Zoom(double dbZoom);
    double Fitted() const;
    double WidthOfAll(double dbWidth) const;
    Windows::Foundation::Point Centre() const; // device pixels

    PDFViewCtrl& m_control;
    const PageSteps& m_steps;
    std::int32_t m_nFit = 0;
    std::int32_t m_nPage = 0; // that was fitted
    float m_fScale = 0.0F;    // to which the fit has led
    double m_dbAim = 0.0;     // that it asked for then; limits may have led elsewhere
};

}
