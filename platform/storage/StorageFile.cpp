#include "platform/storage/StorageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <optional>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/FileStream_p.h"
#include "platform/storage/IoThreads_p.h"
#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/StreamTransaction_p.h"

namespace Windows::Storage {

using Foundation::AsyncAction;
using Foundation::AsyncOperation;
using Posix::SharedDescriptor;
using Streams::IRandomAccessStream;

namespace {

using StreamPtr = std::shared_ptr<IRandomAccessStream>;
using TransactionPtr = std::shared_ptr<StorageStreamTransaction>;

// An open file, and the version that it had when it was opened.
struct OpenBytes {
    SharedDescriptor pFd;
    FileVersion version;
};

OpenBytes OpenForReading(const std::string& strPath) {
    auto pFd = std::make_shared<const Posix::FileDescriptor>(Posix::OpenRegular(strPath, O_RDONLY));
    const FileVersion version = Posix::VersionOf(pFd->Get(), Posix::Status(pFd->Get(), strPath));
    return {std::move(pFd), version};
}

BasicProperties PropertiesOf(const struct stat& status) {
    constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
    constexpr std::int64_t kTicksPerSecond = 10'000'000;
    constexpr std::int64_t kNanosecondsPerTick = 100;
    BasicProperties properties;
    properties.Size = static_cast<std::uint64_t>(status.st_size);
    properties.DateModified =
        (static_cast<std::int64_t>(status.st_mtim.tv_sec) + kSecondsFrom1601To1970) *
            kTicksPerSecond +
        static_cast<std::int64_t>(status.st_mtim.tv_nsec) / kNanosecondsPerTick;
    return properties;
}

// What files by path and pinned files have in common: all but the way to the bytes.
class FileBase : public StorageFile, public std::enable_shared_from_this<FileBase> {
public:
    explicit FileBase(std::string strPath) : m_strPath(std::move(strPath)) {}

    std::string Path() const override { return m_strPath; }
    std::string Name() const override { return Posix::NameOf(m_strPath); }

    std::uint32_t Attributes() const override {
        struct stat status {};
        if (::stat(m_strPath.c_str(), &status) != 0) {
            return FileAttributes::Normal;
        }
        if (S_ISDIR(status.st_mode)) {
            return FileAttributes::Directory;
        }
        return Posix::IsWriteProtected(m_strPath, status) ? FileAttributes::ReadOnly
                                                          : FileAttributes::Normal;
    }

    bool HasOtherNames() const override {
        struct stat status {};
        return ::stat(m_strPath.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
               status.st_nlink > 1;
    }

    AsyncOperation<BasicProperties> GetBasicPropertiesAsync() override {
        return RunOnIoThread([pSelf = shared_from_this()] {
            return PropertiesOf(Posix::Status(pSelf->Bytes().pFd->Get(), pSelf->Path()));
        });
    }

    AsyncOperation<FileVersion> GetVersionAsync() override {
        return RunOnIoThread([pSelf = shared_from_this()] { return pSelf->Bytes().version; });
    }

    AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) override {
        return RunOnIoThread([pSelf = shared_from_this(), pTarget = std::move(pTarget)] {
            pSelf->Replace(*pTarget, std::nullopt);
        });
    }

    AsyncOperation<FileVersion> ReplaceUnchangedAsync(std::shared_ptr<StorageFile> pTarget,
                                                      const FileVersion& expected) override {
        return RunOnIoThread([pSelf = shared_from_this(), pTarget = std::move(pTarget), expected] {
            return pSelf->Replace(*pTarget, expected);
        });
    }

    AsyncAction DeleteAsync() override {
        return RunOnIoThread([strPath = m_strPath] {
            if (Posix::Call("unlink", [&] { return ::unlink(strPath.c_str()); }) != 0) {
                Posix::RaiseError(errno, Posix::Direction::Write, strPath);
            }
        });
    }

protected:
    virtual OpenBytes Bytes() const = 0;

private:
    FileVersion Replace(const StorageFile& target, const std::optional<FileVersion>& expected) {
        const OpenBytes bytes = Bytes();
        return Posix::ReplaceWithCopy(bytes.pFd->Get(), bytes.version, target.Path(), expected);
    }

    const std::string m_strPath;
};

// A file that is held open.
class PinnedFile final : public FileBase {
public:
    PinnedFile(std::string strPath, OpenBytes bytes)
        : FileBase(std::move(strPath)), m_bytes(std::move(bytes)) {}
    PinnedFile(std::string strPath, std::exception_ptr pError)
        : FileBase(std::move(strPath)), m_pError(std::move(pError)) {}

    AsyncOperation<StreamPtr> OpenAsync(FileAccessMode eMode) override {
        return RunOnIoThread([pSelf = shared_from_this(), this, eMode]() -> StreamPtr {
            const OpenBytes bytes = Bytes();
            if (eMode != FileAccessMode::Read) {
                throw Platform::AccessDeniedException("a pinned file is for reading");
            }
            return std::make_shared<FileStream>(bytes.pFd, bytes.version);
        });
    }

    std::shared_ptr<StorageFile> PinForReading() override { return shared_from_this(); }

    AsyncOperation<TransactionPtr> OpenTransactedWriteAsync() override {
        return RunOnIoThread([]() -> TransactionPtr {
            throw Platform::AccessDeniedException("a pinned file is for reading");
        });
    }

private:
    OpenBytes Bytes() const override {
        if (m_pError) {
            std::rethrow_exception(m_pError);
        }
        return m_bytes;
    }

    const OpenBytes m_bytes; // as at the moment of the pinning
    const std::exception_ptr m_pError;
};

class PathFile final : public FileBase {
public:
    using FileBase::FileBase;

    AsyncOperation<StreamPtr> OpenAsync(FileAccessMode eMode) override {
        const bool bRead = eMode == FileAccessMode::Read;
        return RunOnIoThread([strPath = Path(), bRead]() -> StreamPtr {
            return std::make_shared<FileStream>(
                std::make_shared<const Posix::FileDescriptor>(
                    Posix::OpenRegular(strPath, bRead ? O_RDONLY : O_RDWR)),
                bRead ? FileStream::Use::Reading : FileStream::Use::ReadingAndWriting);
        });
    }

    std::shared_ptr<StorageFile> PinForReading() override {
        try {
            return std::make_shared<PinnedFile>(Path(), OpenForReading(Path()));
        } catch (const Platform::Exception&) {
            return std::make_shared<PinnedFile>(Path(), std::current_exception());
        }
    }

    AsyncOperation<TransactionPtr> OpenTransactedWriteAsync() override {
        return RunOnIoThread([strPath = Path()] { return BeginTransaction(strPath); });
    }

private:
    OpenBytes Bytes() const override { return OpenForReading(Path()); }
};

}

std::shared_ptr<StorageFile> StorageFile::FromPath(const std::string& strPath) {
    return std::make_shared<PathFile>(Posix::MakeAbsolute(strPath));
}

AsyncOperation<std::shared_ptr<StorageFile>> StorageFile::GetFileFromPathAsync(
    const std::string& strPath) {
    return RunOnIoThread([pFile = FromPath(strPath)]() -> std::shared_ptr<StorageFile> {
        Posix::OpenRegular(pFile->Path(), O_RDONLY);
        return pFile;
    });
}

}
