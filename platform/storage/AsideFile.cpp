#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <string_view>

#include "platform/storage/AsideFile_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage::Posix {

namespace {

constexpr int kMostTries = 100; // a name is taken once in 2^48 times

// ".velko-", twelve digits, ".tmp": so much that no reader's own file is named so.
constexpr std::string_view kHead = ".velko-";
constexpr std::string_view kTail = ".tmp";
constexpr std::size_t kDigits = 12;

std::string HiddenName() {
    constexpr std::string_view kHex = "0123456789abcdef";
    std::random_device random;
    std::string strName(kHead);
    for (std::size_t n = 0; n < kDigits; ++n) {
        strName += kHex[random() % kHex.size()];
    }
    return strName.append(kTail);
}

bool IsHiddenName(std::string_view strName) {
    if (strName.size() != kHead.size() + kDigits + kTail.size() || !strName.starts_with(kHead) ||
        !strName.ends_with(kTail)) {
        return false;
    }
    const std::string_view strDigits = strName.substr(kHead.size(), kDigits);
    return strDigits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string ProcessPath(int nFd) {
    return "/proc/self/fd/" + std::to_string(nFd);
}

// A failure leaves the file as it is: where there are no locks, nobody takes
// what is in use for abandoned, either.
void Hold(int nFd) {
    Call("flock", [&] { return ::flock(nFd, LOCK_EX); });
}

bool IsNameOf(const std::string& strPath, int nFd) {
    struct stat named {};
    struct stat open {};
    return ::lstat(strPath.c_str(), &named) == 0 && ::fstat(nFd, &open) == 0 &&
           named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

void RemoveIfAbandoned(const std::string& strPath) {
    struct stat status {};
    if (::lstat(strPath.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return;
    }
    const FileDescriptor fd(
        ::open(strPath.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // The lock is kept over the removal: who makes a file by name, and waits for
    // this lock, sees afterwards that the name has gone.
    if (fd.Get() >= 0 && ::flock(fd.Get(), LOCK_SH | LOCK_NB) == 0 && IsNameOf(strPath, fd.Get())) {
        ::unlink(strPath.c_str());
    }
}

}

AsideFile::AsideFile(const std::string& strFolder, mode_t nMode) : m_strFolder(strFolder) {
    if (!MakeNameless(nMode)) {
        MakeNamed(nMode);
    }
}

AsideFile::~AsideFile() {
    if (!m_strPath.empty()) {
        ::unlink(m_strPath.c_str());
    }
}

// False where the system does not know such files, or could not name one later.
bool AsideFile::MakeNameless(mode_t nMode) {
    m_pFd = std::make_shared<const FileDescriptor>(Call("tmpfile", [&] {
        return ::open(m_strFolder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, nMode);
    }));
    if (Fd() >= 0) {
        return ::access(ProcessPath(Fd()).c_str(), F_OK) == 0;
    }
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOENT) {
        RaiseError(errno, Direction::Write, m_strFolder);
    }
    return false;
}

void AsideFile::MakeNamed(mode_t nMode) {
    for (int n = 0; n < kMostTries; ++n) {
        std::string strPath = m_strFolder + "/" + HiddenName();
        m_pFd = std::make_shared<const FileDescriptor>(Call("create", [&] {
            return ::open(strPath.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, nMode);
        }));
        if (Fd() < 0 && errno != EEXIST) {
            RaiseError(errno, Direction::Write, m_strFolder);
        }
        if (Fd() < 0) {
            continue;
        }
        Hold(Fd());
        if (IsNameOf(strPath, Fd())) { // else it was taken for abandoned before it was held
            m_strPath = std::move(strPath);
            return;
        }
    }
    RaiseError(EEXIST, Direction::Write, m_strFolder);
}

void AsideFile::GiveName() {
    if (!m_strPath.empty()) {
        return;
    }
    Hold(Fd());
    for (int n = 0; n < kMostTries; ++n) {
        std::string strPath = m_strFolder + "/" + HiddenName();
        if (Call("linkat", [&] {
                return ::linkat(AT_FDCWD, ProcessPath(Fd()).c_str(), AT_FDCWD, strPath.c_str(),
                                AT_SYMLINK_FOLLOW);
            }) == 0) {
            m_strPath = std::move(strPath);
            return;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    RaiseError(errno, Direction::Write, m_strFolder);
}

void AsideFile::RenameTo(const std::string& strTarget) {
    if (Call("rename", [&] { return ::rename(m_strPath.c_str(), strTarget.c_str()); }) != 0) {
        RaiseError(errno, Direction::Write, strTarget);
    }
    m_strPath.clear();
    ::flock(Fd(), LOCK_UN); // the file is the reader's from here on
}

void RemoveAbandoned(const std::string& strFolder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> pFolder(::opendir(strFolder.c_str()), &::closedir);
    if (!pFolder) {
        return;
    }
    while (const dirent* pEntry = ::readdir(pFolder.get())) {
        if (IsHiddenName(pEntry->d_name)) {
            RemoveIfAbandoned(strFolder + "/" + pEntry->d_name);
        }
    }
}

}
