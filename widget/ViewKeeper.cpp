#include "widget/ViewKeeper.h"

#include <algorithm>

#include "control/PDFViewerManager.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

std::shared_ptr<IPDFViewer> ViewerOf(PDFViewCtrl& control) {
    const auto pManager = control.PageViewMgr();
    return pManager ? pManager->GetViewer() : nullptr;
}

// The first page that has a part on the screen; empty when there is none.
std::shared_ptr<Render_PageScreenOffsetInfo> TopPage(IPDFViewer& viewer, std::int32_t& nPage) {
    for (const std::int32_t nVisible : viewer.GetVisiblePages()) {
        const auto pPlace = viewer.GetPageScreenOffset(nVisible);
        if (pPlace && pPlace->dbOffsetY + pPlace->nHeight > 0.0) {
            nPage = nVisible;
            return pPlace;
        }
    }
    return nullptr;
}

}

std::optional<ViewKeeper> ViewKeeper::Remember(PDFViewCtrl& control) {
    const auto pViewer = ViewerOf(control);
    ViewKeeper keeper;
    const auto pPlace = pViewer ? TopPage(*pViewer, keeper.m_nPage) : nullptr;
    if (!pPlace) {
        return std::nullopt;
    }
    // The top left of what the screen shows of the page.
    keeper.m_dbScreenX = std::max(0.0, pPlace->dbOffsetX);
    keeper.m_dbScreenY = std::max(0.0, pPlace->dbOffsetY);
    const Point pt{static_cast<float>(keeper.m_dbScreenX / control.CompositionScaleX()),
                   static_cast<float>(keeper.m_dbScreenY / control.CompositionScaleY())};
    const auto pPoint = pViewer->DevicePointToPagePoint(pt);
    if (!pPoint || pPoint->nPageIndex != keeper.m_nPage) {
        return std::nullopt;
    }
    keeper.m_ptPage = pPoint->pt;
    keeper.m_dbZoom = control.GetScale();
    keeper.m_nRotate = control.GetRotate();
    return keeper;
}

void ViewKeeper::Restore(PDFViewCtrl& control, double dbZoom) const {
    if (control.GetRotate() != m_nRotate) {
        control.RotateViewer(m_nRotate);
    }
    control.ZoomAtPoint(Point{}, dbZoom, false, true);
    control.GotoExactlyPage(m_nPage, m_ptPage);
    // The point is somewhere on the screen now; the rest is a plain scroll.
    const Point pt = control.PagePointToDevicePoint(m_nPage, m_ptPage);
    control.MoveScreen(pt.Y * control.CompositionScaleY() - m_dbScreenY,
                       pt.X * control.CompositionScaleX() - m_dbScreenX);
}

}
