// Saving: over the document's own file by way of the temporary file, and into another.
#include <chrono>
#include <utility>

#include "document/SaveInProgressException.h"
#include "document/SaveRun_p.h"
#include "document/VLK_Document.h"
#include "document/VXDocUtil.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"
#include "platform/storage/FileLock.h"
#include "platform/storage/StorageFolder.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::critical_section;
using Platform::Debug::OutputDebugString;
using Windows::Storage::ApplicationData;
using Windows::Storage::CreationCollisionOption;
using Windows::Storage::FileVersion;
using Windows::Storage::StorageFolder;

namespace {

constexpr const char* kTempFileName = "temperFile.pdf";
constexpr std::chrono::seconds kLongestWait{5}; // for the temporary file's turn
constexpr std::uint32_t kIncremental = 1;       // flag of the engine's save

// How much of a save is done after each step, as a reader finds that time goes.
constexpr float kCopiedShare = 0.1F;
constexpr float kWrittenShare = 0.8F;
constexpr float kReplacedShare = 0.95F;

concurrency::task<void> ClearTheWay(std::shared_ptr<StorageFolder> pFolder) {
    const auto looking = pFolder->TryGetItemAsync(kTempFileName).AsTask();
    if (co_await looking) {
        const auto finding = pFolder->GetFileAsync(kTempFileName).AsTask();
        const auto pOld = co_await finding;
        const auto deleting = pOld->DeleteAsync().AsTask();
        co_await deleting;
    }
}

// Whatever ends a step of a save that was cancelled, cancelled is what it was.
template <class T>
concurrency::task<T> CanceledAs(cancellation_token token, concurrency::task<T> saving) {
    co_await saving.settled();
    if (!saving.is_value() && token.is_canceled()) {
        saving.mark_observed();
        throw concurrency::task_canceled();
    }
    co_return saving.get();
}

// A step's end is no reason to come back to the UI thread.
class OffUiThread {
    const concurrency::context::scope m_noContext{nullptr};
};

}

concurrency::task<void> VLK_Document::SaveAndReplaceAsync(SaveCheck fnCheck) {
    const OffUiThread steps;
    return CanceledAs(m_Cancellation.get_token(),
                      ReplaceFile(EngineDoc(), File(), std::move(fnCheck)));
}

concurrency::task<void> VLK_Document::ReplaceFile(PdfDocPtr pPdfDoc, FilePtr pFile,
                                                  SaveCheck fnCheck) {
    const auto pSelf = shared_from_this();
    const auto token = m_Cancellation.get_token();
    if (!pFile) {
        throw Platform::NullReferenceException("the document has no file");
    }
    TellSaveProgress(0.0F);
    const auto pFolder = ApplicationData::Current()->LocalStorageFolder();
    const auto locking = pFolder->LockAsync(kTempFileName, kLongestWait).AsTask();
    const auto pLock = co_await locking; // to the end of this
    token.throw_if_canceled();
    const auto making = MakeTempFile(pFile, token);
    const FilePtr pTemp = co_await making;
    TellSaveProgress(kCopiedShare);
    const auto writing = VXDocUtil::SaveDocument(std::move(pPdfDoc), pTemp, kIncremental,
                                                 MakeSaveSteps(kCopiedShare, kWrittenShare));
    co_await writing;
    TellSaveProgress(kWrittenShare);
    co_await concurrency::resume_background(token);
    if (fnCheck) {
        fnCheck(pTemp);
    }
    const auto knowing = KnownVersion();
    const FileVersion expected = co_await knowing;
    token.throw_if_canceled();
    // From here on nothing is cancelled: the file is replaced, and what was made for it goes.
    OutputDebugString("Prepare to copy and replace file.\n");
    const auto replacing = pTemp->ReplaceUnchangedAsync(pFile, expected).AsTask();
    const FileVersion replaced = co_await replacing;
    KnowVersion(replaced);
    TellSaveProgress(kReplacedShare);
    OutputDebugString("Prepare to delete temp file.\n");
    const auto deleting = pTemp->DeleteAsync().AsTask();
    co_await deleting;
    TellSaveProgress(1.0F);
}

// A temporary file with the document file's bytes.
concurrency::task<VLK_Document::FilePtr> VLK_Document::MakeTempFile(FilePtr pFile,
                                                                    cancellation_token token) {
    const auto pSelf = shared_from_this();
    const auto clearing = ClearTheWay(ApplicationData::Current()->LocalStorageFolder());
    co_await clearing;
    token.throw_if_canceled();
    const auto creating = GetTempFileAsync();
    const FilePtr pTemp = co_await creating;
    {
        const critical_section::scoped_lock lock(m_refLock);
        m_pTempFile = pTemp;
    }
    token.throw_if_canceled();
    const auto copying = pFile->CopyAndReplaceAsync(pTemp).AsTask();
    co_await copying;
    token.throw_if_canceled();
    co_return pTemp;
}

