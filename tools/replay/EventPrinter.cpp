#include "tools/replay/EventPrinter.h"

#include "control/PDFViewCtrl.h"
#include "document/RenderPageEventArgs.h"

namespace velko::replay {

namespace {

using namespace velko::vkit;

using Sender = std::shared_ptr<PDFViewCtrl>;

JsonObject EventLine(const char* szEvent) {
    return JsonObject().Add("event", szEvent);
}

void PrintDocumentEvent(ControlEvent<DocEventArgs>& event, const char* szName, Output& output) {
    event.add([szName, &output](const Sender&, const std::shared_ptr<DocEventArgs>& pArgs) {
        output.Print(EventLine(szName)
                         .Add("error", static_cast<std::int32_t>(pArgs->ErrorCode))
                         .Add("canceled", pArgs->IsCanceled));
    });
}

template <class Record>
void PrintPageEvent(ControlEvent<Record>& event, const char* szName, Output& output) {
    event.add([szName, &output](const Sender&, const std::shared_ptr<Record>& pArgs) {
        output.Print(EventLine(szName).Add("page", pArgs->PageIndex));
    });
}

void PrintChanges(PDFViewCtrl& control, Output& output) {
    control.PageChangedEvent.add(
        [&output](const Sender&, const std::shared_ptr<PageChangedEventArgs>& pArgs) {
            output.Print(EventLine("PageChanged")
                             .Add("old", JsonArray(pArgs->OldVisiblePages))
                             .Add("new", JsonArray(pArgs->NewVisiblePages)));
        });
    control.PageLayoutModeChangedEvent.add(
        [&output](const Sender&, const std::shared_ptr<PageLayoutModeChangedEventArgs>& pArgs) {
            output.Print(EventLine("PageLayoutModeChanged")
                             .Add("old", pArgs->OldLayoutMode)
                             .Add("new", pArgs->NewLayoutMode));
        });
}

// Code 0: nothing of the page fails any more.
void PrintFailures(PDFViewCtrl& control, Output& output) {
    control.PageFailureEvent.add(
        [&output](const Sender&, const std::shared_ptr<PageFailureEventArgs>& pArgs) {
            const auto eCode =
                pArgs->Failure ? pArgs->Failure->eCode : velko::common::ErrorCode::e_ErrSuccess;
            output.Print(EventLine("PageFailure")
                             .Add("page", pArgs->PageIndex)
                             .Add("error", static_cast<std::int32_t>(eCode)));
        });
}

void PrintDrawing(PDFViewCtrl& control, Output& output) {
    control.RenderCanvasEvent.add(
        [&output](const Sender&, const std::shared_ptr<RenderCanvasEventArgs>& pArgs) {
            output.Print(EventLine("RenderCanvas").Add("page", pArgs->nPageIndex));
        });
    control.RenderPageEvent.add(
        [&output](const Sender&, const std::shared_ptr<RenderPageEventArgs>& pArgs) {
            output.Print(EventLine("RenderPage").Add("page", pArgs->PageIndex));
        });
}

}

void PrintEventsOf(PDFViewCtrl& control, Output& output) {
    PrintDocumentEvent(control.OpenDocEvent, "OpenDoc", output);
    PrintDocumentEvent(control.CloseDocEvent, "CloseDoc", output);
    PrintPageEvent(control.PageLoadedEvent, "PageLoaded", output);
    PrintPageEvent(control.PageUnloadedEvent, "PageUnloaded", output);
    PrintPageEvent(control.PageVisibleEvent, "PageVisible", output);
    PrintPageEvent(control.PageInvisibleEvent, "PageInvisible", output);
    PrintChanges(control, output);
    PrintDrawing(control, output);
    PrintFailures(control, output);
}

}
