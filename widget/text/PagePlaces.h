// Between places of the window and places of pages.
//
// Threads: UI thread only. Units: the window's are Qt's, a page's points of page space,
// the canvas's the control's logical ones.
#pragma once

#include <QPointF>
#include <QRectF>
#include <cstdint>
#include <optional>

#include "document/engine/AnnotEditor.h"
#include "platform/foundation/Geometry.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class PDFViewCtrl;

struct PagePoint {
    std::int32_t nPage = 0;
    velko::common::vxbase::PointF pt;
};

class PagePlaces {
public:
    PagePlaces(PDFViewCtrl& control, Platform::Qt::QtElementWindow& window)
        : m_control(control), m_window(window) {}

    // Of the page there; empty beside the pages.
    std::optional<PagePoint> At(QPointF ptWindow) const;
    // Of the page there, or else of the nearest one in sight; empty when none is.
    std::optional<PagePoint> Near(QPointF ptWindow) const;

    // The box around it in the window; empty for a page that is not laid out.
    std::optional<QRectF> InWindow(std::int32_t nPage,
                                   const velko::common::vxbase::RectF& rcPage) const;

    // A square of the page that is as large as so many of Qt's units on the window of a
    // page at 100 %, its top left at the point as the reader sees the page.
    velko::common::vxbase::RectF SquareAt(const PagePoint& point, float fSide) const;

private:
    Windows::Foundation::Point OnCanvas(QPointF ptWindow) const;

    PDFViewCtrl& m_control;
    Platform::Qt::QtElementWindow& m_window;
};

}
