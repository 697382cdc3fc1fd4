// The continuous viewer: pages one under the other, 15 device pixels apart.
//
// It holds no model of the whole document, only the list of pages that touch
// the screen, in page order. A move is a change of those pages' places, limited
// by the first and the last page once they are laid out, after which the list
// is trimmed at one end and filled at the other. A page narrower than the
// screen is centred; any other covers the screen's width and moves sideways
// between its own edges. Wherever a step would leave the screen without a page, the
// page asked for comes to stand at the top.
// Lifetime, threads, units, errors: as `PageViewerBase`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "viewers/continuous/ContinueViewerPageItem.h"
#include "viewers/core/Column.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

class PDFConuiunePagesViewer final : public PageViewerBase, private IColumnPages {
public:
    PDFConuiunePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                           std::shared_ptr<VLK_Document> pDocument,
                           std::shared_ptr<PDFViewCanvas> pCanvas);

    std::int32_t GetCurrentPageIndex() override;

protected:
    void OnClosed() override;
    void OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                      bool isScrollComplete) override;
    void OnMoveScreen(double dbOffsetY, double dbOffsetX) override;
    void OnRotateViewer(std::int32_t nRotate) override;
    void OnInvaildateLayout() override;
    void OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                      double dbOffsetY) override;
    void OnGotoPage(std::int32_t nPageIndex) override;
    void OnPageSizeChanged(double dbOffsetX, double dbOffsetY) override;
    void OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                           const std::vector<float>& values) override;
    void DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                   const Windows::Graphics::D2D_RECT_F& rc) const override;

private:
    static const ViewerTraits kTraits;

    // --- IColumnPages ---
    std::int32_t ColumnLength() const override { return PageCount(); }
    bool TakesRoom(std::int32_t /*nPageIndex*/) override { return true; }
    float HeightInColumn(std::int32_t nPageIndex) override {
        return DisplaySizeOf(nPageIndex).fHeight;
    }
    Column TheColumn();

    PDFRenderTask MakeTask(double dbOffsetY, double dbOffsetX);
    void RecomputeCurrentPage(); // keeps the one known when nothing is laid out

    // --- a layout step ---
    // Limits the task in place; whether a move is left to do.
    bool ClampTaskOffset(const PageItems& items, PDFRenderTask& task);
    double LimitSideways(const PageItems& items, double dbOffsetX) const;
    double StandingX(const LaidOutPage& item, double dbOffsetX) const;
    // Moves the items in force into `newList`, then fills it.
    bool RelayoutPageItems(PageItems& newList, const PDFRenderTask& task);
    bool StaysOnScreen(const ContinueViewerPageItem& item, const PDFRenderTask& task) const;
    void EnumPageTop(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    void EnumPageBelow(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    void PlaceItem(ContinueViewerPageItem& item, const DisplaySize& size, double dbOffsetX,
                   double dbOffsetY) const;
    void NarrowToOnlyPage(const Render_ScreenOffsetInfo& rc);
    // One whole step: the next list is in force afterwards.
    bool LayOut(const PDFRenderTask& task);
    void Adopt(PageItems& newList);
    bool HoldsScreen(const PageItems& items);
    void KeepScreenFilled(PageItems& list, const PDFRenderTask& task);
    void BringBack(PageItems& list, PDFRenderTask task);

    // Lays out and starts the renders; returns the list now in force.
    const PageItems& RenderScreenBitmapSync(const PDFRenderTask& task, bool bUseCacheOnly);
    void MoveLayout(std::int32_t nPageIndex, double dbOffsetY, double dbOffsetX, double dbScale,
                    std::int32_t nRotate);
    void ShowStep(PDFRenderTask task);

    // --- longer ways ---
    bool MoveInSteps(double dbOffsetY, double dbOffsetX);
    bool PinEnds();
    double CalcTailOverflow(std::int32_t nPageIndex);
    DisplaySize DisplaySizeOf(std::int32_t nPageIndex);
    void GotoPageTop(std::int32_t nPageIndex);
    void ShowPage(std::int32_t nPageIndex, bool bFresh);
    void ScaleForFirstLayout(double dbScale, const VLK_PageSize& size);
    void LayOutInPlace();

    // --- zoom; see the .cpp ---
    bool Zoom(Point ptCentre, double dbScale, bool isScrollComplete, std::string& strLog);
    PageItem KeepBitmaps(Point ptCentre);
    void StoreZoomScale(double dbScale);
    void LayOutZoomed(std::int32_t nOldHeight);
    void MoveUnderCentre(const ContinueViewerPageItem& item, Point ptPage, Point ptCentre);
    void ShowUnzoomed(bool isScrollComplete);
    bool WouldEmptyScreen(const PDFRenderTask& task) const;

    // --- destinations; see the .cpp ---
    void ScaleForDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                             const std::vector<float>& values);
    void ShowDestination(PageItem pItem, std::int32_t nZoomMode, const std::vector<float>& values);
    Point PlaceOf(const ContinueViewerPageItem& item, Point ptPage) const;
    Point OnOrNear(const ContinueViewerPageItem& item, Point pt) const;
    void ShowRectangle(PageItem pItem, const std::vector<float>& values);
    void ShowPageBox(PageItem pItem, std::int32_t nZoomMode, float fTop);
    void ShowBox(const ContinueViewerPageItem& item, const Rect& rcBox, std::int32_t nZoomMode,
                 float fTop);
    void ShowWholeBox(const ContinueViewerPageItem& item, const Rect& rcDevice);
    void ShowBoxWidth(const ContinueViewerPageItem& item, const Rect& rcDevice, float fTop);
    void ShowBoxHeight(const ContinueViewerPageItem& item, const Rect& rcBox, const Rect& rcDevice);
    PageItem LayOutAtScale(std::int32_t nPageIndex, double dbScale);
    void ShowMoved(PDFRenderTask task);
    PageItem CenterPageItem(PageItem pItem);

    std::int32_t m_nCurPageIndex = 0; // where the next layout starts
    PageItems m_spareItems;           // the next list's memory
};

}
