// Folders of the application model.
//
// Names are single path components; another one ends the operation with
// `InvalidArgumentException`. Operations complete where those of `StorageFile`
// do and fail in the same ways. Threads: any.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/StorageFile.h"

namespace Windows::Storage {

class FileLock;

class StorageFolder {
public:
    using FileOperation = Foundation::AsyncOperation<std::shared_ptr<StorageFile>>;

    virtual ~StorageFolder() = default;

    virtual std::string Path() const = 0; // absolute

    // The file of that name, or empty when there is nothing of the name.
    virtual FileOperation TryGetItemAsync(const std::string& strName) = 0;
    virtual FileOperation GetFileAsync(const std::string& strName) = 0;

    // Makes an empty file. When the name is taken: `GenerateUniqueName` puts
    // " (2)" and so on before the extension, `ReplaceExisting` empties what is
    // there, `FailIfExists` fails with `ERROR_ALREADY_EXISTS`, `OpenIfExists`
    // gives what is there.
    virtual FileOperation CreateFileAsync(const std::string& strName,
                                          CreationCollisionOption eOption) = 0;

    // Takes the lock of the name (see `FileLock`), which need not be a file's.
    // Waits up to `longest` while somebody else holds it, then fails with
    // `FileLockedException`; 0 tries once. Leaves a hidden empty file behind.
    virtual Foundation::AsyncOperation<std::shared_ptr<FileLock>> LockAsync(
        const std::string& strName, std::chrono::milliseconds longest) = 0;

    // Looks at nothing: a path that is no folder fails the operations.
    static std::shared_ptr<StorageFolder> FromPath(const std::string& strPath);

    // The name that `GenerateUniqueName` tries as its `nCopy`-th.
    static std::string NumberedName(const std::string& strName, int nCopy);
};

}
