// Zooming around a point: the page is made anew at the other scale, and moved so
// that the point under the centre stays where it is.
#include <algorithm>
#include <cmath>
#include <string>

#include "platform/system/Debug.h"
#include "viewers/core/LogText.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

namespace {

// A page may be shown larger than the viewer's limit, but not without end.
constexpr double kBeyondLimit = 4.0;

std::string PointText(Windows::Foundation::Point pt) {
    return std::string("[").append(NumberText(pt.X)) + "," + NumberText(pt.Y) + "]";
}

std::string PlaceText(const Render_ScreenOffsetInfo& rc) {
    return std::string(", ScreenRect: [").append(NumberText(rc.dbOffsetX)) + ", " +
           NumberText(rc.dbOffsetY) + ", " + NumberText(rc.nWidth) + ", " + NumberText(rc.nHeight) +
           "]";
}

}

struct PDFSinglePagesViewer::ZoomStep {
    Point ptCentre; // device pixels
    double dbScale; // of the page, not limited
    Point ptPage;   // what lies under the centre, page space
    Point ptNow;    // where that came to lie before the page was moved
    double dbOffsetX;
    double dbOffsetY;
};

// A scale that is none keeps the present one.
double PDFSinglePagesViewer::ItemScale(double dbScale) {
    const double dbWanted = std::isfinite(dbScale) && dbScale > 0.0 ? dbScale : GetScale();
    return std::clamp(dbWanted, double{kLeastScale}, GetMaxScale() * kBeyondLimit);
}

void PDFSinglePagesViewer::OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                                        bool isScrollComplete) {
    if (!m_pPageItems || !CanLayOut()) {
        return;
    }
    dbScale = ItemScale(dbScale);
    m_fScale = static_cast<float>(dbScale);
    if (!HasItems()) {
        return;
    }
    RefreshScreenSize();
    EndSnapshot(); // what it shows stands in for the page from here on
    KeepNearerItem();
    std::string strLog = "PDFSinglePagesViewer::ZoomTo -- dbScale: " + NumberText(dbScale) +
                         ", bIsInertial: " + FlagText(bIsInertial) +
                         ", isScrollComplete: " + FlagText(isScrollComplete) +
                         PlaceText(m_pPageItems->front()->screenRect);
    ZoomStep step = {ptCentre, dbScale, {}, {}, 0.0, 0.0};
    const PageItem pItem = Zoom(step);
    strLog += ", _pdfPt: " + PointText(step.ptPage) + ", pCentrePt: " + PointText(ptCentre) +
              ", devicePt: " + PointText(step.ptNow) + PlaceText(pItem->screenRect) +
              ", OffsetX: " + NumberText(step.dbOffsetX) +
              ", OffsetY: " + NumberText(step.dbOffsetY) + ", PageScaled End...\n";
    ShowZoomStep(isScrollComplete);
    Platform::Debug::OutputDebugString(strLog);
}

// Of two pages; the first of two that are equally near.
void PDFSinglePagesViewer::KeepNearerItem() {
    if (m_pPageItems->size() > 1) {
        const double dbFirst = std::abs(m_pPageItems->front()->screenRect.dbOffsetX);
        const double dbLast = std::abs(m_pPageItems->back()->screenRect.dbOffsetX);
        RemoveItem(dbFirst <= dbLast ? m_pPageItems->size() - 1 : 0);
    }
}

// Lays the page out anew at the step's scale; the viewer's own stays within its
// limit.
PageViewerBase::PageItem PDFSinglePagesViewer::Zoom(ZoomStep& step) {
    const PageItem pOld = m_pPageItems->front();
    FillScaleCache(*pOld);
    step.ptPage = DeviceToPage(*pOld, step.ptCentre);
    GetScale(); // lowers it to the limit
    const PageItem pItem = InitPageItem({0.0, 0.0, step.dbScale, m_nRotate}, pOld->nPageIndex);
    Regrid(*pItem);
    ReplaceItems(pItem);
    MoveUnderCentre(step);
    return pItem;
}

void PDFSinglePagesViewer::MoveUnderCentre(ZoomStep& step) {
    SingleViewerPageItem& item = *m_pPageItems->front();
    step.ptNow = PageToDevice(item, step.ptPage);
    step.dbOffsetX = FiniteOrZero(step.ptNow.X - step.ptCentre.X);
    step.dbOffsetY = FiniteOrZero(step.ptNow.Y - step.ptCentre.Y);
    if (IsMoveRefused(item, step.dbOffsetX, true)) {
        step.dbOffsetX = 0.0;
    }
    PageItems newList;
    OffsetPageItems(step.dbOffsetY, step.dbOffsetX, newList);
    AdoptItems(newList);
    item.screenRect.dbOffsetX = RecentredX(item);
    RegridItems();
}

}
