// A lock that processes share by the name of a file in a folder they share.
//
// It is for what has one fixed name, such as a temporary file: whoever makes,
// uses and removes it holds the lock meanwhile, from before the first look at
// the name until after its removal. It lets go when the last reference goes, and
// at once when its process dies, however that happens. Two holders in one
// process exclude each other like two processes; the lock is not recursive, and
// nothing but the lock keeps others from the file.
//
//     const auto pLock = co_await pFolder->LockAsync("temperFile.pdf", 5s);
//     // make, write, copy and delete the file; `pLock` lives until then
//
// Threads: any; taken on one and let go on another.
#pragma once

#include <string>

#include "platform/foundation/Exception.h"

namespace Windows::Storage {

class FileLock {
public:
    virtual ~FileLock() = default;
};

}

namespace Platform {

inline constexpr HRESULT ERROR_LOCK_VIOLATION = MakeHResult(0x80070021U);

// Somebody else held the lock for as long as the caller would wait.
class FileLockedException : public Exception {
public:
    explicit FileLockedException(const std::string& strMessage = "the file is locked")
        : Exception(ERROR_LOCK_VIOLATION, strMessage) {}
    const char* TypeName() const noexcept override { return "Platform::FileLockedException"; }
};

}
