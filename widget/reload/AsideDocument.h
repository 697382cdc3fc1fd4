// A file opened by an engine document of its own, beside whatever is shown of it.
//
// Lifetime: nothing of the document is read any more when it goes, which may take a while
// for a large one. Threads: any but the UI thread. Errors: what the engine raises.
#pragma once

#include <cstdint>
#include <memory>

#include "document/engine/ErrorCode.h"
#include "platform/foundation/SecretText.h"

namespace Windows::Storage {
class StorageFile;
}

namespace velko::pdf {
class PDFDoc;
}

namespace velko::vkit {

class VLKS_FileHandler;

class AsideDocument {
public:
    // `nSize` is the pinned file's, in bytes.
    AsideDocument(const std::shared_ptr<Windows::Storage::StorageFile>& pPinned,
                  std::int32_t nSize);
    ~AsideDocument();
    AsideDocument(const AsideDocument&) = delete;
    AsideDocument& operator=(const AsideDocument&) = delete;

    velko::common::ErrorCode Load(const Platform::SecretText& password);
    const std::shared_ptr<velko::pdf::PDFDoc>& Document() const { return m_pDocument; }

private:
    const std::shared_ptr<VLKS_FileHandler> m_pHandler;
    std::shared_ptr<velko::pdf::PDFDoc> m_pDocument;
};

}
