#include "widget/facts/AttachmentSaver.h"

#include <cstdint>
#include <exception>
#include <utility>
#include <vector>

#include "document/engine/DocumentFacts.h"
#include "document/engine/ErrorCode.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/Buffer.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageStreamTransaction.h"
#include "widget/edit/SaveFailure.h"

namespace velko::vkit {

using concurrency::task;
using velko::common::EngineException;
using velko::pdf::PDFDoc;
using Windows::Storage::StorageFile;
using Windows::Storage::Streams::VectorBuffer;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Load(PDFDoc& document, int nFile) {
    return dynamic_cast<velko::pdf::IDocumentFacts&>(document).LoadAttachedFile(nFile);
}

task<void> Write(std::shared_ptr<PDFDoc> pDocument, int nFile, FilePath path) {
    const auto loading = concurrency::create_task(
        [pDocument, nFile] { return std::make_shared<VectorBuffer>(Load(*pDocument, nFile)); });
    const auto pBytes = co_await loading;
    const auto pFile = StorageFile::FromPath(path.Bytes());
    const auto opening = pFile->OpenTransactedWriteAsync();
    const auto pTransaction = co_await opening;
    if (pBytes->Length() > 0) {
        const auto writing = pTransaction->Stream()->WriteAsync(pBytes);
        if (co_await writing != pBytes->Length()) {
            throw Platform::WriteFaultException("a part of the file was not written");
        }
    }
    const auto committing = pTransaction->CommitAsync();
    co_await committing;
}

QString ReasonOf(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const EngineException&) {
        return QStringLiteral("It cannot be read from the document, which may be damaged.");
    } catch (...) {
        return ToSaveFailure(pError).strReason;
    }
}

}

bool AttachmentSaver::Save(std::shared_ptr<PDFDoc> pDocument, int nFile, const FilePath& path) {
    if (m_bSaving || !pDocument) {
        return false;
    }
    m_bSaving = true;
    emit Changed();
    Run(this, std::move(pDocument), nFile, path);
    return true;
}

task<void> AttachmentSaver::Run(QPointer<AttachmentSaver> pThis, std::shared_ptr<PDFDoc> pDocument,
                                int nFile, FilePath path) {
    std::exception_ptr pError;
    try {
        const auto writing = Write(std::move(pDocument), nFile, path);
        co_await writing;
    } catch (...) {
        pError = std::current_exception();
    }
    if (!pThis) {
        co_return;
    }
    pThis->m_bSaving = false;
    emit pThis->Changed();
    if (pThis && pError) {
        emit pThis->Failed(path.Name(), ReasonOf(pError));
    } else if (pThis) {
        emit pThis->Saved(path.Name());
    }
}

}
