#include "widget/places/ShownIdentity.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "control/PDFViewCtrl.h"
#include "document/VLKS_FileHandlerReadWrite.h"
#include "document/engine/DocumentFacts.h"
#include "document/engine/PDFDoc.h"
#include "platform/storage/StorageFile.h"
#include "widget/reload/OpenedFile.h"

namespace velko::vkit {

using velko::pdf::PDFDoc;
using Windows::Storage::StorageFile;
using FilePtr = std::shared_ptr<StorageFile>;

namespace {

constexpr std::uint32_t kPiece = 65'536; // bytes, at the file's head and at its end

std::uint64_t Hash(std::uint64_t nHash, std::span<const std::uint8_t> bytes) {
    constexpr std::uint64_t kPrime = 0x100000001b3;
    for (const std::uint8_t nByte : bytes) {
        nHash = (nHash ^ nByte) * kPrime;
    }
    return nHash;
}

// 0 where it cannot be read.
std::uint64_t FingerprintOf(const FilePtr& pFile, std::uint64_t nSize) {
    constexpr std::uint64_t kStart = 0xcbf29ce484222325;
    if (nSize == 0 || nSize > std::numeric_limits<std::int32_t>::max()) {
        return 0;
    }
    VLKS_FileHandlerReadWrite reader;
    reader.SetFile(pFile, static_cast<std::int32_t>(nSize));
    const auto nPiece = static_cast<std::uint32_t>(std::min<std::uint64_t>(kPiece, nSize));
    std::uint64_t nHash = kStart;
    for (const std::uint64_t nOffset : {std::uint64_t{0}, nSize - nPiece}) {
        const auto pBytes = reader.ReadBytes(nOffset, nPiece);
        if (!pBytes) {
            return 0;
        }
        nHash = Hash(nHash, pBytes->Bytes());
    }
    return std::max<std::uint64_t>(nHash, 1);
}

std::string IdentifierOf(const std::shared_ptr<PDFDoc>& pDocument) {
    const auto pFacts = std::dynamic_pointer_cast<velko::pdf::IDocumentFacts>(pDocument);
    return pFacts ? pFacts->GetProperties().strIdentifier : std::string();
}

void Complete(DocIdentity& identity, const FilePtr& pFile,
              const std::shared_ptr<PDFDoc>& pDocument) {
    try {
        identity.nFingerprint = FingerprintOf(pFile, identity.version.Size);
        identity.strIdentifier = IdentifierOf(pDocument);
    } catch (...) { // a file that was changed since; what is known serves
    }
}

}

concurrency::task<DocIdentity> ReadIdentityOf(PDFViewCtrl& control) {
    DocIdentity identity;
    const FilePtr pFile = control.GetDocumentFile();
    const std::shared_ptr<PDFDoc> pDocument = control.GetPDFDoc();
    if (!pFile || !pDocument) {
        co_return identity;
    }
    identity.strPath = pFile->Path();
    const auto pOpened = std::dynamic_pointer_cast<OpenedFile>(pFile);
    const FilePtr pPinned = pOpened ? pOpened->Pinned() : nullptr;
    const FilePtr pSource = pPinned ? pPinned : pFile;
    const auto asking = pSource->GetVersionAsync().AsTask();
    co_await asking.settled();
    asking.mark_observed();
    if (!asking.is_value()) {
        co_return identity;
    }
    identity.version = asking.get();
    const auto completing = concurrency::create_task([identity, pSource, pDocument]() mutable {
        Complete(identity, pSource, pDocument);
        return identity;
    });
    co_return co_await completing;
}

}
