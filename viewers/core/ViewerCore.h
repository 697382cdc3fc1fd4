// What every viewer is, whatever it lays out: its life, who may call it when,
// the screen that it works against, scale, rotation and colours, and the
// conversions between the screen and the pages that are laid out.
//
// A derived viewer owns its items and tells of each the page, the rotation and
// the rectangle (`LaidOutPage`); it implements the `On...` half of the operations
// that change the layout. Those are never entered within one another: while the
// document is asked for a size, handlers of the host may run, and what they ask
// for is put off, in its order, until the asking has ended.
//
// Lifetime: held by a `shared_ptr`; what is under way keeps it alive, and ends
// as cancelled after `CloseViewer`. Threads: the UI thread only.
// Units: as `IPDFViewer` says; `m_dbScreenWidth` and the like device pixels.
// Errors: after `Dispose` every public operation raises
// `ObjectDisposedException`; a second `Dispose` does nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "document/PageTable.h"
#include "surface/PDFViewCanvas.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/IPageItemHost.h"
#include "viewers/core/IViewerOwner.h"
#include "viewers/core/LaidOutPage.h"
#include "viewers/core/PageGeometry.h"

namespace velko::vkit {

class VLK_Document;

class ViewerCore : public IPDFViewer, public std::enable_shared_from_this<ViewerCore> {
public:
    // --- operations that change the layout ---
    void PageScaled(Point pCentrePt, double dbScale, bool bIsInertial, bool isScrollComplete) final;
    void MoveScreen(double dbOffsetY, double dbOffsetX) final;
    void RotateViewer(std::int32_t nRotate) final;
    void InvaildateLayout() final;
    void InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                    double dbOffsetY) final;
    void GotoPage(std::int32_t nPageIndex) final;
    void AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) final;
    void PageSizeChanged(double dbOffsetX, double dbOffsetY) final;
    void GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                         const std::vector<float>& values) final;

    // --- life ---
    void CloseViewer() override;
    void Dispose() final;
    std::shared_ptr<void> KeepAlive() override { return shared_from_this(); }

    // --- facts ---
    float GetScale() override;
    void SetScale(float fScale) override;
    float GetMinScale() override;
    float GetMaxScale() override;
    std::int32_t GetRotate() override;
    void SetRotate(std::int32_t nRotate) override;
    std::shared_ptr<PagePosition> GetPagePosition() override;
    std::vector<std::int32_t> GetVisiblePages() override;
    void SaveViewerState(PropertySet& values) override;

    // --- colours ---
    void SetNightMode(bool bNightMode) override;
    Color GetPageBackgroundColor() override;
    void SetPageBackgroundColor(Color color) override;
    Color GetPageForegroundColor() override;
    void SetPageForegroundColor(Color color) override;
    void SetPageColors(Color background, Color foreground) override;

    // --- conversions ---
    std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Point pt) override;
    std::shared_ptr<Render_PageScreenOffsetInfo> GetPageScreenOffset(
        std::int32_t nPageIndex) override;
    std::shared_ptr<WrapperDevicePoint> PagePointToDevicePoint(std::int32_t nPageIndex,
                                                               Point pt) override;
    std::shared_ptr<WrapperDeviceRect> PageRectToDeviceRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::shared_ptr<WrapperDeviceRect> PageRectToScreenRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::shared_ptr<WrapperDeviceRect> ScreenRectToPageRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::shared_ptr<WrapperDeviceRect> DeviceRectToPageRect(std::int32_t nPageIndex,
                                                            const Rect& rc) override;
    std::array<double, 6> GetDisplayMatrix(std::int32_t nPageIndex) override;
    bool IsPointInPage(Point pt) override;
    std::int32_t GetPageIndexAtPoint(Point pt) override;
    Point AdjustPointInPage(Point pt, std::int32_t nPageIndex) override;
    Rect GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) override;

