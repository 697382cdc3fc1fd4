// The file that settings and the recently used list live in.
//
// Opened at the first use and made at the first write: making it waits for the
// disk several times, and a program that only asks for its settings at its start
// has nothing to wait for. A file that cannot be read is set aside and begun
// anew, at opening and also when the damage shows only later. Processes that
// open the store at the same moment take turns, so that none of them sets aside
// what another has just begun.
//
// Threads: any. One lock, held while a body runs; bodies may nest.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "platform/concurrency/CriticalSection.h"
#include "platform/storage/SqliteConnection_p.h"

namespace Windows::Storage {

class SettingsStore {
public:
    explicit SettingsStore(std::string strFolder);

    const std::string& Folder() const { return m_strFolder; }

    // Runs `fnBody` on the open connection. Outside of a transaction it runs a
    // second time, on a fresh store, when the first run met a broken one.
    // False when there is no store, which is as good as an empty one.
    bool Read(const std::function<void(SqliteConnection&)>& fnBody);

    // The same, making the store when there is none.
    void Use(const std::function<void(SqliteConnection&)>& fnBody);

    // All that `fnBody` does through `Use` is stored together, or nothing.
    void InTransaction(const std::function<void()>& fnBody);

    // A container that is added while there is no store is made with the store.
    void AddContainer(const std::string& strPath);
    bool HasContainer(const std::string& strPath);

private:
    bool IsThere() VLK_REQUIRES(m_lock);
    void DropStaleConnection() VLK_REQUIRES(m_lock);
    void Run(const std::function<void(SqliteConnection&)>& fnBody) VLK_REQUIRES(m_lock);
    void MakeAwaitedContainers() VLK_REQUIRES(m_lock);
    SqliteConnection& Connection() VLK_REQUIRES(m_lock);
    void Open() VLK_REQUIRES(m_lock);
    void SetAside(const std::string& strReason);
    void RunOutermost(const std::function<void()>& fnBody) VLK_REQUIRES(m_lock);
    void RunNested(const std::function<void()>& fnBody) VLK_REQUIRES(m_lock);
    void RollBack(const char* pszSql) VLK_REQUIRES(m_lock);

    const std::string m_strFolder;
    const std::string m_strPath;
    concurrency::critical_section m_lock;
    std::unique_ptr<SqliteConnection> m_pConnection VLK_GUARDED_BY(m_lock);
    std::set<std::string> m_awaitedContainers VLK_GUARDED_BY(m_lock);
    int m_nDepth VLK_GUARDED_BY(m_lock) = 0; // of transactions
    bool m_bSuspect VLK_GUARDED_BY(m_lock) = false;
};

}
