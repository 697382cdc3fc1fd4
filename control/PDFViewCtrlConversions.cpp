// Between points and rectangles of the canvas and those of pages. The viewer
// converts; here stand the answers without one.

#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "viewers/core/IPDFViewer.h"

namespace velko::vkit {

namespace {

using Windows::Foundation::Rect;

Rect RectOf(const std::shared_ptr<WrapperDeviceRect>& pResult) {
    return pResult ? pResult->rc : Rect::Empty();
}

}

bool PDFViewCtrl::HasViewer() {
    const auto pSelf = Enter();
    return Viewer() != nullptr;
}

std::optional<Render_PageScreenOffsetInfo> PDFViewCtrl::GetPageScreenRect(std::int32_t nPageIndex) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    const auto pPlace = pViewer ? pViewer->GetPageScreenOffset(nPageIndex) : nullptr;
    return pPlace ? std::optional(*pPlace) : std::nullopt;
}

std::array<double, 6> PDFViewCtrl::GetDisplayMatrix(std::int32_t nPageIndex, std::int32_t) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetDisplayMatrix(nPageIndex)
                   : std::array<double, 6>{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
}

std::shared_ptr<PDFPagePoint> PDFViewCtrl::DevicePointToPagePoint(Point pt) {
    const auto pSelf = Enter();
    if (const auto pManager = m_pPageViewMgr) {
        return pManager->DevicePointToPagePoint(pt);
    }
    auto pResult = std::make_shared<PDFPagePoint>();
    pResult->pt = pt;
    return pResult;
}

PDFViewCtrl::Point PDFViewCtrl::PagePointToDevicePoint(std::int32_t nPageIndex, Point pt) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    const auto pResult = pViewer ? pViewer->PagePointToDevicePoint(nPageIndex, pt) : nullptr;
    return pResult ? pResult->pt : Point();
}

Rect PDFViewCtrl::DeviceRectToPageRect(std::int32_t nPageIndex, const Rect& rc) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? RectOf(pViewer->DeviceRectToPageRect(nPageIndex, rc)) : Rect();
}

Rect PDFViewCtrl::PageRectToDeviceRect(std::int32_t nPageIndex, const Rect& rc) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? RectOf(pViewer->PageRectToDeviceRect(nPageIndex, rc)) : Rect();
}

Rect PDFViewCtrl::GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) {
    const auto pSelf = Enter();
    const auto pViewer = Viewer();
    return pViewer ? pViewer->GetPageRectAtPoint(pt, nPageIndex) : Rect();
}

}
