// What the viewers of whole pages (continuous, one page at a time) have in
// common beyond `ViewerCore`: the list of laid-out pages, the renders of their
// blocks, the steps of a zoom with what stands in meanwhile, and a frame. A
// derived viewer decides which pages lie where.
//
// A frame changes nothing. After it, memory is given back: of blocks off the
// screen, and of stand-ins whose successor the frame has shown.
//
// Lifetime, threads, units, errors: as `ViewerCore`.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/concurrency/Task.h"
#include "viewers/core/CancellationGeneration.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/Records.h"
#include "viewers/core/StandIns.h"
#include "viewers/core/ViewerCore.h"
#include "viewers/core/ViewerInspection.h"
#include "viewers/core/ViewerPageItem.h"
#include "viewers/core/ViewerTraits.h"

namespace velko::vkit {

class PageViewerBase : public ViewerCore, public IPageItemHost, public IViewerInspection {
public:
    using PageItem = std::shared_ptr<ViewerPageItem>;
    using PageItems = std::vector<PageItem>;

    // --- IPDFViewer ---
    void ClearPagesBitmap() override;
    void UpdateViewer() override;
    void OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) final;
    void ClearCanvas(const std::shared_ptr<WPRenderDC>& pDc) override;
    void ClearScreen() override;
    void RedrawScreen() override;
    void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) override;
    void CancelRender() override;

    // --- ICanvasClient ---
    void OnDeviceRemade() override;

    // --- IViewerInspection ---
    ViewerState Inspect() const override;
    PageInk Ink() const override;
    PageInk InkOf(std::int32_t nPageIndex) const override;

    // --- IPageItemHost ---
    ScreenSize LayoutScreen() const override { return Screen(); }
    Windows::Foundation::Rect ScreenRect() const override { return CanvasRect(); }
    VLK_PageSize PageSizeOf(std::int32_t nPageIndex) override { return AskPageSize(nPageIndex); }
    std::shared_ptr<VLK_Document> LiveDocument() const override { return OpenDocument(); }
    std::shared_ptr<PDFViewCanvas> Canvas() const override { return m_pCanvas; }
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> Dispatcher() const override {
        return UiDispatcher();
    }
    BlockColors RenderColors() const override { return PageColors(); }
    std::shared_ptr<D2DBitmapSource> FindScaleBitmap(std::int32_t nPageIndex,
                                                     std::int32_t nBlockId) const override;
    void KeepStandIns(const ViewerPageItem& item) override;
    void PaintCanvas() override;

