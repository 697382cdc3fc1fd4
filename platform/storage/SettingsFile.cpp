#include "platform/storage/SettingsFile_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/SettingsCodec_p.h"
#include "platform/storage/SqliteConnection_p.h"
#include "platform/system/Debug.h"

namespace Windows::Storage {

using Foundation::PropertyValue;
using Foundation::Collections::PropertySet;
using std::chrono::milliseconds;

namespace {

constexpr std::int64_t kVersion = 2; // 1: composites as runs of bytes, containers as rows

// A journal that stays costs half of the synchronisations of one that is removed
// each time. A write-ahead log would cost less still, but needs memory shared
// between the processes, which a home folder on a network does not give, and is
// lost to whoever copies the store without it.
constexpr const char* kWriting =
    "PRAGMA journal_mode=PERSIST; PRAGMA journal_size_limit=65536; PRAGMA synchronous=FULL;"
    "PRAGMA cell_size_check=ON; PRAGMA temp_store=MEMORY;";

constexpr int kTables = 2;
constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS setting(container TEXT NOT NULL, key TEXT NOT NULL,"
    " type INTEGER NOT NULL, value, PRIMARY KEY(container, key)) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS recent(token TEXT PRIMARY KEY NOT NULL,"
    " path TEXT UNIQUE NOT NULL, metadata TEXT NOT NULL, rank INTEGER NOT NULL) WITHOUT ROWID;"
    "DROP TABLE IF EXISTS container;";

// --- a file that can be used -----------------------------------------------

std::int64_t NumberOf(SqliteConnection& connection, const char* pszSql) {
    auto select = connection.Prepare(pszSql);
    return select.Step() ? select.Number(0) : 0;
}

void CheckContent(SqliteConnection& connection) {
    auto check = connection.Prepare("PRAGMA quick_check(1)");
    if (!check.Step() || check.Text(0) != "ok") {
        throw CorruptStoreException("the settings are damaged");
    }
}

void CheckVersion(SqliteConnection& connection) {
    if (NumberOf(connection, "PRAGMA user_version") > kVersion) {
        throw LaterStoreException("the settings are of a later version");
    }
}

// Tables of our names with other columns are as unreadable as noise.
void CheckTables(SqliteConnection& connection) {
    try {
        connection.Execute(
            "SELECT container, key, type, value FROM setting LIMIT 0;"
            "SELECT token, path, metadata, rank FROM recent LIMIT 0;");
    } catch (const Platform::Exception& error) {
        if (error.HResult() != Platform::E_FAIL) {
            throw;
        }
        throw CorruptStoreException(error.what());
    }
}

int CountTables(SqliteConnection& connection) {
    return static_cast<int>(NumberOf(
        connection, "SELECT count(*) FROM sqlite_master WHERE name IN ('setting', 'recent')"));
}

// --- reading ---------------------------------------------------------------

using Rows = std::map<std::string, std::map<std::string, StoredValue>>; // by container and key

Rows ReadRows(SqliteConnection& connection) {
    Rows rows;
    auto select = connection.Prepare("SELECT container, key, type, value FROM setting");
    while (select.Step()) {
        StoredValue& stored = rows[select.Text(0)][select.Text(1)];
        stored.nType = select.Number(2);
        if (select.IsNumber(3)) {
            stored.payload = select.Number(3);
        } else {
            stored.payload = select.Text(3);
        }
    }
    return rows;
}

PropertyValue ValueOf(const Rows& rows, const SettingKey& key, const StoredValue& stored) {
    if (!HasMemberRows(stored)) {
        return Decode(stored);
    }
    const std::string strMembers = MembersPath(key.strContainer, key.strKey);
    auto pValues = std::make_shared<PropertySet>();
    if (const auto it = rows.find(strMembers); it != rows.end()) {
        for (const auto& [strKey, member] : it->second) {
            pValues->Insert(strKey, ValueOf(rows, {strMembers, strKey}, member));
        }
    }
    return PropertyValue::Create<PropertyValue::Composite>(std::move(pValues));
}

// A value that nobody can read is as good as none; the others are not lost for it.
void TakeValues(SettingsContents& contents, const Rows& rows) {
    for (const auto& [strContainer, values] : rows) {
        if (IsMembersPath(strContainer)) {
            continue;
        }
        for (const auto& [strKey, stored] : values) {
            try {
                const SettingKey key{strContainer, strKey};
                contents.values.emplace(key, ValueOf(rows, key, stored));
            } catch (const Platform::Exception& error) {
                Platform::Debug::OutputDebugString("setting " + strKey + ": " + error.what() +
                                                   "\n");
            }
        }
    }
}

SettingsContents ReadWith(SqliteConnection& connection) {
    connection.Execute("BEGIN");
    CheckVersion(connection);
    CheckContent(connection);
    SettingsContents contents;
    if (CountTables(connection) == kTables) {
        CheckTables(connection);
        TakeValues(contents, ReadRows(connection));
        auto select =
            connection.Prepare("SELECT token, path, metadata FROM recent ORDER BY rank DESC");
        while (select.Step()) {
            contents.recent.push_back({select.Text(0), select.Text(1), select.Text(2)});
        }
    }
    connection.Execute("COMMIT");
    return contents;
}

// --- writing ---------------------------------------------------------------

void RemoveValue(SqliteConnection& connection, const SettingKey& key) {
    connection.Prepare("DELETE FROM setting WHERE container=?1 AND key=?2")
        .Bind(1, key.strContainer)
        .Bind(2, key.strKey)
        .Run();
    // The members, and the containers of theirs: from "path/" to before "path0".
    connection
        .Prepare(
            "DELETE FROM setting WHERE container=?1 OR "
            "(container>=?1||'/' AND container<?1||'0')")
        .Bind(1, MembersPath(key.strContainer, key.strKey))
        .Run();
}

void InsertValue(SqliteConnection& connection, const SettingKey& key, const PropertyValue& value) {
    const StoredValue stored = Encode(value);
    {
        auto insert = connection.Prepare(
            "INSERT OR REPLACE INTO setting(container, key, type, value) VALUES(?1, ?2, ?3, ?4)");
        insert.Bind(1, key.strContainer).Bind(2, key.strKey).Bind(3, stored.nType);
        if (const auto* pNumber = std::get_if<std::int64_t>(&stored.payload)) {
            insert.Bind(4, *pNumber);
        } else {
            insert.BindBlob(4, std::get<std::string>(stored.payload));
        }
        insert.Run();
    }
    if (HasMemberRows(stored)) {
        const std::string strMembers = MembersPath(key.strContainer, key.strKey);
        for (const auto& [strKey, member] : *value.Get<PropertyValue::Composite>()) {
            InsertValue(connection, {strMembers, strKey}, member);
        }
    }
}

void RemoveRecent(SqliteConnection& connection, const std::string& strToken) {
    connection.Prepare("DELETE FROM recent WHERE token=?1").Bind(1, strToken).Run();
    RemoveValue(connection, {{}, strToken});
}

void RemoveAll(SqliteConnection& connection, SqliteConnection::Statement select) {
    std::vector<std::string> tokens;
    while (select.Step()) {
        tokens.push_back(select.Text(0));
    }
    for (const std::string& strToken : tokens) {
        RemoveRecent(connection, strToken);
    }
}

// Another entry of the same path is one that another process made meanwhile.
void AddRecent(SqliteConnection& connection, const RecentFile& file) {
    auto others = connection.Prepare("SELECT token FROM recent WHERE path=?1 AND token<>?2");
    others.Bind(1, file.strPath).Bind(2, file.strToken);
    RemoveAll(connection, std::move(others));
    connection
        .Prepare(
            "INSERT INTO recent(token, path, metadata, rank) VALUES(?1, ?2, ?3, "
            "(SELECT coalesce(max(rank), 0) + 1 FROM recent)) ON CONFLICT(token) DO UPDATE "
            "SET metadata=excluded.metadata, rank=excluded.rank")
        .Bind(1, file.strToken)
        .Bind(2, file.strPath)
        .Bind(3, file.strMetadata)
        .Run();
    auto beyond =
        connection.Prepare("SELECT token FROM recent ORDER BY rank DESC LIMIT -1 OFFSET ?1");
    beyond.Bind(1, static_cast<std::int64_t>(kMostRecent));
    RemoveAll(connection, std::move(beyond));
}

void Put(SqliteConnection& connection, const SettingsChanges& changes) {
    for (const auto& change : changes.recent) {
        if (change.file) {
            AddRecent(connection, *change.file);
        } else {
            RemoveRecent(connection, change.strToken);
        }
    }
    for (const auto& [key, value] : changes.values) {
        RemoveValue(connection, key);
        if (value) {
            InsertValue(connection, key, *value);
        }
    }
}

SettingsChanges AllOf(const SettingsContents& contents) {
    SettingsChanges changes;
    for (auto it = contents.recent.rbegin(); it != contents.recent.rend(); ++it) {
        changes.recent.push_back({it->strToken, *it});
    }
    changes.values.insert(contents.values.begin(), contents.values.end());
    return changes;
}

void PrepareFile(SqliteConnection& connection) {
    CheckContent(connection);
    if (CountTables(connection) < kTables ||
        NumberOf(connection, "PRAGMA user_version") < kVersion) {
        connection.Execute(kSchema);
        connection.Execute("PRAGMA user_version=2");
    }
    CheckTables(connection);
}

// False when the file that was written is no longer what its path names: somebody
// has set it aside or removed it meanwhile.
bool WriteWith(SqliteConnection& connection, const SettingsChanges& changes,
               const std::function<SettingsContents()>& fnWhole) {
    CheckVersion(connection); // before anything touches the file
    connection.Execute(kWriting);
    connection.Execute("BEGIN IMMEDIATE");
    CheckVersion(connection);
    const bool bBegun = CountTables(connection) == kTables;
    PrepareFile(connection);
    Put(connection, bBegun ? changes : AllOf(fnWhole()));
    connection.Execute("COMMIT");
    return !connection.HasMoved();
}

// --- a file that cannot be used --------------------------------------------

// Held by one process at a time while it sets a store aside, so that none sets
// aside what another has just begun.
class SettingAsideTurn {
public:
    explicit SettingAsideTurn(const std::string& strPath)
        : m_fd(::open(strPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
        if (m_fd.Get() < 0) {
            Posix::RaiseError(errno, Posix::Direction::Write, strPath);
        }
        while (::flock(m_fd.Get(), LOCK_EX) != 0) {
            if (errno == ENOLCK || errno == ENOTSUP || errno == EOPNOTSUPP) {
                return; // a file system without such locks: no turns
            }
            if (errno != EINTR) {
                Posix::RaiseError(errno, Posix::Direction::Write, strPath);
            }
        }
    }

private:
    Posix::FileDescriptor m_fd; // the lock goes with it
};

void SetAside(const std::string& strPath, const std::string& strReason) {
    std::string strAside;
    int nNumber = 0;
    do {
        strAside = strPath + ".corrupt" + std::to_string(++nNumber);
    } while (std::filesystem::exists(strAside));
    // The journal goes first: a new store must never meet the old one's.
    for (const char* pszSuffix : {"-journal", "-wal", "-shm"}) {
        std::rename((strPath + pszSuffix).c_str(), (strAside + pszSuffix).c_str());
    }
    if (std::rename(strPath.c_str(), strAside.c_str()) != 0) {
        Posix::RaiseError(errno, Posix::Direction::Write, strAside);
    }
    Platform::Debug::OutputDebugString("unreadable settings set aside as " + strAside + ": " +
                                       strReason + "\n");
}

}

SettingsContents ReadSettings(const std::string& strPath, milliseconds patience) {
    if (::access(strPath.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        return {};
    }
    try {
        SqliteConnection connection(strPath, SqliteConnection::Access::Read, patience);
        return ReadWith(connection);
    } catch (const HalfWrittenStoreException&) {
        SqliteConnection connection(strPath, SqliteConnection::Access::Recover, patience);
        return ReadWith(connection);
    }
}

void WriteSettings(const std::string& strPath, const SettingsChanges& changes,
                   const std::function<SettingsContents()>& fnWhole,
                   const std::function<void(const std::string&)>& fnOnSetAside,
                   milliseconds patience) {
    constexpr int kMostTries = 3;
    const auto fnTry = [&] {
        SqliteConnection connection(strPath, SqliteConnection::Access::Write, patience);
        return WriteWith(connection, changes, fnWhole);
    };
    Posix::MakeFolders(Posix::FolderOf(strPath));
    for (int nTry = 0; nTry < kMostTries; ++nTry) {
        try {
            if (fnTry()) {
                return;
            }
            continue;
        } catch (const CorruptStoreException&) {
        }
        const SettingAsideTurn turn(strPath + ".lock");
        try {
            if (fnTry()) { // another process may have begun anew meanwhile
                return;
            }
        } catch (const CorruptStoreException& error) {
            SetAside(strPath, error.what());
            fnOnSetAside(error.what());
        }
    }
    throw Platform::WriteFaultException("the settings are set aside or removed again and again");
}

}