protected:
    // Any of the three may be empty.
    ViewerCore(std::weak_ptr<IViewerOwner> wkOwner, std::shared_ptr<VLK_Document> pDocument,
               std::shared_ptr<PDFViewCanvas> pCanvas);

    // --- what is laid out, in list order ---
    virtual std::size_t LaidOutCount() const = 0;
    virtual const LaidOutPage& LaidOut(std::size_t nPosition) const = 0;

    // --- what a viewer makes of the operations that change the layout ---
    // Called with finite numbers (but for a zoom's), never within one another.
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

    // Around them: before any change but a drag's release; and before and after
    // a change that goes to another place, which ends a zoom that is open.
    virtual void BeginChange() {}
    virtual void LeavePlace() {}
    virtual void ReachPlace() {}

    using Operation = std::function<void(ViewerCore&)>;

    // --- life ---
    virtual void OnClosed() = 0; // lets go of what is laid out
    void ThrowIfDisposed() const;
    bool IsDisposed() const { return m_bDisposed; }
    std::shared_ptr<IViewerOwner> Owner() const { return m_wkOwner.lock(); }
    const std::shared_ptr<Windows::UI::Core::CoreDispatcher>& UiDispatcher() const {
        return m_pDispatcher;
    }

    // Runs a change of the layout that the viewer makes by itself, like one that
    // was put off: with its page events. Nothing after disposal.
    void ChangeByItself(Operation fnChange);

    // Runs what may ask the document for sizes, and hence handlers of the host,
    // with changes of the layout put off. Raises `ObjectDisposedException` when
    // a handler closed the viewer.
    void WhileAsking(const std::function<void()>& fnAsk);

    // --- the document and the screen ---
    // Empty once the viewer or the document is disposed.
    std::shared_ptr<VLK_Document> OpenDocument() const;
    // Whether there is a document and a canvas to lay out with.
    bool CanLayOut() const { return OpenDocument() && m_pCanvas; }
    std::int32_t PageCount() const; // the last one known once the document is gone
    bool IsPage(std::int32_t nPageIndex) const {
        return nPageIndex >= 0 && nPageIndex < PageCount();
    }
    bool IsLastPage(std::int32_t nPageIndex) const { return nPageIndex == PageCount() - 1; }
    // In points, zeros for a page that has none. Asks: see `WhileAsking`.
    VLK_PageSize AskPageSize(std::int32_t nPageIndex);
    // The scale at which the control fits the page; the present one without it.
    float AskFitScale();

    // Reads the canvas's size into the layout's.
    void RefreshScreenSize();
    float CanvasHeight() const;
    float CanvasWidth() const;
    ScreenSize Screen() const { return {m_dbScreenWidth, m_dbScreenHeight}; }
    Rect CanvasRect() const; // at the origin, as last read
    // Whether it stays upright, or lying, at the size that the canvas has now.
    bool KeepsOrientation() const;

    // --- scale ---
    // The smallest to zoom out to: what is offered, or the present scale where
    // that is smaller still, as that of a large sheet which fits.
    double LeastScale();

    // --- colours ---
    // What a page is shown in, with the night mode in it; 0xAARRGGBB.
    BlockColors PageColors() const;

    // --- conversions ---
    // The first of that page; empty when it is not laid out.
    const LaidOutPage* FindLaidOut(std::int32_t nPageIndex) const;
    Point ToDevice(Point pt) const;
    Point ToLogical(Point pt) const;
    Point PageToDevice(const LaidOutPage& item, Point pt) const;
    Point DeviceToPage(const LaidOutPage& item, Point pt) const;
    Rect PageToDevice(const LaidOutPage& item, const Rect& rc) const;

    // Pages of a smaller scale have no pixel to be seen by, or to be caught by.
    // Not the smallest that is offered: callers keep to that.
    static constexpr float kLeastScale = 0.01F;

    float m_fScale = 1.0F;
    std::int32_t m_nRotate = 0;
    std::shared_ptr<VLK_Document> m_pDocument;
    std::shared_ptr<PDFViewCanvas> m_pCanvas;
    double m_dbScreenWidth = 0.0;
    double m_dbScreenHeight = 0.0;

private:
    // Runs it, or puts it off while the document is asked.
    void WhenNotAsking(Operation fnOperation);
    void ChangeLayout(Operation fnChange);
    void ChangePlace(Operation fnChange);
    void PostPutOff();
    void RunPutOff();

    const LaidOutPage* FindConvertible(std::int32_t nPageIndex) const;
    std::shared_ptr<WrapperDeviceRect> MakeDeviceRect(std::int32_t nPageIndex,
                                                      const LaidOutPage* pItem) const;
    void ShowPageColor();

    std::weak_ptr<IViewerOwner> m_wkOwner;
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> m_pDispatcher;
    double m_dbCanvasHeight = 0.0; // as last read; the layout's may be narrowed
    mutable std::int32_t m_nPageCount = 0;
    Color m_crPageBackground;
    Color m_crPageForeground;
    bool m_bNightMode = false;
    std::vector<Operation> m_putOff;
    bool m_bPutOffPosted = false;
    bool m_bAskingSize = false;
    std::uint64_t m_nClosings = 0;
    bool m_bDisposed = false;
};

}
