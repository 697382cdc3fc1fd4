#include "engines/mupdf/Document.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "engines/mupdf/Destinations.h"
#include "engines/mupdf/Drawings.h"
#include "engines/mupdf/Page.h"
#include "engines/mupdf/PageCache.h"
#include "engines/mupdf/edit/ApplyEdit.h"
#include "engines/mupdf/edit/FileAnnots.h"
#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Exception.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;
using Clock = std::chrono::steady_clock;

constexpr std::int32_t kUserPassword = 2;
constexpr std::int32_t kOwnerPassword = 3;
constexpr std::uint32_t kAllPermissions = 0xFFFFFFFFU;

// Pages whose facts are read at one go.
constexpr std::int32_t kSlice = 64;

// Finding a page takes as long as its tree is wide, at worst as there are pages:
// beyond so many pages it is not done for all of them ahead of need.
constexpr std::int32_t kPagesAhead = 20'000;

// Reads the facts of the slice that starts at `nFirst` into the table.
void ReadSlice(OpenedFile& file, PageTable& table, std::int32_t nFirst) {
    fz_context* const ctx = ThreadContext();
    std::array<PageFacts, kSlice> facts;
    const std::int32_t nEnd = std::min(nFirst + kSlice, table.Count());
    file.Use([&] {
        for (std::int32_t i = nFirst; i < nEnd; ++i) {
            facts[static_cast<std::size_t>(i - nFirst)] = ReadPageFacts(ctx, file, i);
        }
    });
    for (std::int32_t i = nFirst; i < nEnd; ++i) {
        table.Put(i, facts[static_cast<std::size_t>(i - nFirst)]);
    }
}

std::int32_t PasswordTypeOf(OpenedFile::Access eAccess) {
    switch (eAccess) {
        case OpenedFile::Access::kOwner:
            return kOwnerPassword;
        case OpenedFile::Access::kUser:
            return kUserPassword;
        default:
            return pdf::PDFDoc::kNoPassword;
    }
}

}

Document::Document(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader)
    : m_pReader(std::move(pReader)), m_nKey(PageCache::Instance().NewDocument()) {}

Document::~Document() {
    PageCache::Instance().DropDocument(m_nKey);
    m_pFile.reset();
    m_pLocked.reset();
    m_pSizesFile.reset();
    try {
        m_pReader->Release();
    } catch (...) {
        // There is nobody left to tell.
    }
}

ErrorCode Document::Load(const std::string& strPassword) {
    const ErrorCode eCode = LoadOrTell(strPassword);
    if (eCode == ErrorCode::e_ErrSuccess) {
        ReadSizesAhead();
    }
    return eCode;
}

ErrorCode Document::LoadOrTell(const std::string& strPassword) {
    const Lock lock(m_lock);
    try {
        return LoadUnderLock(strPassword);
    } catch (const LibraryError& error) {
        return error.Kind() == FZ_ERROR_MEMORY ? ErrorCode::e_ErrOutOfMemory
                                               : ErrorCode::e_ErrFormat;
    } catch (const EngineException& error) {
        return error.Code();
    } catch (const std::bad_alloc&) {
        return ErrorCode::e_ErrOutOfMemory;
    } catch (const std::exception&) {
        return ErrorCode::e_ErrFile; // of the reader, which is all that is left
    }
}

ErrorCode Document::LoadUnderLock(const std::string& strPassword) {
    std::shared_ptr<OpenedFile> pFile = std::exchange(m_pLocked, nullptr);
    if (!pFile || pFile->IsDamaged()) {
        pFile = std::make_shared<OpenedFile>(m_pReader);
    }
    const OpenedFile::Access eAccess = pFile->Authenticate(strPassword);
    if (eAccess == OpenedFile::Access::kRefused) {
        KeepRefusedEncryption(pFile->EncryptionType());
        m_pLocked = std::move(pFile);
        return ErrorCode::e_ErrPassword;
    }
    const std::int32_t nPages = pFile->ListPages();
    if (nPages == 0) {
        return ErrorCode::e_ErrFormat;
    }
    auto pLoaded = std::make_shared<Loaded>(nPages);
    pLoaded->password = Platform::MaskedText(strPassword);
    pLoaded->nPasswordType = PasswordTypeOf(eAccess);
    pLoaded->nEncryptionType = pFile->EncryptionType();
    pLoaded->bRepaired = pFile->WasRepaired();
    pLoaded->nPermissions =
        eAccess == OpenedFile::Access::kUser ? pFile->Permissions() : kAllPermissions;
    const Clock::time_point end = Clock::now() + CurrentBudgets().table;
    for (std::int32_t i = 0; i < nPages && (i == 0 || Clock::now() < end); i += kSlice) {
        ReadSlice(*pFile, pLoaded->table, i);
    }
    Publish(std::move(pFile), std::move(pLoaded));
    return ErrorCode::e_ErrSuccess;
}

