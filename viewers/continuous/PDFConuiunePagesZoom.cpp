// Zooming around a point: the page under it is laid out at the top, the others
// around it, and then all of them are moved until the point is where it was.
#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "platform/system/Debug.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/core/LogText.h"

namespace velko::vkit {

void PDFConuiunePagesViewer::OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                                          bool isScrollComplete) {
    if (!CanLayOut()) {
        return;
    }
    std::string strLog = "PageScaled Start..." + NumberText(dbScale) + FlagText(bIsInertial) + " " +
                         FlagText(isScrollComplete) + "......\n";
    const bool bZoomed = Zoom(ptCentre, dbScale, isScrollComplete, strLog);
    if (!bZoomed) {
        ShowUnzoomed(isScrollComplete);
    }
    strLog += "m_pScaleBitmapCache->Size: " + std::to_string(ScaleCacheSize()) +
              "pPageViewer is NULL: " + FlagText(!bZoomed) + "PageScaled End...\n";
    Platform::Debug::OutputDebugString(strLog);
}

// False when there is no page to zoom around.
bool PDFConuiunePagesViewer::Zoom(Point ptCentre, double dbScale, bool isScrollComplete,
                                  std::string& strLog) {
    RefreshScreenSize();
    EndSnapshot(); // what it shows stands in for the pages from here on
    PageItem pAnchor = KeepBitmaps(ptCentre);
    strLog += "m_pScaleBitmapCache->Size: " + std::to_string(ScaleCacheSize());
    if (!pAnchor) {
        StoreZoomScale(dbScale);
        return false;
    }
    const Point ptPage = DeviceToPage(*pAnchor, ptCentre);
    DropItems();
    StoreZoomScale(dbScale);
    m_nCurPageIndex = pAnchor->nPageIndex;
    LayOutZoomed(pAnchor->screenRect.nHeight);
    pAnchor = FindItem(m_nCurPageIndex);
    if (!pAnchor) {
        return false;
    }
    MoveUnderCentre(*pAnchor, ptPage, ptCentre);
    PinEnds();
    ShowZoomStep(isScrollComplete);
    return true;
}

// Returns the page under the centre, the last of several, else the first one.
PageViewerBase::PageItem PDFConuiunePagesViewer::KeepBitmaps(Point ptCentre) {
    if (!HasItems()) {
        return nullptr;
    }
    PageItem pAnchor = m_pPageItems->front();
    for (const PageItem& pItem : *m_pPageItems) {
        if (ToRect(pItem->screenRect).Contains(ptCentre)) {
            pAnchor = pItem;
        }
        FillScaleCache(*pItem);
    }
    return pAnchor;
}

// Then the page that counts as current stands at the top, at the new scale.
void PDFConuiunePagesViewer::ShowUnzoomed(bool isScrollComplete) {
    if (isScrollComplete) {
        EndZoom();
    }
    if (IsPage(m_nCurPageIndex)) {
        GotoPageTop(m_nCurPageIndex);
    }
}

void PDFConuiunePagesViewer::StoreZoomScale(double dbScale) {
    const auto fScale = static_cast<float>(dbScale);
    if (fScale > 0.0F && m_fScale != fScale) {
        SetScale(fScale);
    }
}

// Lays the page out at the top. An only item that ends above the screen's
// bottom is moved down by what its page was lower than the screen before.
void PDFConuiunePagesViewer::LayOutZoomed(std::int32_t nOldHeight) {
    LayOut(MakeTask(m_dbScreenHeight, 0.0));
    if (m_pPageItems->size() != 1 || !IsLastPage(m_nCurPageIndex)) {
        return;
    }
    const Render_ScreenOffsetInfo& rc = m_pPageItems->front()->screenRect;
    if (rc.dbOffsetY + rc.nHeight < m_dbScreenHeight) {
        LayOut(MakeTask(nOldHeight - m_dbScreenHeight, 0.0));
    }
}

void PDFConuiunePagesViewer::MoveUnderCentre(const ContinueViewerPageItem& item, Point ptPage,
                                             Point ptCentre) {
    const Point ptNow = PageToDevice(item, ptPage);
    const float fMoveX = ptNow.X - ptCentre.X;
    const float fMoveY = ptNow.Y - ptCentre.Y;
    PDFRenderTask task = MakeTask(FiniteOrZero(fMoveY), FiniteOrZero(fMoveX));
    ClampTaskOffset(*m_pPageItems, task);
    if (WouldEmptyScreen(task)) {
        MoveInSteps(task.dbOffsetY, task.dbOffsetX);
    } else {
        LayOut(task);
    }
}

// A centre in the gap between pages may belong to a point far off its page.
bool PDFConuiunePagesViewer::WouldEmptyScreen(const PDFRenderTask& task) const {
    return std::none_of(m_pPageItems->begin(), m_pPageItems->end(), [&](const PageItem& pItem) {
        const double dbTop = pItem->screenRect.dbOffsetY - task.dbOffsetY;
        return dbTop < m_dbScreenHeight && dbTop + pItem->screenRect.nHeight + PageGap() > 0.0;
    });
}

}
