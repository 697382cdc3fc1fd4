#include "widget/reload/AsideDocument.h"

#include <utility>

#include "document/VLKS_FileHandler.h"
#include "document/engine/PDFDoc.h"
#include "platform/storage/StorageFile.h"
#include "platform/system/Activation.h"

namespace velko::vkit {

using Windows::Storage::StorageFile;

namespace {

std::shared_ptr<VLKS_FileHandler> HandlerOf(const std::shared_ptr<StorageFile>& pPinned,
                                            std::int32_t nSize) {
    auto pReadWrite = std::make_shared<VLKS_FileHandlerReadWrite>();
    pReadWrite->SetFile(pPinned, nSize);
    pReadWrite->PreloadFile();
    auto pHandler = std::make_shared<VLKS_FileHandler>();
    pHandler->SetReadWrite(std::move(pReadWrite));
    return pHandler;
}

}

AsideDocument::AsideDocument(const std::shared_ptr<StorageFile>& pPinned, std::int32_t nSize)
    : m_pHandler(HandlerOf(pPinned, nSize)) {}

AsideDocument::~AsideDocument() {
    m_pDocument.reset();
    m_pHandler->Dispose();
}

velko::common::ErrorCode AsideDocument::Load(const Platform::SecretText& password) {
    m_pDocument =
        Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass)
            ->Create(m_pHandler);
    return m_pDocument->Load(password.Text());
}

}
