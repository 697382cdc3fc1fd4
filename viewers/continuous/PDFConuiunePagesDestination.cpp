// Going to a destination of the document.
#include <algorithm>
#include <cmath>
#include <utility>

#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/core/Destinations.h"

namespace velko::vkit {

namespace {

// The box is zeros until the page has been loaded once; a box at the origin
// looks the same and is loaded again.
bool IsUnknown(const Windows::Foundation::Rect& rcBox) {
    return rcBox.X == 0.0F || rcBox.Y == 0.0F;
}

}

void PDFConuiunePagesViewer::OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                               const std::vector<float>& values) {
    RefreshScreenSize();
    BeginDestination();
    ScaleForDestination(nPageIndex, nZoomMode, values);
    GotoPageTop(nPageIndex);
    if (const PageItem pItem = FindItem(nPageIndex)) {
        ShowDestination(pItem, nZoomMode, values);
    }
}

void PDFConuiunePagesViewer::ScaleForDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                                 const std::vector<float>& values) {
    if (nZoomMode == kExplicit) {
        const float fZoom = ValueAt(values, kRight);
        if (fZoom > 0.0F && fZoom != m_fScale) {
            SetScale(static_cast<float>(DestinationScale(fZoom)));
        }
        return;
    }
    double dbScale = 1.0;
    if (nZoomMode == kFitWidth) {
        const PageItem pPage = MakeItem(nPageIndex, {0.0, 0.0, 1.0, m_nRotate});
        const float fWidth = pPage->GetPageDisplaySize().fWidth;
        dbScale = fWidth > 0.0F ? m_dbScreenWidth / fWidth : 1.0;
    }
    SetScale(static_cast<float>(DestinationScale(dbScale)));
}

void PDFConuiunePagesViewer::ShowDestination(PageItem pItem, std::int32_t nZoomMode,
                                             const std::vector<float>& values) {
    const std::int32_t nPage = pItem->nPageIndex;
    if (nZoomMode == kExplicit) {
        const Point pt = PlaceOf(*pItem, {ValueAt(values, kLeft), ValueAt(values, kTop)});
        MoveLayout(nPage, pt.Y, pt.X, GetScale(), m_nRotate);
    } else if (nZoomMode == kFitHeight) {
        const Point pt = PlaceOf(*pItem, {ValueAt(values, kLeft), 0.0F});
        MoveLayout(nPage, 0.0, pt.X, GetScale(), m_nRotate);
    } else if (nZoomMode == kFitRectangle) {
        ShowRectangle(std::move(pItem), values);
    } else if (nZoomMode >= kFitBox && nZoomMode <= kFitBoxHeight) {
        const float fTop = nZoomMode == kFitBoxWidth ? ValueAt(values, kLeft) : 0.0F;
        ShowPageBox(std::move(pItem), nZoomMode, fTop);
    }
}

PDFConuiunePagesViewer::Point PDFConuiunePagesViewer::PlaceOf(const ContinueViewerPageItem& item,
                                                              Point ptPage) const {
    return OnOrNear(item, PageToDevice(item, ptPage));
}

// A place on the screen, brought back to where a step from the page may go: a
// file may name any place, and the way to one far off leads over other pages.
PDFConuiunePagesViewer::Point PDFConuiunePagesViewer::OnOrNear(const ContinueViewerPageItem& item,
                                                               Point pt) const {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    const double dbAbove = std::max(0.0, m_dbScreenHeight - PageGap());
    return {static_cast<float>(std::clamp(FiniteOrZero(pt.X), rc.dbOffsetX - m_dbScreenWidth,
                                          rc.dbOffsetX + rc.nWidth)),
            static_cast<float>(
                std::clamp(FiniteOrZero(pt.Y), rc.dbOffsetY - dbAbove, rc.dbOffsetY + rc.nHeight))};
}

void PDFConuiunePagesViewer::ShowRectangle(PageItem pItem, const std::vector<float>& values) {
    const float fLeft = std::min(ValueAt(values, kLeft), ValueAt(values, kRight));
    const float fBottom = std::min(ValueAt(values, kTop), ValueAt(values, kBottom));
    const Rect rcPage(fLeft, fBottom, std::abs(values[kRight] - values[kLeft]),
                      std::abs(values[kBottom] - values[kTop]));
    pItem = CenterPageItem(std::move(pItem));
    pItem = LayOutAtScale(pItem->nPageIndex, AreaFactor(PageToDevice(*pItem, rcPage),
                                                        pItem->screenRect, LayoutScreen()));
    if (!pItem) {
        return;
    }
    const Rect rcDevice = PageToDevice(*pItem, rcPage);
    const Point pt = OnOrNear(*pItem, {rcDevice.X, rcDevice.Y});
    ShowMoved(MakeTask(pt.Y, pt.X));
}

