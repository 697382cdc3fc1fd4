// Going to a destination of the document.
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/continuous/PageGap_p.h"

namespace velko::vkit {

namespace {

enum ZoomMode : std::int32_t {
    kExplicit = 1,
    kFitWidth = 3,
    kFitHeight = 4,
    kFitRectangle = 5,
    kFitBox = 6,
    kFitBoxWidth = 7,
    kFitBoxHeight = 8,
};

constexpr std::size_t kLeft = 0;
constexpr std::size_t kTop = 1;
constexpr std::size_t kRight = 2; // the zoom, for an explicit destination
constexpr std::size_t kBottom = 3;

float ValueAt(const std::vector<float>& values, std::size_t nIndex) {
    if (nIndex >= values.size()) {
        throw Platform::OutOfBoundsException("a destination with too few values");
    }
    return values[nIndex];
}

// How much larger a page is to be shown for one side of an area to fit.
double SideFactor(double dbArea, double dbPage, double dbScreen) {
    return dbArea >= dbPage ? dbArea / dbScreen : dbScreen / dbArea;
}

}

void PDFConuiunePagesViewer::GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                             const std::vector<float>& values) {
    ThrowIfDisposed();
    if (PutOff([=](PageViewerBase& viewer) {
            viewer.GotoDestination(nPageIndex, nZoomMode, values);
        })) {
        return;
    }
    m_ctsDestination.Renew();
    if (!CanLayOut() || nPageIndex < 0 || nPageIndex >= PageCount()) {
        return;
    }
    const auto pSelf = shared_from_this();
    RefreshScreenSize();
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
            SetScale(fZoom);
        }
        return;
    }
    double dbScale = 1.0;
    if (nZoomMode == kFitWidth) {
        const PageItem pPage = MakeItem(nPageIndex, {0.0, 0.0, 1.0, m_nRotate});
        const float fWidth = pPage->GetPageDisplaySize().fWidth;
        dbScale = fWidth > 0.0F ? m_dbScreenWidth / fWidth : 1.0;
    }
    const auto fScale = static_cast<float>(dbScale);
    if (fScale != m_fScale) {
        SetScale(fScale);
    }
}

void PDFConuiunePagesViewer::ShowDestination(PageItem pItem, std::int32_t nZoomMode,
                                             const std::vector<float>& values) {
    const std::int32_t nPage = pItem->nPageIndex;
    if (nZoomMode == kExplicit) {
        const Point pt = PageToDevice(*pItem, Point{ValueAt(values, kLeft), ValueAt(values, kTop)});
        MoveLayout(nPage, pt.Y, pt.X, GetScale(), m_nRotate);
    } else if (nZoomMode == kFitHeight) {
        const Point pt = PageToDevice(*pItem, Point{ValueAt(values, kLeft), 0.0F});
        MoveLayout(nPage, 0.0, pt.X, GetScale(), m_nRotate);
    } else if (nZoomMode == kFitRectangle) {
        ShowRectangle(std::move(pItem), values);
    } else if (nZoomMode >= kFitBox && nZoomMode <= kFitBoxHeight) {
        const float fTop = nZoomMode == kFitBoxWidth ? ValueAt(values, kLeft) : 0.0F;
        ShowPageBox(std::move(pItem), nZoomMode, fTop);
    }
}

void PDFConuiunePagesViewer::ShowRectangle(PageItem pItem, const std::vector<float>& values) {
    const float fLeft = std::min(ValueAt(values, kLeft), ValueAt(values, kRight));
    const float fBottom = std::min(ValueAt(values, kTop), ValueAt(values, kBottom));
    const Rect rcPage(fLeft, fBottom, std::abs(values[kRight] - values[kLeft]),
                      std::abs(values[kBottom] - values[kTop]));
    pItem = CenterPageItem(std::move(pItem));
    pItem = LayOutAtScale(pItem->nPageIndex, RectangleFactor(*pItem, PageToDevice(*pItem, rcPage)));
    if (!pItem) {
        return;
    }
    const Rect rcDevice = PageToDevice(*pItem, rcPage);
    ShowMoved(MakeTask(rcDevice.Y, rcDevice.X));
}

// --- the page's box ---

