// The transaction over a replacement.
#pragma once

#include <memory>
#include <string>

#include "platform/storage/StorageStreamTransaction.h"

namespace Windows::Storage {

// On a thread for file operations.
std::shared_ptr<StorageStreamTransaction> BeginTransaction(const std::string& strTarget);

}
