// What a document may ask of the control that owns it.
//
// The document holds it weakly and does nothing once it is gone.
// Threads: `RaiseRenderPage` on a render worker, under the document's render
// lock; `RaisePageFailure` and `RaiseSaveProgress` on the UI thread; the other
// page events on the thread that the page table names for each.
#pragma once

#include <cstdint>
#include <memory>

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class RenderPageEventArgs;

class IDocumentOwner {
public:
    virtual ~IDocumentOwner() = default;

    // A page object became available, or was given up. A subscriber that
    // fails as disconnected is removed by the owner; other failures pass through.
    virtual void RaisePageLoaded(const std::shared_ptr<velko::pdf::PDFDoc>& pPdfDoc,
                                 std::int32_t nPageIndex) = 0;
    virtual void RaisePageUnloaded(const std::shared_ptr<velko::pdf::PDFDoc>& pPdfDoc,
                                   std::int32_t nPageIndex) = 0;

    // What `VLK_Document::PageFailureOf` answers for the page has changed: the
    // page could not be shown, or can be again. Always through the UI thread's
    // queue, so several changes may be told as one; what a handler raises goes
    // to the queue.
    virtual void RaisePageFailure(std::int32_t nPageIndex) = 0;

    // A save has come so far, 0 to 1, never less than before in the same save. On the
    // UI thread; what comes fast is told as one. A save that succeeds tells 1 before
    // it ends.
    virtual void RaiseSaveProgress(float fDone) = 0;

    // A page or a block was rendered; the host may draw on the bitmap.
    virtual void RaiseRenderPage(const std::shared_ptr<RenderPageEventArgs>& pArgs) = 0;
};

}