// The box is zeros until the page has been loaded once; a box at the origin
// looks the same and is loaded again.
void PDFConuiunePagesViewer::ShowPageBox(PageItem pItem, std::int32_t nZoomMode, float fTop) {
    pItem = CenterPageItem(std::move(pItem));
    const auto pEntry = m_pDocument->ReLoadPageIndex(pItem->nPageIndex);
    const Rect rcBox =
        pEntry && pEntry->m_pPageHandle ? m_pDocument->PageBox(pEntry->m_pPageHandle) : Rect();
    if (rcBox.X == 0.0F || rcBox.Y == 0.0F) {
        ShowLoadedPageBox(pItem->nPageIndex, nZoomMode, fTop);
    } else {
        ShowBox(*pItem, rcBox, nZoomMode, fTop);
    }
}

// Ends early when the reader has gone elsewhere meanwhile.
concurrency::task<void> PDFConuiunePagesViewer::ShowLoadedPageBox(std::int32_t nPageIndex,
                                                                  std::int32_t nZoomMode,
                                                                  float fTop) {
    const auto pSelf = shared_from_this();
    const concurrency::cancellation_token token = m_ctsDestination.Token();
    try {
        const auto pDocument = m_pDocument;
        const auto load = pDocument->LoadPageAsync(nPageIndex, token);
        const std::shared_ptr<VLK_PageHandle> pHandle = co_await load;
        token.throw_if_canceled();
        if (const auto pOwner = Owner()) {
            pOwner->RaisePageLoaded(nPageIndex);
        }
        const PageItem pItem = FindConvertible(nPageIndex);
        if (pItem && !token.is_canceled()) {
            ShowBox(*pItem, pDocument->PageBox(pHandle), nZoomMode, fTop);
        }
    } catch (const concurrency::task_canceled&) {
        co_return;
    } catch (...) {
        Platform::Debug::OutputDebugString(
            "PDFConuiunePagesViewer::GotoDestination Exception...\n");
    }
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
    ZoomAtScreenCentre(RectangleFactor(item, rcDevice));
    const PageItem pItem = FindItem(nPage);
    if (pItem && pItem->screenRect.dbOffsetY > kPageGap) {
        MoveScreen(pItem->screenRect.dbOffsetY, 0.0);
    }
    EndDestinationZoom();
}

void PDFConuiunePagesViewer::ShowBoxWidth(const ContinueViewerPageItem& item, const Rect& rcDevice,
                                          float fTop) {
    const std::int32_t nPage = item.nPageIndex;
    ZoomAtScreenCentre(m_dbScreenWidth / rcDevice.Width);
    if (const PageItem pItem = FindItem(nPage)) {
        const Point pt = PageToDevice(*pItem, Point{0.0F, fTop});
        MoveLayout(nPage, pt.Y, 0.0, GetScale(), m_nRotate);
    }
    EndDestinationZoom();
}

void PDFConuiunePagesViewer::ZoomAtScreenCentre(double dbScale) {
    const Point ptCentre = {static_cast<float>(m_dbScreenWidth * 0.5),
                            static_cast<float>(m_dbScreenHeight * 0.5)};
    PageScaled(ptCentre, std::isfinite(dbScale) ? dbScale : GetScale(), false, false);
}

void PDFConuiunePagesViewer::EndDestinationZoom() {
    CompleteZoom();
    m_pScaleBitmapCache.Clear();
}

// The box's upper end comes to the top, its left end to the left.
void PDFConuiunePagesViewer::ShowBoxHeight(const ContinueViewerPageItem& item, const Rect& rcBox,
                                           const Rect& rcDevice) {
    const double dbFactor = SideFactor(rcDevice.Height, item.screenRect.nHeight, m_dbScreenHeight);
    const PageItem pItem = LayOutAtScale(item.nPageIndex, dbFactor);
    if (!pItem) {
        return;
    }
    const Point ptNear = PageToDevice(*pItem, Point{rcBox.X, rcBox.Y});
    const Point ptFar = PageToDevice(*pItem, Point{rcBox.X + rcBox.Width, rcBox.Y + rcBox.Height});
    ShowMoved(MakeTask(ptFar.Y, ptNear.X));
}

// --- steps ---

double PDFConuiunePagesViewer::RectangleFactor(const ContinueViewerPageItem& item,
                                               const Rect& rcDevice) const {
    const Render_ScreenOffsetInfo& rc = item.screenRect;
    return std::min(SideFactor(rcDevice.Width, rc.nWidth, m_dbScreenWidth),
                    SideFactor(rcDevice.Height, rc.nHeight, m_dbScreenHeight));
}

// Lays the page out anew without showing it; empty when it has no size.
PageViewerBase::PageItem PDFConuiunePagesViewer::LayOutAtScale(std::int32_t nPageIndex,
                                                               double dbScale) {
    if (dbScale > 0.0) {
        SetScale(static_cast<float>(dbScale));
    }
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