// --- the page's box ---

void PDFConuiunePagesViewer::ShowPageBox(PageItem pItem, std::int32_t nZoomMode, float fTop) {
    WithPageBox(CenterPageItem(std::move(pItem)), IsUnknown,
                [this, nZoomMode, fTop](const ContinueViewerPageItem& item, const Rect& rcBox) {
                    ShowBox(item, rcBox, nZoomMode, fTop);
                });
}

void PDFConuiunePagesViewer::ShowBox(const ContinueViewerPageItem& item, const Rect& rcBox,
                                     std::int32_t nZoomMode, float fTop) {
    const Rect rcDevice = PageToDevice(item, rcBox);
    if (nZoomMode == kFitBox) {
        ShowWholeBox(item, rcDevice);
    } else if (nZoomMode == kFitBoxWidth) {
        ShowBoxWidth(item, rcDevice, fTop);
    } else {
        ShowBoxHeight(item, rcBox, rcDevice);
    }
}

// The zoom is a step of a gesture that ends here, with the page in its place.
void PDFConuiunePagesViewer::ShowWholeBox(const ContinueViewerPageItem& item,
                                          const Rect& rcDevice) {
    const std::int32_t nPage = item.nPageIndex;
    ZoomAtScreenCentre(AreaFactor(rcDevice, item.screenRect, LayoutScreen()));
    const PageItem pItem = FindItem(nPage);
    if (pItem && pItem->screenRect.dbOffsetY > PageGap()) {
        OnMoveScreen(pItem->screenRect.dbOffsetY, 0.0);
    }
    EndGesture();
}

void PDFConuiunePagesViewer::ShowBoxWidth(const ContinueViewerPageItem& item, const Rect& rcDevice,
                                          float fTop) {
    const std::int32_t nPage = item.nPageIndex;
    ZoomAtScreenCentre(SideFactor(rcDevice.Width, item.screenRect.nWidth, m_dbScreenWidth));
    if (const PageItem pItem = FindItem(nPage)) {
        const Point pt = PlaceOf(*pItem, {0.0F, fTop});
        MoveLayout(nPage, pt.Y, 0.0, GetScale(), m_nRotate);
    }
    EndGesture();
}

// The box's upper end comes to the top, its left end to the left.
void PDFConuiunePagesViewer::ShowBoxHeight(const ContinueViewerPageItem& item, const Rect& rcBox,
                                           const Rect& rcDevice) {
    const double dbFactor = SideFactor(rcDevice.Height, item.screenRect.nHeight, m_dbScreenHeight);
    const PageItem pItem = LayOutAtScale(item.nPageIndex, dbFactor);
    if (!pItem) {
        return;
    }
    const Point ptNear = PlaceOf(*pItem, {rcBox.X, rcBox.Y});
    const Point ptFar = PlaceOf(*pItem, {rcBox.X + rcBox.Width, rcBox.Y + rcBox.Height});
    ShowMoved(MakeTask(ptFar.Y, ptNear.X));
}

// --- steps ---

// Lays the page out anew without showing it; empty when it has no size.
PageViewerBase::PageItem PDFConuiunePagesViewer::LayOutAtScale(std::int32_t nPageIndex,
                                                               double dbScale) {
    SetScale(static_cast<float>(DestinationScale(dbScale)));
    PDFRenderTask task = MakeTask(m_dbScreenHeight, 0.0);
    ClampTaskOffset(*m_pPageItems, task);
    DropItems();
    m_nCurPageIndex = nPageIndex;
    task.dbOffsetY = m_dbScreenHeight; // nothing is left that could limit it
    LayOut(task);
    return FindItem(nPageIndex);
}

// Shows what `LayOutAtScale` laid out, also where nothing is left to move.
void PDFConuiunePagesViewer::ShowMoved(PDFRenderTask task) {
    if (ClampTaskOffset(*m_pPageItems, task)) {
        LayOut(task);
    }
    PinEnds();
    StartRenders(false);
    PaintCanvas();
}

PageViewerBase::PageItem PDFConuiunePagesViewer::CenterPageItem(PageItem pItem) {
    const Render_ScreenOffsetInfo& rc = pItem->screenRect;
    if (rc.dbOffsetY != 0.0 || rc.nHeight >= m_dbScreenHeight) {
        return pItem;
    }
    const std::int32_t nPage = pItem->nPageIndex;
    MoveLayout(nPage, -((m_dbScreenHeight - rc.nHeight) * 0.5), 0.0, GetScale(), m_nRotate);
    const PageItem pMoved = FindItem(nPage);
    return pMoved ? pMoved : pItem;
}

}
