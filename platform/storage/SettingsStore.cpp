#include "platform/storage/SettingsStore_p.h"

#include <exception>
#include <utility>

#include "platform/storage/IoThreads_p.h"
#include "platform/storage/SettingsFile_p.h"
#include "platform/storage/SqliteConnection_p.h"
#include "platform/system/Debug.h"

namespace Windows::Storage {

namespace {

using concurrency::critical_section;
using Cause = StoreFailure::Cause;

// How long another process is waited for: by whoever asks for the first setting,
// perhaps the UI thread, less than a reader notices; longer behind the scenes.
constexpr std::chrono::milliseconds kPatienceInFront{100};
constexpr std::chrono::milliseconds kPatienceBehind{500};

template <class E>
bool Is(const std::exception& error) {
    return dynamic_cast<const E*>(&error) != nullptr;
}

Cause CauseOf(const std::exception& error) {
    if (Is<Platform::DiskFullException>(error)) {
        return Cause::DiskFull;
    }
    if (Is<Platform::AccessDeniedException>(error) || Is<Platform::FileNotFoundException>(error)) {
        return Cause::NotWritable;
    }
    if (Is<LockedStoreException>(error)) {
        return Cause::Locked;
    }
    if (Is<LaterStoreException>(error)) {
        return Cause::LaterVersion;
    }
    return Is<CorruptStoreException>(error) ? Cause::Damaged : Cause::Failed;
}

}

SettingsStore::SettingsStore(std::string strFolder)
    : m_strFolder(std::move(strFolder)),
      m_strPath(m_strFolder + "/settings.db"),
      m_writing(concurrency::task_from_result<void>()) {}

// --- what is shown ---------------------------------------------------------

void SettingsStore::Look(const std::function<void(const SettingsImage&)>& fnBody) {
    EnsureRead();
    const critical_section::scoped_lock lock(m_lock);
    fnBody(m_image);
}

void SettingsStore::Change(const Body& fnBody) {
    EnsureRead();
    const critical_section::scoped_lock lock(m_lock);
    fnBody(m_image);
    StartWriting();
}

void SettingsStore::InTransaction(const std::function<void()>& fnBody) {
    EnsureRead();
    const critical_section::scoped_lock lock(m_lock);
    SettingsImage before = m_image;
    ++m_nDepth;
    try {
        fnBody();
    } catch (...) {
        --m_nDepth;
        m_image = std::move(before);
        throw;
    }
    --m_nDepth;
    StartWriting();
}

// --- reading ---------------------------------------------------------------

// Once for all threads. A store that cannot be read now is tried again behind the
// scenes: what differs by then is kept on top of it.
void SettingsStore::EnsureRead() {
    std::optional<std::pair<Cause, std::string>> failure;
    std::call_once(m_firstRead, [&] {
        try {
            Read(kPatienceInFront);
        } catch (const std::exception& error) {
            failure.emplace(CauseOf(error), error.what());
        }
    });
    if (!failure) {
        return;
    }
    if (failure->first != Cause::Locked) {
        Tell(failure->first, failure->second);
        return;
    }
    const critical_section::scoped_lock lock(m_lock);
    StartWriting();
}

void SettingsStore::Read(std::chrono::milliseconds patience) {
    SettingsContents contents = ReadSettings(m_strPath, patience);
    const critical_section::scoped_lock lock(m_lock);
    m_image.ShowUnderChanges(std::move(contents));
    m_bRead = true;
    m_failure.reset();
}

bool SettingsStore::IsRead() const {
    const critical_section::scoped_lock lock(m_lock);
    return m_bRead;
}

// --- writing ---------------------------------------------------------------

bool SettingsStore::MayWrite() const {
    const bool bNothing = m_bRead && m_image.IsStored();
    return m_nDepth == 0 && !m_bWriting && !bNothing;
}

void SettingsStore::StartWriting() {
    if (MayWrite()) {
        m_bWriting = true;
        m_writing = RunOnIoThread([pSelf = shared_from_this()] { pSelf->Write(); });
    }
}

// Where nobody stores, the caller does: also at the process's end, when no file
// thread is left.
void SettingsStore::Flush() {
    const concurrency::task_completion_event<void> done;
    auto writing = done.get_task();
    bool bMine = false;
    {
        const critical_section::scoped_lock lock(m_lock);
        if (m_nDepth > 0) {
            return;
        }
        bMine = MayWrite();
        if (bMine) {
            m_bWriting = true;
            m_writing = done.get_task();
        }
        writing = m_writing;
    }
    if (bMine) {
        Write();
        done.set();
    } else {
        writing.wait();
    }
}

void SettingsStore::Write() {
    try {
        while (WriteOnce()) {
        }
    } catch (const std::exception& error) {
        {
            const critical_section::scoped_lock lock(m_lock);
            m_bWriting = false;
        }
        Tell(CauseOf(error), error.what());
    }
}

// A store that is damaged is not read but replaced, the others not written unread.
bool SettingsStore::WriteOnce() {
    if (!IsRead()) {
        try {
            Read(kPatienceBehind);
        } catch (const CorruptStoreException&) {
        }
    }
    std::optional<SettingsChanges> changes = TakeChanges();
    if (!changes) {
        return false;
    }
    const auto fnWhole = [this] {
        const critical_section::scoped_lock lock(m_lock);
        return m_image.Contents();
    };
    const auto fnOnSetAside = [this](const std::string& strReason) {
        Tell(Cause::Damaged, strReason);
    };
    try {
        WriteSettings(m_strPath, *changes, fnWhole, fnOnSetAside, kPatienceBehind);
    } catch (...) {
        PutBack(std::move(*changes));
        throw;
    }
    const critical_section::scoped_lock lock(m_lock);
    m_bRead = true;
    m_failure.reset();
    return true;
}

std::optional<SettingsChanges> SettingsStore::TakeChanges() {
    const critical_section::scoped_lock lock(m_lock);
    if (m_image.IsStored()) {
        m_bWriting = false;
        return std::nullopt;
    }
    return m_image.TakeChanges();
}

void SettingsStore::PutBack(SettingsChanges changes) {
    const critical_section::scoped_lock lock(m_lock);
    m_image.PutBack(std::move(changes));
}

// --- telling ---------------------------------------------------------------

std::optional<StoreFailure> SettingsStore::Failure() const {
    const critical_section::scoped_lock lock(m_lock);
    return m_failure;
}

void SettingsStore::Tell(Cause eCause, const std::string& strDetail) {
    const StoreFailure failure{eCause, m_strPath, strDetail};
    {
        const critical_section::scoped_lock lock(m_lock);
        const std::optional<StoreFailure> before = std::exchange(m_failure, failure);
        if (before && (before->eCause != Cause::Damaged || eCause == Cause::Damaged)) {
            return; // one trouble looks different from call to call
        }
    }
    Platform::Debug::OutputDebugString("settings are not kept in " + m_strPath + ": " + strDetail +
                                       "\n");
    try {
        m_evtFailed.raise(failure);
    } catch (const std::exception& error) {
        Platform::Debug::OutputDebugString(std::string("a handler of a failing store failed: ") +
                                           error.what() + "\n");
    }
}

}
