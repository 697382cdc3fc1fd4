// What the viewers of whole pages (continuous, one page at a time) have in
// common: the list of laid-out pages, scale, rotation and colours, the
// conversions between the screen and pages, and the renders of what is laid
// out. A derived viewer decides which pages lie where and how a frame is drawn.
//
// Lifetime: held by a `shared_ptr`; chains in flight keep it alive, and end as
// cancelled after `CloseViewer`. Threads: the UI thread only.
// Units: as `IPDFViewer` says; `m_dbScreenWidth` and the like device pixels.
// Errors: after `Dispose` every public operation raises
// `ObjectDisposedException`; a second `Dispose` does nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/concurrency/Task.h"
#include "surface/D2DBitmapSource.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/CancellationGeneration.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/IViewerOwner.h"
#include "viewers/core/ScaleBitmapCache.h"
#include "viewers/core/ViewerInspection.h"
#include "viewers/core/ViewerPageItem.h"
#include "viewers/core/ViewerTraits.h"

namespace velko::vkit {

class VLK_Document;

class PageViewerBase : public IPDFViewer,
                       public IPageItemHost,
                       public IViewerInspection,
                       public std::enable_shared_from_this<PageViewerBase> {
public:
    using PageItem = std::shared_ptr<ViewerPageItem>;
    using PageItems = std::vector<PageItem>;

    // --- IPDFViewer, where the viewers agree ---
    void PageScaled(Point pCentrePt, double dbScale, bool bIsInertial, bool isScrollComplete) final;
    void MoveScreen(double dbOffsetY, double dbOffsetX) final;
    void RotateViewer(std::int32_t nRotate) final;
    void InvaildateLayout() final;
    void InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                    double dbOffsetY) final;
    void UpdateViewer() override;
    void OnRenderCanvas(const std::shared_ptr<WPRenderDC>& pDc) final;
    void CloseViewer() override;
    void GotoPage(std::int32_t nPageIndex) final;
    float GetScale() override;
    void SetScale(float fScale) override;
    float GetMinScale() override;
    float GetMaxScale() override;
    std::int32_t GetRotate() override;
    void SetRotate(std::int32_t nRotate) override;
    std::shared_ptr<PagePosition> GetPagePosition() override;
    std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Point pt) override;
    std::shared_ptr<Render_PageScreenOffsetInfo> GetPageScreenOffset(
        std::int32_t nPageIndex) override;
    std::shared_ptr<WrapperDevicePoint> PagePointToDevicePoint(std::int32_t nPageIndex,
                                                               Point pt) override;
    std::shared_ptr<WrapperDeviceRect> PageRectToDeviceRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    void AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) final;
    void ClearPagesBitmap() override;
    void PageSizeChanged(double dbOffsetX, double dbOffsetY) final;
    void GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                         const std::vector<float>& values) final;
    void SetNightMode(bool bNightMode) override;
    void RedrawScreen() override;
    void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) override;
    std::shared_ptr<WrapperDeviceRect> PageRectToScreenRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::shared_ptr<WrapperDeviceRect> ScreenRectToPageRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    bool IsPointInPage(Point pt) override;
    std::int32_t GetPageIndexAtPoint(Point pt) override;
    Point AdjustPointInPage(Point pt, std::int32_t nPageIndex) override;
    Rect GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) override;
    void ClearCanvas(const std::shared_ptr<WPRenderDC>& pDc) override;
    void ClearScreen() override;
    std::shared_ptr<WrapperDeviceRect> DeviceRectToPageRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::array<double, 6> GetDisplayMatrix(std::int32_t nPageIndex) override;
    void CancelRender() override;
    Color GetPageBackgroundColor() override;
    void SetPageBackgroundColor(Color color) override;
    Color GetPageForegroundColor() override;
    void SetPageForegroundColor(Color color) override;
    void SetPageColors(Color background, Color foreground) override;
    void SaveViewerState(PropertySet& values) override;
    std::vector<std::int32_t> GetVisiblePages() override;
    void Dispose() override;

    // --- ICanvasClient ---
    void OnDeviceRemade() override;
    std::shared_ptr<void> KeepAlive() override { return shared_from_this(); }

    // --- IViewerInspection ---
    ViewerState Inspect() const override;

    // --- IPageItemHost ---
    ScreenSize LayoutScreen() const override { return {m_dbScreenWidth, m_dbScreenHeight}; }
    Windows::Foundation::Rect ScreenRect() const override;
    VLK_PageSize PageSizeOf(std::int32_t nPageIndex) override;
    std::shared_ptr<VLK_Document> LiveDocument() const override;
    std::shared_ptr<PDFViewCanvas> Canvas() const override { return m_pCanvas; }
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> Dispatcher() const override {
        return m_pDispatcher;
    }
    BlockColors RenderColors() const override;
    std::shared_ptr<D2DBitmapSource> FindScaleBitmap(std::int32_t nPageIndex,
                                                     std::int32_t nBlockId) const override;
    void PaintCanvas() override;

