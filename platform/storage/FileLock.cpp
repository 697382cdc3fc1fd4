#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>

#include "platform/concurrency/Scheduler.h"
#include "platform/storage/FileLock_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage {

namespace {

using Clock = std::chrono::steady_clock;

class HeldLock final : public FileLock {
public:
    explicit HeldLock(Posix::FileDescriptor fd) : m_fd(std::move(fd)) {}

private:
    const Posix::FileDescriptor m_fd; // its closing ends the lock
};

Posix::FileDescriptor OpenLockFile(const std::string& strPath) {
    Posix::FileDescriptor fd(Posix::Call("open", [&] {
        return ::open(strPath.c_str(), O_CREAT | O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                      S_IRUSR | S_IWUSR);
    }));
    if (fd.Get() < 0) {
        Posix::RaiseError(errno, Posix::Direction::Write, strPath);
    }
    return fd;
}

// False when somebody else holds it.
bool TryLock(int nFd, const std::string& strPath) {
    if (Posix::Call("flock", [&] { return ::flock(nFd, LOCK_EX | LOCK_NB); }) == 0) {
        return true;
    }
    if (errno != EWOULDBLOCK) {
        Posix::RaiseError(errno, Posix::Direction::Write, strPath);
    }
    return false;
}

// A lock of a file that was removed meanwhile keeps nobody out.
bool IsStillThere(int nFd, const std::string& strPath) {
    return Posix::Status(nFd, strPath).st_nlink > 0;
}

}

std::shared_ptr<FileLock> TakeFileLock(const std::string& strPath,
                                       std::chrono::milliseconds longest) {
    constexpr std::chrono::milliseconds kPause{20}; // the system tells nobody of a lock's end
    const concurrency::blocking_scope blocking;
    const Clock::time_point end = Clock::now() + longest;
    for (;;) {
        Posix::FileDescriptor fd = OpenLockFile(strPath);
        const bool bLocked = TryLock(fd.Get(), strPath);
        if (bLocked && IsStillThere(fd.Get(), strPath)) {
            return std::make_shared<HeldLock>(std::move(fd));
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (!bLocked && left.count() <= 0) {
            throw Platform::FileLockedException(strPath + " is locked by somebody else");
        }
        if (!bLocked) {
            std::this_thread::sleep_for(std::min(kPause, left));
        }
    }
}

}
