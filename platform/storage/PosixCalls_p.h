// The system calls that files are made of, with their failures as exceptions.
//
// Interrupted calls are repeated, short reads and writes completed. A call that
// may wait for a disk tells the thread's pool so. Threads: any.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "platform/concurrency/Scheduler.h"
#include "platform/storage/FileVersion.h"

namespace Windows::Storage::Posix {

// Raises the platform exception for an error number: what is not there is not
// found, what must not be touched is denied, and the rest is the fault of the
// direction in which the data went.
enum class Direction { Read, Write };
[[noreturn]] void RaiseError(int nError, Direction eDirection, const std::string& strWhat);

// An open file; closes it. Not copyable.
class FileDescriptor {
public:
    explicit FileDescriptor(int nFd) : m_nFd(nFd) {}
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor();
    int Get() const { return m_nFd; }

private:
    int m_nFd;
};
using SharedDescriptor = std::shared_ptr<const FileDescriptor>;

// The error number that a test ordered for this call, else 0.
int OrderedFault(const char* pszCall);

// Calls `fnCall` again while a signal interrupts it. Gives -1 and `errno`, as
// the call itself does, for an ordered fault.
template <class F>
auto Call(const char* pszCall, F fnCall) -> decltype(fnCall()) {
    if (const int nFault = OrderedFault(pszCall)) {
        errno = nFault;
        return -1;
    }
    const concurrency::blocking_scope blocking;
    for (;;) {
        const auto nResult = fnCall();
        if (nResult != -1 || errno != EINTR) {
            return nResult;
        }
    }
}

// Opens a regular file; anything else raises `AccessDeniedException`, without
// waiting for whoever is at the other end of it.
FileDescriptor OpenRegular(const std::string& strPath, int nFlags);

struct stat Status(int nFd, const std::string& strPath);

// The version of an open file, or of the file of a path that lies where the open
// one does.
FileVersion VersionOf(int nFd, const struct stat& status);
// Whether an open file still has the bytes of the version that it had.
bool HasBytesOf(const FileVersion& version, const struct stat& status);

// Fills `destination` from `nOffset` on; returns how many bytes came, fewer
// only at the end of the file.
std::size_t ReadAt(int nFd, std::uint64_t nOffset, std::span<std::uint8_t> destination);
void WriteAt(int nFd, std::uint64_t nOffset, std::span<const std::uint8_t> bytes);
void SetLength(int nFd, std::uint64_t nSize);

// Synchronises a file, or an open folder, with the disk.
void Sync(int nFd);
FileDescriptor OpenFolder(const std::string& strFolder);
void SyncFolder(const FileDescriptor& folder, const std::string& strFolder);

// The folder of a path ("." when it names none) and the last component.
std::string FolderOf(const std::string& strPath);
std::string NameOf(const std::string& strPath);

// Makes what is missing of the folder's path, for the user's eyes alone.
void MakeFolders(const std::string& strFolder);

// Absolute from the working folder; nothing is resolved.
std::string MakeAbsolute(const std::string& strPath);

// True when the file's bytes cannot be replaced: nobody may write it, or this
// process may not write it or the folder that a replacement needs.
bool IsWriteProtected(const std::string& strPath, const struct stat& status);

}
