#include "platform/storage/PosixCalls_p.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/SqliteConnection_p.h"
#include "platform/storage/StorageFaults.h"

namespace Windows::Storage {

namespace {

static_assert(sizeof(off_t) == 8, "files beyond 2 GiB need 64-bit offsets");

std::atomic<bool> g_bHooked{false};
std::mutex g_hookLock;
std::shared_ptr<const FaultHook> g_pHook; // guarded by g_hookLock

}

void SetStorageFaultHook(FaultHook fnHook) {
    static std::once_flag s_sqliteAsks;
    if (fnHook) {
        std::call_once(s_sqliteAsks, PutSqliteBeforeTheHook);
    }
    auto pHook = fnHook ? std::make_shared<const FaultHook>(std::move(fnHook)) : nullptr;
    const std::lock_guard<std::mutex> lock(g_hookLock);
    g_pHook.swap(pHook);
    g_bHooked = g_pHook != nullptr;
}

namespace Posix {

int OrderedFault(const char* pszCall) {
    if (!g_bHooked.load(std::memory_order_relaxed)) {
        return 0;
    }
    std::shared_ptr<const FaultHook> pHook;
    {
        const std::lock_guard<std::mutex> lock(g_hookLock);
        pHook = g_pHook;
    }
    return pHook ? (*pHook)(pszCall) : 0;
}

void RaiseError(int nError, Direction eDirection, const std::string& strWhat) {
    const std::string strMessage = strWhat + ": " + std::generic_category().message(nError);
    switch (nError) {
        case ENOENT:
        case ENOTDIR:
        case ELOOP:
        case ENAMETOOLONG:
            throw Platform::FileNotFoundException(strMessage);
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case ETXTBSY:
        case ENXIO: // a socket
            throw Platform::AccessDeniedException(strMessage);
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            throw Platform::DiskFullException(strMessage);
        case ENOMEM:
            throw Platform::OutOfMemoryException(strMessage);
        default:
            break;
    }
    if (eDirection == Direction::Read) {
        throw Platform::ReadFaultException(strMessage);
    }
    throw Platform::WriteFaultException(strMessage);
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : m_nFd(std::exchange(other.m_nFd, -1)) {}

FileDescriptor::~FileDescriptor() {
    if (m_nFd >= 0) {
        ::close(m_nFd);
    }
}

FileDescriptor OpenRegular(const std::string& strPath, int nFlags) {
    struct stat status {};
    // Looked at before, because opening a device may already act on it, and
    // again afterwards, because the path may have changed hands in between.
    if (Call("stat", [&] { return ::stat(strPath.c_str(), &status); }) != 0) {
        RaiseError(errno, Direction::Read, strPath);
    }
    if (!S_ISREG(status.st_mode)) {
        throw Platform::AccessDeniedException(strPath + ": not a file");
    }
    FileDescriptor fd(Call("open", [&] {
        return ::open(strPath.c_str(), nFlags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    }));
    if (fd.Get() < 0) {
        RaiseError(errno, Direction::Read, strPath);
    }
    if (!S_ISREG(Status(fd.Get(), strPath).st_mode)) {
        throw Platform::AccessDeniedException(strPath + ": not a file");
    }
    return fd;
}

struct stat Status(int nFd, const std::string& strPath) {
    struct stat status {};
    if (Call("fstat", [&] { return ::fstat(nFd, &status); }) != 0) {
        RaiseError(errno, Direction::Read, strPath);
    }
    return status;
}

namespace {

std::int64_t ChangeOf(const struct stat& status) {
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec;
}

// False where a file gets another number each time that the system comes to know it.
bool KeepsNumbers(int nFd) {
    struct statfs system {};
    if (Call("fstatfs", [&] { return ::fstatfs(nFd, &system); }) != 0) {
        return false;
    }
    return system.f_type != MSDOS_SUPER_MAGIC && system.f_type != EXFAT_SUPER_MAGIC &&
           system.f_type != FUSE_SUPER_MAGIC;
}

}

FileVersion VersionOf(int nFd, const struct stat& status) {
    FileVersion version;
    version.Device = status.st_dev;
    version.File = KeepsNumbers(nFd) ? status.st_ino : 0;
    version.Size = static_cast<std::uint64_t>(status.st_size);
    version.Changed = ChangeOf(status);
    return version;
}

bool HasBytesOf(const FileVersion& version, const struct stat& status) {
    return version.Size == static_cast<std::uint64_t>(status.st_size) &&
           version.Changed == ChangeOf(status);
}

std::size_t ReadAt(int nFd, std::uint64_t nOffset, std::span<std::uint8_t> destination) {
    std::size_t nDone = 0;
    while (nDone < destination.size()) {
        const ssize_t nRead = Call("pread", [&] {
            return ::pread(nFd, destination.data() + nDone, destination.size() - nDone,
                           static_cast<off_t>(nOffset + nDone));
        });
        if (nRead < 0) {
            RaiseError(errno, Direction::Read, "read");
        }
        if (nRead == 0) {
            break; // the file's end, wherever that is by now
        }
        nDone += static_cast<std::size_t>(nRead);
    }
    return nDone;
}

void WriteAt(int nFd, std::uint64_t nOffset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t nWritten = Call("pwrite", [&] {
            return ::pwrite(nFd, bytes.data(), bytes.size(), static_cast<off_t>(nOffset));
        });
        if (nWritten < 0) {
            RaiseError(errno, Direction::Write, "write");
        }
        nOffset += static_cast<std::uint64_t>(nWritten);
        bytes = bytes.subspan(static_cast<std::size_t>(nWritten));
    }
}

void SetLength(int nFd, std::uint64_t nSize) {
    if (Call("ftruncate", [&] { return ::ftruncate(nFd, static_cast<off_t>(nSize)); }) != 0) {
        RaiseError(errno, Direction::Write, "set length");
    }
}

void Sync(int nFd) {
    if (Call("fsync", [&] { return ::fsync(nFd); }) != 0) {
        RaiseError(errno, Direction::Write, "sync");
    }
}

FileDescriptor OpenFolder(const std::string& strFolder) {
    FileDescriptor fd(Call(
        "open", [&] { return ::open(strFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (fd.Get() < 0) {
        RaiseError(errno, Direction::Write, strFolder);
    }
    return fd;
}

void SyncFolder(const FileDescriptor& folder, const std::string& strFolder) {
    // Some file systems know no sync of a folder; there is nothing to do then.
    if (Call("fsync", [&] { return ::fsync(folder.Get()); }) != 0 && errno != EINVAL &&
        errno != ENOTSUP) {
        RaiseError(errno, Direction::Write, strFolder);
    }
}

std::string FolderOf(const std::string& strPath) {
    const std::size_t nSlash = strPath.rfind('/');
    if (nSlash == std::string::npos) {
        return ".";
    }
    return nSlash == 0 ? "/" : strPath.substr(0, nSlash);
}

std::string NameOf(const std::string& strPath) {
    return strPath.substr(strPath.rfind('/') + 1);
}

void MakeFolders(const std::string& strFolder) {
    struct stat status {};
    if (::stat(strFolder.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
        return;
    }
    if (const std::string strParent = FolderOf(strFolder); strParent != strFolder) {
        MakeFolders(strParent);
    }
    if (Call("mkdir", [&] { return ::mkdir(strFolder.c_str(), S_IRWXU); }) != 0 &&
        errno != EEXIST) {
        RaiseError(errno, Direction::Write, strFolder);
    }
}

std::string MakeAbsolute(const std::string& strPath) {
    if (strPath.empty() || strPath.front() == '/') {
        return strPath;
    }
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    if (error) {
        RaiseError(error.value(), Direction::Read, "working folder");
    }
    return (folder / strPath).string();
}

bool IsWriteProtected(const std::string& strPath, const struct stat& status) {
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    return (status.st_mode & kAnyWrite) == 0 ||
           ::faccessat(AT_FDCWD, strPath.c_str(), W_OK, AT_EACCESS) != 0 ||
           ::faccessat(AT_FDCWD, FolderOf(strPath).c_str(), W_OK | X_OK, AT_EACCESS) != 0;
}

}

}
