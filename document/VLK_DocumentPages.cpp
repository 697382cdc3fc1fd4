// The page table.
#include <string>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using concurrency::critical_section;
using Platform::Debug::OutputDebugString;
using velko::common::Progressive;
using velko::pdf::PDFPage;
using Windows::Foundation::Rect;

namespace {

void LogPage(const char* szText, std::int32_t nPageIndex) {
    OutputDebugString(szText + std::to_string(nPageIndex) + "\n");
}

}

bool VLK_Document::IsPageIndex(std::int32_t nPageIndex) const {
    return nPageIndex >= 0 && nPageIndex < m_nPageCount;
}

// --- public operations ---

bool VLK_Document::InsertPageEntry(std::shared_ptr<WPPDFPage> pEntry, std::int32_t nPageIndex) {
    if (!pEntry) {
        throw Platform::NullReferenceException("the page table takes no empty entry");
    }
    const critical_section::scoped_lock lock(*m_spPageLock);
    ThrowIfDisposed(); // under the lock, so that nothing comes after the last clear
    return !m_pPageMap.Insert(nPageIndex, std::move(pEntry));
}

std::shared_ptr<WPPDFPage> VLK_Document::ReLoadPageIndex(std::int32_t nPageIndex) {
    return FindEntry(EngineDoc(), nPageIndex);
}

std::shared_ptr<WPPDFPage> VLK_Document::EnsurePageEntry(std::int32_t nPageIndex) {
    return EnsureEntry(EngineDoc(), nPageIndex);
}

std::shared_ptr<VLK_PageSize> VLK_Document::GetPageSize(std::int32_t nPageIndex) {
    const PdfDocPtr pPdfDoc = EngineDoc();
    if (!IsPageIndex(nPageIndex)) {
        return nullptr;
    }
    if (const EntryPtr pEntry = FindEntry(pPdfDoc, nPageIndex)) {
        LoadAnnotList(pEntry);
        return pEntry->m_pPageSize;
    }
    const EntryPtr pNew = MakeEntry(pPdfDoc, nPageIndex);
    if (!pNew) {
        return nullptr;
    }
    const EntryPtr pHeld = Publish(pNew, nPageIndex);
    if (pHeld == pNew) {
        if (const auto pOwner = Owner()) {
            pOwner->RaisePageLoaded(pPdfDoc, nPageIndex);
        }
        const critical_section::scoped_lock lock(*m_spPageLock);
        pNew->m_bAnnotsLoaded = true;
    }
    return pHeld->m_pPageSize;
}

std::shared_ptr<VLK_PageSize> VLK_Document::PeekPageSize(std::int32_t nPageIndex) {
    const std::shared_ptr<PDFPage> pPage = EngineDoc()->GetPage(nPageIndex);
    if (!pPage) {
        return nullptr;
    }
    return std::make_shared<VLK_PageSize>(VLK_PageSize{pPage->GetWidth(), pPage->GetHeight()});
}

void VLK_Document::ClearPageInfoVector() {
    ThrowIfDisposed();
    ClearTable();
}

void VLK_Document::AddPageUse(const std::shared_ptr<WPPDFPage>& pEntry, std::int32_t nChange) {
    const critical_section::scoped_lock lock(*m_spPageLock);
    pEntry->m_nUseCount += nChange;
}

Rect VLK_Document::PageBox(const std::shared_ptr<VLK_PageHandle>& pHandle) const {
    const critical_section::scoped_lock lock(*m_spPageLock);
    return pHandle->m_rcPageBox;
}

// --- the table ---

VLK_Document::PdfDocPtr VLK_Document::EngineDoc() const {
    ThrowIfDisposed();
    PdfDocPtr pPdfDoc = PdfDoc();
    if (!pPdfDoc) {
        throw Platform::NullReferenceException("the engine document was given up");
    }
    return pPdfDoc;
}

VLK_Document::EntryView VLK_Document::View(const EntryPtr& pEntry) const {
    const critical_section::scoped_lock lock(*m_spPageLock);
    EntryView view;
    view.pHandle = pEntry->m_pPageHandle;
    if (view.pHandle) {
        view.pPage = view.pHandle->m_pPage;
        view.bWantsBox = !pEntry->m_bAnnotsLoaded || view.pHandle->m_rcPageBox == Rect();
    }
    return view;
}

VLK_Document::EntryPtr VLK_Document::FindEntry(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex) {
    const critical_section::scoped_lock lock(*m_spPageLock);
    const EntryPtr* const ppEntry = m_pPageMap.Find(nPageIndex);
    if (ppEntry == nullptr) {
        return nullptr;
    }
    EntryPtr pEntry = *ppEntry;
    if (!pEntry->m_pPageHandle) {
        BringBack(pPdfDoc, pEntry, nPageIndex);
    }
    return pEntry;
}

// The lock stays held while the page is parsed: whoever asks for it next gets
// it whole or not at all.
void VLK_Document::BringBack(const PdfDocPtr& pPdfDoc, const EntryPtr& pEntry,
                             std::int32_t nPageIndex) {
    LogPage("ReLoadPageIndex:", nPageIndex);
    const std::shared_ptr<PDFPage> pPage = pPdfDoc->GetPage(nPageIndex);
    if (!pPage) {
        const HandlePtr pThere = pEntry->m_pPageHandle; // the engine may have called back
        if (pThere && pThere->m_pPage && !pThere->m_pPage->IsParsed()) {
            LogPage("ReLoadPageIndex is not parserd:", nPageIndex);
        }
        return;
    }
    if (!pPage->IsParsed()) {
        ParseToEnd(*pPage);
        LogPage("ReLoadParserPageIndex Completed:", nPageIndex);
    }
    const auto pHandle = std::make_shared<VLK_PageHandle>();
    pHandle->m_pPage = pPage;
    pEntry->m_pPageHandle = pHandle;
    pEntry->m_bAnnotsLoaded = false;
    LogPage("ReLoadPageIndex Completed:", nPageIndex);
}

