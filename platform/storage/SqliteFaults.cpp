// The system calls of SQLite, put before the hook that fails calls on order.

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>

#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/SqliteConnection_p.h"

namespace Windows::Storage {

namespace {

template <class F>
auto Ordered(const char* pszCall, F fnCall) -> decltype(fnCall()) {
    if (const int nFault = Posix::OrderedFault(pszCall)) {
        errno = nFault;
        return -1;
    }
    return fnCall();
}

int Open(const char* pszPath, int nFlags, int nMode) {
    const bool bForReading = (nFlags & (O_WRONLY | O_RDWR | O_CREAT)) == 0;
    return Ordered(bForReading ? "store open" : "store open for writing",
                   [&] { return ::open(pszPath, nFlags, nMode); });
}

ssize_t Read(int nFd, void* pBytes, size_t nCount, off_t nOffset) {
    return Ordered("store read", [&] { return ::pread(nFd, pBytes, nCount, nOffset); });
}

ssize_t Write(int nFd, const void* pBytes, size_t nCount, off_t nOffset) {
    return Ordered("store write", [&] { return ::pwrite(nFd, pBytes, nCount, nOffset); });
}

int Truncate(int nFd, off_t nSize) {
    return Ordered("store truncate", [&] { return ::ftruncate(nFd, nSize); });
}

int Unlink(const char* pszPath) {
    return Ordered("store unlink", [&] { return ::unlink(pszPath); });
}

template <class F>
void Replace(const char* pszName, F* fnCall) {
    sqlite3_vfs* pVfs = sqlite3_vfs_find(nullptr);
    pVfs->xSetSystemCall(pVfs, pszName, reinterpret_cast<sqlite3_syscall_ptr>(fnCall));
}

}

void PutSqliteBeforeTheHook() {
    Replace("open", &Open);
    Replace("pread64", &Read);
    Replace("pwrite64", &Write);
    Replace("ftruncate", &Truncate);
    Replace("unlink", &Unlink);
}

}
