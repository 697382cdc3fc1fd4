// Between points and rectangles of the canvas and those of pages. The viewer
// converts; here stand the answers without one.

#include <memory>
#include <optional>
#include <utility>

#include "control/PDFViewCtrl_p.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::Rect;

Rect RectOf(const std::shared_ptr<WrapperDeviceRect>& pResult) {
    return pResult ? pResult->rc : Rect::Empty();
}

}

bool PDFViewCtrl::HasViewer() {
    const auto pSelf = Enter();
    return m_pPageViewMgr && m_pPageViewMgr->Shows(OpenDocument());
}

std::optional<Render_PageScreenOffsetInfo> PDFViewCtrl::GetPageScreenRect(std::int32_t nPageIndex) {
    std::optional<Render_PageScreenOffsetInfo> place;
    WithViewer([&](IPDFViewer& viewer) {
        if (const auto pPlace = viewer.GetPageScreenOffset(nPageIndex)) {
            place = *pPlace;
        }
    });
    return place;
}

std::array<double, 6> PDFViewCtrl::GetDisplayMatrix(std::int32_t nPageIndex, std::int32_t) {
    return WithViewer(std::array<double, 6>{1.0, 0.0, 0.0, 1.0, 0.0, 0.0},
                      [&](IPDFViewer& viewer) { return viewer.GetDisplayMatrix(nPageIndex); });
}

std::shared_ptr<PDFPagePoint> PDFViewCtrl::DevicePointToPagePoint(Point pt) {
    auto pNone = std::make_shared<PDFPagePoint>();
    pNone->pt = pt;
    return WithViewer(std::move(pNone),
                      [&](IPDFViewer& viewer) { return viewer.DevicePointToPagePoint(pt); });
}

PDFViewCtrl::Point PDFViewCtrl::PagePointToDevicePoint(std::int32_t nPageIndex, Point pt) {
    return WithViewer(Point(), [&](IPDFViewer& viewer) {
        const auto pResult = viewer.PagePointToDevicePoint(nPageIndex, pt);
        return pResult ? pResult->pt : Point();
    });
}

Rect PDFViewCtrl::DeviceRectToPageRect(std::int32_t nPageIndex, const Rect& rc) {
    return WithViewer(Rect(), [&](IPDFViewer& viewer) {
        return RectOf(viewer.DeviceRectToPageRect(nPageIndex, rc));
    });
}

Rect PDFViewCtrl::PageRectToDeviceRect(std::int32_t nPageIndex, const Rect& rc) {
    return WithViewer(Rect(), [&](IPDFViewer& viewer) {
        return RectOf(viewer.PageRectToDeviceRect(nPageIndex, rc));
    });
}

Rect PDFViewCtrl::GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) {
    return WithViewer(
        Rect(), [&](IPDFViewer& viewer) { return viewer.GetPageRectAtPoint(pt, nPageIndex); });
}

}
