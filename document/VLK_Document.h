// One open PDF on top of the engine: the platform's file, the reader that
// feeds the engine, the engine's document and the table of pages.
//
// Lifetime: made by `OpenAsync` or around an engine document, always held by a
// `shared_ptr`. `Dispose` ends it: from then on every public operation raises
// `ObjectDisposedException`, except those that say otherwise. Operations in
// flight keep the object alive and end by themselves, as cancelled where
// nothing else stopped them first.
// Threads: open and page loads run on the pool; the page table's operations and
// the transforms run on any thread; renders run one after another, in the order
// in which they come. All else is for the UI thread unless it says otherwise.
// Locks: `m_spPageLock` guards the page table, `m_RenderLock` the engine's
// rendering; both are recursive, and this class never takes the one under the
// other. By design the page lock is held while a dropped page is parsed again
// and while `PageUnloaded` handlers run, the render lock while `RenderPage`
// handlers run. Such a handler may call this object on its own thread; it must
// not wait for another thread that needs the same lock.
// Units: points for sizes, device pixels for rectangles on the screen, page
// space for what the transforms give and take.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "document/IDocumentOwner.h"
#include "document/PageFailure.h"
#include "document/PageFailures.h"
#include "document/PageTable.h"
#include "document/RenderBlockRequest.h"
#include "document/SaveSteps.h"
#include "document/VLK_DocOpenResult.h"
#include "document/VLK_ReflowPage.h"
#include "document/engine/Bitmap.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/concurrency/CriticalSection.h"
#include "platform/concurrency/Task.h"
#include "platform/foundation/Collections.h"
#include "platform/foundation/Geometry.h"
#include "platform/foundation/SecretText.h"
#include "platform/storage/FileVersion.h"
#include "platform/storage/StorageFile.h"

namespace velko::pdf {
class IAnnotEditor;
}

namespace velko::vkit {

class VLKS_FileHandler;
class VLKS_FileHandlerReadWrite;

class VLK_Document final : public std::enable_shared_from_this<VLK_Document> {
    struct PrivateTag {};

public:
    // Bits of the render flags.
    static constexpr std::uint32_t kRenderContent = 1;
    static constexpr std::uint32_t kRenderAnnots = 2;

    // The largest file that can be opened, in bytes.
    static constexpr std::uint32_t kMaxFileSize = 0x7FFFFFFFU;

    // Opens on the pool; without a file the task has ended when this returns.
    // What the engine answers is in the result. Any other failure ends the
    // task; a file above `kMaxFileSize` fails with `InvalidArgumentException`.
    static concurrency::task<std::shared_ptr<VLK_DocOpenResult>> OpenAsync(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFileSize,
        Platform::SecretText password);

    // Around a loaded engine document that the host holds; no file, no reader.
    // Raises `NullReferenceException` without one.
    explicit VLK_Document(std::shared_ptr<velko::pdf::PDFDoc> pPdfDoc);
    explicit VLK_Document(PrivateTag); // an empty document, for `OpenAsync`
    ~VLK_Document();
    VLK_Document(const VLK_Document&) = delete;
    VLK_Document& operator=(const VLK_Document&) = delete;

    // Blocks while the engine tries the password. False leaves all as it was.
    bool ReloadWithPassword(const std::string& strPassword);

    // Brings one page up on the pool: its table entry, the start of its parse,
    // its page box. Pages that are still to be parsed come up in the order of
    // the calls; one that is parsed waits for none of them. Cancelled when the
    // token is before it starts, and when the document is disposed meanwhile.
    // Fails for an index without a page. `bAnew` is for a reader who asks again:
    // a page whose parse was cut short for its time is parsed once more.
    concurrency::task<std::shared_ptr<VLK_PageHandle>> LoadPageAsync(
        std::int32_t nPageIndex,
        concurrency::cancellation_token token = concurrency::cancellation_token::none(),
        bool bAnew = false);

