// The name of a file as the file system has it: bytes, which need not be text.
//
// Threads: values.
#pragma once

#include <QString>
#include <string>

class QUrl;

namespace velko::vkit {

class FilePath {
public:
    FilePath() = default;
    FilePath(const QString& strText); // what a reader types or a dialog gives
    FilePath(const char* szBytes) : m_strBytes(szBytes) {}
    FilePath(std::string strBytes) : m_strBytes(std::move(strBytes)) {}

    // Empty for an address that names no local file.
    static FilePath FromUrl(const QUrl& url);

    FilePath Absolute() const; // from the working folder; empty stays empty

    const std::string& Bytes() const { return m_strBytes; }
    bool IsEmpty() const { return m_strBytes.empty(); }

    // For the reader; bytes that are no text are replaced.
    QString Text() const;
    QString Name() const;   // without folders
    QString Folder() const; // the folders alone

private:
    std::string m_strBytes;
};

}
