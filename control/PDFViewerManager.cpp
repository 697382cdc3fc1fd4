#include "control/PDFViewerManager.h"

#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "control/VelkoViewControl.h"
#include "document/VLK_Document.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/core/Modes.h"
#include "viewers/reflow/PDFReflowPagesViewer.h"
#include "viewers/single/PDFSinglePagesViewer.h"

namespace velko::vkit {

namespace {

bool Holds(const std::vector<std::int32_t>& pages, std::int32_t nPage) {
    return std::find(pages.begin(), pages.end(), nPage) != pages.end();
}

}

PDFViewerManager::PDFViewerManager(std::weak_ptr<VelkoViewControl> wkViewControl)
    : m_pViewControl(std::move(wkViewControl)) {}

PDFViewerManager::~PDFViewerManager() {
    if (!m_pViewer) {
        return;
    }
    // Not here: one of the viewer's own operations may be what ends the control.
    try {
        Platform::Environment()->MainDispatcher()->RunAsync(
            Windows::UI::Core::CoreDispatcherPriority::normal,
            [pViewer = std::move(m_pViewer)] { pViewer->Dispose(); });
    } catch (const Platform::Exception&) {
        Platform::Debug::OutputDebugString("PDFViewerManager: no dispatcher for the last viewer\n");
    }
}

std::shared_ptr<PDFViewCtrl> PDFViewerManager::Control() const {
    const auto pViewControl = m_pViewControl.lock();
    return pViewControl ? pViewControl->BaseViewContorl() : nullptr;
}

std::shared_ptr<PDFPagePoint> PDFViewerManager::DevicePointToPagePoint(
    Windows::Foundation::Point pt) {
    if (const auto pViewer = m_pViewer) {
        return pViewer->DevicePointToPagePoint(pt);
    }
    auto pResult = std::make_shared<PDFPagePoint>();
    pResult->pt = pt;
    return pResult;
}

void PDFViewerManager::UpdateViewer() {
    if (const auto pViewer = m_pViewer) {
        pViewer->UpdateViewer();
    }
}

void PDFViewerManager::SetViewer(std::shared_ptr<IPDFViewer> pViewer) {
    if (pViewer == m_pViewer) {
        return;
    }
    StopWheelZoom();
    m_pViewer = std::move(pViewer);
    m_wkViewerDocument.reset();
    m_told.clear();
    m_untold.clear();
    m_bTelling = false;
}

void PDFViewerManager::StopWheelZoom() {
    if (const auto pViewControl = m_pViewControl.lock()) {
        pViewControl->StopWheelZoom();
    }
}

std::int32_t PDFViewerManager::ModeToShow(std::int32_t nMode) const {
    const auto fnHasViewer = [](std::int32_t n) {
        return n >= LayoutMode::kContinuous && n <= LayoutMode::kReflow;
    };
    const std::int32_t nOther =
        fnHasViewer(m_nLayoutMode) ? m_nLayoutMode : LayoutMode::kContinuous;
    return fnHasViewer(nMode) ? nMode : nOther;
}

bool PDFViewerManager::Shows(const std::shared_ptr<VLK_Document>& pDocument) const {
    return m_pViewer && pDocument && m_wkViewerDocument.lock() == pDocument;
}

bool PDFViewerManager::ChangeViewer(std::int32_t nMode,
                                    const std::shared_ptr<VLK_Document>& pDocument,
                                    const std::shared_ptr<PDFViewCanvas>& pCanvas) {
    if (ModeToShow(nMode) != nMode) {
        return false;
    }
    const auto pSelf = shared_from_this();
    m_nLayoutMode = nMode;
    if (const auto pOld = m_pViewer) {
        SetViewer(nullptr);
        pOld->CloseViewer();
    }
    SetViewer(MakeViewer(nMode, pDocument, pCanvas));
    m_wkViewerDocument = pDocument;
    return true;
}

std::shared_ptr<IPDFViewer> PDFViewerManager::MakeViewer(
    std::int32_t nMode, const std::shared_ptr<VLK_Document>& pDocument,
    const std::shared_ptr<PDFViewCanvas>& pCanvas) const {
    const auto pControl = Control();
    const auto pOwner = pControl ? pControl->AsViewerOwner() : nullptr;
    if (nMode == LayoutMode::kSinglePage) {
        return std::make_shared<PDFSinglePagesViewer>(pOwner, pDocument, pCanvas);
    }
    if (nMode == LayoutMode::kReflow) {
        auto pViewer = std::make_shared<PDFReflowPagesViewer>(pOwner, pDocument, pCanvas);
        pViewer->Style(m_reflowStyle);
        return pViewer;
    }
    return std::make_shared<PDFConuiunePagesViewer>(pOwner, pDocument, pCanvas);
}

void PDFViewerManager::TextStyle(const ReflowStyle& style) {
    const ReflowStyle before = std::exchange(m_reflowStyle, style);
    const auto pViewer = std::dynamic_pointer_cast<PDFReflowPagesViewer>(m_pViewer);
    if (!pViewer || before == style) {
        return;
    }
    pViewer->Style(style);
    if (before.bShowPicture != style.bShowPicture || before.dbWidestLine != style.dbWidestLine) {
        ChangePages([](IPDFViewer& viewer) { viewer.InvaildateLayout(); });
    }
    if (before.bUsesPageColors != style.bUsesPageColors) {
        pViewer->RedrawScreen();
    }
}

// --- operations with page events ---

void PDFViewerManager::InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                  double dbOffsetY) {
    ChangePages(
        [&](IPDFViewer& viewer) { viewer.InitLayOut(nPageIndex, dbScale, dbOffsetX, dbOffsetY); });
}