    // Why the page is not shown, or not all of it; empty for a page of which
    // nothing failed. A load and a render note their own failures here, beside
    // raising them, and heal them when they succeed; a render that ran out of
    // its time succeeds with what it has and is noted too. Cancelled work says
    // nothing. The owner is told of each change. Any thread, disposed too.
    std::optional<PageFailure> PageFailureOf(std::int32_t nPageIndex) const {
        return m_failures.Find(nPageIndex);
    }

    // --- the page table ---
    // An engine failure is raised; the table is then as it was.

    // Puts the entry at the index, in the place of another. True when there
    // was none.
    bool InsertPageEntry(std::shared_ptr<WPPDFPage> pEntry, std::int32_t nPageIndex);

    // The entry, with its engine page brought back and parsed if it had been
    // dropped; empty when the table has none.
    std::shared_ptr<WPPDFPage> ReLoadPageIndex(std::int32_t nPageIndex);

    // The entry, made if need be; empty for an index out of range. A new one
    // raises `PageLoaded`: now on the UI thread, else through its queue.
    std::shared_ptr<WPPDFPage> EnsurePageEntry(std::int32_t nPageIndex);

    // The size, the entry being made if need be; empty for an index out of
    // range. A new entry raises `PageLoaded` on the calling thread.
    std::shared_ptr<VLK_PageSize> GetPageSize(std::int32_t nPageIndex);

    // The size as the engine tells it, the table untouched. Raises the
    // engine's failure for an index without a page.
    std::shared_ptr<VLK_PageSize> PeekPageSize(std::int32_t nPageIndex);

    // Empties the table, raising `PageUnloaded` for each entry on the calling
    // thread. Entries in use keep their engine page. A failing handler ends
    // the walk: pages given up by then stay in the table and can be brought
    // back, the rest is untouched.
    void ClearPageInfoVector();

    // Changes the entry's count of renders in flight. Works on a disposed
    // document too, for what is still in flight.
    void AddPageUse(const std::shared_ptr<WPPDFPage>& pEntry, std::int32_t nChange);

    // The page box of a handle; zeros until a load has filled it. The way to
    // read it while a load of that page may be under way. Disposed too.
    Windows::Foundation::Rect PageBox(const std::shared_ptr<VLK_PageHandle>& pHandle) const;

    // --- rendering ---

    // Puts the render flags and the hidden annotation types as they are now
    // into the request, so that the worker reads nothing that the host changes.
    void FillRenderState(RenderBlockRequest& request) const;

    // The way to a worker for `RenderPageBlock`: renders begin in the order in
    // which they came here, and no thread waits for its turn.
    const std::shared_ptr<concurrency::scheduler>& RenderQueue() const { return m_pRenderQueue; }

    // Renders into a fresh bitmap, on a worker. True when the box holds it; a
    // failure leaves the box as it was. Raises `task_canceled` when the
    // request's token is cancelled by the time the render lock is there (the
    // engine is not asked then), while the engine draws, and when the document
    // was disposed while it waited.
    bool RenderPageBlock(const RenderBlockRequest& request, BitmapBox& outBox);

    // --- changing and saving ---
    // The document goes on reading the bytes that it was opened with, whatever its
    // file holds by then. Closing it cancels what follows here before its next step,
    // never within the replacing of a file.

    using SaveCheck = std::function<void(const std::shared_ptr<Windows::Storage::StorageFile>&)>;

    // Runs `fnEdit` on the pool while no block of the document is drawn; edits run in
    // the order of the calls. Fails with what it raises, and with e_ErrUnsupported when
    // the engine changes nothing.
    concurrency::task<void> EditAsync(std::function<void(velko::pdf::IAnnotEditor&)> fnEdit);

    // Writes the document over its file, through the one temporary file of the
    // application, whose turn it waits for some seconds (`FileLockedException`). Before
    // the file is replaced `fnCheck`, which may be empty, looks at what is to replace
    // it, on a pool thread; what it raises ends the save. Fails with
    // `FileChangedException` for a file that is not the one that was opened or saved
    // last, `NullReferenceException` for a document without a file, and as engine and
    // storage do; the file is then as it was.
    concurrency::task<void> SaveAndReplaceAsync(SaveCheck fnCheck = nullptr);

