// What viewers and the document tell the host through the control.

#include <memory>

#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "document/RenderPageEventArgs.h"
#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"

namespace velko::vkit {

namespace {

bool IsDisconnected(const Platform::Exception& failure) {
    return failure.HResult() == Platform::RPC_E_DISCONNECTED ||
           failure.HResult() == Platform::JSCRIPT_E_CANTEXECUTE;
}

}

// A subscriber in another process may be gone without having removed itself.
template <class Record>
void PDFViewCtrl::RaiseToConnected(ControlEvent<Record>& event,
                                   const std::shared_ptr<Record>& pRecord) {
    const auto pSelf = Self();
    const auto pHandlers = event.m_source.Snapshot(); // outlives what is removed
    for (const auto& [nToken, fnHandler] : *pHandlers) {
        try {
            fnHandler(pSelf, pRecord);
        } catch (const Platform::Exception& failure) {
            if (!IsDisconnected(failure)) {
                throw;
            }
            event.remove({nToken});
        }
    }
}

void PDFViewCtrl::RaiseRenderCanvas(const std::shared_ptr<RenderCanvasEventArgs>& pArgs) {
    if (!m_bDisposed) {
        RenderCanvasEvent.raise(Self(), pArgs);
    }
}

void PDFViewCtrl::RaiseReflowCanvas(const std::shared_ptr<RenderCanvasEventArgs>& pArgs) {
    if (!m_bDisposed) {
        ReflowCanvasEvent.raise(Self(), pArgs);
    }
}

void PDFViewCtrl::RaiseRenderPage(const std::shared_ptr<RenderPageEventArgs>& pArgs) {
    if (!m_bDisposed) {
        RenderPageEvent.raise(Self(), pArgs);
    }
}

std::optional<PageFailure> PDFViewCtrl::PageFailureOf(std::int32_t nPageIndex) {
    const auto pSelf = Enter();
    const auto pDocument = OpenDocument();
    return pDocument ? pDocument->PageFailureOf(nPageIndex) : std::nullopt;
}

void PDFViewCtrl::RaisePageFailure(std::int32_t nPageIndex) {
    const auto pDocument = m_bDisposed ? nullptr : OpenDocument();
    if (pDocument) {
        PageFailureEvent.raise(
            Self(), std::make_shared<PageFailureEventArgs>(pDocument->PdfDoc(), nPageIndex,
                                                           pDocument->PageFailureOf(nPageIndex)));
    }
}

void PDFViewCtrl::RaisePageLoaded(std::int32_t nPageIndex) {
    if (!m_bDisposed) {
        RaisePageLoaded(GetPDFDoc(), nPageIndex);
    }
}

void PDFViewCtrl::RaisePageLoaded(const std::shared_ptr<PDFDoc>& pPdfDoc, std::int32_t nPageIndex) {
    if (!m_bDisposed && !PageLoadedEvent.empty()) {
        RaiseToConnected(PageLoadedEvent,
                         std::make_shared<PageLoadedEventArgs>(pPdfDoc, nPageIndex));
    }
}

void PDFViewCtrl::RaisePageUnloaded(const std::shared_ptr<PDFDoc>& pPdfDoc,
                                    std::int32_t nPageIndex) {
    if (!m_bDisposed && !PageUnloadedEvent.empty()) {
        RaiseToConnected(PageUnloadedEvent,
                         std::make_shared<PageUnloadedEventArgs>(pPdfDoc, nPageIndex));
    }
}

void PDFViewCtrl::RunOperation(const std::function<void()>& fnOperation) {
    const auto pSelf = Self();
    if (const auto pManager = m_pPageViewMgr) { // gone with the control when that is disposed
        pManager->RunOperation(fnOperation);
    }
}

}