// What protects a document is known before it opens.
void Document::KeepRefusedEncryption(std::int32_t nType) {
    const Lock lock(m_stateLock);
    m_nRefusedEncryption = nType;
}

void Document::Publish(std::shared_ptr<OpenedFile> pFile, std::shared_ptr<Loaded> pLoaded) {
    m_pFile = std::move(pFile);
    PageCache::Instance().DropDocument(m_nKey);
    m_sizes.Clear();
    const Lock lock(m_stateLock);
    m_pState = std::move(pLoaded);
    m_edits = EditLog(); // of what was loaded before
    m_nRevision = 0;
}

std::shared_ptr<Document::Loaded> Document::State() const {
    const Lock lock(m_stateLock);
    return m_pState;
}

std::shared_ptr<Document::Loaded> Document::LoadedState() const {
    auto pState = State();
    if (!pState) {
        throw EngineException(ErrorCode::e_ErrNotLoaded, "the document is not loaded");
    }
    return pState;
}

std::int32_t Document::GetPageCount() const {
    const auto pState = State();
    return pState ? pState->table.Count() : 0;
}

std::int32_t Document::GetPasswordType() const {
    const auto pState = State();
    return pState ? pState->nPasswordType : kNoPassword;
}

std::uint32_t Document::GetUserPermissions() const {
    const auto pState = State();
    return pState ? pState->nPermissions : 0;
}

std::int32_t Document::GetEncryptionType() const {
    const auto pState = State();
    if (pState) {
        return pState->nEncryptionType;
    }
    const Lock lock(m_stateLock);
    return m_nRefusedEncryption;
}

std::shared_ptr<pdf::PDFPage> Document::GetPage(std::int32_t nIndex) {
    return std::make_shared<Page>(shared_from_this(), nIndex, FactsOf(nIndex));
}

std::optional<PageFacts> Document::FactsNow(std::int32_t nPage) const {
    const auto pState = State();
    return pState && nPage < pState->table.Count() ? pState->table.Find(nPage) : std::nullopt;
}

void Document::CheckPage(const Loaded& loaded, std::int32_t nPage) {
    if (nPage < 0 || nPage >= loaded.table.Count()) {
        throw EngineException(ErrorCode::e_ErrParam, "the document has no such page");
    }
}

PageFacts Document::FactsOf(std::int32_t nPage) {
    const auto pState = LoadedState();
    CheckPage(*pState, nPage);
    if (const auto facts = pState->table.Find(nPage)) {
        return *facts;
    }
    ReadFactsAround(*pState, nPage);
    return pState->table.Find(nPage).value();
}

void Document::ReadFactsAround(Loaded& loaded, std::int32_t nPage) {
    const Lock lock(m_sizesLock);
    if (loaded.table.Find(nPage)) {
        return; // another thread was faster
    }
    if (!m_pSizesFile || m_pSizesFile->IsDamaged()) {
        m_pSizesFile = OpenAgain(loaded);
    }
    ReadSlice(*m_pSizesFile, loaded.table, nPage / kSlice * kSlice);
}

bool Document::WasRepaired() const {
    const auto pState = State();
    return pState && pState->bRepaired;
}

pdf::PageExtent Document::LargestPage() const {
    const auto pState = State();
    return pState ? pState->table.Largest() : pdf::PageExtent();
}

// On the task pool, so that whoever jumps to a far page, which a UI thread
// does, finds its size. A failure is met again by whoever asks for the page.
void Document::ReadSizesAhead() {
    const auto pState = LoadedState();
    if (pState->table.IsFull()) {
        return;
    }
    try {
        concurrency::task_pool()->schedule([wkSelf = weak_from_this(), pState] {
            try {
                ReadSizesInTurn(wkSelf, *pState);
            } catch (const std::exception&) {
            }
        });
    } catch (const Platform::Exception&) {
        // A process without a pool reads when it is asked.
    }
}

// Each slice for itself, so that nobody waits for more than one.
void Document::ReadSizesInTurn(const std::weak_ptr<Document>& wkSelf, Loaded& loaded) {
    const std::int32_t nPages = loaded.table.Count();
    for (std::int32_t i = nPages > kPagesAhead ? nPages - 1 : 0; i < nPages; i += kSlice) {
        const auto pSelf = wkSelf.lock();
        if (!pSelf) {
            return;
        }
        if (!loaded.table.Find(i)) {
            pSelf->ReadFactsAround(loaded, i);
        }
    }
    const auto pSelf = wkSelf.lock();
    if (pSelf && loaded.table.IsFull()) {
        const Lock lock(pSelf->m_sizesLock);
        pSelf->m_pSizesFile.reset(); // nobody asks it any more
    }
}

