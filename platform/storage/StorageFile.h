// Files of the application model.
//
// All operations complete on threads of their own, never on the task pool.
// Failures: `FileNotFoundException`, `AccessDeniedException` (a folder counts
// as one), `ReadFaultException`, `WriteFaultException`, `DiskFullException`, and
// `FileChangedException` for a pinned file.
// Threads: any.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/RandomAccessStream.h"

namespace Windows::Storage {

enum class FileAccessMode { Read = 0, ReadWrite = 1 };
enum class CreationCollisionOption {
    GenerateUniqueName,
    ReplaceExisting,
    FailIfExists,
    OpenIfExists
};

// Bits of `StorageFile::Attributes`.
namespace FileAttributes {
inline constexpr std::uint32_t Normal = 0;
inline constexpr std::uint32_t ReadOnly = 1;
inline constexpr std::uint32_t Directory = 16;
}

struct BasicProperties {
    std::uint64_t Size = 0;        // bytes
    std::int64_t DateModified = 0; // 100 ns units since 1601-01-01 UTC
};

class StorageFile {
public:
    virtual ~StorageFile() = default;

    // Absolute, as given, or made absolute from the working folder; the links
    // in it are not resolved.
    virtual std::string Path() const = 0;
    virtual std::string Name() const = 0;
    virtual std::uint32_t Attributes() const = 0;

    virtual Foundation::AsyncOperation<BasicProperties> GetBasicPropertiesAsync() = 0;
    virtual Foundation::AsyncOperation<std::shared_ptr<Streams::IRandomAccessStream>> OpenAsync(
        FileAccessMode eMode) = 0;

    // A file that reads, from now on and for its life, the bytes that the path
    // names at this moment, also when the path is replaced or removed. Name,
    // path and attributes are this file's. When the path cannot be opened the
    // result fails its own `OpenAsync` in the same way. A file that was written
    // to in place is no longer those bytes: once its size or the time of its
    // last change differs, every read fails with `FileChangedException`.
    virtual std::shared_ptr<StorageFile> PinForReading() = 0;

    // Replaces the bytes of `pTarget` with this file's, atomically: the target
    // is the old file or the new one at any moment, also after a power cut.
    virtual Foundation::AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) = 0;
    virtual Foundation::AsyncAction DeleteAsync() = 0;

    // Fails as `OpenAsync` would; a folder is refused.
    static Foundation::AsyncOperation<std::shared_ptr<StorageFile>> GetFileFromPathAsync(
        const std::string& strPath);
};

}
