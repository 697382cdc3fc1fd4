// Owns the current viewer, chooses its class by the layout mode, and turns
// every step that may change the set of visible pages into page events.
//
// Lifetime: made by `VelkoViewControl`, which it knows weakly; a viewer that is
// left in a manager that goes is disposed of in the UI thread's next turn.
// Layout modes: 1 to 3 have a viewer; a mode without one leaves all as it is.
// Threads: UI thread only. Units: as `IPDFViewer` says.
// Errors: a failing viewer operation raises, and no page event follows it; a
// viewer that outlived its document may fail for that without anybody hearing. A
// host's handler may close the document, bring another viewer or ask for another
// step in any event: the events of a viewer that has gone do not go on, those of
// the other step follow.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/reflow/ReflowStyle.h"

namespace velko::vkit {

class PDFViewCanvas;
class PDFViewCtrl;
class VLK_Document;
class VelkoViewControl;

class PDFViewerManager final : public std::enable_shared_from_this<PDFViewerManager> {
public:
    explicit PDFViewerManager(std::weak_ptr<VelkoViewControl> wkViewControl);
    ~PDFViewerManager();
    PDFViewerManager(const PDFViewerManager&) = delete;
    PDFViewerManager& operator=(const PDFViewerManager&) = delete;

    // Without a viewer: page 0 and the point as it is.
    std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Windows::Foundation::Point pt);
    void UpdateViewer();

    // The current viewer, empty when there is none. Setting one closes nothing.
    const std::shared_ptr<IPDFViewer>& GetViewer() const { return m_pViewer; }
    void SetViewer(std::shared_ptr<IPDFViewer> pViewer);

    // --- for the control and `VelkoViewControl` ---

    // 0 until the first `ChangeViewer`.
    std::int32_t LayoutMode() const { return m_nLayoutMode; }

    // The mode itself if it has a viewer, else the one in force, else the
    // continuous one.
    std::int32_t ModeToShow(std::int32_t nMode) const;
    // Whether the viewer was made on this document; not for an empty one.
    bool Shows(const std::shared_ptr<VLK_Document>& pDocument) const;

    // Closes the viewer and makes one for `nMode`, also when the mode stays. False
    // for a mode without a viewer: all stays as it is.
    bool ChangeViewer(std::int32_t nMode, const std::shared_ptr<VLK_Document>& pDocument,
                      const std::shared_ptr<PDFViewCanvas>& pCanvas);

    // Of every viewer of reflowed text; one that is there is laid out, or drawn, anew.
    const ReflowStyle& TextStyle() const { return m_reflowStyle; }
    void TextStyle(const ReflowStyle& style);

    // Each calls the viewer's operation of the name, then raises for the pages
    // that went out of sight, those that came into sight, and the change. A zoom
    // by the wheel that waits to settle is left to them.
    void InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX, double dbOffsetY);
    void GotoPage(std::int32_t nPageIndex);
    void MoveScreen(double dbOffsetY, double dbOffsetX);
    void PageScaled(Windows::Foundation::Point point, double dbScale, bool bIsInertial,
                    bool isScrollComplete);

    // Runs what a viewer put off as one step of the kind above.
    void RunOperation(const std::function<void()>& fnOperation);

    // The viewer's too, but no page event follows.
    void InvaildateLayout();
    void RotateViewer(std::int32_t nRotate);
    void PageSizeChanged(double dbOffsetX, double dbOffsetY);
    void GotoDestination(std::int32_t nPageIndex, std::int32_t nKind,
                         const std::vector<float>& values);

    std::vector<std::int32_t> GetVisiblePages() const;

private:
    using Pages = std::vector<std::int32_t>;

    // The visible pages around one operation.
    struct Step {
        Pages before;
        Pages after;
    };

    std::shared_ptr<IPDFViewer> MakeViewer(std::int32_t nMode,
                                           const std::shared_ptr<VLK_Document>& pDocument,
                                           const std::shared_ptr<PDFViewCanvas>& pCanvas) const;
    template <class F>
    void ChangePages(F fnOperation);
    template <class F>
    void TrackPages(F fnOperation);
    template <class F>
    void ChangePlace(F fnOperation);
    template <class F>
    bool RunAtWork(const std::shared_ptr<IPDFViewer>& pViewer, F fnOperation);
    void RaisePageEvents(const std::shared_ptr<IPDFViewer>& pViewer, const Pages& before,
                         const Pages& after);
    void RaiseEventsOf(const Step& step, const std::shared_ptr<IPDFViewer>& pViewer);
    std::shared_ptr<PDFViewCtrl> Control() const;
    bool IsAtWork(const std::shared_ptr<IPDFViewer>& pViewer) const;
    void StopWheelZoom();

    std::shared_ptr<IPDFViewer> m_pViewer;
    ReflowStyle m_reflowStyle;
    std::int32_t m_nLayoutMode = 0;
    std::weak_ptr<VelkoViewControl> m_pViewControl;
    std::weak_ptr<VLK_Document> m_wkViewerDocument; // what `ChangeViewer` made the viewer on
    int m_nStepsRunning = 0;                        // within one another
    Pages m_told;                                   // the pages that hosts know as visible
    std::vector<Step> m_untold;                     // in the order in which they were made
    bool m_bTelling = false;                        // the events of the current viewer's steps
};

}