std::shared_ptr<OpenedFile> Document::OpenAgain(const Loaded& loaded) const {
    return OpenedFile::Open(m_pReader, loaded.password, loaded.table.Count());
}

std::shared_ptr<OpenedFile> Document::OpenBeside() const {
    return OpenAgain(*LoadedState());
}

std::shared_ptr<OpenedFile> Document::UsableFile() {
    if (m_pFile->IsDamaged()) {
        const auto pFile = OpenAgain(*LoadedState());
        Replay(Edits().Entries(), *pFile);
        m_pFile = pFile;
        m_sizes.Clear(); // what was set of the old one is not found any more
    }
    return m_pFile;
}

template <class KeyOf, class Draw>
std::shared_ptr<const Drawing> Document::CachedOrDrawn(KeyOf&& fnKey, Operation::AbortFlag pAbort,
                                                       Draw&& fnDraw) {
    PageCache& cache = PageCache::Instance();
    if (auto pDrawing = cache.Find<Drawing>(fnKey())) {
        return pDrawing;
    }
    const Lock lock(m_lock);
    const PageCache::Key key = fnKey();
    if (auto pDrawing = cache.Find<Drawing>(key)) {
        return pDrawing; // another thread was faster
    }
    LoadedState();
    const std::shared_ptr<OpenedFile> pFile = UsableFile();
    Operation operation(std::move(pAbort), CurrentBudgets().parse);
    operation.ThrowIfAborted();
    std::shared_ptr<const Drawing> pDrawing = fnDraw(pFile, operation);
    cache.Put(key, pDrawing);
    return pDrawing;
}

std::shared_ptr<const Drawing> Document::ContentOf(std::int32_t nPage,
                                                   Operation::AbortFlag pAbort) {
    const PageCache::Key key{m_nKey, nPage, PageCache::Kind::Content};
    return CachedOrDrawn([&key] { return key; }, std::move(pAbort),
                         [nPage](const std::shared_ptr<OpenedFile>& pFile, Operation& operation) {
                             return DrawContent(pFile, nPage, operation);
                         });
}

std::shared_ptr<const Drawing> Document::AnnotsOf(std::int32_t nPage, Operation::AbortFlag pAbort) {
    return CachedOrDrawn(
        [&] {
            return PageCache::Key{m_nKey, nPage, PageCache::Kind::Annots,
                                  FactsNow(nPage).value_or(PageFacts()).nGeneration};
        },
        std::move(pAbort),
        [nPage](const std::shared_ptr<OpenedFile>& pFile, Operation& operation) {
            return DrawAnnots(pFile, nPage, operation);
        });
}

void Document::ForgetCutShort(std::int32_t nPage) {
    PageCache::Instance().DropCutShort(m_nKey, nPage);
    m_sizes.ForgetCutShort(nPage);
}

std::vector<AnnotEntry> Document::AnnotEntriesOf(std::int32_t nPage) {
    const Lock lock(m_lock);
    LoadedState();
    return UsableFile()->Annots().List(nPage);
}

float Document::PageTop(OpenedFile& file, Loaded& loaded, std::int32_t nPage) {
    if (!loaded.table.Find(nPage)) {
        ReadSlice(file, loaded.table, nPage / kSlice * kSlice);
    }
    return loaded.table.Find(nPage).value().rcBox.Top;
}

std::vector<pdf::LinkRecord> Document::GetLinks(std::int32_t nPageIndex) {
    const auto pState = LoadedState();
    CheckPage(*pState, nPageIndex);
    const Lock lock(m_lock);
    const std::shared_ptr<OpenedFile> pFile = UsableFile();
    return ReadLinks(*pFile, nPageIndex, pState->table.Count(),
                     [&](std::int32_t nPage) { return PageTop(*pFile, *pState, nPage); });
}

std::shared_ptr<pdf::IAction> Document::FindNamedDestination(const std::string& strName) {
    const auto pState = LoadedState();
    const Lock lock(m_lock);
    const std::shared_ptr<OpenedFile> pFile = UsableFile();
    return ReadNamedDestination(*pFile, strName, pState->table.Count(), [&](std::int32_t nPage) {
        return PageTop(*pFile, *pState, nPage);
    });
}

}
