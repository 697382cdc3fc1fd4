#include "engines/mupdf/OpenedFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "engines/mupdf/BytePassword.h"
#include "engines/mupdf/PageTree.h"
#include "engines/mupdf/PasswordSpellings.h"
#include "engines/mupdf/edit/FileAnnots.h"
#include "platform/foundation/SecretText.h"

namespace velko::engines::mupdf {

namespace {

// Bits of `pdf_authenticate_password`.
constexpr int kNoPasswordNeeded = 1;
constexpr int kOwnerPassword = 4;
constexpr int kAes256Type = 5;

// Up to this many bytes the file is probably in memory, so that reading each
// page's dictionary to know the page tree costs little.
constexpr std::uint32_t kCheapTreeBytes = std::uint32_t{48} << 20;
constexpr std::int32_t kCheapTreePages = 300;

// Codes of `PDFDoc::GetEncryptionType`.
int Rc4Type(int nBits) {
    return nBits <= 40 ? 1 : 2;
}

// The method of one of the crypt filters (`/V` 4 and 5); 0 for none.
int CryptFilterType(fz_context* ctx, pdf_obj* pEncrypt, const char* szUse, int nBits) {
    pdf_obj* const pName = pdf_dict_gets(ctx, pEncrypt, szUse);
    pdf_obj* const pFilter = pdf_dict_get(ctx, pdf_dict_get(ctx, pEncrypt, PDF_NAME(CF)), pName);
    const char* const szMethod = pdf_to_name(ctx, pdf_dict_get(ctx, pFilter, PDF_NAME(CFM)));
    if (std::strcmp(szMethod, "V2") == 0) {
        return Rc4Type(nBits);
    }
    if (std::strcmp(szMethod, "AESV2") == 0) {
        return 3;
    }
    return std::strcmp(szMethod, "AESV3") == 0 ? 5 : 0;
}

// Of the streams, else of the strings, else of the attached files.
int CryptFilterType(fz_context* ctx, pdf_obj* pEncrypt, int nBits) {
    for (const char* const szUse : {"StmF", "StrF", "EFF"}) {
        if (const int nType = CryptFilterType(ctx, pEncrypt, szUse, nBits); nType != 0) {
            return nType;
        }
    }
    return 0;
}

int EncryptionTypeOf(fz_context* ctx, pdf_obj* pEncrypt) {
    if (!pdf_is_dict(ctx, pEncrypt)) {
        return 0;
    }
    if (std::strcmp(pdf_to_name(ctx, pdf_dict_get(ctx, pEncrypt, PDF_NAME(Filter))), "Standard") !=
        0) {
        return -1;
    }
    pdf_obj* const pLength = pdf_dict_get(ctx, pEncrypt, PDF_NAME(Length));
    const int nVersion = pdf_to_int(ctx, pdf_dict_get(ctx, pEncrypt, PDF_NAME(V)));
    switch (nVersion) {
        case 1:
            return 1;
        case 2:
        case 3:
            return Rc4Type(pdf_is_int(ctx, pLength) ? pdf_to_int(ctx, pLength) : 40);
        case 4:
        case 5:
        case 6:
            return CryptFilterType(ctx, pEncrypt,
                                   pdf_is_int(ctx, pLength) ? pdf_to_int(ctx, pLength) : 128);
        default:
            return -1;
    }
}

}

OpenedFile::OpenedFile(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader)
    : m_stream(std::move(pReader)), m_pAnnots(std::make_unique<FileAnnots>(*this)) {
    fz_context* const ctx = ThreadContext();
    try {
        StreamHandle stream;
        Use([&] {
            stream.Out() = m_stream.NewStream(ctx);
            m_pDocument = pdf_open_document_with_stream(ctx, stream.Get());
        });
    } catch (...) {
        if (m_pDocument != nullptr) {
            pdf_drop_document(ctx, m_pDocument);
        }
        throw;
    }
}

std::shared_ptr<OpenedFile> OpenedFile::Open(
    std::shared_ptr<common::vxbase::IFileReaderCallback> pReader,
    const Platform::MaskedText& password, std::int32_t nPages) {
    auto pFile = std::make_shared<OpenedFile>(std::move(pReader));
    if (pFile->Authenticate(password.Reveal().Text()) == Access::kRefused ||
        pFile->ListPages() != nPages) {
        throw common::EngineException(common::ErrorCode::e_ErrConflict, "the file has changed");
    }
    return pFile;
}

OpenedFile::~OpenedFile() {
    m_pAnnots.reset(); // it holds objects of the document
    pdf_drop_document(ThreadContext(), m_pDocument);
}

namespace {

// Beyond this the library's judging of a password does not reach down the stack.
[[gnu::noinline]] void WipeStack() {
    std::array<unsigned char, std::size_t{64} << 10> below;
    Platform::Wipe(below.data(), below.size());
}

}

// What the library answers; it leaves copies of the password on the stack.
int OpenedFile::Try(const std::string& strPassword) {
    fz_context* const ctx = ThreadContext();
    int nResult = 0;
    Use([&] { nResult = pdf_authenticate_password(ctx, m_pDocument, strPassword.c_str()); });
    WipeStack();
    return nResult;
}

int OpenedFile::TryBytes(const std::string& strPassword) {
    fz_context* const ctx = ThreadContext();
    int nResult = 0;
    Use([&] { nResult = AuthenticateBytes(ctx, m_pDocument, strPassword); });
    WipeStack();
    return nResult;
}

// As letters first, which is what the format says.
int OpenedFile::TrySpellings(const std::string& strPassword, bool bUnicode) {
    const auto spellings = PasswordSpellings(strPassword, bUnicode);
    int nResult = 0;
    for (const Platform::SecretText& spelling : spellings) {
        nResult = nResult == 0 ? Try(spelling.Text()) : nResult;
    }
    for (const Platform::SecretText& spelling : spellings) {
        nResult = nResult == 0 && !bUnicode ? TryBytes(spelling.Text()) : nResult;
    }
    return nResult;
}

OpenedFile::Access OpenedFile::Authenticate(const std::string& strPassword) {
    fz_context* const ctx = ThreadContext();
    bool bEncrypted = false;
    Use([&] {
        bEncrypted = pdf_is_dict(ctx, pdf_dict_get(ctx, pdf_trailer(ctx, m_pDocument),
                                                   PDF_NAME(Encrypt))) != 0;
    });
    int nResult = 0;
    if (!strPassword.empty() || !m_bWantsPassword) {
        const bool bUnicode = bEncrypted && EncryptionType() == kAes256Type;
        nResult = TrySpellings(strPassword, bUnicode);
    }
    if (nResult == 0 && !m_bWantsPassword) {
        nResult = Try("");
        m_bWantsPassword = nResult == 0;
    }
    if (nResult == 0) {
        return Access::kRefused;
    }
    if (!bEncrypted || nResult == kNoPasswordNeeded) {
        return Access::kUnencrypted;
    }
    return (nResult & kOwnerPassword) != 0 ? Access::kOwner : Access::kUser;
}

std::int32_t OpenedFile::ListPages() {
    fz_context* const ctx = ThreadContext();
    int nCount = 0;
    int nObjects = 0;
    Use([&] {
        nCount = pdf_count_pages(ctx, m_pDocument);
        nObjects = pdf_xref_len(ctx, m_pDocument);
    });
    if (nCount <= 0) {
        return 0;
    }
    // Every page is an object, so a larger count is made up.
    const bool bCredible = nCount <= nObjects;
    if (bCredible && FileSize() > kCheapTreeBytes && nCount > kCheapTreePages) {
        return nCount;
    }
    std::vector<std::int32_t> objects(static_cast<std::size_t>(std::max(nObjects, 0)));
    PageLeaves leaves;
    try {
        Use([&] { leaves = ListPageLeaves(ctx, m_pDocument, objects); });
    } catch (const LibraryError&) {
        return bCredible ? nCount : 0; // pages are searched one by one
    }
    if (leaves.nCount != nCount) {
        CorrectPageCount(leaves.nCount);
    }
    if (leaves.bAllNumbered) {
        objects.resize(static_cast<std::size_t>(leaves.nCount));
        objects.shrink_to_fit();
        m_pageObjects = std::move(objects);
    }
    return leaves.nCount;
}

// The library loads no page beyond the count that the file gives, which may be
// too small. In memory only.
void OpenedFile::CorrectPageCount(std::int32_t nPages) {
    fz_context* const ctx = ThreadContext();
    try {
        Use([&] {
            pdf_obj* const pRoot = pdf_dict_get(ctx, pdf_trailer(ctx, m_pDocument), PDF_NAME(Root));
            pdf_dict_put_int(ctx, pdf_dict_get(ctx, pRoot, PDF_NAME(Pages)), PDF_NAME(Count),
                             nPages);
        });
    } catch (const LibraryError&) {
        // The pages beyond are then told as missing.
    }
}

pdf_obj* OpenedFile::LoadPageObject(fz_context* ctx, std::int32_t nPage) const {
    if (static_cast<std::size_t>(nPage) < m_pageObjects.size()) {
        return pdf_load_object(ctx, m_pDocument, m_pageObjects[static_cast<std::size_t>(nPage)]);
    }
    return pdf_keep_obj(ctx, pdf_lookup_page_obj(ctx, m_pDocument, nPage));
}

void OpenedFile::IndexPages() {
    if (!m_pagesByObject.empty()) {
        return;
    }
    m_pagesByObject.reserve(m_pageObjects.size());
    std::int32_t nPage = 0;
    for (const std::int32_t nObject : m_pageObjects) {
        m_pagesByObject.emplace_back(nObject, nPage++);
    }
    std::sort(m_pagesByObject.begin(), m_pagesByObject.end());
}

std::int32_t OpenedFile::FindPage(fz_context* ctx, pdf_obj* pPage) const {
    const std::pair<std::int32_t, std::int32_t> first(pdf_to_num(ctx, pPage), 0);
    const auto it = std::lower_bound(m_pagesByObject.begin(), m_pagesByObject.end(), first);
    if (it != m_pagesByObject.end() && it->first == first.first) {
        return it->second;
    }
    return pdf_is_dict(ctx, pPage) != 0 ? pdf_lookup_page_number(ctx, m_pDocument, pPage) : -1;
}

pdf_obj* OpenedFile::LoadPageReference(fz_context* ctx, std::int32_t nPage) const {
    if (static_cast<std::size_t>(nPage) >= m_pageObjects.size()) {
        return pdf_keep_obj(ctx, pdf_lookup_page_obj(ctx, m_pDocument, nPage));
    }
    const std::int32_t nObject = m_pageObjects[static_cast<std::size_t>(nPage)];
    const pdf_xref_entry* const pEntry = pdf_get_xref_entry(ctx, m_pDocument, nObject);
    return pdf_new_indirect(ctx, m_pDocument, nObject, pEntry->type == 'n' ? pEntry->gen : 0);
}

std::int32_t OpenedFile::EncryptionType() {
    fz_context* const ctx = ThreadContext();
    int nType = 0;
    Use([&] {
        nType = EncryptionTypeOf(
            ctx, pdf_dict_get(ctx, pdf_trailer(ctx, m_pDocument), PDF_NAME(Encrypt)));
    });
    return nType;
}

bool OpenedFile::WasRepaired() {
    fz_context* const ctx = ThreadContext();
    bool bRepaired = false;
    Use([&] { bRepaired = pdf_was_repaired(ctx, m_pDocument) != 0; });
    return bRepaired;
}

std::uint32_t OpenedFile::Permissions() {
    fz_context* const ctx = ThreadContext();
    int nBits = 0;
    Use([&] { nBits = pdf_document_permissions(ctx, m_pDocument); });
    return static_cast<std::uint32_t>(nBits);
}

}
