// Destinations around the box of a page's contents, which is not known before
// the page has been loaded.
#include <utility>

#include "document/VLK_Document.h"
#include "platform/system/Debug.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

void PageViewerBase::WithPageBox(PageItem pItem, bool (*fnIsUnknown)(const Rect&), BoxStep fnShow) {
    const auto pEntry = m_pDocument->ReLoadPageIndex(pItem->nPageIndex);
    const Rect rcBox =
        pEntry && pEntry->m_pPageHandle ? m_pDocument->PageBox(pEntry->m_pPageHandle) : Rect();
    if (fnIsUnknown(rcBox)) {
        ShowLoadedBox(pItem->nPageIndex, std::move(fnShow));
    } else {
        fnShow(*pItem, rcBox);
    }
}

// Ends early when the reader has gone elsewhere meanwhile.
concurrency::task<void> PageViewerBase::ShowLoadedBox(std::int32_t nPageIndex, BoxStep fnShow) {
    const auto pSelf = shared_from_this();
    const concurrency::cancellation_token token = m_ctsDestination.Token();
    try {
        const auto pDocument = m_pDocument;
        const auto load = pDocument->LoadPageAsync(nPageIndex, token);
        const std::shared_ptr<VLK_PageHandle> pHandle = co_await load;
        token.throw_if_canceled();
        if (const auto pOwner = Owner()) {
            pOwner->RaisePageLoaded(nPageIndex);
        }
        const PageItem pItem = OpenDocument() ? FindItem(nPageIndex) : nullptr;
        if (pItem && !token.is_canceled()) {
            fnShow(*pItem, pDocument->PageBox(pHandle));
        }
    } catch (const concurrency::task_canceled&) {
        co_return;
    } catch (...) {
        Platform::Debug::OutputDebugString(LogPlace("GotoDestination") + " Exception...\n");
    }
}

}
