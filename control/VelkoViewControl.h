// The part of the control that holds the drawing canvas and the viewer manager,
// and that turns gestures, the wheel and size changes into scrolling and zoom.
//
// Lifetime: stands in the template of a `PDFViewCtrl`, which it finds by
// walking up the tree and then knows weakly. After `Unloaded` its manager is
// gone and all handlers do nothing.
// Units: positions of events are logical and are multiplied by the panel's
// composition scale, read at each event. Threads: UI thread only.
// Errors: a failure in a handler goes to whoever raised the event.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "control/LiveObject.h"
#include "platform/foundation/Geometry.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Input.h"
#include "platform/ui/SwapChainPanel.h"

namespace Windows::UI::Xaml {
class DispatcherTimer;
}

namespace velko::vkit {

class IPDFViewer;
class PDFViewCanvas;
class PDFViewCtrl;
class PDFViewerManager;

class VelkoViewControl final : public Windows::UI::Xaml::Controls::UserControl, private LiveObject {
public:
    using Panel = Windows::UI::Xaml::Controls::SwapChainPanel;

    // Builds the parts from the markup and makes the canvas.
    static std::shared_ptr<VelkoViewControl> Create();
    ~VelkoViewControl() override;

    const std::shared_ptr<PDFViewCanvas>& ViewCtrl() const { return m_pViewCtrl; }
    const std::shared_ptr<PDFViewerManager>& PageViewMgr() const { return m_pPageViewMgr; }
    std::shared_ptr<PDFViewCtrl> BaseViewContorl() const { return m_wkBaseViewContorl.lock(); }

    // The panel that the canvas draws on.
    const std::shared_ptr<Panel>& CanvasPanel() const { return m_pPanel; }

    // Looks for the control above this element; without one what was found stays.
    void FindBaseViewContorl();

    // A zoom by the wheel that waits to settle is left as it is: what comes now
    // ends it in its own way.
    void StopWheelZoom();

    // Ends the gesture that is open, if one is, as if the fingers were lifted; what
    // still comes of it begins another where it stands.
    void CompleteGesture();

    // Handlers of the panel's events.
    void OnManipulationStarted(Windows::UI::Xaml::Input::ManipulationStartedRoutedEventArgs& args);
    void OnManipulationDelta(Windows::UI::Xaml::Input::ManipulationDeltaRoutedEventArgs& args);
    void OnManipulationCompleted(
        Windows::UI::Xaml::Input::ManipulationCompletedRoutedEventArgs& args);
    void OnPointerWheelChanged(Windows::UI::Xaml::Input::PointerRoutedEventArgs& args);
    void OnViewControlSizeChanged(const Windows::UI::Xaml::SizeChangedEventArgs& args);

private:
    using Point = Windows::Foundation::Point;

    VelkoViewControl() = default;
    void Initialize();
    void LoadParts();
    void ConnectEvents();
    void OnUnloaded();
    void OnWheelZoomTick();

    // From its start to its completion; logical positions.
    struct Gesture {
        Point ptStart;
        Point ptLast;                   // of the pan
        std::optional<Point> ptPinched; // where fingers last spread or closed
        float fLeastScale = 0.0F;       // to which it may zoom out
    };

    bool IsInputOff() const;
    Point ToDevice(Point pt) const;
    std::shared_ptr<IPDFViewer> Viewer() const;
    float Scale() const;
    float LeastScale() const;
    float MostScale() const;

    Gesture& OpenGesture(Point ptPosition);
    void EndGesture(Point ptPosition, bool bHasPinched);
    void PanBy(Point ptPosition, bool bHasPinched);
    void PinchAt(Point ptPosition, float fScale);
    void TurnPageByWheel(int nDelta);
    void ZoomByWheel(Point ptDevice, int nDelta);
    void SettleWheelZoom();

    std::shared_ptr<Panel> m_pPanel;
    std::shared_ptr<PDFViewCanvas> m_pViewCtrl;
    std::shared_ptr<PDFViewerManager> m_pPageViewMgr;
    std::weak_ptr<PDFViewCtrl> m_wkBaseViewContorl;

    std::optional<Gesture> m_gesture; // the one that is open
    std::shared_ptr<Windows::UI::Xaml::DispatcherTimer> m_pWheelZoomTimer;
    Point m_ptWheelZoom; // device pixels
    double m_dbWheelZoomScale = 0.0;
    std::uint64_t m_nWheelStops = 0; // counts what came between or after wheel zooms
};

}
