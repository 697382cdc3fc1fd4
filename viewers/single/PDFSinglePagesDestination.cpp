// Going to a destination of the document. The page comes up at scale 1.0; only
// the kinds that fit the box around its contents zoom.
#include "viewers/core/Destinations.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

namespace {

// The box is zeros until the page has been loaded once.
bool IsUnknown(const Windows::Foundation::Rect& rcBox) {
    return rcBox.Width == 0.0F || rcBox.Height == 0.0F;
}

}

void PDFSinglePagesViewer::OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                             const std::vector<float>& values) {
    if (!HasItems()) {
        return;
    }
    RefreshScreenSize();
    BeginDestination();
    ScaleForDestination(nZoomMode, values);
    const SingleViewerPageItem& first = *m_pPageItems->front();
    if (first.nPageIndex != nPageIndex || first.Scale() != 1.0) {
        ResetToPage(nPageIndex);
    }
    if (HasItems()) {
        ShowDestination(nZoomMode, values);
    }
    StoreShownScale();
}

// Whatever a destination asked for, the next step starts from what is shown.
void PDFSinglePagesViewer::StoreShownScale() {
    if (HasItems()) {
        SetScale(static_cast<float>(m_pPageItems->front()->Scale()));
    }
}

// The zoom of an explicit destination holds for a page that is shown at scale
// 1.0 already, and only for pages laid out later.
void PDFSinglePagesViewer::ScaleForDestination(std::int32_t nZoomMode,
                                               const std::vector<float>& values) {
    if (nZoomMode != kExplicit) {
        SetScale(1.0F);
        return;
    }
    const float fZoom = ValueAt(values, kRight);
    if (fZoom > 0.0F && fZoom != m_fScale) {
        SetScale(static_cast<float>(DestinationScale(fZoom)));
    }
}

void PDFSinglePagesViewer::ShowDestination(std::int32_t nZoomMode,
                                           const std::vector<float>& values) {
    if (nZoomMode == kExplicit) {
        ShowPoint({ValueAt(values, kLeft), ValueAt(values, kTop)}, true, true);
    } else if (nZoomMode == kFitWidth) {
        ShowPoint({0.0F, ValueAt(values, kLeft)}, false, true);
    } else if (nZoomMode == kFitHeight) {
        ShowPoint({ValueAt(values, kLeft), 0.0F}, true, false);
    } else if (nZoomMode >= kFitBox && nZoomMode <= kFitBoxHeight) {
        ShowPageBox(nZoomMode, nZoomMode == kFitBoxWidth ? ValueAt(values, kLeft) : 0.0F);
    }
}

void PDFSinglePagesViewer::ShowPoint(Point ptPage, bool bAcross, bool bDown) {
    const Point pt = PageToDevice(*m_pPageItems->front(), ptPage);
    ScrollPageItems(bDown ? FiniteOrZero(pt.Y) : 0.0, bAcross ? FiniteOrZero(pt.X) : 0.0, false,
                    true);
}

// --- the box around the page's contents ---

void PDFSinglePagesViewer::ShowPageBox(std::int32_t nZoomMode, float fTop) {
    WithPageBox(m_pPageItems->front(), IsUnknown,
                [this, nZoomMode, fTop](const SingleViewerPageItem& item, const Rect& rcBox) {
                    const Rect rcDevice = PageToDevice(item, rcBox);
                    if (nZoomMode == kFitBox) {
                        ZoomToPageBox(item, rcDevice);
                    } else if (nZoomMode == kFitBoxWidth) {
                        ZoomToPageBoxWidth(item, rcDevice, fTop);
                    } else {
                        ZoomToPageBoxHeight(item, rcBox, rcDevice);
                    }
                    StoreShownScale();
                });
}

// The zoom is a step of a gesture that ends here.
void PDFSinglePagesViewer::ZoomToPageBox(const SingleViewerPageItem& item, const Rect& rcDevice) {
    ZoomAtScreenCentre(AreaFactor(rcDevice, item.screenRect, LayoutScreen()));
    EndGesture();
}

void PDFSinglePagesViewer::ZoomToPageBoxWidth(const SingleViewerPageItem& item,
                                              const Rect& rcDevice, float fTop) {
    ZoomAtScreenCentre(SideFactor(rcDevice.Width, item.screenRect.nWidth, m_dbScreenWidth));
    if (HasItems()) {
        const Point pt = PageToDevice(*m_pPageItems->front(), Point{0.0F, fTop});
        ScrollPageItems(FiniteOrZero(pt.Y), 0.0, false, false);
    }
    EndGesture();
}

// The box's upper end comes to the top, by where it was its left end to the left.
void PDFSinglePagesViewer::ZoomToPageBoxHeight(const SingleViewerPageItem& item, const Rect& rcBox,
                                               const Rect& rcDevice) {
    const double dbFactor = SideFactor(rcDevice.Height, item.screenRect.nHeight, m_dbScreenHeight);
    const Point ptNear = PageToDevice(item, Point{rcBox.X, rcBox.Y});
    const PageItem pItem =
        InitPageItem({0.0, 0.0, DestinationScale(dbFactor), m_nRotate}, item.nPageIndex);
    Regrid(*pItem);
    ReplaceItems(pItem);
    const Point ptFar = PageToDevice(*pItem, Point{rcBox.X + rcBox.Width, rcBox.Y + rcBox.Height});
    ScrollPageItems(FiniteOrZero(ptFar.Y), FiniteOrZero(ptNear.X), false, true);
}

}
