// What a laid-out page and its blocks ask of the viewer that shows them.
//
// They hold it weakly; chains in flight hold it for their length.
// Threads: the UI thread only. Units: device pixels.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/Geometry.h"
#include "viewers/core/PageGeometry.h"

namespace Windows::UI::Core {
class CoreDispatcher;
}

namespace velko::vkit {

class PDFViewCanvas;
class VLK_Document;
class ViewerPageItem;
struct D2DBitmapSource;

// What a block is rendered with; 0xAARRGGBB.
struct BlockColors {
    std::uint32_t nBackground = 0xFFFFFFFFU;
    std::uint32_t nForeground = 0xFF000000U;
};

class IPageItemHost {
public:
    virtual ~IPageItemHost() = default;

    virtual ScreenSize LayoutScreen() const = 0;
    // The canvas as a rectangle at the origin: what touches it is displayed.
    virtual Windows::Foundation::Rect ScreenRect() const = 0;

    // The size of a page in points, zeros for a page that has none. A handler
    // of the host may run meanwhile; raises `ObjectDisposedException` when it
    // closed the viewer.
    virtual VLK_PageSize PageSizeOf(std::int32_t nPageIndex) = 0;

    // Empty once the viewer or the document is disposed.
    virtual std::shared_ptr<VLK_Document> LiveDocument() const = 0;
    virtual std::shared_ptr<PDFViewCanvas> Canvas() const = 0;
    virtual std::shared_ptr<Windows::UI::Core::CoreDispatcher> Dispatcher() const = 0;

    virtual BlockColors RenderColors() const = 0;

    // The bitmap that stands in for a block during a zoom; empty without one.
    virtual std::shared_ptr<D2DBitmapSource> FindScaleBitmap(std::int32_t nPageIndex,
                                                             std::int32_t nBlockId) const = 0;

    // Keeps what the page's blocks show: it is about to be cut into others.
    virtual void KeepStandIns(const ViewerPageItem& item) = 0;

    // Paints one frame; raises what the canvas or a handler of the host raises.
    virtual void PaintCanvas() = 0;
};

}
