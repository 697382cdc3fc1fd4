// `velko.pdf.PDFDoc`: one open document of the engine.
//
// Threads: any operation from any thread, several at a time. The last
// reference may go on any thread; the reader's `Release` is called then.
// Any bytes are survived: what cannot be read gives an error code or raises
// `velko::common::EngineException`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "document/engine/ErrorCode.h"
#include "document/engine/IFileReaderCallback.h"
#include "document/engine/PDFPage.h"
#include "platform/system/Activation.h"

namespace Windows::Storage {
class StorageFile;
}

namespace velko::pdf {

class PDFDoc {
public:
    // Bits of `GetPasswordType`.
    static constexpr std::int32_t kNoPassword = 1;
    // Of `StartSaveAs`.
    static constexpr std::uint32_t kIncremental = 1;

    virtual ~PDFDoc() = default;

    // Parses the file: success 0, read failure 1, not a PDF or no pages 2,
    // password missing or wrong 3, out of memory 10, written to meanwhile 15.
    // May be called again, with
    // another password after a 3; a failed call leaves a loaded document as it was.
    virtual common::ErrorCode Load(const std::string& strPassword) = 0;

    virtual std::int32_t GetPageCount() const = 0; // 0 until loaded

    // Raises `EngineException` (e_ErrParam) for an index out of range.
    virtual std::shared_ptr<PDFPage> GetPage(std::int32_t nIndex) = 0;

    // 1 no password, 2 opened with the user password, 3 with the owner password.
    virtual std::int32_t GetPasswordType() const = 0;

    // The permission bits of the file; all bits for an owner and for a file
    // without encryption.
    virtual std::uint32_t GetUserPermissions() const = 0;

    // -1 unknown handler, 0 none, 1 RC4 up to 40 bits, 2 RC4 up to 128 bits,
    // 3 AES-128, 4 (reserved), 5 AES-256.
    virtual std::int32_t GetEncryptionType() const = 0;

    // Writes the document, with the edits that there are now, into `pFile`, which need
    // not be there. `kIncremental` puts an update behind the document's own bytes, where
    // they are not damaged; 0 writes a file anew. Returns at once: the work is in the
    // steps of the progress, none for the UI thread, each for a short time or for one
    // writing; renders and edits of other threads go on meanwhile, and `pPause` is not
    // asked. What was written is read back before the last step puts it in the file's place.
    // Letting go of the progress before that leaves nothing.
    // A step raises `EngineException`: e_ErrFile when the file cannot be written or is
    // no good, with the platform's exception nested in it if there is one, the code of
    // `Load` when the document's own bytes cannot be read; this call e_ErrNotLoaded,
    // and e_ErrUnsupported from an engine that does not write. Both leave `pFile` as it was.
    virtual std::shared_ptr<common::Progressive> StartSaveAs(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFlags,
        common::IPauseCallback* pPause) = 0;
};

class IPDFDocFactory : public Platform::IActivationFactory {
public:
    // Reads through the callback only; parses nothing yet. Keeps the reader
    // alive until it has called `Release` on it.
    virtual std::shared_ptr<PDFDoc> Create(
        std::shared_ptr<common::vxbase::IFileReaderCallback> pReader) = 0;
};

inline constexpr const char* kPDFDocClass = "velko.pdf.PDFDoc";

}
