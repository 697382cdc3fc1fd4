// Files by path, for the folder's own use.
#pragma once

#include <memory>
#include <string>

#include "platform/storage/StorageFile.h"

namespace Windows::Storage {

// The file of that path, whether or not it is there.
std::shared_ptr<StorageFile> FileAt(const std::string& strPath);

}
