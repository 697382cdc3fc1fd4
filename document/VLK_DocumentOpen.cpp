// Opening: from a file and a password to a parsed engine document.
#include <chrono>
#include <string>
#include <utility>

#include "document/VLKS_FileHandler.h"
#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Activation.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using concurrency::critical_section;
using velko::common::ErrorCode;
using Windows::Storage::StorageFile;

namespace {

void RefuseLargeFile(std::uint64_t nSize) {
    if (nSize > VLK_Document::kMaxFileSize) {
        throw Platform::InvalidArgumentException(
            "the file is too large to be opened: " + std::to_string(nSize) + " bytes, at most " +
            std::to_string(VLK_Document::kMaxFileSize) + " are possible");
    }
}

}

concurrency::task<std::shared_ptr<VLK_DocOpenResult>> VLK_Document::OpenAsync(
    std::shared_ptr<StorageFile> pFile, std::uint32_t nFileSize, Platform::SecretText password) {
    if (!pFile) {
        return concurrency::task_from_result<std::shared_ptr<VLK_DocOpenResult>>(
            std::make_shared<VLK_DocOpenResult>());
    }
    return OpenOnPool(std::move(pFile), nFileSize, std::move(password));
}

concurrency::task<std::shared_ptr<VLK_DocOpenResult>> VLK_Document::OpenOnPool(
    std::shared_ptr<StorageFile> pFile, std::uint32_t nFileSize, Platform::SecretText password) {
    co_await concurrency::resume_background();
    auto pResult = std::make_shared<VLK_DocOpenResult>();
    auto pDocument = std::make_shared<VLK_Document>(PrivateTag{});
    pDocument->AttachFile(pFile, nFileSize);
    pResult->m_nErrorCode = pDocument->LoadEngine(password.Text());
    pResult->m_pDocument = std::move(pDocument);
    co_return pResult;
}

void VLK_Document::AttachFile(const std::shared_ptr<StorageFile>& pFile, std::uint32_t nFileSize) {
    RefuseLargeFile(nFileSize);
    m_nFileSize = nFileSize;
    auto pReadWrite = std::make_shared<VLKS_FileHandlerReadWrite>();
    pReadWrite->SetFile(pFile, static_cast<std::int32_t>(nFileSize));
    pReadWrite->PreloadFile(); // a head that cannot be read fails the engine's load
    // The size came cut to 32 bits; only the stream tells when that lost something.
    RefuseLargeFile(pReadWrite->StreamSize());
    m_pFileHandler = std::make_shared<VLKS_FileHandler>();
    m_pFileHandler->SetReadWrite(pReadWrite);
    m_pFileReadWrite = pReadWrite;
    const critical_section::scoped_lock lock(m_refLock);
    m_pFile = pFile;
    m_pPinnedFile = pReadWrite->File();
}

ErrorCode VLK_Document::LoadEngine(const std::string& strPassword) {
    using clock = std::chrono::steady_clock;
    const auto pFactory =
        Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass);
    const PdfDocPtr pPdfDoc = pFactory->Create(m_pFileHandler);
    {
        const critical_section::scoped_lock lock(m_refLock);
        m_pPdfDoc = pPdfDoc;
    }
    const clock::time_point start = clock::now();
    Platform::Debug::OutputDebugString("Doc start load: \n");
    const ErrorCode eCode = pPdfDoc->Load(strPassword);
    const auto used = std::chrono::duration_cast<std::chrono::milliseconds>(clock::now() - start);
    Platform::Debug::OutputDebugString("Doc load use: " + std::to_string(used.count()) + "\n");
    if (eCode == ErrorCode::e_ErrSuccess) {
        TakeEngineFacts(*pPdfDoc);
    }
    return eCode;
}

void VLK_Document::TakeEngineFacts(const velko::pdf::PDFDoc& pdfDoc) {
    m_nPasswordType = pdfDoc.GetPasswordType();
    m_nPermissions = static_cast<std::int32_t>(pdfDoc.GetUserPermissions());
    m_nPageCount = pdfDoc.GetPageCount();
}

bool VLK_Document::ReloadWithPassword(const std::string& strPassword) {
    const PdfDocPtr pPdfDoc = EngineDoc();
    if (pPdfDoc->Load(strPassword) != ErrorCode::e_ErrSuccess) {
        return false;
    }
    TakeEngineFacts(*pPdfDoc);
    m_bPasswordApplied = true;
    return true;
}

}