    // Writes the document into another file, at once; the temporary file has no part in
    // it. False when the engine says that it failed. The document's file stays its file.
    concurrency::task<bool> SaveToFileAsync(std::shared_ptr<Windows::Storage::StorageFile> pFile);

    // The temporary file, empty and made anew.
    concurrency::task<std::shared_ptr<Windows::Storage::StorageFile>> GetTempFileAsync();

    // Later saves go into `pFile`, which holds what the document says; for a host that
    // has just saved it there.
    concurrency::task<void> RebindFile(std::shared_ptr<Windows::Storage::StorageFile> pFile);

    // The next save replaces the file as it is now, whoever has changed it: the way of a
    // reader who has been asked. Fails as the file does.
    concurrency::task<void> AcceptChangedFile();

    // For the length of a save, the reader's answers included: there is one at a time.
    // Raises `SaveInProgressException` while another's is held.
    std::shared_ptr<void> BeginSave();

    // --- text set anew ---

    // Sets and measures the page, on any thread, by the engine's document alone:
    // the page table does not change. Empty for an index out of range, and when
    // `pPause` (which may be empty) stopped it. Raises what the engine does, and
    // notes it as a load does.
    std::shared_ptr<VLK_ReflowPage> CreateReflowPage(
        std::int32_t nPageIndex, const ReflowParameters& wanted,
        velko::common::IPauseCallback* pPause = nullptr);

    // As `RenderPageBlock`, of a band of the set text; hosts draw nothing into it.
    bool RenderReflowBlock(const ReflowBlockRequest& request, BitmapBox& outBox);

    // --- page space and device space ---
    // The page fills the rectangle (left, top, width, height), truncated to
    // whole pixels and turned by `nRotate` quarter turns. Without an entry in
    // the table points come back unchanged and rectangles as `Rect::Empty`.
    Windows::Foundation::Point DevicePointToPagePoint(std::int32_t nPageIndex, double dbLeft,
                                                      double dbTop, double dbWidth, double dbHeight,
                                                      std::int32_t nRotate,
                                                      Windows::Foundation::Point pt);
    Windows::Foundation::Point PagePointToDevicePoint(std::int32_t nPageIndex, double dbLeft,
                                                      double dbTop, double dbWidth, double dbHeight,
                                                      std::int32_t nRotate,
                                                      Windows::Foundation::Point pt);
    // A page rectangle has its lower left corner in X and Y.
    Windows::Foundation::Rect DeviceRectToPageRect(std::int32_t nPageIndex, double dbLeft,
                                                   double dbTop, double dbWidth, double dbHeight,
                                                   std::int32_t nRotate,
                                                   const Windows::Foundation::Rect& rc);
    Windows::Foundation::Rect PageRectToDeviceRect(std::int32_t nPageIndex, double dbLeft,
                                                   double dbTop, double dbWidth, double dbHeight,
                                                   std::int32_t nRotate,
                                                   const Windows::Foundation::Rect& rc);
    // The engine's matrix for the rectangle; the identity without an entry.
    velko::common::vxbase::Matrix2D GetDisplayMatrix(std::int32_t nPageIndex, double dbLeft,
                                                     double dbTop, double dbWidth, double dbHeight,
                                                     std::int32_t nRotate);

    // Closes; a second call does nothing. Waits for no render and for no load,
    // and ends their waits for bytes, so that a file that does not answer holds
    // nobody. A failing `PageUnloaded` handler's exception is raised when all is closed.
    void Dispose();
    bool IsDisposed() const { return m_bDisposed; } // any thread

    // --- facts and switches ---
    std::int32_t PageCount() const;
    std::int32_t Permissions() const;
    std::int32_t PasswordType() const;
    bool PasswordApplied() const;
    std::uint32_t FileSize() const;
    std::int32_t GetEncryptKind();                               // 0 to 5
    std::shared_ptr<Windows::Storage::StorageFile> File() const; // empty without one

