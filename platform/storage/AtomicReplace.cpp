#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/concurrency/Scheduler.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/CopyBytes_p.h"
#include "platform/storage/FileChangedException.h"
#include "platform/storage/KeepAttributes_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

namespace {

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

// What replaces a file is nobody else's to see before it has that one's
// permissions; a file of its own has those of any new one.
mode_t FirstMode(const std::string& strTarget) {
    constexpr mode_t kOwnersAlone = 0600;
    constexpr mode_t kCommon = 0666;
    return TargetStatus(strTarget) ? kOwnersAlone : kCommon;
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

Replacement::Replacement(const std::string& strTarget)
    : m_strTarget(ResolveLinks(strTarget)), m_aside(FolderOf(m_strTarget), FirstMode(m_strTarget)) {
    RemoveAbandoned(FolderOf(m_strTarget));
}

void Replacement::DemandUnchanged(const FileVersion& expected) const {
    struct stat status {};
    if (Call("stat", [&] { return ::stat(m_strTarget.c_str(), &status); }) != 0) {
        if (errno != ENOENT) {
            RaiseError(errno, Direction::Read, m_strTarget);
        }
        throw Platform::FileChangedException(m_strTarget + " is gone");
    }
    if (VersionOf(m_aside.Fd(), status) != expected) {
        throw Platform::FileChangedException(m_strTarget + " was changed");
    }
}

FileVersion Replacement::Commit(const std::optional<FileVersion>& expected) {
    const std::string strFolder = FolderOf(m_strTarget);
    const FileDescriptor folder = OpenFolder(strFolder);
    if (const auto old = TargetStatus(m_strTarget)) {
        KeepAttributes(m_aside.Fd(), m_strTarget, *old);
    }
    Sync(m_aside.Fd());
    const FileVersion version = VersionOf(m_aside.Fd(), Status(m_aside.Fd(), m_strTarget));
    m_aside.GiveName();
    if (expected) {
        DemandUnchanged(*expected);
    }
    m_aside.RenameTo(m_strTarget);
    SyncFolder(folder, strFolder);
    return version;
}

FileVersion ReplaceWithCopy(int nSource, const FileVersion& source, const std::string& strTarget,
                            const std::optional<FileVersion>& expected) {
    const concurrency::blocking_scope blocking;
    Replacement replacement(strTarget);
    if (expected) {
        replacement.DemandUnchanged(*expected); // before a long copy in vain
    }
    CopyBytes(nSource, replacement.Fd());
    if (!HasBytesOf(source, Status(nSource, "source"))) {
        throw Platform::FileChangedException("the source was changed while it was copied");
    }
    return replacement.Commit(expected);
}

}
