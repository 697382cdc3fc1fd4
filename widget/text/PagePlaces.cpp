#include "widget/text/PagePlaces.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "control/PDFViewCtrl.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtElementWindow.h"

namespace velko::vkit {

using velko::common::vxbase::PointF;
using velko::common::vxbase::RectF;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;

namespace {

double DistanceTo(const Render_PageScreenOffsetInfo& place, double dbX, double dbY) {
    const double dbAcross =
        std::max({place.dbOffsetX - dbX, dbX - place.dbOffsetX - place.nWidth, 0.0});
    const double dbDown =
        std::max({place.dbOffsetY - dbY, dbY - place.dbOffsetY - place.nHeight, 0.0});
    return std::hypot(dbAcross, dbDown);
}

PointF OnPage(PDFViewCtrl& control, std::int32_t nPage, Point ptCanvas) {
    const Rect rc = control.DeviceRectToPageRect(nPage, Rect(ptCanvas.X, ptCanvas.Y, 0.0F, 0.0F));
    return {rc.X, rc.Y};
}

}

Point PagePlaces::OnCanvas(QPointF ptWindow) const {
    const QPointF pt = ptWindow * m_window.devicePixelRatioF();
    return {static_cast<float>(pt.x() / m_control.CompositionScaleX()),
            static_cast<float>(pt.y() / m_control.CompositionScaleY())};
}

std::optional<PagePoint> PagePlaces::At(QPointF ptWindow) const {
    const Point pt = OnCanvas(ptWindow);
    const std::int32_t nPage = m_control.GetPageIndexAtPoint(pt);
    if (nPage < 0 || !m_control.GetPageScreenRect(nPage)) {
        return std::nullopt;
    }
    return PagePoint{nPage, OnPage(m_control, nPage, pt)};
}

std::optional<PagePoint> PagePlaces::Near(QPointF ptWindow) const {
    const QPointF ptDevice = ptWindow * m_window.devicePixelRatioF();
    std::optional<std::int32_t> nearest;
    double dbNearest = std::numeric_limits<double>::max();
    for (const std::int32_t nPage : m_control.GetVisiblePages()) {
        const auto place = m_control.GetPageScreenRect(nPage);
        const double db = place ? DistanceTo(*place, ptDevice.x(), ptDevice.y()) : dbNearest;
        if (db < dbNearest) {
            dbNearest = db;
            nearest = nPage;
        }
    }
    if (!nearest) {
        return std::nullopt;
    }
    return PagePoint{*nearest, OnPage(m_control, *nearest, OnCanvas(ptWindow))};
}

std::optional<QRectF> PagePlaces::InWindow(std::int32_t nPage, const RectF& rcPage) const {
    const Rect rc(std::min(rcPage.Left, rcPage.Right), std::min(rcPage.Bottom, rcPage.Top),
                  std::abs(rcPage.Right - rcPage.Left), std::abs(rcPage.Top - rcPage.Bottom));
    try {
        if (m_control.GetPageScreenRect(nPage)) {
            const Rect on = m_control.PageRectToDeviceRect(nPage, rc);
            const double dbX = m_control.CompositionScaleX() / m_window.devicePixelRatioF();
            const double dbY = m_control.CompositionScaleY() / m_window.devicePixelRatioF();
            return QRectF(on.X * dbX, on.Y * dbY, on.Width * dbX, on.Height * dbY);
        }
    } catch (const Platform::Exception&) {
        // A page that cannot be brought back says so itself.
    }
    return std::nullopt;
}

// The page may be turned: what lies to the right and below is asked of the window.
RectF PagePlaces::SquareAt(const PagePoint& point, float fSide) const {
    const Point pt = m_control.PagePointToDevicePoint(point.nPage, {point.pt.X, point.pt.Y});
    const float fOnCanvas = 8.0F; // far enough for a direction
    const PointF far = OnPage(m_control, point.nPage, {pt.X + fOnCanvas, pt.Y + fOnCanvas});
    const float fX = far.X >= point.pt.X ? fSide : -fSide;
    const float fY = far.Y >= point.pt.Y ? fSide : -fSide;
    return {std::min(point.pt.X, point.pt.X + fX), std::min(point.pt.Y, point.pt.Y + fY),
            std::max(point.pt.X, point.pt.X + fX), std::max(point.pt.Y, point.pt.Y + fY)};
}

}
