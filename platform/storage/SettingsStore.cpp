#include "platform/storage/SettingsStore_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "platform/storage/PosixCalls_p.h"
#include "platform/system/Debug.h"

namespace Windows::Storage {

namespace {

using concurrency::critical_section;

constexpr std::int64_t kVersion = 1;

// A journal that stays costs half of the synchronisations of one that is removed
// each time. A write-ahead log would cost less still, but needs memory shared
// between the processes, which a home folder on a network does not give, and is
// lost to whoever copies the store without it.
constexpr const char* kConfiguration =
    "PRAGMA journal_mode=PERSIST; PRAGMA journal_size_limit=65536; PRAGMA synchronous=FULL;"
    "PRAGMA cell_size_check=ON; PRAGMA temp_store=MEMORY;";

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS container(path TEXT PRIMARY KEY NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS setting(container TEXT NOT NULL, key TEXT NOT NULL,"
    " type INTEGER NOT NULL, value, PRIMARY KEY(container, key)) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS recent(token TEXT PRIMARY KEY NOT NULL,"
    " path TEXT UNIQUE NOT NULL, metadata TEXT NOT NULL, rank INTEGER NOT NULL) WITHOUT ROWID;"
    "PRAGMA user_version=1;";

// Held by one process at a time while it opens the store.
class OpeningTurn {
public:
    explicit OpeningTurn(const std::string& strPath)
        : m_fd(::open(strPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
        if (m_fd.Get() < 0) {
            Posix::RaiseError(errno, Posix::Direction::Write, strPath);
        }
        while (::flock(m_fd.Get(), LOCK_EX) != 0) {
            if (errno == ENOLCK || errno == ENOTSUP || errno == EOPNOTSUPP) {
                return; // a file system without such locks: no turns, as before this file
            }
            if (errno != EINTR) {
                Posix::RaiseError(errno, Posix::Direction::Write, strPath);
            }
        }
    }

private:
    Posix::FileDescriptor m_fd; // the lock goes with it
};

void CheckContent(SqliteConnection& connection) {
    auto check = connection.Prepare("PRAGMA quick_check(1)");
    if (!check.Step() || check.Text(0) != "ok") {
        throw CorruptStoreException("the settings are damaged");
    }
}

std::int64_t VersionOf(SqliteConnection& connection) {
    auto version = connection.Prepare("PRAGMA user_version");
    return version.Step() ? version.Number(0) : 0;
}

// Tables of our names with other columns are as unreadable as noise.
void CheckTables(SqliteConnection& connection) {
    try {
        connection.Execute(
            "SELECT path FROM container LIMIT 0; SELECT container, key, type, value FROM setting "
            "LIMIT 0; SELECT token, path, metadata, rank FROM recent LIMIT 0;");
    } catch (const Platform::Exception& error) {
        if (error.HResult() != Platform::E_FAIL) {
            throw;
        }
        throw CorruptStoreException(error.what());
    }
}

std::unique_ptr<SqliteConnection> OpenChecked(const std::string& strPath) {
    auto pConnection = std::make_unique<SqliteConnection>(strPath);
    pConnection->Execute(kConfiguration);
    CheckContent(*pConnection);
    const std::int64_t nVersion = VersionOf(*pConnection);
    if (nVersion > kVersion) {
        throw CorruptStoreException("the settings are of a later version");
    }
    if (nVersion < kVersion) {
        pConnection->Execute("BEGIN IMMEDIATE");
        pConnection->Execute(kSchema);
        pConnection->Execute("COMMIT");
    }
    CheckTables(*pConnection);
    return pConnection;
}

void InsertContainer(SqliteConnection& connection, const std::string& strPath) {
    connection.Prepare("INSERT OR IGNORE INTO container(path) VALUES(?1)").Bind(1, strPath).Run();
}

}

SettingsStore::SettingsStore(std::string strFolder)
    : m_strFolder(std::move(strFolder)), m_strPath(m_strFolder + "/settings.db") {}

void SettingsStore::SetAside(const std::string& strReason) {
    std::string strAside;
    int nNumber = 0;
    do {
        strAside = m_strPath + ".corrupt" + std::to_string(++nNumber);
    } while (std::filesystem::exists(strAside));
    // The journal goes first: a new store must never meet the old one's.
    for (const char* pszSuffix : {"-journal", "-wal", "-shm"}) {
        ::rename((m_strPath + pszSuffix).c_str(), (strAside + pszSuffix).c_str());
    }
    if (::rename(m_strPath.c_str(), strAside.c_str()) != 0) {
        Posix::RaiseError(errno, Posix::Direction::Write, strAside);
    }
    Platform::Debug::OutputDebugString("unreadable settings set aside as " + strAside + ": " +
                                       strReason + "\n");
}

void SettingsStore::Open() {
    const OpeningTurn turn(m_strPath + ".lock");
    std::string strReason;
    try {
        m_pConnection = OpenChecked(m_strPath);
        return;
    } catch (const CorruptStoreException& error) {
        strReason = error.what();
    }
    SetAside(strReason);
    m_pConnection = OpenChecked(m_strPath);
}

// Another process may have set the file aside, or somebody removed it.
void SettingsStore::DropStaleConnection() {
    if (m_nDepth == 0 && m_pConnection && (m_bSuspect || m_pConnection->HasMoved())) {
        m_pConnection.reset();
        m_bSuspect = false;
    }
}

bool SettingsStore::IsThere() {
    DropStaleConnection();
    return m_pConnection || ::access(m_strPath.c_str(), F_OK) == 0 || errno != ENOENT;
}

SqliteConnection& SettingsStore::Connection() {
    DropStaleConnection();
    if (!m_pConnection) {
        Open();
        MakeAwaitedContainers();
    }
    return *m_pConnection;
}

bool SettingsStore::Read(const std::function<void(SqliteConnection&)>& fnBody) {
    const critical_section::scoped_lock lock(m_lock);
    if (!IsThere()) {
        return false;
    }
    Run(fnBody);
    return true;
}

void SettingsStore::Use(const std::function<void(SqliteConnection&)>& fnBody) {
    const critical_section::scoped_lock lock(m_lock);
    Run(fnBody);
}

void SettingsStore::Run(const std::function<void(SqliteConnection&)>& fnBody) {
    SqliteConnection& connection = Connection();
    if (m_nDepth > 0 && !connection.IsInTransaction()) {
        throw Platform::WriteFaultException("settings: the transaction was rolled back");
    }
    try {
        fnBody(connection);
    } catch (const CorruptStoreException&) {
        m_bSuspect = true;
        if (m_nDepth > 0) {
            throw;
        }
        fnBody(Connection());
    }
}

void SettingsStore::AddContainer(const std::string& strPath) {
    const critical_section::scoped_lock lock(m_lock);
    if (HasContainer(strPath)) {
        return;
    }
    if (IsThere()) {
        Run([&](SqliteConnection& connection) { InsertContainer(connection, strPath); });
    } else {
        m_awaitedContainers.insert(strPath);
    }
}

bool SettingsStore::HasContainer(const std::string& strPath) {
    const critical_section::scoped_lock lock(m_lock);
    bool bThere = m_awaitedContainers.contains(strPath);
    if (!bThere && IsThere()) {
        Run([&](SqliteConnection& connection) {
            auto select = connection.Prepare("SELECT 1 FROM container WHERE path=?1");
            bThere = select.Bind(1, strPath).Step();
        });
    }
    return bThere;
}

// One by one, so that a failure leaves the rest for the next opening.
void SettingsStore::MakeAwaitedContainers() {
    while (!m_awaitedContainers.empty()) {
        InsertContainer(*m_pConnection, *m_awaitedContainers.begin());
        m_awaitedContainers.erase(m_awaitedContainers.begin());
    }
}

void SettingsStore::InTransaction(const std::function<void()>& fnBody) {
    const critical_section::scoped_lock lock(m_lock);
    if (m_nDepth > 0) {
        RunNested(fnBody);
    } else {
        RunOutermost(fnBody);
    }
}

void SettingsStore::RollBack(const char* pszSql) {
    try {
        m_pConnection->Execute(pszSql);
    } catch (const Platform::Exception&) {
        // SQLite has rolled back by itself, or the connection is done for.
        m_bSuspect = m_bSuspect || m_nDepth == 0;
    }
}

void SettingsStore::RunOutermost(const std::function<void()>& fnBody) {
    Use([](SqliteConnection& connection) { connection.Execute("BEGIN IMMEDIATE"); });
    m_nDepth = 1;
    try {
        fnBody();
        Use([](SqliteConnection& connection) { connection.Execute("COMMIT"); });
        m_nDepth = 0;
    } catch (...) {
        m_nDepth = 0;
        if (m_pConnection->IsInTransaction()) {
            RollBack("ROLLBACK");
        }
        throw;
    }
}

void SettingsStore::RunNested(const std::function<void()>& fnBody) {
    Use([](SqliteConnection& connection) { connection.Execute("SAVEPOINT inner_part"); });
    ++m_nDepth;
    try {
        fnBody();
        Use([](SqliteConnection& connection) { connection.Execute("RELEASE inner_part"); });
        --m_nDepth;
    } catch (...) {
        --m_nDepth;
        if (m_pConnection->IsInTransaction()) {
            RollBack("ROLLBACK TO inner_part; RELEASE inner_part");
        }
        throw;
    }
}

}
