#include "document/VLK_Document.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "document/VLKS_FileHandler.h"
#include "platform/concurrency/SerialQueue.h"
#include "platform/foundation/Exception.h"

namespace velko::vkit {

using concurrency::critical_section;

VLK_Document::VLK_Document(PrivateTag /*tag*/)
    : m_pLoadQueue(std::make_shared<concurrency::serial_queue>()),
      m_pRenderQueue(std::make_shared<concurrency::serial_queue>()),
      m_pEditQueue(std::make_shared<concurrency::serial_queue>()) {}

VLK_Document::VLK_Document(std::shared_ptr<velko::pdf::PDFDoc> pPdfDoc)
    : VLK_Document(PrivateTag{}) {
    if (!pPdfDoc) {
        throw Platform::NullReferenceException("a document needs an engine document");
    }
    TakeEngineFacts(*pPdfDoc);
    const critical_section::scoped_lock lock(m_refLock);
    m_pPdfDoc = std::move(pPdfDoc);
}

VLK_Document::~VLK_Document() = default;

void VLK_Document::ThrowIfDisposed() const {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException("the document is closed");
    }
}

void VLK_Document::Dispose() {
    if (m_bDisposed.exchange(true)) {
        return;
    }
    m_Cancellation.cancel();
    // First of all: whoever waits for the file may hold the lock of the table.
    if (const auto pReadWrite = m_pFileReadWrite.lock()) {
        pReadWrite->EndWaits();
    }
    std::exception_ptr pHandlerFailure;
    try {
        ClearTable();
    } catch (...) { // a handler's failure must not keep the file open
        pHandlerFailure = std::current_exception();
        DropTable();
    }
    m_pFileHandler.reset();
    ReleaseMembers();
    if (pHandlerFailure) {
        std::rethrow_exception(pHandlerFailure);
    }
}

// The locks stay for what is in flight, and the engine document until its
// owner has told of the closing.
void VLK_Document::ReleaseMembers() {
    m_vecHiddenAnnotTypes.clear();
    m_pFileReadWrite.reset();
    {
        const critical_section::scoped_lock lock(m_refLock);
        m_wkOwner.reset();
        m_pFile.reset();
        m_pPinnedFile.reset();
        m_pTempFile.reset();
    }
}

std::int32_t VLK_Document::PageCount() const {
    ThrowIfDisposed();
    return m_nPageCount;
}

std::int32_t VLK_Document::Permissions() const {
    ThrowIfDisposed();
    return m_nPermissions;
}

std::int32_t VLK_Document::PasswordType() const {
    ThrowIfDisposed();
    return m_nPasswordType;
}

bool VLK_Document::PasswordApplied() const {
    ThrowIfDisposed();
    return m_bPasswordApplied;
}

std::uint32_t VLK_Document::FileSize() const {
    ThrowIfDisposed();
    return m_nFileSize;
}

std::int32_t VLK_Document::GetEncryptKind() {
    ThrowIfDisposed();
    constexpr std::int32_t kUnknownHandler = -1;
    constexpr std::int32_t kUnknownKind = 4;
    constexpr std::int32_t kLastKind = 5;
    const PdfDocPtr pPdfDoc = PdfDoc();
    const std::int32_t nType = pPdfDoc ? pPdfDoc->GetEncryptionType() : 0;
    if (nType == kUnknownHandler) {
        return kUnknownKind;
    }
    return nType >= 0 && nType <= kLastKind ? nType : 0;
}

std::shared_ptr<Windows::Storage::StorageFile> VLK_Document::File() const {
    ThrowIfDisposed();
    const critical_section::scoped_lock lock(m_refLock);
    return m_pFile;
}

VLK_Document::PdfDocPtr VLK_Document::PdfDoc() const {
    const critical_section::scoped_lock lock(m_refLock);
    return m_pPdfDoc;
}

void VLK_Document::ReleasePdfDoc() {
    PdfDocPtr pLast; // goes after the lock: the engine may take its time over it
    const critical_section::scoped_lock lock(m_refLock);
    pLast.swap(m_pPdfDoc);
}

void VLK_Document::SetOwner(std::weak_ptr<IDocumentOwner> wkOwner) {
    ThrowIfDisposed();
    const critical_section::scoped_lock lock(m_refLock);
    m_wkOwner = std::move(wkOwner);
}

std::shared_ptr<IDocumentOwner> VLK_Document::Owner() const {
    const critical_section::scoped_lock lock(m_refLock);
    return m_wkOwner.lock();
}

bool VLK_Document::DeleteFileOnClose() const {
    ThrowIfDisposed();
    return m_bDeleteFileOnClose;
}

void VLK_Document::DeleteFileOnClose(bool bDelete) {
    ThrowIfDisposed();
    m_bDeleteFileOnClose = bDelete;
}

std::uint32_t VLK_Document::RenderFlags() const {
    ThrowIfDisposed();
    return m_nRenderFlags;
}

void VLK_Document::RenderFlags(std::uint32_t nFlags) {
    ThrowIfDisposed();
    m_nRenderFlags = nFlags;
}

const std::vector<std::int32_t>& VLK_Document::HiddenAnnotTypes() const {
    ThrowIfDisposed();
    return m_vecHiddenAnnotTypes;
}

void VLK_Document::AddHiddenAnnotType(std::int32_t nType) {
    ThrowIfDisposed();
    if (std::find(m_vecHiddenAnnotTypes.begin(), m_vecHiddenAnnotTypes.end(), nType) ==
        m_vecHiddenAnnotTypes.end()) {
        m_vecHiddenAnnotTypes.push_back(nType);
    }
}

}
