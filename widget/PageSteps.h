// The steps of a reader's keys, and what they come to at the end of a page.
//
// Where one page is shown at a time, a step past the page's edge turns it. In a
// column whose pages fit the screen, a screen's step goes from the top of a page
// to the top of the next, so that each page is seen whole.
// Units: device pixels; directions 1 onward and -1 back.
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <cstdint>
#include <optional>

#include "viewers/core/Records.h"

namespace velko::vkit {

class PDFViewCtrl;

class PageSteps {
public:
    explicit PageSteps(PDFViewCtrl& control) : m_control(control) {}

    bool ShowsSinglePage() const;
    bool ShowsColumnOfPages() const; // as they are, not set anew

    // Where one page is shown at a time, and its edge on that side is in sight.
    bool IsAtEdge(int nDirection, bool bAcross) const;
    // A page on or back; back to the end of the page before, except across.
    void Turn(int nDirection, bool bAcross) const;

    void StepScreen(int nDirection) const;
    // Across a page that is no wider than the screen it is a page's step.
    void StepLine(int nDirection, bool bAcross, double dbLine) const;

private:
    using Place = std::optional<Render_PageScreenOffsetInfo>;

    Place CurrentPlace() const;
    double ScreenLength(bool bAcross) const;
    double LeftToGo(const Render_PageScreenOffsetInfo& place, int nDirection, bool bAcross) const;
    double ScreenStep(int nDirection) const;
    bool Fits(const Place& place, bool bAcross) const;
    std::int32_t PageToward(int nDirection) const;
    void StepPage(int nDirection) const;
    void ShowEnd(std::int32_t nPage) const;

    PDFViewCtrl& m_control;
};

}
