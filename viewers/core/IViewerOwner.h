// What a viewer may ask of the control that shows it.
//
// The viewer holds it weakly and does nothing once it is gone.
// Threads: UI thread only. Units: as each operation says.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace velko::vkit {

class RenderCanvasEventArgs;

class IViewerOwner {
public:
    virtual ~IViewerOwner() = default;

    // Lets the host paint over a page just drawn. Called between begin and
    // end of drawing. An exception of the host passes through.
    virtual void RaiseRenderCanvas(const std::shared_ptr<RenderCanvasEventArgs>& pArgs) = 0;

    // The same for a page of reflowed text, over which no page space lies.
    virtual void RaiseReflowCanvas(const std::shared_ptr<RenderCanvasEventArgs>& /*pArgs*/) {}

    // The scale at which the current page fits the canvas; zoom mode 1 is fit
    // page, 2 fit width, 3 fit height, any other 1.0.
    virtual double GetFitScale(std::int32_t nZoomMode) = 0;

    // Tells the host that a page became available on the way to a destination.
    virtual void RaisePageLoaded(std::int32_t nPageIndex) = 0;

    // Runs a change of the layout that the viewer had to put off, with what goes
    // around such a change when a command makes it: the host hears which pages
    // went and which came.
    virtual void RunOperation(const std::function<void()>& fnOperation) { fnOperation(); }
};

}
