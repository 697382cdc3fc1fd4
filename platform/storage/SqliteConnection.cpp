#include <sqlite3.h>

#include <cerrno>
#include <utility>

#include "platform/concurrency/Scheduler.h"
#include "platform/storage/SqliteConnection_p.h"

namespace Windows::Storage {

namespace {

int FlagsOf(SqliteConnection::Access eAccess) {
    switch (eAccess) {
        case SqliteConnection::Access::Read:
            return SQLITE_OPEN_READONLY;
        case SqliteConnection::Access::Recover:
            return SQLITE_OPEN_READWRITE;
        case SqliteConnection::Access::Write:
            break;
    }
    return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

}

void SqliteConnection::Closer::operator()(sqlite3* pDatabase) const {
    sqlite3_close(pDatabase);
}

void SqliteConnection::Finalizer::operator()(sqlite3_stmt* pStatement) const {
    sqlite3_finalize(pStatement);
}

SqliteConnection::SqliteConnection(const std::string& strPath, Access eAccess,
                                   std::chrono::milliseconds patience) {
    const concurrency::blocking_scope blocking;
    sqlite3* pDatabase = nullptr;
    const int nResult =
        sqlite3_open_v2(strPath.c_str(), &pDatabase,
                        FlagsOf(eAccess) | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    m_pDatabase.reset(pDatabase);
    if (nResult != SQLITE_OK) {
        RaiseError(nResult);
    }
    sqlite3_busy_timeout(pDatabase, static_cast<int>(patience.count()));
    sqlite3_db_config(pDatabase, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(pDatabase, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

SqliteConnection::~SqliteConnection() = default;

void SqliteConnection::RaiseError(int nResult) const {
    const std::string strMessage =
        "settings: " +
        std::string(m_pDatabase ? sqlite3_errmsg(m_pDatabase.get()) : sqlite3_errstr(nResult));
    if (nResult == SQLITE_READONLY_ROLLBACK || nResult == SQLITE_READONLY_RECOVERY) {
        throw HalfWrittenStoreException(strMessage);
    }
    const int nSystem = m_pDatabase ? sqlite3_system_errno(m_pDatabase.get()) : 0;
    const bool bFromSystem =
        (nResult & 0xFF) == SQLITE_IOERR || (nResult & 0xFF) == SQLITE_CANTOPEN;
    if (bFromSystem && (nSystem == ENOSPC || nSystem == EDQUOT)) {
        throw Platform::DiskFullException(strMessage);
    }
    switch (nResult & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw LockedStoreException(strMessage);
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            throw CorruptStoreException(strMessage);
        case SQLITE_FULL:
            throw Platform::DiskFullException(strMessage);
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
        case SQLITE_AUTH:
            throw Platform::AccessDeniedException(strMessage);
        case SQLITE_NOMEM:
            throw Platform::OutOfMemoryException(strMessage);
        case SQLITE_IOERR:
            if (nResult == SQLITE_IOERR_READ || nResult == SQLITE_IOERR_SHORT_READ) {
                throw Platform::ReadFaultException(strMessage);
            }
            throw Platform::WriteFaultException(strMessage);
        default:
            throw Platform::Exception(Platform::E_FAIL, strMessage);
    }
}

SqliteConnection::Statement SqliteConnection::Prepare(const char* pszSql) {
    auto& pKept = m_statements[pszSql];
    if (!pKept) {
        sqlite3_stmt* pStatement = nullptr;
        const int nResult = sqlite3_prepare_v3(m_pDatabase.get(), pszSql, -1,
                                               SQLITE_PREPARE_PERSISTENT, &pStatement, nullptr);
        if (nResult != SQLITE_OK) {
            RaiseError(nResult);
        }
        pKept.reset(pStatement);
    }
    return Statement(*this, pKept.get());
}

void SqliteConnection::Execute(const char* pszSql) {
    const concurrency::blocking_scope blocking;
    const int nResult = sqlite3_exec(m_pDatabase.get(), pszSql, nullptr, nullptr, nullptr);
    if (nResult != SQLITE_OK) {
        RaiseError(nResult);
    }
}

bool SqliteConnection::HasMoved() const {
    int nMoved = 0;
    sqlite3_file_control(m_pDatabase.get(), "main", SQLITE_FCNTL_HAS_MOVED, &nMoved);
    return nMoved != 0;
}

SqliteConnection::Statement::Statement(SqliteConnection& connection, sqlite3_stmt* pStatement)
    : m_connection(connection), m_pStatement(pStatement) {}

SqliteConnection::Statement::Statement(Statement&& other) noexcept
    : m_connection(other.m_connection), m_pStatement(std::exchange(other.m_pStatement, nullptr)) {}

SqliteConnection::Statement::~Statement() {
    sqlite3_reset(m_pStatement);
    if (m_pStatement != nullptr) {
        sqlite3_clear_bindings(m_pStatement);
    }
}

SqliteConnection::Statement& SqliteConnection::Statement::Bind(int nParameter,
                                                               std::int64_t nValue) {
    if (const int nResult = sqlite3_bind_int64(m_pStatement, nParameter, nValue)) {
        m_connection.RaiseError(nResult);
    }
    return *this;
}

SqliteConnection::Statement& SqliteConnection::Statement::Bind(int nParameter,
                                                               const std::string& strText) {
    if (const int nResult = sqlite3_bind_text64(m_pStatement, nParameter, strText.data(),
                                                strText.size(), SQLITE_TRANSIENT, SQLITE_UTF8)) {
        m_connection.RaiseError(nResult);
    }
    return *this;
}

SqliteConnection::Statement& SqliteConnection::Statement::BindBlob(int nParameter,
                                                                   const std::string& strBytes) {
    if (const int nResult = sqlite3_bind_blob64(m_pStatement, nParameter, strBytes.data(),
                                                strBytes.size(), SQLITE_TRANSIENT)) {
        m_connection.RaiseError(nResult);
    }
    return *this;
}

bool SqliteConnection::Statement::Step() {
    const concurrency::blocking_scope blocking;
    const int nResult = sqlite3_step(m_pStatement);
    if (nResult != SQLITE_ROW && nResult != SQLITE_DONE) {
        m_connection.RaiseError(nResult);
    }
    return nResult == SQLITE_ROW;
}

void SqliteConnection::Statement::Run() {
    while (Step()) {
    }
}

std::int64_t SqliteConnection::Statement::Number(int nColumn) const {
    return sqlite3_column_int64(m_pStatement, nColumn);
}

std::string SqliteConnection::Statement::Text(int nColumn) const {
    const void* pBytes = sqlite3_column_blob(m_pStatement, nColumn);
    const int nBytes = sqlite3_column_bytes(m_pStatement, nColumn);
    if (pBytes == nullptr) {
        return {};
    }
    return {static_cast<const char*>(pBytes), static_cast<std::size_t>(nBytes)};
}

bool SqliteConnection::Statement::IsNumber(int nColumn) const {
    return sqlite3_column_type(m_pStatement, nColumn) == SQLITE_INTEGER;
}

}
