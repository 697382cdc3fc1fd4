#include "widget/ViewKeeper.h"

#include <algorithm>
#include <cmath>

#include "viewers/core/Modes.h"

namespace velko::vkit {

using Windows::Foundation::Point;

namespace {

using Place = std::optional<Render_PageScreenOffsetInfo>;

// Device pixels of the canvas.
struct ScreenPoint {
    double dbX = 0.0;
    double dbY = 0.0;
};

ScreenPoint AnchorPoint(PDFViewCtrl& control, ViewKeeper::Anchor eAnchor) {
    if (eAnchor == ViewKeeper::Anchor::TopLeft) {
        return {};
    }
    const auto size = control.GetCanvasSize();
    return {size.Width * control.CompositionScaleX() / 2.0,
            size.Height * control.CompositionScaleY() / 2.0};
}

// The first page that reaches below the anchor, else the last; empty when there
// is none.
Place PageBelow(PDFViewCtrl& control, double dbAnchorY, std::int32_t& nPage) {
    Place best;
    for (const std::int32_t nVisible : control.GetVisiblePages()) {
        const Place place = control.GetPageScreenRect(nVisible);
        if (!place) {
            continue;
        }
        nPage = nVisible;
        best = place;
        if (place->dbOffsetY + place->nHeight > dbAnchorY) {
            break;
        }
    }
    return best;
}

// The page that counts as the one being read, where it is laid out: the first one
// on the screen may be the one before, of which a hair's breadth is left.
Place CurrentPage(PDFViewCtrl& control, std::int32_t& nPage) {
    const std::int32_t nCurrent = control.GetCurrentPageIndex();
    const Place place = control.GetPageScreenRect(nCurrent);
    if (!place) {
        return PageBelow(control, 0.0, nPage);
    }
    nPage = nCurrent;
    return place;
}

bool ShowsSinglePage(PDFViewCtrl& control) {
    return control.GetPageLayoutMode() == LayoutMode::kSinglePage;
}

bool ShowsText(PDFViewCtrl& control) {
    return control.GetPageLayoutMode() == LayoutMode::kReflow;
}

// How far of a move to the right of `dbX` a page goes before it leaves an edge of
// the screen free.
double WithinEdges(const Render_PageScreenOffsetInfo& rc, double dbX, double dbScreen) {
    if (rc.nWidth <= dbScreen) {
        return 0.0;
    }
    return rc.dbOffsetX - std::clamp(rc.dbOffsetX - dbX, dbScreen - rc.nWidth, 0.0);
}

// The place on the page that is nearest to the anchor.
double Within(double dbAnchor, double dbEdge, double dbLength) {
    return std::clamp(dbAnchor, dbEdge, dbEdge + std::max(0.0, dbLength - 1.0));
}

}

void ScrollAndSettle(PDFViewCtrl& control, double dbY, double dbX) {
    if (!ShowsSinglePage(control)) {
        control.MoveScreen(dbY, dbX);
        return;
    }
    const double dbScreen = control.GetCanvasSize().Width * control.CompositionScaleX();
    const Place place = control.GetPageScreenRect(control.GetCurrentPageIndex());
    double dbLeft = place ? WithinEdges(*place, dbX, dbScreen) : 0.0;
    for (; std::abs(dbLeft) > dbScreen; dbLeft -= std::copysign(dbScreen, dbLeft)) {
        control.MoveScreen(0.0, std::copysign(dbScreen, dbLeft)); // the longest step there is
    }
    control.MoveScreen(dbY, dbLeft);
    control.AlignPageAfterScroll(0.0, 0.0);
}

std::optional<ViewKeeper> ViewKeeper::Remember(PDFViewCtrl& control, Anchor eAnchor) {
    const ScreenPoint anchor = AnchorPoint(control, eAnchor);
    ViewKeeper keeper;
    const Place place = eAnchor == Anchor::Middle ? PageBelow(control, anchor.dbY, keeper.m_nPage)
                                                  : CurrentPage(control, keeper.m_nPage);
    if (!place) {
        return std::nullopt;
    }
    const double dbX = Within(anchor.dbX, place->dbOffsetX, place->nWidth);
    const double dbY = Within(anchor.dbY, place->dbOffsetY, place->nHeight);
    const Point pt{static_cast<float>(dbX / control.CompositionScaleX()),
                   static_cast<float>(dbY / control.CompositionScaleY())};
    const auto pPoint = control.DevicePointToPagePoint(pt);
    if (!pPoint || pPoint->nPageIndex != keeper.m_nPage) {
        return std::nullopt;
    }
    keeper.m_eAnchor = eAnchor;
    keeper.m_ptPage = pPoint->pt;
    keeper.m_dbScreenX = dbX - anchor.dbX;
    keeper.m_dbScreenY = dbY - anchor.dbY;
    keeper.m_dbZoom = control.GetScale();
    keeper.m_nRotate = control.GetRotate();
    keeper.m_bOfText = ShowsText(control);
    return keeper;
}

bool ViewKeeper::IsNear(const ViewKeeper& other, double dbPoints) const {
    return m_nPage == other.m_nPage && m_nRotate == other.m_nRotate &&
           m_bOfText == other.m_bOfText && std::abs(m_ptPage.X - other.m_ptPage.X) <= dbPoints &&
           std::abs(m_ptPage.Y - other.m_ptPage.Y) <= dbPoints;
}

double ViewKeeper::ZoomIn(PDFViewCtrl& control) const {
    return m_bOfText == ShowsText(control) ? m_dbZoom : control.GetScale();
}

void ViewKeeper::Restore(PDFViewCtrl& control, double dbZoom) const {
    if (control.GetRotate() != m_nRotate && !m_bOfText && !ShowsText(control)) {
        control.RotateViewer(m_nRotate);
    }
    RestoreTurned(control, dbZoom);
}

void ViewKeeper::RestoreTurned(PDFViewCtrl& control, double dbZoom) const {
    const bool bSingle = ShowsSinglePage(control);
    if (bSingle && control.GetCurrentPageIndex() != m_nPage) {
        control.GotoPage(m_nPage);
    }
    const bool bText = ShowsText(control);
    if (!bText || static_cast<float>(dbZoom) != control.GetScale()) {
        control.ZoomAtPoint(Point{}, dbZoom, false, true);
    }
    if (bText) {
        control.GotoPage(m_nPage);
    } else if (!bSingle) {
        control.GotoExactlyPage(m_nPage, m_ptPage);
    }
    // The page is on the screen now; the rest is a plain scroll.
    const Point pt = control.PagePointToDevicePoint(m_nPage, m_ptPage);
    const ScreenPoint anchor = AnchorPoint(control, m_eAnchor);
    ScrollAndSettle(control, pt.Y * control.CompositionScaleY() - (anchor.dbY + m_dbScreenY),
                    pt.X * control.CompositionScaleX() - (anchor.dbX + m_dbScreenX));
}

}
