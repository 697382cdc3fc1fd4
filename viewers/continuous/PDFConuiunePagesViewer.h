// The continuous viewer: pages one under the other, 15 device pixels apart.
//
// A page narrower than the screen is centred; any other covers the screen's width
// and moves sideways between its own edges.
// Lifetime, threads, units, errors: as `PageViewerBase`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "viewers/continuous/ContinueViewerPageItem.h"
#include "viewers/core/ColumnViewer.h"

namespace velko::vkit {

class PDFConuiunePagesViewer final : public ColumnViewer {
public:
    PDFConuiunePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                           std::shared_ptr<VLK_Document> pDocument,
                           std::shared_ptr<PDFViewCanvas> pCanvas);

protected:
    void OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                      bool isScrollComplete) override;
    void OnInvaildateLayout() override;
    void OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                           const std::vector<float>& values) override;
    void DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                   const Windows::Graphics::D2D_RECT_F& rc) const override;

    double PageGap() const override { return 15.0; }
    double FirstX(const PDFRenderTask& task) const override { return task.dbOffsetX; }
    double PlacedX(const LaidOutPage& item, float fWidth, double dbOffsetX) const override;
    double StandingX(const LaidOutPage& item, double dbOffsetX) const override;
    double LimitSideways(const PageItems& items, double dbOffsetX) const override;
    void ChooseFirstScale(std::int32_t nPageIndex, double dbScale) override;

private:
    static const ViewerTraits kTraits;

    void GotoPageTop(std::int32_t nPageIndex) { ShowPage(nPageIndex, true); }

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
};

}