protected:
    // Any of the three may be empty. `traits` lives as long as the program.
    PageViewerBase(std::weak_ptr<IViewerOwner> wkOwner, std::shared_ptr<VLK_Document> pDocument,
                   std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits);

    // --- what a viewer makes of the operations that change the layout ---
    // Called with finite numbers (but for a zoom's), never within one another,
    // and with a destination that waits for its page called off.
    virtual void OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                              bool isScrollComplete) = 0;
    virtual void OnMoveScreen(double dbOffsetY, double dbOffsetX) = 0;
    virtual void OnRotateViewer(std::int32_t nRotate) = 0;
    virtual void OnInvaildateLayout() = 0;
    virtual void OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                              double dbOffsetY) = 0;
    virtual void OnGotoPage(std::int32_t nPageIndex) = 0; // any index
    virtual void OnAlignPageAfterScroll(double /*dbOffsetY*/, double /*dbOffsetX*/) {}
    virtual void OnPageSizeChanged(double dbOffsetX, double dbOffsetY) = 0;
    virtual void OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                   const std::vector<float>& values) = 0; // of a page there is

    // --- how it draws ---
    // Where something at `dbX` of the item at that place of the list is drawn.
    virtual double DrawnX(std::size_t /*nPosition*/, double dbX) const { return dbX; }
    // A displayed block that has no bitmap yet.
    virtual void DrawBlank(Windows::Graphics::ID2D1DeviceContext& context,
                           const Windows::Graphics::D2D_RECT_F& rc) const = 0;

    void ThrowIfDisposed() const;
    bool IsDisposed() const { return m_bDisposed; }
    std::shared_ptr<IViewerOwner> Owner() const { return m_wkOwner.lock(); }

    // Whether there is a document and a canvas to lay out with.
    bool CanLayOut() const { return LiveDocument() && m_pCanvas; }

    // Runs what may ask the document for sizes, and hence handlers of the host,
    // with changes of the layout put off. Raises `ObjectDisposedException` when
    // a handler closed the viewer.
    void WhileAsking(const std::function<void()>& fnAsk);

    // Reads the canvas's size into the layout's.
    void RefreshScreenSize();
    float CanvasHeight() const;
    float CanvasWidth() const;
    // Whether it stays upright, or lying, at the size that the canvas has now.
    bool KeepsOrientation() const;
    std::int32_t PageCount() const; // the last one known once the document is gone
    bool IsPage(std::int32_t nPageIndex) const {
        return nPageIndex >= 0 && nPageIndex < PageCount();
    }
    bool IsLastPage(std::int32_t nPageIndex) const { return nPageIndex == PageCount() - 1; }

    // The scale at which the control fits the page; the present one without it.
    float AskFitScale();

    bool HasItems() const { return m_pPageItems && !m_pPageItems->empty(); }
    // The first item of that page; empty when it is not laid out.
    PageItem FindItem(std::int32_t nPageIndex) const;
    PageItem FindItemAt(Point ptDevice) const;               // the first that contains it
    PageItem FindConvertible(std::int32_t nPageIndex) const; // empty also without a document
    PageItem MakeItem(std::int32_t nPageIndex, const PDFRenderTask& task);
    void DropItems();

    Point ToDevice(Point pt) const;
    Point ToLogical(Point pt) const;
    Point PageToDevice(const ViewerPageItem& item, Point pt) const;
    Point DeviceToPage(const ViewerPageItem& item, Point pt) const;
    Rect PageToDevice(const ViewerPageItem& item, const Rect& rc) const;

    // Hands the box around the page's contents to `fnShow`: at once, or when the
    // page has been loaded, unless the reader goes elsewhere meanwhile.
    using BoxStep = std::function<void(const ViewerPageItem& item, const Rect& rcBox)>;
    void WithPageBox(PageItem pItem, bool (*fnIsUnknown)(const Rect&), BoxStep fnShow);
    // A step of a zoom; at the present scale if `dbScale` is no number.
    void ZoomAtScreenCentre(double dbScale);

    // The grid of the page's stand-ins, if there are any, else its own.
    Render_PageDavidBlock GetPageDavidBlock(const ViewerPageItem& item) const;
    Render_PageDavidBlock CalcPageDavidBlock(const ViewerPageItem& item) const;

    // Starts the renders of all items, from the first down, and the closing
    // step that ends the snapshot and paints; the renders' earlier closing step
    // is cancelled.
    void StartRenders(bool bUseCacheOnly);
    // The same with `RenderVisibleBlocks`, for the end of a zoom.
    void StartVisibleRenders();
    // Cancels the closing steps of earlier renders.
    void RenewRenders() { m_ctsRender.Renew(); }
    // `szOperation` is what a failure is logged under.
    void FinishRenders(std::vector<concurrency::task<void>> renders, const char* szOperation);

    // --- a zoom's steps ---
    // Keeps the item's bitmaps as stand-ins.
    void FillScaleCache(const ViewerPageItem& item);
    // Shows a step: stand-ins during the gesture, its end as `CompleteGesture`.
    void ShowZoomStep(bool bComplete);
    // Keeps the last frame as a backdrop, while the pages, cut into the grid of
    // their true size, are rendered.
    void EndGesture();
    // The same for a last step that is not shown yet.
    void CompleteGesture();
    void EndSnapshot();
    bool IsSnapshotShown() const;

    // Pages of a smaller scale have no pixel to be seen by, or to be caught by.
    // Not the smallest that is offered: callers keep to that.
    static constexpr float kLeastScale = 0.01F;

    float m_fScale = 1.0F;
    std::int32_t m_nRotate = 0;
    std::shared_ptr<VLK_Document> m_pDocument;
    std::shared_ptr<PDFViewCanvas> m_pCanvas;
    std::unique_ptr<PageItems> m_pPageItems; // empty before a layout and after closing
    ScaleBitmapCache m_pScaleBitmapCache;
    double m_dbScreenWidth = 0.0;
    double m_dbScreenHeight = 0.0;

    // Changes whenever another list of items is in force or items left it.
    std::uint64_t m_nLayoutVersion = 0;

