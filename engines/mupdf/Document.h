// One open document: `velko.pdf.PDFDoc`, and its links for a host.
//
// Threads: any. Two locks span work of the library, and never nest:
// - the document's lock spans every use of the library's document: parsing,
//   interpreting a page into a list, annotations, links. Running a list needs
//   no lock, and no call that a UI thread makes takes this one after `Load`.
// - the sizes' lock spans reads of page sizes that `Load` did not get to;
//   these have a file of their own, so they wait for each other only. The task
//   pool reads them ahead after `Load`.
// The state's lock, those of the tables and the one of the cache of pages are
// leaves, held for a look-up, and may be taken under the first two.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "document/engine/DocumentFacts.h"
#include "document/engine/HostServices.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/PageText.h"
#include "engines/mupdf/Drawing.h"
#include "engines/mupdf/OpenedFile.h"
#include "engines/mupdf/Operation.h"
#include "engines/mupdf/PageTable.h"
#include "engines/mupdf/edit/EditLog.h"
#include "engines/mupdf/reflow/MeasuredSizes.h"
#include "platform/concurrency/CriticalSection.h"
#include "platform/foundation/SecretText.h"

namespace velko::engines::mupdf {

namespace text {
struct CachedText;
}

class Document final : public pdf::PDFDoc,
                       public pdf::ILinkSource,
                       public pdf::IDocumentFacts,
                       public pdf::IPageExtents,
                       public pdf::IRepair,
                       public pdf::ITextSource,
                       public pdf::ISetTextSource,
                       public pdf::IAnnotEditor,
                       public std::enable_shared_from_this<Document> {
public:
    explicit Document(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader);
    ~Document() override;

    common::ErrorCode Load(const std::string& strPassword) override;
    std::int32_t GetPageCount() const override;
    std::shared_ptr<pdf::PDFPage> GetPage(std::int32_t nIndex) override;
    std::int32_t GetPasswordType() const override;
    std::uint32_t GetUserPermissions() const override;
    std::int32_t GetEncryptionType() const override;
    std::shared_ptr<common::Progressive> StartSaveAs(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFlags,
        common::IPauseCallback* pPause) override;

    std::vector<pdf::LinkRecord> GetLinks(std::int32_t nPageIndex) override;
    std::shared_ptr<pdf::IAction> FindNamedDestination(const std::string& strName) override;

    std::vector<pdf::OutlineEntry> GetOutline() override;
    pdf::PageLabels GetPageLabels() override;
    pdf::DocumentProperties GetProperties() override;
    std::vector<pdf::FontFact> GetFonts(std::int32_t nPageIndex) override;
    std::vector<pdf::AttachedFile> GetAttachedFiles() override;
    std::vector<std::uint8_t> LoadAttachedFile(std::int32_t nFile) override;

    pdf::PageExtent LargestPage() const override; // nothing until loaded
    bool WasRepaired() const override;

    std::shared_ptr<const pdf::PageText> TextOf(std::int32_t nPageIndex) override;
    std::shared_ptr<pdf::ITextReader> NewReader(AbortFlag pAbort) override;
    std::uint64_t SetNumber() const override;
    std::shared_ptr<const pdf::PageText> SetTextOf(std::int32_t nPageIndex) override;

    std::vector<pdf::ListedAnnot> ListAnnots(std::int32_t nPageIndex) override;
    pdf::AnnotId AddAnnot(std::int32_t nPageIndex, const pdf::AnnotRecord& record) override;
    void ChangeAnnot(std::int32_t nPageIndex, pdf::AnnotId nId,
                     const pdf::AnnotRecord& record) override;
    void RemoveAnnot(std::int32_t nPageIndex, pdf::AnnotId nId) override;
    void RestoreAnnot(std::int32_t nPageIndex, pdf::AnnotId nId) override;
    std::uint64_t Revision() const override;

    // For pages and renderers. What a page draws, from the cache or made now;
    // `pAbort` may be empty. Raises `EngineException` and `task_canceled`.
    std::shared_ptr<const Drawing> ContentOf(std::int32_t nPage, Operation::AbortFlag pAbort);
    std::shared_ptr<const Drawing> AnnotsOf(std::int32_t nPage, Operation::AbortFlag pAbort);
    std::vector<AnnotEntry> AnnotEntriesOf(std::int32_t nPage);
    // The file opened once more, for whoever is not to hold the document's lock; without
    // its edits. Raises `EngineException`.
    std::shared_ptr<OpenedFile> OpenBeside() const;
    PageFacts FactsOf(std::int32_t nPage);
    // What is known of the page now; waits for nothing.
    std::optional<PageFacts> FactsNow(std::int32_t nPage) const;
    // Lets go of what was kept of the page although its time ran out.
    void ForgetCutShort(std::int32_t nPage);
    // What is known of its pages set anew; a page that was measured whole has been
    // interpreted and needs no parse, though what it draws may have left the cache.
    reflow::MeasuredSizes& Sizes() { return m_sizes; }
    std::uint64_t CacheNumber() const { return m_nKey; }

private:
    using Lock = concurrency::critical_section::scoped_lock;

    // What `Load` found. Immutable but for the table, which fills.
    struct Loaded {
        explicit Loaded(std::int32_t nPages) : table(nPages) {}
        PageTable table;
        Platform::MaskedText password; // for `OpenAgain`
        std::int32_t nPasswordType = kNoPassword;
        std::uint32_t nPermissions = 0;
        std::int32_t nEncryptionType = 0;
        bool bRepaired = false;
    };

    std::shared_ptr<Loaded> State() const;       // empty until loaded
    std::shared_ptr<Loaded> LoadedState() const; // raises until loaded

    common::ErrorCode LoadOrTell(const std::string& strPassword);
    common::ErrorCode LoadUnderLock(const std::string& strPassword) VLK_REQUIRES(m_lock);
    void KeepRefusedEncryption(std::int32_t nType);
    void Publish(std::shared_ptr<OpenedFile> pFile, std::shared_ptr<Loaded> pLoaded)
        VLK_REQUIRES(m_lock);

    // The file, opened anew if it is damaged. Raises `EngineException`.
    std::shared_ptr<OpenedFile> UsableFile() VLK_REQUIRES(m_lock);
    std::shared_ptr<OpenedFile> OpenAgain(const Loaded& loaded) const;

    static void CheckPage(const Loaded& loaded, std::int32_t nPage); // raises without it
    void ReadFactsAround(Loaded& loaded, std::int32_t nPage);
    void ReadSizesAhead();
    static void ReadSizesInTurn(const std::weak_ptr<Document>& wkSelf, Loaded& loaded);
    float PageTop(OpenedFile& file, Loaded& loaded, std::int32_t nPage);

    std::shared_ptr<const text::CachedText> OwnText(std::int32_t nPage, const PageFacts& facts);

    void CarryOut(AnnotEdit edit);
    void Keep(AnnotEdit edit, bool bIsOriginal);
    EditLog Edits() const;

    // `fnKey` is asked again under the lock, where no edit comes between it and the drawing.
    template <class KeyOf, class Draw>
    std::shared_ptr<const Drawing> CachedOrDrawn(KeyOf&& fnKey, Operation::AbortFlag pAbort,
                                                 Draw&& fnDraw);

    const std::shared_ptr<common::vxbase::IFileReaderCallback> m_pReader;
    const std::uint64_t m_nKey; // in the cache of pages
    reflow::MeasuredSizes m_sizes;

    concurrency::critical_section m_lock;
    std::shared_ptr<OpenedFile> m_pFile VLK_GUARDED_BY(m_lock);   // empty until loaded
    std::shared_ptr<OpenedFile> m_pLocked VLK_GUARDED_BY(m_lock); // waits for its password
    std::uint64_t m_nGeneration VLK_GUARDED_BY(m_lock) = 0; // the last of any page's annotations

    concurrency::critical_section m_sizesLock;
    std::shared_ptr<OpenedFile> m_pSizesFile VLK_GUARDED_BY(m_sizesLock); // opened when needed

    mutable concurrency::critical_section m_stateLock;
    std::shared_ptr<Loaded> m_pState VLK_GUARDED_BY(m_stateLock);
    EditLog m_edits VLK_GUARDED_BY(m_stateLock); // changed under the document's lock only
    std::uint64_t m_nRevision VLK_GUARDED_BY(m_stateLock) = 0;
    std::int32_t m_nRefusedEncryption VLK_GUARDED_BY(m_stateLock) =
        0; // of a file that is not open yet
};

}
