// The file that settings and the recently used list live in.
//
// Opened at the first use. A file that cannot be read is set aside and begun
// anew, at opening and also when the damage shows only later. Processes that
// open the store at the same moment take turns, so that none of them sets aside
// what another has just begun.
//
// Threads: any. One lock, held while a body runs; bodies may nest.
#pragma once

#include <functional>
#include <memory>
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
    void Use(const std::function<void(SqliteConnection&)>& fnBody);

    // All that `fnBody` does through `Use` is stored together, or nothing.
    void InTransaction(const std::function<void()>& fnBody);

private:
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
    int m_nDepth VLK_GUARDED_BY(m_lock) = 0; // of transactions
    bool m_bSuspect VLK_GUARDED_BY(m_lock) = false;
};

}
