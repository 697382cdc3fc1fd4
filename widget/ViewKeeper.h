// What the reader sees at the top left, to be brought back after the control
// has laid out anew.
//
// Threads: UI thread only. Units: positions on the screen in device pixels.
// Errors: failures of the control are raised.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "control/PDFViewCtrl.h"

namespace velko::vkit {

class ViewKeeper {
public:
    // Empty when no page is laid out.
    static std::optional<ViewKeeper> Remember(PDFViewCtrl& control);

    // Zooms to `dbZoom` and brings the remembered point back to its place, as
    // far as the document reaches.
    void Restore(PDFViewCtrl& control, double dbZoom) const;

    double Zoom() const { return m_dbZoom; }

private:
    ViewKeeper() = default;

    std::int32_t m_nPage = 0;
    Windows::Foundation::Point m_ptPage; // page space
    double m_dbScreenX = 0.0;
    double m_dbScreenY = 0.0;
    double m_dbZoom = 1.0;
    std::int32_t m_nRotate = 0;
};

}
