// Taking the lock of a path.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/storage/FileLock.h"

namespace Windows::Storage {

// Waits on the calling thread. `strPath` is that of the lock's own file.
std::shared_ptr<FileLock> TakeFileLock(const std::string& strPath,
                                       std::chrono::milliseconds longest);

}
