// Bringing one page up on the pool.
#include <string>
#include <utility>

#include "document/Conversion.h"
#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using concurrency::critical_section;
using Platform::Debug::OutputDebugString;
using velko::pdf::PDFPage;
using Windows::Foundation::Rect;

concurrency::task<std::shared_ptr<VLK_PageHandle>> VLK_Document::LoadPageAsync(
    std::int32_t nPageIndex, concurrency::cancellation_token token, bool bAnew) {
    return LoadPageOnPool(EngineDoc(), nPageIndex, std::move(token), bAnew);
}

concurrency::task<VLK_Document::HandlePtr> VLK_Document::LoadPageOnPool(
    PdfDocPtr pPdfDoc, std::int32_t nPageIndex, concurrency::cancellation_token token, bool bAnew) {
    const auto pSelf = shared_from_this();
    const auto pWay = IsPageParsed(nPageIndex) ? concurrency::task_pool() : m_pLoadQueue;
    co_await concurrency::resume_on(pWay, std::move(token));
    try {
        ThrowIfDisposed();
        HandlePtr pHandle = LoadPage(pPdfDoc, nPageIndex, bAnew);
        ThrowIfDisposed();
        NoteSuccess({}, nPageIndex);
        co_return pHandle;
    } catch (...) {
        NoteFailure({}, nPageIndex, std::current_exception());
        throw;
    }
}

bool VLK_Document::IsPageParsed(std::int32_t nPageIndex) const {
    const critical_section::scoped_lock lock(*m_spPageLock);
    const EntryPtr* const ppEntry = m_pPageMap.Find(nPageIndex);
    const HandlePtr pHandle = ppEntry != nullptr ? (*ppEntry)->m_pPageHandle : nullptr;
    return pHandle && pHandle->m_pPage && pHandle->m_pPage->IsParsed();
}

VLK_Document::HandlePtr VLK_Document::LoadPage(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex,
                                               bool bAnew) {
    OutputDebugString("LoadPageAsync " + std::to_string(nPageIndex) + "\n");
    if (const EntryPtr pEntry = FindEntry(pPdfDoc, nPageIndex)) {
        const EntryView view = View(pEntry);
        if (view.pPage) {
            return LoadKnownPage(view, nPageIndex, bAnew);
        }
    }
    return LoadNewPage(pPdfDoc, nPageIndex);
}

VLK_Document::HandlePtr VLK_Document::LoadKnownPage(const EntryView& view, std::int32_t nPageIndex,
                                                    bool bAnew) {
    if (!view.pPage->IsParsed()) {
        view.pPage->StartParse(0, nullptr, bAnew ? 1 : 0);
        OutputDebugString("LoadPageAsync --- Parser Completely: " + std::to_string(nPageIndex) +
                          "\n");
    }
    if (view.bWantsBox) {
        StorePageBox(*view.pHandle, *view.pPage);
    }
    return view.pHandle;
}

VLK_Document::HandlePtr VLK_Document::LoadNewPage(const PdfDocPtr& pPdfDoc,
                                                  std::int32_t nPageIndex) {
    const EntryPtr pEntry = EnsureEntry(pPdfDoc, nPageIndex);
    const auto pHandle = std::make_shared<VLK_PageHandle>(); // the caller's own, not the table's
    pHandle->m_pPage = pEntry ? View(pEntry).pPage : nullptr;
    if (!pHandle->m_pPage) {
        pHandle->m_pPage = pPdfDoc->GetPage(nPageIndex);
    }
    if (!pHandle->m_pPage) {
        throw velko::common::EngineException(velko::common::ErrorCode::e_ErrNotFound,
                                             "the engine has no such page");
    }
    if (!pHandle->m_pPage->IsParsed()) {
        pHandle->m_pPage->StartParse(0, nullptr, 0);
    }
    StorePageBox(*pHandle, *pHandle->m_pPage);
    return pHandle;
}

// Writes only what is new: a handle that others hold is written once.
void VLK_Document::StorePageBox(VLK_PageHandle& handle, const PDFPage& page) {
    const Rect rc = detail::ToPlatformRect(page.GetBox(0));
    const critical_section::scoped_lock lock(*m_spPageLock);
    if (!(handle.m_rcPageBox == rc)) {
        handle.m_rcPageBox = rc;
    }
}

}
