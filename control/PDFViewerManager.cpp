#include "control/PDFViewerManager.h"

#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "control/VelkoViewControl.h"
#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "viewers/continuous/PDFConuiunePagesViewer.h"
#include "viewers/core/Modes.h"
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
}

void PDFViewerManager::StopWheelZoom() {
    if (const auto pViewControl = m_pViewControl.lock()) {
        pViewControl->StopWheelZoom();
    }
}

void PDFViewerManager::ChangeViewer(std::int32_t nMode,
                                    const std::shared_ptr<VLK_Document>& pDocument,
                                    const std::shared_ptr<PDFViewCanvas>& pCanvas) {
    const auto pSelf = shared_from_this();
    m_nLayoutMode = nMode;
    if (const auto pOld = m_pViewer) {
        SetViewer(nullptr);
        pOld->CloseViewer();
    }
    if (auto pNew = MakeViewer(nMode, pDocument, pCanvas)) {
        SetViewer(std::move(pNew));
        m_wkViewerDocument = pDocument;
    }
}

// Empty for a mode that there is not.
std::shared_ptr<IPDFViewer> PDFViewerManager::MakeViewer(
    std::int32_t nMode, const std::shared_ptr<VLK_Document>& pDocument,
    const std::shared_ptr<PDFViewCanvas>& pCanvas) const {
    const std::weak_ptr<IViewerOwner> wkOwner = Control();
    switch (nMode) {
        case LayoutMode::kContinuous:
            return std::make_shared<PDFConuiunePagesViewer>(wkOwner, pDocument, pCanvas);
        case LayoutMode::kSinglePage:
            return std::make_shared<PDFSinglePagesViewer>(wkOwner, pDocument, pCanvas);
        default:
            return nullptr;
    }
}

void PDFViewerManager::InitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                                  double dbOffsetY) {
    TrackPages(
        [&](IPDFViewer& viewer) { viewer.InitLayOut(nPageIndex, dbScale, dbOffsetX, dbOffsetY); });
}

void PDFViewerManager::GotoPage(std::int32_t nPageIndex) {
    TrackPages([&](IPDFViewer& viewer) { viewer.GotoPage(nPageIndex); });
}

void PDFViewerManager::MoveScreen(double dbOffsetY, double dbOffsetX) {
    TrackPages([&](IPDFViewer& viewer) { viewer.MoveScreen(dbOffsetY, dbOffsetX); });
}

void PDFViewerManager::InvaildateLayout() {
    const auto pViewer = m_pViewer;
    if (!pViewer) {
        return;
    }
    try {
        pViewer->InvaildateLayout();
    } catch (const Platform::ObjectDisposedException&) {
        if (IsAtWork(pViewer)) {
            throw;
        }
    }
}

void PDFViewerManager::PageScaled(Windows::Foundation::Point point, double dbScale,
                                  bool bIsInertial, bool isScrollComplete) {
    TrackPages([&](IPDFViewer& viewer) {
        viewer.PageScaled(point, dbScale, bIsInertial, isScrollComplete);
    });
}

std::vector<std::int32_t> PDFViewerManager::GetVisiblePages() const {
    return m_pViewer ? m_pViewer->GetVisiblePages() : Pages();
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
    try {
        fnOperation(*pViewer);
    } catch (const Platform::ObjectDisposedException&) {
        if (IsAtWork(pViewer)) {
            throw;
        }
        return; // its document is closed, by a failed open or a host's handler meanwhile
    }
    if (m_pViewer == pViewer) {
        RaisePageEvents(pViewer, before, pViewer->GetVisiblePages());
    }
}

bool PDFViewerManager::IsAtWork(const std::shared_ptr<IPDFViewer>& pViewer) const {
    const auto pDocument = m_wkViewerDocument.lock();
    return m_pViewer == pViewer && !(pDocument && pDocument->IsDisposed());
}

void PDFViewerManager::RaisePageEvents(const std::shared_ptr<IPDFViewer>& pViewer,
                                       const Pages& before, const Pages& after) {
    const auto pControl = Control();
    if (!pControl) {
        return;
    }
    const auto pPdfDoc = pControl->GetPDFDoc();
    const auto fnRaise = [&](auto& event, auto fnMakeRecord) {
        if (m_pViewer == pViewer && !event.empty()) {
            event.raise(pControl, fnMakeRecord());
        }
    };
    for (const std::int32_t nPage : before) {
        if (!Holds(after, nPage)) {
            fnRaise(pControl->PageInvisibleEvent,
                    [&] { return std::make_shared<PageInvisibleEventArgs>(pPdfDoc, nPage); });
        }
    }
    for (const std::int32_t nPage : after) {
        if (!Holds(before, nPage)) {
            fnRaise(pControl->PageVisibleEvent,
                    [&] { return std::make_shared<PageVisibleEventArgs>(pPdfDoc, nPage); });
        }
    }
    fnRaise(pControl->PageChangedEvent,
            [&] { return std::make_shared<PageChangedEventArgs>(pPdfDoc, before, after); });
}

}