    // The engine document. A disposed document still has it, until
    // `ReleasePdfDoc`, so that its owner can name it when it tells of the
    // closing. Any thread, never raise.
    std::shared_ptr<velko::pdf::PDFDoc> PdfDoc() const;
    void ReleasePdfDoc();

    // Who hears of pages and renders; nobody after `Dispose`. Any thread.
    void SetOwner(std::weak_ptr<IDocumentOwner> wkOwner);
    std::shared_ptr<IDocumentOwner> Owner() const;

    // Only remembered for the host: closing deletes no file.
    bool DeleteFileOnClose() const;
    void DeleteFileOnClose(bool bDelete);
    std::uint32_t RenderFlags() const;
    void RenderFlags(std::uint32_t nFlags);
    const std::vector<std::int32_t>& HiddenAnnotTypes() const;
    void AddHiddenAnnotType(std::int32_t nType); // a type is never held twice

private:
    using PageMap =
        Windows::Foundation::Collections::ObservableMap<std::int32_t, std::shared_ptr<WPPDFPage>>;
    using PdfDocPtr = std::shared_ptr<velko::pdf::PDFDoc>;
    using EntryPtr = std::shared_ptr<WPPDFPage>;
    using HandlePtr = std::shared_ptr<VLK_PageHandle>;

    // What an entry held at one moment.
    struct EntryView {
        HandlePtr pHandle;
        std::shared_ptr<velko::pdf::PDFPage> pPage;
        bool bWantsBox = false;
    };

    void ThrowIfDisposed() const;
    PdfDocPtr EngineDoc() const; // raises when the document is disposed or has none

    // Opening, on a pool thread.
    static concurrency::task<std::shared_ptr<VLK_DocOpenResult>> OpenOnPool(
        std::shared_ptr<Windows::Storage::StorageFile> pFile, std::uint32_t nFileSize,
        Platform::SecretText password);
    void AttachFile(const std::shared_ptr<Windows::Storage::StorageFile>& pFile,
                    std::uint32_t nFileSize);
    velko::common::ErrorCode LoadEngine(const std::string& strPassword);
    void TakeEngineFacts(const velko::pdf::PDFDoc& pdfDoc);

    // Loading a page, on a pool thread.
    concurrency::task<HandlePtr> LoadPageOnPool(PdfDocPtr pPdfDoc, std::int32_t nPageIndex,
                                                concurrency::cancellation_token token, bool bAnew);
    bool IsPageParsed(std::int32_t nPageIndex) const;
    HandlePtr LoadPage(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex, bool bAnew);
    HandlePtr LoadKnownPage(const EntryView& view, std::int32_t nPageIndex, bool bAnew);
    HandlePtr LoadNewPage(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex);

    // What became of pages, for `PageFailureOf`. Any thread.
    void NoteFailure(const PageFailures::Part& part, std::int32_t nPageIndex,
                     const std::exception_ptr& pError);
    void NoteCutShort(const PageFailures::Part& part, std::int32_t nPageIndex);
    void NoteSuccess(const PageFailures::Part& part, std::int32_t nPageIndex);
    void TellPageFailure(std::int32_t nPageIndex);
    void StorePageBox(VLK_PageHandle& handle, const velko::pdf::PDFPage& page);

    // The table, for callers that hold an engine document; none of them looks
    // at `m_bDisposed` first.
    EntryView View(const EntryPtr& pEntry) const;
    EntryPtr FindEntry(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex);
    void BringBack(const PdfDocPtr& pPdfDoc, const EntryPtr& pEntry, std::int32_t nPageIndex)
        VLK_REQUIRES(*m_spPageLock);
    // False when `pPause`, which may be empty, stopped it.
    bool ParseToEnd(velko::pdf::PDFPage& page,
                    velko::common::IPauseCallback* pPause = nullptr) const;
    static EntryPtr MakeEntry(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex);
    EntryPtr Publish(const EntryPtr& pNew, std::int32_t nPageIndex);
    EntryPtr EnsureEntry(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex);
    void LoadAnnotList(const EntryPtr& pEntry);
    void ClearTable();
    void GiveUp(WPPDFPage& entry) VLK_REQUIRES(*m_spPageLock);
    void DropTable();
    void TellPageLoaded(const PdfDocPtr& pPdfDoc, std::int32_t nPageIndex);
    bool IsPageIndex(std::int32_t nPageIndex) const;
    std::shared_ptr<velko::pdf::PDFPage> TablePage(std::int32_t nPageIndex);

