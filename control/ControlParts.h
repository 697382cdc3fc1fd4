// A look inside a control: the parts that it is made of, and what it keeps to
// itself. For the control's own parts, and for programs and tests that watch it;
// a host has everything that it needs in `PDFViewCtrl`.
//
// Lifetime: refers to the control, and is thrown away after the look.
// Threads: UI thread only. Errors: as the control's operations.
#pragma once

#include <memory>

namespace velko::vkit {

class IPDFViewer;
class PDFViewCtrl;
class PDFViewerManager;
class PasswordDialog;
class VLK_Document;
class VelkoViewControl;
struct PDFViewerState;

class ControlParts {
public:
    explicit ControlParts(PDFViewCtrl& control) : m_control(control) {}

    std::shared_ptr<PDFViewerManager> PageViewMgr() const; // empty without a template in a tree
    std::shared_ptr<IPDFViewer> Viewer() const;            // empty when none is shown
    std::shared_ptr<VelkoViewControl> ViewControl() const; // empty before the template
    std::shared_ptr<VLK_Document> Document() const;        // empty when none is attached
    std::shared_ptr<PDFViewerState> ViewerState() const;   // the last that was read, or empty
    std::shared_ptr<PasswordDialog> OpenPasswordDialog() const; // empty when none is open
    bool IsProgressRingVisible() const;

private:
    PDFViewCtrl& m_control;
};

}
