// One SQLite connection: statements, and failures as exceptions.
//
// Threads: one at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "platform/foundation/Exception.h"

struct sqlite3;
struct sqlite3_stmt;

namespace Windows::Storage {

// The file is no store of ours, or its content is broken.
class CorruptStoreException : public Platform::ReadFaultException {
public:
    using ReadFaultException::ReadFaultException;
};

// Another process keeps the file from being read or written.
class LockedStoreException : public Platform::Exception {
public:
    explicit LockedStoreException(const std::string& strMessage)
        : Exception(Platform::E_FAIL, strMessage) {}
};

// The file was made by a later version of this program.
class LaterStoreException : public Platform::Exception {
public:
    explicit LaterStoreException(const std::string& strMessage)
        : Exception(Platform::E_FAIL, strMessage) {}
};

// A writer was killed; what it left has to be taken back, which is a write.
class HalfWrittenStoreException : public Platform::AccessDeniedException {
public:
    using AccessDeniedException::AccessDeniedException;
};

// Has SQLite ask the hook of StorageFaults.h before its system calls ("store open",
// "store open for writing", "store read", "store write", "store truncate",
// "store unlink"), for the rest of the process. Not while a connection is open.
void PutSqliteBeforeTheHook();

class SqliteConnection {
public:
    enum class Access {
        Read,    // changes nothing, makes nothing
        Recover, // takes back what a killed writer left; makes nothing
        Write    // makes the file when there is none
    };

    // A prepared statement on its way through its rows; parameters and columns
    // count from 1 and from 0, as SQLite counts them.
    class Statement {
    public:
        Statement(SqliteConnection& connection, sqlite3_stmt* pStatement);
        Statement(Statement&& other) noexcept;
        ~Statement(); // ready for the next use
        Statement(const Statement&) = delete;
        Statement& operator=(const Statement&) = delete;

        Statement& Bind(int nParameter, std::int64_t nValue);
        Statement& Bind(int nParameter, const std::string& strText);
        Statement& BindBlob(int nParameter, const std::string& strBytes);

        bool Step(); // true when there is a row
        void Run();  // steps to the end

        std::int64_t Number(int nColumn) const;
        std::string Text(int nColumn) const; // a text's or a blob's bytes
        bool IsNumber(int nColumn) const;

    private:
        SqliteConnection& m_connection;
        sqlite3_stmt* m_pStatement; // empty once moved from
    };

    // Waits at most `patience` at a time for another process's lock.
    SqliteConnection(const std::string& strPath, Access eAccess,
                     std::chrono::milliseconds patience);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // `pszSql` is a literal: statements are kept by its address.
    Statement Prepare(const char* pszSql);
    void Execute(const char* pszSql); // one or more statements without parameters

    // True when the file that is open no longer is what its path names.
    bool HasMoved() const;

    [[noreturn]] void RaiseError(int nResult) const;

private:
    struct Closer {
        void operator()(sqlite3* pDatabase) const;
    };
    struct Finalizer {
        void operator()(sqlite3_stmt* pStatement) const;
    };

    std::unique_ptr<sqlite3, Closer> m_pDatabase;
    std::map<const char*, std::unique_ptr<sqlite3_stmt, Finalizer>> m_statements;
};

}