// A long parse under the page lock ends early once the document is disposed, so
// that closing does not wait for it.
bool VLK_Document::ParseToEnd(PDFPage& page, velko::common::IPauseCallback* pPause) const {
    const std::shared_ptr<Progressive> pProgress = page.StartParse(0, pPause, 0);
    while (pProgress->Continue() == Progressive::kToBeContinued) {
        ThrowIfDisposed();
        if (pPause != nullptr && pPause->NeedToPauseNow()) {
            return false;
        }
    }
    return true;
}

VLK_Document::EntryPtr VLK_Document::MakeEntry(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex) {
    const std::shared_ptr<PDFPage> pPage = pPdfDoc->GetPage(nPageIndex);
    if (!pPage) {
        return nullptr;
    }
    auto pEntry = std::make_shared<WPPDFPage>();
    pEntry->m_pPageSize =
        std::make_shared<VLK_PageSize>(VLK_PageSize{pPage->GetWidth(), pPage->GetHeight()});
    pEntry->m_nRotation = pPage->GetRotation();
    pEntry->m_pPageHandle = std::make_shared<VLK_PageHandle>();
    pEntry->m_pPageHandle->m_pPage = pPage;
    return pEntry;
}

// Two threads may make an entry for one page at once; the first one stays, so
// that both count their renders in the same entry. Returns the one that stays.
VLK_Document::EntryPtr VLK_Document::Publish(const EntryPtr& pNew, std::int32_t nPageIndex) {
    const critical_section::scoped_lock lock(*m_spPageLock);
    if (const EntryPtr* const ppThere = m_pPageMap.Find(nPageIndex)) {
        return *ppThere;
    }
    InsertPageEntry(pNew, nPageIndex);
    return pNew;
}

VLK_Document::EntryPtr VLK_Document::EnsureEntry(const PdfDocPtr& pPdfDoc,
                                                 std::int32_t nPageIndex) {
    if (!IsPageIndex(nPageIndex)) {
        return nullptr;
    }
    if (EntryPtr pEntry = FindEntry(pPdfDoc, nPageIndex)) {
        return pEntry;
    }
    const EntryPtr pNew = MakeEntry(pPdfDoc, nPageIndex);
    if (!pNew) {
        return nullptr;
    }
    EntryPtr pHeld = Publish(pNew, nPageIndex);
    if (pHeld == pNew) {
        TellPageLoaded(pPdfDoc, nPageIndex);
    }
    return pHeld;
}

// The count itself is of no interest: asking for it makes the engine load the list.
void VLK_Document::LoadAnnotList(const EntryPtr& pEntry) {
    std::shared_ptr<PDFPage> pPage;
    {
        const critical_section::scoped_lock lock(*m_spPageLock);
        if (!pEntry->m_bAnnotsLoaded && pEntry->m_pPageHandle) {
            pPage = pEntry->m_pPageHandle->m_pPage;
        }
    }
    if (pPage) {
        pPage->GetAnnotCount();
        const critical_section::scoped_lock lock(*m_spPageLock);
        pEntry->m_bAnnotsLoaded = true;
    }
}

void VLK_Document::ClearTable() {
    const critical_section::scoped_lock lock(*m_spPageLock);
    OutputDebugString("VLK_Document::ClearPageInfoVector\n");
    const PdfDocPtr pPdfDoc = PdfDoc();
    for (const auto& [nPageIndex, pEntry] : m_pPageMap.Snapshot()) {
        const EntryPtr* const ppThere = m_pPageMap.Find(nPageIndex);
        if (ppThere == nullptr || *ppThere != pEntry) {
            continue; // a handler changed the table meanwhile
        }
        if (const auto pOwner = Owner()) {
            pOwner->RaisePageUnloaded(pPdfDoc, nPageIndex);
        }
        GiveUp(*pEntry);
    }
    m_pPageMap.Clear();
}

void VLK_Document::DropTable() {
    const critical_section::scoped_lock lock(*m_spPageLock);
    for (const auto& [nPageIndex, pEntry] : m_pPageMap) {
        GiveUp(*pEntry);
    }
    m_pPageMap.Clear();
}

void VLK_Document::GiveUp(WPPDFPage& entry) {
    if (entry.m_nUseCount > 0) {
        return;
    }
    if (entry.m_pPageHandle) {
        entry.m_pPageHandle->m_pPage.reset();
        entry.m_pPageHandle.reset();
    }
    entry.m_bAnnotsLoaded = false;
}

void VLK_Document::TellPageLoaded(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex) {
    const auto pOwner = Owner();
    if (!pOwner) {
        return;
    }
    const auto pDispatcher = Platform::Environment()->MainDispatcher();
    if (pDispatcher->HasThreadAccess()) {
        pOwner->RaisePageLoaded(pPdfDoc, nPageIndex);
        return;
    }
    const auto fnTell = [wkSelf = weak_from_this(), pPdfDoc, nPageIndex] {
        const auto pSelf = wkSelf.lock();
        const auto pOwnerNow = pSelf ? pSelf->Owner() : nullptr; // none once it is closed
        if (pOwnerNow) {
            pOwnerNow->RaisePageLoaded(pPdfDoc, nPageIndex);
        }
    };
    pDispatcher->RunAsync(Windows::UI::Core::CoreDispatcherPriority::normal, fnTell);
}

}
