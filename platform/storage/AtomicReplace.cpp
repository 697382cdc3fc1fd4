#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

namespace {

constexpr std::uint64_t kChunk = std::uint64_t{1} << 20U;
constexpr mode_t kPermissions = 07777;

// A new file beside the target; removed again unless it took the target's name.
class AsideFile {
public:
    explicit AsideFile(const std::string& strFolder)
        : m_strPath(strFolder + "/.velko-XXXXXX"), m_fd(Make(m_strPath)) {}
    ~AsideFile() {
        if (!m_bRenamed) {
            ::unlink(m_strPath.c_str());
        }
    }
    AsideFile(const AsideFile&) = delete;
    AsideFile& operator=(const AsideFile&) = delete;

    int Fd() const { return m_fd.Get(); }

    void RenameTo(const std::string& strTarget) {
        const int nFault = OrderedFault("rename");
        if (nFault != 0 || ::rename(m_strPath.c_str(), strTarget.c_str()) != 0) {
            RaiseError(nFault != 0 ? nFault : errno, Direction::Write, strTarget);
        }
        m_bRenamed = true;
    }

private:
    static FileDescriptor Make(std::string& strTemplate) {
        const int nFault = OrderedFault("mkostemp");
        FileDescriptor fd(nFault != 0 ? -1 : ::mkostemp(strTemplate.data(), O_CLOEXEC));
        if (fd.Get() < 0) {
            RaiseError(nFault != 0 ? nFault : errno, Direction::Write, strTemplate);
        }
        return fd;
    }

    std::string m_strPath;
    FileDescriptor m_fd;
    bool m_bRenamed = false;
};

// The run of data at or after `nFrom`, end excluded; empty when only a hole is left.
std::optional<std::pair<std::uint64_t, std::uint64_t>> NextData(int nFd, std::uint64_t nFrom,
                                                                std::uint64_t nSize) {
    const off_t nData = ::lseek(nFd, static_cast<off_t>(nFrom), SEEK_DATA);
    if (nData < 0) {
        if (errno == ENXIO) {
            return std::nullopt;
        }
        return std::pair(nFrom, nSize); // the file system knows no holes
    }
    const off_t nHole = ::lseek(nFd, nData, SEEK_HOLE);
    const std::uint64_t nEnd = nHole < 0 ? nSize : static_cast<std::uint64_t>(nHole);
    return std::pair(static_cast<std::uint64_t>(nData), std::min(nEnd, nSize));
}

void CopyRun(int nSource, int nTarget, std::uint64_t nFrom, std::uint64_t nEnd) {
    std::vector<std::uint8_t> bytes(std::min(kChunk, nEnd - nFrom));
    while (nFrom < nEnd) {
        const std::span wanted = std::span(bytes).first(std::min(kChunk, nEnd - nFrom));
        const std::size_t nRead = ReadAt(nSource, nFrom, wanted);
        if (nRead == 0) {
            throw Platform::ReadFaultException("the source became shorter while it was copied");
        }
        WriteAt(nTarget, nFrom, wanted.first(nRead));
        nFrom += nRead;
    }
}

void CopyAll(int nSource, int nTarget) {
    const auto nSize = static_cast<std::uint64_t>(Status(nSource, "source").st_size);
    std::uint64_t nFrom = 0;
    while (nFrom < nSize) {
        const auto run = NextData(nSource, nFrom, nSize);
        if (!run) {
            break;
        }
        CopyRun(nSource, nTarget, run->first, run->second);
        nFrom = run->second;
    }
    const int nFault = OrderedFault("ftruncate");
    if (nFault != 0 || ::ftruncate(nTarget, static_cast<off_t>(nSize)) != 0) {
        RaiseError(nFault != 0 ? nFault : errno, Direction::Write, "set length");
    }
}

// The file that will be replaced; empty when there is none.
std::optional<struct stat> TargetStatus(const std::string& strTarget) {
    struct stat status {};
    if (::stat(strTarget.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode) || IsWriteProtected(strTarget, status)) {
            throw Platform::AccessDeniedException(strTarget + ": cannot be replaced");
        }
        return status;
    }
    if (errno != ENOENT) {
        RaiseError(errno, Direction::Write, strTarget);
    }
    return std::nullopt;
}

// Gives the new file the owner, where this process may, and the permissions of
// the old one. A file that replaces none stays its owner's alone.
void TakeOver(int nFd, const struct stat& old, const std::string& strTarget) {
    if (::fchown(nFd, old.st_uid, old.st_gid) != 0 && errno != EPERM && errno != EINVAL) {
        RaiseError(errno, Direction::Write, strTarget);
    }
    const int nFault = OrderedFault("fchmod"); // after the owner: a change of it drops bits
    if (nFault != 0 || ::fchmod(nFd, old.st_mode & kPermissions) != 0) {
        RaiseError(nFault != 0 ? nFault : errno, Direction::Write, strTarget);
    }
}

}

std::string ResolveLinks(const std::string& strPath) {
    constexpr int kMostLinks = 40;
    std::string strNow = strPath;
    for (int n = 0; n < kMostLinks; ++n) {
        std::string strLink(4096, '\0');
        const ssize_t nLength = ::readlink(strNow.c_str(), strLink.data(), strLink.size());
        if (nLength < 0) {
            return strNow; // no link, or nothing there
        }
        strLink.resize(static_cast<std::size_t>(nLength));
        strNow = strLink.front() == '/' ? strLink : FolderOf(strNow) + "/" + strLink;
    }
    throw Platform::FileNotFoundException(strPath + ": links without end");
}

void ReplaceWithCopy(int nSource, const std::string& strTarget) {
    const concurrency::blocking_scope blocking;
    const std::string strReal = ResolveLinks(strTarget);
    const std::optional<struct stat> old = TargetStatus(strReal);
    const std::string strFolder = FolderOf(strReal);
    AsideFile aside(strFolder);
    CopyAll(nSource, aside.Fd());
    if (old) {
        TakeOver(aside.Fd(), *old, strReal);
    }
    Sync(aside.Fd());
    aside.RenameTo(strReal);
    SyncFolder(strFolder);
}

}
