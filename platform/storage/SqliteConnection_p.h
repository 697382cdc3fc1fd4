// One SQLite connection: statements, and failures as exceptions.
//
// Threads: one at a time.
#pragma once

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

class SqliteConnection {
public:
    // A prepared statement on its way through its rows; parameters and columns
    // count from 1 and from 0, as SQLite counts them.
    class Statement {
    public:
        Statement(SqliteConnection& connection, sqlite3_stmt* pStatement);
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
        sqlite3_stmt* const m_pStatement;
    };

    // Opens or makes the file.
    explicit SqliteConnection(const std::string& strPath);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // `pszSql` is a literal: statements are kept by its address.
    Statement Prepare(const char* pszSql);
    void Execute(const char* pszSql); // one or more statements without parameters

    bool IsInTransaction() const;
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
