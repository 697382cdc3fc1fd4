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

    virtual void PageScaled(Point pCentrePt, double dbScale, bool bIsInertial,
                            bool isScrollComplete) = 0;
    virtual void MoveScreen(double dbOffsetY, double dbOffsetX) = 0;
    virtual void RotateViewer(std::int32_t nRotate) = 0;
    virtual void InvaildateLayout() = 0;
    virtual void InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                            double dbOffsetY) = 0;
    virtual void UpdateViewer() = 0;
    // OnRenderCanvas: see ICanvasClient
    virtual void CloseViewer() = 0;
    virtual void GotoPage(std::int32_t nPageIndex) = 0;
    virtual std::int32_t GetCurrentPageIndex() = 0;
    virtual float GetScale() = 0;
    virtual void SetScale(float fScale) = 0;
    virtual float GetMinScale() = 0;
    virtual float GetMaxScale() = 0;
    virtual std::int32_t GetRotate() = 0;
    virtual void SetRotate(std::int32_t nRotate) = 0;
    virtual std::shared_ptr<PagePosition> GetPagePosition() = 0;
    virtual std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Point pt) = 0;
    virtual std::shared_ptr<Render_PageScreenOffsetInfo> GetPageScreenOffset(
        std::int32_t nPageIndex) = 0;
    virtual std::shared_ptr<WrapperDevicePoint> PagePointToDevicePoint(std::int32_t nPageIndex,
                                                                       Point pt) = 0;
    virtual std::shared_ptr<WrapperDeviceRect> PageRectToDeviceRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual void AlignPageAfterScroll(double dbOffsetY, double dbOffsetX) = 0;
    virtual void ClearPagesBitmap() = 0;
    virtual void PageSizeChanged(double dbOffsetX, double dbOffsetY) = 0;
    virtual void GotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                                 const std::vector<float>& values) = 0;
    virtual void SetNightMode(bool bNightMode) = 0;
    virtual void RedrawScreen() = 0;
    virtual void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) = 0;
    virtual std::shared_ptr<WrapperDeviceRect> PageRectToScreenRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual std::shared_ptr<WrapperDeviceRect> ScreenRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual bool IsPointInPage(Point pt) = 0;
    virtual std::int32_t GetPageIndexAtPoint(Point pt) = 0;
    virtual Point AdjustPointInPage(Point pt, std::int32_t nPageIndex) = 0;
    virtual Rect GetPageRectAtPoint(Point pt, std::int32_t nPageIndex) = 0;
    // ClearCanvas: see ICanvasClient
    virtual void ClearScreen() = 0;
    virtual std::shared_ptr<WrapperDeviceRect> DeviceRectToPageRect(std::int32_t nPageIndex,
                                                                    const Rect& rc) = 0;
    virtual std::array<double, 6> GetDisplayMatrix(std::int32_t nPageIndex) = 0;
    virtual void CancelRender() = 0;
    virtual Color GetPageBackgroundColor() = 0;
    virtual void SetPageBackgroundColor(Color color) = 0;
    virtual Color GetPageForegroundColor() = 0;
    virtual void SetPageForegroundColor(Color color) = 0;
    virtual void SetPageColors(Color background, Color foreground) = 0;
    virtual void SaveViewerState(PropertySet& values) = 0;
    virtual std::vector<std::int32_t> GetVisiblePages() = 0;

    // Closes the viewer and lets go of document, canvas and control.
    virtual void Dispose() = 0;
};

}
