// The one interface behind which the page viewers stand: continuous, one page
// at a time, reflowed text.
//
// Lifetime: made with a document and a canvas (both shared) and the control
// (held weakly). Nothing is laid out until `InitLayOut` or `PageSizeChanged`.
// Order of calls: construct, `InitLayOut`, any moves, `CancelRender` when it
// stops showing, `SaveViewerState` to save, `CloseViewer`, `Dispose`.
// Units: points and rectangles are logical (canvas units), except in the raw
// operations (`PageScaled`, `PageRectToScreenRect`, `ScreenRectToPageRect`) and
// for offsets, which are device pixels. Page space is the file's user space.
// Threads: UI thread only. Bitmaps arrive later than the layout.
// Errors: after `Dispose` every operation raises `ObjectDisposedException`;
// without a layout operations do nothing or answer empty.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/foundation/Color.h"
#include "platform/foundation/Geometry.h"
#include "platform/foundation/PropertyValue.h"
#include "surface/ICanvasClient.h"
#include "viewers/core/Records.h"

namespace velko::vkit {

class IPDFViewer : public ICanvasClient {
public:
    using Point = Windows::Foundation::Point;
    using Rect = Windows::Foundation::Rect;
    using Color = Windows::UI::Color;
    using PropertySet = Windows::Foundation::Collections::PropertySet;

    // --- changes of the layout ---
    // The layout has changed when these return; bitmaps come later. Each but a
    // zoom and a drag's release ends a zoom that is open, and its backdrop.

    // A step of a zoom that keeps the page point under the centre (device
    // pixels) in its place. Nothing is rendered before the last step,
    // `isScrollComplete`. The scale is limited to `GetMaxScale`; callers keep to
    // `GetMinScale`. One that is no scale (0, negative, no number) keeps the
    // present one. `bIsInertial` is told in the log alone.
    virtual void PageScaled(Point pCentrePt, double dbScale, bool bIsInertial,
                            bool isScrollComplete) = 0;
    // Moves the content by device pixels, of any number: a positive Y shows later
    // pages, a positive X what lies to the right. Stops at the document's ends.
    virtual void MoveScreen(double dbOffsetY, double dbOffsetX) = 0;
    // Turns all pages to that rotation (as `SetRotate`), keeping the current one.
    virtual void RotateViewer(std::int32_t nRotate) = 0;
    // Lays out for the size that the canvas has now: in the same orientation the
    // first page keeps its place, in another one the current page is fitted.
    virtual void InvaildateLayout() = 0;
    // The first layout, at a page; offsets are those of the page's top left on
    // the screen. A scale of 0 asks for a fitting one; on the desktop family it
    // always fits.
    virtual void InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                            double dbOffsetY) = 0;
    // Paints a frame of what there is; renders nothing.
    virtual void UpdateViewer() = 0;
    // OnRenderCanvas: see ICanvasClient
    // Drops the layout and ends what is under way; `InitLayOut` begins anew.
    virtual void CloseViewer() = 0;
    // Brings the page to the screen's top, as far as the document's end allows.
    virtual void GotoPage(std::int32_t nPageIndex) = 0;

    // --- facts ---
    virtual std::int32_t GetCurrentPageIndex() = 0; // that is read; 0 without a layout
    virtual float GetScale() = 0;                   // 1.0 is the actual size, or the fit (mobile)
    virtual void SetScale(float fScale) = 0;        // for pages laid out from now on
    virtual float GetMinScale() = 0;
    virtual float GetMaxScale() = 0;
    virtual std::int32_t GetRotate() = 0; // quarter turns clockwise, 0 to 3
    // The remainder by 4 without its sign (-1 is 1); for pages laid out from now on.
    virtual void SetRotate(std::int32_t nRotate) = 0;
    // Of the first page, device pixels; empty without a layout. In the middle of
    // a page's turn the page that leaves to the left goes.
    virtual std::shared_ptr<PagePosition> GetPagePosition() = 0;

    // --- conversions; records say whether the page is laid out ---
    virtual std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Point pt) = 0;
    virtual std::shared_ptr<Render_PageScreenOffsetInfo> GetPageScreenOffset(
        std::int32_t nPageIndex) = 0; // device pixels; empty when it is not laid out
    virtual std::shared_ptr<WrapperDevicePoint> PagePointToDevicePoint(std::int32_t nPageIndex,
                                                                       Point pt) = 0;
    virtual std::shared_ptr<WrapperDeviceRect> PageRectToDeviceRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;

    // A drag ended; both are its whole way in device pixels, start minus end.
    // Decides whether a page is turned; does nothing in a column.
    virtual void AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) = 0;
    // Empties the list of laid-out pages, keeping the place for the next layout.
    virtual void ClearPagesBitmap() = 0;
    // A move after a change of size; note the order, X first, and that this is a
    // movement: single pages turn no page by it.
    virtual void PageSizeChanged(double dbOffsetX, double dbOffsetY) = 0;
    // `nZoomMode` is the kind of the destination (`DestinationKind`), not a fit.
    // The values are in its order; too few raise `OutOfBoundsException`. A page
    // that there is not does nothing.
    virtual void GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                 const std::vector<float>& values) = 0;

    // --- renders ---
    virtual void SetNightMode(bool bNightMode) = 0; // takes effect with `RedrawScreen`
    // Renders anew what is laid out; the old bitmaps show until then.
    virtual void RedrawScreen() = 0;
    virtual void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) = 0; // the same for one page

    virtual std::shared_ptr<WrapperDeviceRect> PageRectToScreenRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual std::shared_ptr<WrapperDeviceRect> ScreenRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual bool IsPointInPage(Point pt) = 0;
    virtual std::int32_t GetPageIndexAtPoint(Point pt) = 0; // -1 beside the pages
    // Where an icon of 24 pixels at scale 1.0 goes so that it does not leave the
    // page at the right or below; (-1, -1) when the page is not laid out.
    virtual Point AdjustPointInPage(Point pt, std::int32_t nPageIndex) = 0;
    // Of that page, or with -1 of the one under the point; zeros if there is none.
    virtual Rect GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) = 0;
    // ClearCanvas: see ICanvasClient
    virtual void ClearScreen() = 0; // presents an empty frame
    virtual std::shared_ptr<WrapperDeviceRect> DeviceRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    // From page space to device pixels: a, b, c, d, e, f; the identity when the
    // page is not laid out.
    virtual std::array<double, 6> GetDisplayMatrix(std::int32_t nPageIndex) = 0;
    // Ends all renders; blocks without a bitmap stay blank until the next step.
    virtual void CancelRender() = 0;

    // --- the reader's colours, stored in the settings; no render but the last ---
    virtual Color GetPageBackgroundColor() = 0;
    virtual void SetPageBackgroundColor(Color color) = 0;
    virtual Color GetPageForegroundColor() = 0;
    virtual void SetPageForegroundColor(Color color) = 0;
    virtual void SetPageColors(Color background, Color foreground) = 0; // and redraws

    // Writes the place into the set; nothing without a layout.
    virtual void SaveViewerState(PropertySet& values) = 0;
    // Of all pages laid out, in their order; one of them may be in the gap above
    // the screen alone.
    virtual std::vector<std::int32_t> GetVisiblePages() = 0;

    // Closes the viewer and lets go of document, canvas and control.
    virtual void Dispose() = 0;
};

}