void PDFViewerManager::GotoPage(std::int32_t nPageIndex) {
    ChangePages([&](IPDFViewer& viewer) { viewer.GotoPage(nPageIndex); });
}

void PDFViewerManager::MoveScreen(double dbOffsetY, double dbOffsetX) {
    ChangePages([&](IPDFViewer& viewer) { viewer.MoveScreen(dbOffsetY, dbOffsetX); });
}

void PDFViewerManager::PageScaled(Windows::Foundation::Point point, double dbScale,
                                  bool bIsInertial, bool isScrollComplete) {
    ChangePages([&](IPDFViewer& viewer) {
        viewer.PageScaled(point, dbScale, bIsInertial, isScrollComplete);
    });
}

void PDFViewerManager::RunOperation(const std::function<void()>& fnOperation) {
    TrackPages([&](IPDFViewer&) { fnOperation(); });
}

// --- operations without ---

void PDFViewerManager::InvaildateLayout() {
    ChangePlace(&IPDFViewer::InvaildateLayout);
}

void PDFViewerManager::RotateViewer(std::int32_t nRotate) {
    ChangePlace([&](IPDFViewer& viewer) { viewer.RotateViewer(nRotate); });
}

void PDFViewerManager::PageSizeChanged(double dbOffsetX, double dbOffsetY) {
    ChangePlace([&](IPDFViewer& viewer) { viewer.PageSizeChanged(dbOffsetX, dbOffsetY); });
}

void PDFViewerManager::GotoDestination(std::int32_t nPageIndex, std::int32_t nKind,
                                       const std::vector<float>& values) {
    ChangePlace([&](IPDFViewer& viewer) { viewer.GotoDestination(nPageIndex, nKind, values); });
}

std::vector<std::int32_t> PDFViewerManager::GetVisiblePages() const {
    return m_pViewer ? m_pViewer->GetVisiblePages() : Pages();
}

// --- around them ---

template <class F>
void PDFViewerManager::ChangePages(F fnOperation) {
    StopWheelZoom();
    TrackPages(fnOperation);
}

template <class F>
void PDFViewerManager::ChangePlace(F fnOperation) {
    const auto pSelf = shared_from_this();
    StopWheelZoom();
    if (const auto pViewer = m_pViewer) {
        RunAtWork(pViewer, fnOperation);
    }
}

template <class F>
void PDFViewerManager::TrackPages(F fnOperation) {
    const auto pSelf = shared_from_this();
    const auto pControl = Control(); // the host may let go of it in any event
    const auto pViewer = m_pViewer;
    if (!pViewer) {
        return;
    }
    const Pages before = pViewer->GetVisiblePages();
    if (m_nStepsRunning == 0) {
        m_told = before;
    }
    Platform::FirstFailure step;
    ++m_nStepsRunning;
    step.Run([&] {
        if (RunAtWork(pViewer, fnOperation) && m_pViewer == pViewer) {
            RaisePageEvents(pViewer, before, pViewer->GetVisiblePages());
        }
    });
    --m_nStepsRunning;
    step.Rethrow();
}

// False when the viewer's document was closed, by a failed open or by a host's
// handler meanwhile: what the viewer makes of that nobody needs to hear.
template <class F>
bool PDFViewerManager::RunAtWork(const std::shared_ptr<IPDFViewer>& pViewer, F fnOperation) {
    try {
        std::invoke(fnOperation, *pViewer);
        return true;
    } catch (const Platform::ObjectDisposedException&) {
        if (IsAtWork(pViewer)) {
            throw;
        }
        return false;
    }
}

bool PDFViewerManager::IsAtWork(const std::shared_ptr<IPDFViewer>& pViewer) const {
    const auto pDocument = m_wkViewerDocument.lock();
    return m_pViewer == pViewer && !(pDocument && pDocument->IsDisposed());
}

// What a handler of these events asks for is told when they are over, so that
// each of several hosts hears of all steps in their order.
void PDFViewerManager::RaisePageEvents(const std::shared_ptr<IPDFViewer>& pViewer,
                                       const Pages& before, const Pages& after) {
    m_untold.push_back({before, after});
    if (m_bTelling) {
        return;
    }
    m_bTelling = true;
    Platform::FirstFailure telling;
    telling.Run([&] {
        while (m_pViewer == pViewer && !m_untold.empty()) {
            const Step step = m_untold.front();
            m_untold.erase(m_untold.begin());
            RaiseEventsOf(step, pViewer);
        }
    });
    if (m_pViewer == pViewer) {
        m_untold.clear();
        m_bTelling = false;
    }
    telling.Rethrow();
}

void PDFViewerManager::RaiseEventsOf(const Step& step, const std::shared_ptr<IPDFViewer>& pViewer) {
    const auto pControl = Control();
    if (!pControl) {
        return;
    }
    const auto pPdfDoc = pControl->GetPDFDoc();
    for (const std::int32_t nPage : Pages(m_told)) {
        if (m_pViewer == pViewer && !Holds(step.after, nPage)) {
            std::erase(m_told, nPage);
            pControl->PageInvisibleEvent.raise(
                pControl, std::make_shared<PageInvisibleEventArgs>(pPdfDoc, nPage));
        }
    }
    for (const std::int32_t nPage : step.after) {
        if (m_pViewer == pViewer && !Holds(m_told, nPage)) {
            m_told.push_back(nPage);
            pControl->PageVisibleEvent.raise(
                pControl, std::make_shared<PageVisibleEventArgs>(pPdfDoc, nPage));
        }
    }
    if (m_pViewer == pViewer && !pControl->PageChangedEvent.empty()) {
        pControl->PageChangedEvent.raise(
            pControl, std::make_shared<PageChangedEventArgs>(pPdfDoc, step.before, step.after));
    }
}

}