    // Editing and saving, on pool threads and those of the file operations.
    using FilePtr = std::shared_ptr<Windows::Storage::StorageFile>;
    concurrency::task<void> EditOnPool(PdfDocPtr pPdfDoc,
                                       std::function<void(velko::pdf::IAnnotEditor&)> fnEdit);
    void ForgetAnnotLists();
    concurrency::task<void> ReplaceFile(PdfDocPtr pPdfDoc, FilePtr pFile, SaveCheck fnCheck);
    concurrency::task<FilePtr> MakeTempFile(FilePtr pFile, concurrency::cancellation_token token);
    concurrency::task<bool> SaveToFile(PdfDocPtr pPdfDoc, FilePtr pFile);
    concurrency::task<Windows::Storage::FileVersion> KnownVersion() const;
    void KnowVersion(const Windows::Storage::FileVersion& version);
    SaveSteps MakeSaveSteps(float fFrom, float fTo);
    void TellSaveProgress(float fDone);

    void ReleaseMembers();

    // In the order of the document's life: what comes later goes first.
    mutable concurrency::critical_section m_refLock; // a leaf: owner, engine document, files
    std::weak_ptr<IDocumentOwner> m_wkOwner VLK_GUARDED_BY(m_refLock);
    std::uint32_t m_nFileSize = 0;
    const std::shared_ptr<concurrency::critical_section> m_spPageLock =
        std::make_shared<concurrency::critical_section>();
    PageMap m_pPageMap VLK_GUARDED_BY(*m_spPageLock);
    concurrency::critical_section m_RenderLock;
    const std::shared_ptr<concurrency::scheduler> m_pLoadQueue;
    const std::shared_ptr<concurrency::scheduler> m_pRenderQueue;
    const std::shared_ptr<concurrency::scheduler> m_pEditQueue;
    std::int32_t m_nPermissions = 0;
    std::int32_t m_nPasswordType = velko::pdf::PDFDoc::kNoPassword;
    bool m_bDeleteFileOnClose = false;
    std::uint32_t m_nRenderFlags = kRenderContent | kRenderAnnots;
    std::weak_ptr<VLKS_FileHandlerReadWrite> m_pFileReadWrite; // owned by the handler
    std::shared_ptr<VLKS_FileHandler> m_pFileHandler;
    FilePtr m_pFile VLK_GUARDED_BY(m_refLock);
    FilePtr m_pPinnedFile VLK_GUARDED_BY(m_refLock); // what the engine reads
    FilePtr m_pTempFile VLK_GUARDED_BY(m_refLock);   // the last one, also when it is gone
    // Of the file as it was saved last; before that the one that was opened counts.
    std::optional<Windows::Storage::FileVersion> m_savedVersion VLK_GUARDED_BY(m_refLock);
    std::weak_ptr<void> m_wkSave VLK_GUARDED_BY(m_refLock);
    const concurrency::cancellation_token_source m_Cancellation; // of edits and saves
    std::atomic<float> m_fSaveProgress{0.0F};
    std::atomic<bool> m_bSaveProgressPosted{false};
    PdfDocPtr m_pPdfDoc VLK_GUARDED_BY(m_refLock);
    std::atomic<std::int32_t> m_nPageCount{0}; // workers check indexes against it
    PageFailures m_failures;
    std::vector<std::int32_t> m_vecHiddenAnnotTypes;
    bool m_bPasswordApplied = false;
    std::atomic<bool> m_bDisposed{false};
};

}