protected:
    // Any of the three may be empty. `traits` lives as long as the program.
    PageViewerBase(std::weak_ptr<IViewerOwner> wkOwner, std::shared_ptr<VLK_Document> pDocument,
                   std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits);

    // --- how it draws ---
    // Where something at `dbX` of the item at that place of the list is drawn.
    virtual double DrawnX(std::size_t /*nPosition*/, double dbX) const { return dbX; }
    virtual Windows::Graphics::D2D_COLOR_F AroundPages() const;
    // Under all of an item, before it is drawn.
    virtual void DrawPaper(Windows::Graphics::ID2D1DeviceContext& /*context*/,
                           const ViewerPageItem& /*item*/) const {}
    // A displayed block that has no bitmap yet.
    virtual void DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                           const Windows::Graphics::D2D_RECT_F& rc) const = 0;
    // Hosts may draw over an item now.
    virtual void TellDrawn(const ViewerPageItem& item) const;
    // For the log: a block off the screen has given its memory back.
    virtual void TellCleared(const ViewerPageItemBlock& block) const;
    bool IsSnapshotShown() const { return m_standIns.ShownSnapshot() != nullptr; }
    bool IsDrawing() const { return m_bDrawing; } // in a handler of the host, that is

    // --- ViewerCore ---
    std::size_t LaidOutCount() const override { return m_pPageItems ? m_pPageItems->size() : 0; }
    const LaidOutPage& LaidOut(std::size_t nPosition) const override {
        return *(*m_pPageItems)[nPosition];
    }
    void OnClosed() override;
    void BeginChange() override;
    void LeavePlace() override;
    void ReachPlace() override;

    // --- the list ---
    bool HasItems() const { return m_pPageItems && !m_pPageItems->empty(); }
    // The first item of that page; empty when it is not laid out.
    PageItem FindItem(std::int32_t nPageIndex) const;
    virtual PageItem MakeItem(std::int32_t nPageIndex, const PDFRenderTask& task);
    // Empties the list; what the pages showed stands in for those laid out next.
    void DropItems();

    // --- destinations ---
    // A destination's scale is kept within what is offered, or the scale that
    // stood when it began.
    void BeginDestination() { m_dbLeastScale = LeastScale(); }
    double DestinationScale(double dbScale);
    // Hands the box around the page's contents to `fnShow`: at once, or when the
    // page has been loaded, unless the reader goes elsewhere meanwhile.
    using BoxStep = std::function<void(const ViewerPageItem& item, const Rect& rcBox)>;
    void WithPageBox(PageItem pItem, bool (*fnIsUnknown)(const Rect&), BoxStep fnShow);
    // A step of a zoom, to the scale of a destination.
    void ZoomAtScreenCentre(double dbScale);

    // --- renders ---
    // The grid of the page's stand-ins during a zoom, else its own.
    Render_PageDavidBlock GetPageDavidBlock(const ViewerPageItem& item) const;
    virtual Render_PageDavidBlock CalcPageDavidBlock(const ViewerPageItem& item) const;

    // Starts the renders of all items, from the first down, and the closing
    // step that ends the snapshot; the renders' earlier closing step is
    // cancelled. The caller paints.
    void StartRenders(bool bUseCacheOnly);

    // --- a zoom's steps ---
    // Before the items of the step before go: their bitmaps go to the cache.
    void FillScaleCache(const ViewerPageItem& item) { m_standIns.FillScaleCache(item); }
    std::uint32_t ScaleCacheSize() const { return m_standIns.ScaleCacheSize(); }
    void EmptyScaleCache() { m_standIns.EmptyScaleCache(); }
    // For a zoom's end that found nothing to zoom.
    void EndZoom() {
        m_bZoomOpen = false;
        EmptyScaleCache();
    }
    // The frame from before belongs to a layout that goes now.
    void EndSnapshot() { m_standIns.EndSnapshot(); }
    // Shows a step: stand-ins during the gesture, its end as `CompleteGesture`.
    void ShowZoomStep(bool bComplete);
    // Keeps the last frame as a backdrop, while the pages, cut into the grid of
    // their true size, are rendered.
    void EndGesture();
    // The same for a last step that is not shown yet.
    void CompleteGesture();

    std::unique_ptr<PageItems> m_pPageItems; // empty before a layout and after closing

    // Changes whenever another list of items is in force or items left it.
    std::uint64_t m_nLayoutVersion = 0;

private:
    PageInk InkOf(const ViewerPageItem& item) const;
    concurrency::task<void> ShowLoadedBox(std::int32_t nPageIndex, BoxStep fnShow);

    // --- drawing ---
    bool DrawPages(Windows::Graphics::ID2D1DeviceContext& context);
    void DrawBackdrop(Windows::Graphics::ID2D1DeviceContext& context) const;
    void DrawItem(Windows::Graphics::ID2D1DeviceContext& context, const ViewerPageItem& item,
                  std::size_t nPosition) const;
    void DrawMissing(Windows::Graphics::ID2D1DeviceContext& context, const ViewerPageItem& item,
                     std::size_t nPosition) const;
    void DrawStandIns(Windows::Graphics::ID2D1DeviceContext& context, const ViewerPageItem& item,
                      std::size_t nPosition) const;
    void GiveBackMemory();
    bool IsNeeded(const StandIns::StandIn& kept) const;

    // --- renders ---
    using Renders = std::vector<concurrency::task<void>>;
    // Which frame the closing step of renders paints.
    enum class Closing { WhatChanged, Always };
    template <class F>
    Renders CollectRenders(const char* szNoBlocks, F fnStart);
    void StartVisibleRenders(); // in the grid of the true size, for a zoom's end
    void FinishRenders(Renders renders, Closing eClosing, const char* szOperation);
    concurrency::task<void> FinishWhenRendered(Renders renders,
                                               concurrency::cancellation_token token,
                                               Closing eClosing, const char* szOperation);
    void RegridItems();
    std::string LogPlace(const char* szOperation) const; // "Class::Operation"

    const ViewerTraits& m_traits;
    StandIns m_standIns;
    double m_dbLargestScreen = 0.0; // pixels, of all that it was laid out for
    CancellationGeneration m_ctsRender;
    CancellationGeneration m_ctsDestination; // a destination that waits for its page
    double m_dbLeastScale = kLeastScale;     // of the destination under way
    std::uint64_t m_nRenderStarts = 0;
    std::uint64_t m_nStartsBefore = 0; // the change of place that is under way
    bool m_bZoomOpen = false;          // a step was shown that was not the last
    bool m_bZoomWasOpen = false;       // before the change of place that is under way
    bool m_bDrawing = false;
    bool m_bFrameDrawn = false; // to its end, since it was asked for
};

}
