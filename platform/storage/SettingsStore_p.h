// The settings of one folder: shown from memory, stored behind.
//
// The first use reads the store, and waits a moment at most for a process that
// is just writing it. From then on nobody who reads or changes a setting waits
// for a disk: changes are shown at once, and a file thread stores what differs,
// all of it in one transaction, so that changes made meanwhile go together with
// the next. What cannot be stored stays, and is tried again with the next
// change and by `Flush`.
//
// Threads: any. The lock is not held while the disk is waited for.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/concurrency/CriticalSection.h"
#include "platform/concurrency/Task.h"
#include "platform/storage/ApplicationData.h"
#include "platform/storage/SettingsImage_p.h"

namespace Windows::Storage {

class SettingsStore : public std::enable_shared_from_this<SettingsStore> {
public:
    explicit SettingsStore(std::string strFolder);
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    const std::string& Folder() const { return m_strFolder; }

    // Runs `fnBody` on what is shown.
    void Look(const std::function<void(const SettingsImage&)>& fnBody);
    // The same, and has the changes stored.
    void Change(const std::function<void(SettingsImage&)>& fnBody);
    // What `fnBody` changes is stored together; nothing of it is shown or stored
    // when it raises. May nest.
    void InTransaction(const std::function<void()>& fnBody);

    // Returns when all is stored, or cannot be. Within a transaction: nothing.
    void Flush();

    Foundation::Event<const StoreFailure&>& Failed() { return m_evtFailed; }
    std::optional<StoreFailure> Failure() const;

private:
    using Body = std::function<void(SettingsImage&)>;

    void EnsureRead();
    void Read(std::chrono::milliseconds patience); // raises
    bool IsRead() const;
    bool MayWrite() const VLK_REQUIRES(m_lock);
    void StartWriting() VLK_REQUIRES(m_lock);
    void Write();
    bool WriteOnce(); // raises; false when nothing is left
    std::optional<SettingsChanges> TakeChanges();
    void PutBack(SettingsChanges changes);
    void Tell(StoreFailure::Cause eCause, const std::string& strDetail);

    const std::string m_strFolder;
    const std::string m_strPath;
    Foundation::Event<const StoreFailure&> m_evtFailed;
    std::once_flag m_firstRead;

    mutable concurrency::critical_section m_lock;
    SettingsImage m_image VLK_GUARDED_BY(m_lock);
    bool m_bRead VLK_GUARDED_BY(m_lock) = false;
    int m_nDepth VLK_GUARDED_BY(m_lock) = 0;        // of transactions
    bool m_bWriting VLK_GUARDED_BY(m_lock) = false; // somebody stores, or is about to
    concurrency::task<void> m_writing VLK_GUARDED_BY(m_lock);
    std::optional<StoreFailure> m_failure VLK_GUARDED_BY(m_lock);
};

}
