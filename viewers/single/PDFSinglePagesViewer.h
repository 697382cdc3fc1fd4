// The viewer of single pages: one page at rest, two while a page is turned.
//
// Pages lie side by side on a strip. A drag moves the page; where it leaves a
// side of the screen free, the neighbour is laid out just outside and from then
// on both move as one, over as many pages as the drag goes. The release decides
// which of the two stays and puts it in its place at once; nothing is animated.
// A page smaller than the screen is centred. Between two pages the frame shows a
// gap that the layout does not know of.
// A neighbour that a move would leave outside, with nothing on the screen, comes
// in: no step leaves the screen without a page.
// Lifetime, threads, units, errors: as `PageViewerBase`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "viewers/core/PageViewerBase.h"
#include "viewers/single/SingleViewerPageItem.h"

namespace velko::vkit {

class PDFSinglePagesViewer final : public PageViewerBase {
public:
    PDFSinglePagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                         std::shared_ptr<VLK_Document> pDocument,
                         std::shared_ptr<PDFViewCanvas> pCanvas);

    // Of two pages the one that is in its place, else the last.
    std::int32_t GetCurrentPageIndex() override;
    // The only question that changes the layout: of two pages the one that
    // hangs over the left edge goes. Within a frame it only counts as gone.
    std::shared_ptr<PagePosition> GetPagePosition() override;
    BlockColors RenderColors() const override;

protected:
    // Pages brought up by a command.
    void OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                      double dbOffsetY) override;
    void OnGotoPage(std::int32_t nPageIndex) override;
    void OnRotateViewer(std::int32_t nRotate) override;
    void OnInvaildateLayout() override;
    void OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                           const std::vector<float>& values) override;

    // A drag and its release, other moves, a zoom.
    void OnMoveScreen(double dbOffsetY, double dbOffsetX) override;
    void OnAlignPageAfterScroll(double dbOffsetY, double dbOffsetX) override;
    void OnPageSizeChanged(double dbOffsetX, double dbOffsetY) override;
    void OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                      bool isScrollComplete) override;

    double DrawnX(std::size_t nPosition, double dbX) const override;
    void DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                   const Windows::Graphics::D2D_RECT_F& rc) const override;

private:
    static const ViewerTraits kTraits;

    // --- where pages stand ---
    double CentreX(const SingleViewerPageItem& item) const;
    bool IsNarrow(const SingleViewerPageItem& item) const; // narrower than the screen
    // Back to its place for a page that came away from an edge of the screen: a
    // narrow one to the middle, another to that edge.
    double RecentredX(const SingleViewerPageItem& item) const;
    double ReleasedX(const SingleViewerPageItem& item) const;

    // --- the list ---
    PDFRenderTask MakeTask(double dbOffsetY, double dbOffsetX);
    PageItem InitPageItem(const PDFRenderTask& task, std::int32_t nPageIndex);
    void Regrid(SingleViewerPageItem& item) const;
    void RegridItems() const;
    void ReplaceItems(const PageItem& pItem);
    void AdoptItems(PageItems& newList);
    void RemoveItem(std::size_t nPosition);
    void LoadPageBitmapFromCache(bool bCacheOnly) { StartRenders(bCacheOnly); }

    // --- pages brought up by a command ---
    void PlacePageAt(std::int32_t nPageIndex, double dbOffsetY, double dbOffsetX);
    void ResetToPage(std::int32_t nPageIndex);
    void ShowPage(std::int32_t nPageIndex, bool bAlsoShown);
    float DefaultScale();

    // --- turning; see the .cpp ---
    void OffsetPageItems(double dbOffsetY, double dbOffsetX, PageItems& outList);
    void OffsetForward(std::size_t nPosition, double dbOffsetX);
    void OffsetBackward(std::size_t nPosition, double dbOffsetX);
    void OffsetDown(SingleViewerPageItem& item, double dbOffsetY) const;
    void PinWidePage() const;
    void NoteMoveWithin(const SingleViewerPageItem& item, double dbFrom);
    bool IsMoveRefused(const SingleViewerPageItem& item, double dbOffsetX, bool bIsZoom) const;
    void ScrollPageItems(double dbOffsetY, double dbOffsetX, bool bAppendNeighbour, bool bComplete);
    void FetchNeighbour(PageItems& list, const PDFRenderTask& task);
    void EnumPageLeft(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    void EnumPageRight(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    void PlaceNeighbour(SingleViewerPageItem& item, const DisplaySize& size, double dbX) const;
    void BringIntoSight();
    bool DropItemOutside();
    void DropHiddenPageItem(double dbOffsetX);
    std::size_t PositionToDrop(double dbOffsetX) const;
    std::size_t PositionFarther() const;
    void ShowReleased(SingleViewerPageItem& item);
    void NoteEdges(const SingleViewerPageItem& item);

    // --- zoom; see the .cpp ---
    double ItemScale(double dbScale); // one that a page can be shown at
    void KeepNearerItem();
    struct ZoomStep;
    PageItem Zoom(ZoomStep& step);
    void MoveUnderCentre(ZoomStep& step);

    // --- destinations; see the .cpp ---
    void ScaleForDestination(std::int32_t nZoomMode, const std::vector<float>& values);
    void ShowDestination(std::int32_t nZoomMode, const std::vector<float>& values);
    void StoreShownScale();
    void ShowPoint(Point ptPage, bool bAcross, bool bDown);
    void ShowPageBox(std::int32_t nZoomMode, float fTop);
    void ZoomToPageBox(const SingleViewerPageItem& item, const Rect& rcDevice);
    void ZoomToPageBoxWidth(const SingleViewerPageItem& item, const Rect& rcDevice, float fTop);
    void ZoomToPageBoxHeight(const SingleViewerPageItem& item, const Rect& rcBox,
                             const Rect& rcDevice);

    std::int32_t m_nLayoutPageIndex = 0; // the page that a change of size lays out
    bool m_bSwipeBackward = false;       // the last step went towards the page before
    bool m_bAtLeftEdge = false;          // of a zoomed page, at the last release
    bool m_bAtRightEdge = false;
    double m_dbMovedWithin = 0.0;        // of the drag under way, between a wide page's edges
    bool m_bCentreNarrowPage = false;    // a narrow page stays centred and is not turned
    bool m_bUseDefaultPageColor = false; // black on white, whatever the settings say
};

}