private:
    // Runs it, or, while the document is asked for a size and handlers of the
    // host may run, later from the UI queue.
    template <class F>
    void WhenNotAsking(F fnOperation);
    template <class F>
    void ChangeLayout(F fnChange);
    template <class F>
    void ChangePlace(F fnChange);
    concurrency::task<void> ShowLoadedBox(std::int32_t nPageIndex, BoxStep fnShow);
    void TakeScaleSnapshot();
    void DrawBackdrop(Windows::Graphics::ID2D1DeviceContext& context) const;
    void DrawItem(Windows::Graphics::ID2D1DeviceContext& context, ViewerPageItem& item,
                  std::size_t nPosition);
    void DrawRemnants(Windows::Graphics::ID2D1DeviceContext& context, const ViewerPageItem& item,
                      std::size_t nPosition) const;
    void DrawBlock(Windows::Graphics::ID2D1DeviceContext& context, ViewerPageItemBlock& block,
                   std::size_t nPosition) const;
    concurrency::task<void> FinishWhenRendered(std::vector<concurrency::task<void>> renders,
                                               concurrency::cancellation_token token,
                                               const char* szOperation);
    std::string LogPlace(const char* szOperation) const; // "Class::Operation"
    std::shared_ptr<WrapperDeviceRect> MakeDeviceRect(std::int32_t nPageIndex,
                                                      const ViewerPageItem* pItem) const;
    void ShowPageColor();

    std::weak_ptr<IViewerOwner> m_wkOwner;
    const ViewerTraits& m_traits;
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> m_pDispatcher;
    double m_dbCanvasHeight = 0.0; // as last read; the layout's may be narrowed
    mutable std::int32_t m_nPageCount = 0;
    Color m_crPageBackground;
    Color m_crPageForeground;
    bool m_bNightMode = false;
    CancellationGeneration m_ctsRender;
    CancellationGeneration m_ctsDestination; // a destination that waits for its page
    std::shared_ptr<Windows::Graphics::ID2D1Bitmap> m_pScaleSnapshot;
    bool m_bShowScaleSnapshot = false;
    bool m_bAskingSize = false;
    std::uint64_t m_nClosings = 0;
    bool m_bDisposed = false;
};

}
