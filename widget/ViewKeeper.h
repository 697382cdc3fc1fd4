// What the reader sees at one place of the screen, to be brought back after the
// control has laid out anew.
//
// Threads: UI thread only. Units: positions on the screen in device pixels.
// Errors: failures of the control are raised.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "control/PDFViewCtrl.h"

namespace velko::vkit {

// Scrolls, device pixels. Where one page is shown at a time it moves no further
// than its edges: a gap beside it would begin a turn that nobody ends. Raises
// what the control raises.
void ScrollAndSettle(PDFViewCtrl& control, double dbY, double dbX);

class ViewKeeper {
public:
    enum class Anchor { TopLeft, Middle };

    // Empty when no page is laid out.
    static std::optional<ViewKeeper> Remember(PDFViewCtrl& control,
                                              Anchor eAnchor = Anchor::TopLeft);

    // In a layout of text set anew a page point is a share of the page's height, and
    // there is no rotation.

    // Turns the pages as they were, zooms to `dbZoom` and brings the remembered
    // point back to its place, as far as the document reaches.
    void Restore(PDFViewCtrl& control, double dbZoom) const;

    // The same in the rotation that is in force.
    void RestoreTurned(PDFViewCtrl& control, double dbZoom) const;

    double Zoom() const { return m_dbZoom; }
    // The zoom that means the same in the layout that is shown now: text set anew
    // has a scale of its own.
    double ZoomIn(PDFViewCtrl& control) const;
    std::int32_t Page() const { return m_nPage; }
    // Whether both show the same page, turned alike, at points not farther apart than this;
    // whatever the zoom.
    bool IsNear(const ViewKeeper& other, double dbPoints) const;

    // True when both show the same point at the same place, zoom and rotation.
    friend bool operator==(const ViewKeeper&, const ViewKeeper&) = default;

private:
    ViewKeeper() = default;

    Anchor m_eAnchor = Anchor::TopLeft;
    std::int32_t m_nPage = 0;
    Windows::Foundation::Point m_ptPage; // page space
    double m_dbScreenX = 0.0;            // from the anchor's own place
    double m_dbScreenY = 0.0;
    double m_dbZoom = 1.0;
    std::int32_t m_nRotate = 0;
    bool m_bOfText = false; // set anew
};

}
