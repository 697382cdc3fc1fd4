// Files of the application model.
//
// All operations complete on threads of their own, never on the task pool.
// Failures: `FileNotFoundException`, `AccessDeniedException` (a folder counts
// as one), `ReadFaultException`, `WriteFaultException`, `DiskFullException`, and
// `FileChangedException` for bytes that are not those that were meant.
// Threads: any.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/FileVersion.h"
#include "platform/storage/RandomAccessStream.h"

namespace Windows::Storage {

class StorageStreamTransaction;

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
    // True when the path's file has other names too (hard links): a replacement
    // gives this name new bytes, the others keep the old ones. A host that cares
    // asks before it replaces.
    virtual bool HasOtherNames() const = 0;

    virtual Foundation::AsyncOperation<BasicProperties> GetBasicPropertiesAsync() = 0;
    // The version that the path names now; of a pinned file that of the moment
    // of the pinning, which is the one that its reads give.
    virtual Foundation::AsyncOperation<FileVersion> GetVersionAsync() = 0;
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
    // is the old file or the new one at any moment, also after a power cut or the
    // death of the process, which leave nothing aside for longer than until the
    // next replacement in the folder. A link stays one, and the file it leads to
    // is replaced. Owner and group (where this process may), permissions, access
    // lists and extended attributes stay; what of them cannot be kept never lets
    // anybody do more than before. Other names of the target keep the old bytes.
    // A target that is not there is made. A write-protected one is refused with
    // `AccessDeniedException`. A source that is written to meanwhile fails with
    // `FileChangedException`. Only where the disk fails to store the new name, the
    // operation fails and the target is the new file all the same.
    virtual Foundation::AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) = 0;
    // The same, but a target that, looked at right before its replacement, is not
    // of that version (written, replaced or gone) fails with
    // `FileChangedException` and is left alone. The result is the version of what
    // stands there now.
    virtual Foundation::AsyncOperation<FileVersion> ReplaceUnchangedAsync(
        std::shared_ptr<StorageFile> pTarget, const FileVersion& expected) = 0;
    // A transaction that replaces this file, which need not be there, with the
    // promises of `CopyAndReplaceAsync`. Refused for a pinned file.
    virtual Foundation::AsyncOperation<std::shared_ptr<StorageStreamTransaction>>
    OpenTransactedWriteAsync() = 0;
    virtual Foundation::AsyncAction DeleteAsync() = 0;

    // The file of that path, whether or not it is there: looks at nothing.
    static std::shared_ptr<StorageFile> FromPath(const std::string& strPath);
    // Fails as `OpenAsync` would; a folder is refused.
    static Foundation::AsyncOperation<std::shared_ptr<StorageFile>> GetFileFromPathAsync(
        const std::string& strPath);
};

}