concurrency::task<VLK_Document::FilePtr> VLK_Document::GetTempFileAsync() {
    return ApplicationData::Current()
        ->LocalStorageFolder()
        ->CreateFileAsync(kTempFileName, CreationCollisionOption::ReplaceExisting)
        .AsTask();
}

concurrency::task<bool> VLK_Document::SaveToFileAsync(FilePtr pFile) {
    const OffUiThread steps;
    return CanceledAs(m_Cancellation.get_token(), SaveToFile(EngineDoc(), std::move(pFile)));
}

concurrency::task<bool> VLK_Document::SaveToFile(PdfDocPtr pPdfDoc, FilePtr pFile) {
    const auto pSelf = shared_from_this();
    if (!pFile) {
        throw Platform::NullReferenceException("no file to save into");
    }
    co_await concurrency::resume_background(m_Cancellation.get_token());
    TellSaveProgress(0.0F);
    const std::int32_t nState =
        detail::RunSave(*pPdfDoc, pFile, kIncremental, MakeSaveSteps(0.0F, 1.0F));
    const bool bSaved = nState == velko::common::Progressive::kFinished;
    if (bSaved) {
        TellSaveProgress(1.0F);
    }
    co_return bSaved;
}

// --- the file that may be replaced -----------------------------------------

concurrency::task<FileVersion> VLK_Document::KnownVersion() const {
    FilePtr pPinned;
    {
        const critical_section::scoped_lock lock(m_refLock);
        if (m_savedVersion) {
            return concurrency::task_from_result<FileVersion>(*m_savedVersion);
        }
        pPinned = m_pPinnedFile;
    }
    if (!pPinned) {
        throw concurrency::task_canceled(); // closed meanwhile
    }
    return pPinned->GetVersionAsync().AsTask();
}

void VLK_Document::KnowVersion(const FileVersion& version) {
    const critical_section::scoped_lock lock(m_refLock);
    m_savedVersion = version;
}

concurrency::task<void> VLK_Document::RebindFile(FilePtr pFile) {
    const auto pSelf = shared_from_this();
    ThrowIfDisposed();
    if (!pFile) {
        throw Platform::NullReferenceException("no file to save into");
    }
    const auto asking = pFile->GetVersionAsync().AsTask();
    const FileVersion version = co_await asking;
    m_Cancellation.get_token().throw_if_canceled();
    const critical_section::scoped_lock lock(m_refLock);
    m_pFile = std::move(pFile);
    m_savedVersion = version;
}

concurrency::task<void> VLK_Document::AcceptChangedFile() {
    const auto pSelf = shared_from_this();
    const FilePtr pFile = File();
    if (!pFile) {
        throw Platform::NullReferenceException("the document has no file");
    }
    const auto asking = pFile->GetVersionAsync().AsTask();
    const FileVersion version = co_await asking;
    KnowVersion(version);
}

std::shared_ptr<void> VLK_Document::BeginSave() {
    ThrowIfDisposed();
    const critical_section::scoped_lock lock(m_refLock);
    if (!m_wkSave.expired()) {
        throw SaveInProgressException();
    }
    const auto pSave = std::make_shared<char>();
    m_wkSave = pSave;
    return pSave;
}

// --- progress --------------------------------------------------------------

SaveSteps VLK_Document::MakeSaveSteps(float fFrom, float fTo) {
    return {m_Cancellation.get_token(), [wkSelf = weak_from_this(), fFrom, fTo](float fShare) {
                if (const auto pSelf = wkSelf.lock()) {
                    pSelf->TellSaveProgress(fFrom + (fTo - fFrom) * fShare);
                }
            }};
}

// One post at a time takes along whatever came until it is told.
void VLK_Document::TellSaveProgress(float fDone) {
    m_fSaveProgress = fDone;
    if (m_bSaveProgressPosted.exchange(true)) {
        return;
    }
    const auto fnTell = [wkSelf = weak_from_this()] {
        const auto pSelf = wkSelf.lock();
        const auto pOwner = pSelf ? pSelf->Owner() : nullptr;
        if (pSelf) {
            pSelf->m_bSaveProgressPosted = false;
        }
        if (pOwner) {
            pOwner->RaiseSaveProgress(pSelf->m_fSaveProgress);
        }
    };
    Platform::Environment()->MainDispatcher()->RunAsync(
        Windows::UI::Core::CoreDispatcherPriority::normal, fnTell);
}

}
