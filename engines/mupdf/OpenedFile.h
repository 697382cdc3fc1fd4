// A PDF file that the library has open.
//
// A file that met a failed read or a refused allocation may hold wrong facts
// in the library's tables; its document then opens another one in its place.
//
// Threads: one at a time, under the document's lock, except for the last
// reference, which may go anywhere. Display lists made from a file keep it alive.
#pragma once

#include <mupdf/pdf.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "document/engine/IFileReaderCallback.h"
#include "engines/mupdf/ReaderStream.h"
#include "platform/foundation/SecretText.h"

namespace velko::engines::mupdf {

class FileAnnots;

class OpenedFile {
public:
    // What authentication found; `kRefused` is a wrong or missing password.
    enum class Access { kRefused, kUnencrypted, kUser, kOwner };

    // Parses the cross-reference table, repairing it if need be. Raises
    // `EngineException`: a failed read, out of memory, not a PDF.
    explicit OpenedFile(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader);
    ~OpenedFile();
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    // The file of a document once more: with that password and so many pages. Raises
    // `EngineException` as the constructor does, and e_ErrConflict for another file.
    static std::shared_ptr<OpenedFile> Open(
        std::shared_ptr<common::vxbase::IFileReaderCallback> pReader,
        const Platform::MaskedText& password, std::int32_t nPages);

    pdf_document* Document() const { return m_pDocument; }
    std::uint32_t FileSize() const { return m_stream.Size(); }

    // May be called again after a refusal. A file that opens without a
    // password opens with any. The password counts in each way in which programs write
    // one into a file: in several spellings, as letters or as bytes. Raises as the constructor
    // does.
    Access Authenticate(const std::string& strPassword);

    // Finds the pages and tells how many there are: the leaves of the page tree
    // where reading all of it is cheap or its own count cannot be true, else
    // that count. Raises as the constructor does.
    std::int32_t ListPages();

    // A new reference to a page's object; null or of another kind where the file
    // has no such page. Guarded bodies only.
    pdf_obj* LoadPageObject(fz_context* ctx, std::int32_t nPage) const;

    // The page that an object is; -1 for none. Guarded bodies only. `IndexPages`
    // before makes it quick where the pages are listed.
    std::int32_t FindPage(fz_context* ctx, pdf_obj* pPage) const;
    void IndexPages();

    // The same as a reference to the object, where it is one of its own.
    pdf_obj* LoadPageReference(fz_context* ctx, std::int32_t nPage) const;

    std::int32_t EncryptionType();
    bool WasRepaired(); // the file's table of objects was no use
    std::uint32_t Permissions();

    // Runs `body` guarded, with the thread's context. Raises `EngineException`
    // with the file's code when a read failed and the memory code when an
    // allocation stayed refused, also when the library went on without; the
    // file is then damaged. Other errors of the library pass through.
    template <class Body>
    void Use(Body&& body);

    bool IsDamaged() const { return m_bDamaged; }
    void MarkDamaged() { m_bDamaged = true; }

    FileAnnots& Annots() { return *m_pAnnots; }

private:
    class UseScope;

    void CorrectPageCount(std::int32_t nPages);
    int Try(const std::string& strPassword);
    int TryBytes(const std::string& strPassword);
    int TrySpellings(const std::string& strPassword, bool bUnicode);

    ReaderStream m_stream;
    pdf_document* m_pDocument = nullptr;
    std::unique_ptr<FileAnnots> m_pAnnots;   // never empty
    std::vector<std::int32_t> m_pageObjects; // by page; empty when not listed
    std::vector<std::pair<std::int32_t, std::int32_t>> m_pagesByObject; // sorted, once asked for
    bool m_bDamaged = false;
    bool m_bWantsPassword = false; // it was refused without one
};

}

#include "engines/mupdf/OpenedFileUse.h"
