#include "platform/storage/StorageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <limits>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/IoThreads_p.h"
#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/PosixFile_p.h"

namespace Windows::Storage {

using Foundation::AsyncAction;
using Foundation::AsyncOperation;
using Streams::IBuffer;
using Streams::IRandomAccessStream;
using Streams::VectorBuffer;

namespace {

using SharedDescriptor = std::shared_ptr<const Posix::FileDescriptor>;
using StreamPtr = std::shared_ptr<IRandomAccessStream>;
using BufferPtr = std::shared_ptr<IBuffer>;

SharedDescriptor OpenShared(const std::string& strPath, int nFlags) {
    return std::make_shared<const Posix::FileDescriptor>(Posix::OpenRegular(strPath, nFlags));
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

// Reads by offset, so that several streams share one open file.
class FileStream final : public IRandomAccessStream,
                         public std::enable_shared_from_this<FileStream> {
public:
    explicit FileStream(SharedDescriptor pFd) : m_pFd(std::move(pFd)) {}

    std::uint64_t Size() const override {
        return static_cast<std::uint64_t>(Posix::Status(m_pFd->Get(), "stream").st_size);
    }
    void Seek(std::uint64_t nPosition) override { m_nPosition = nPosition; }

    AsyncOperation<BufferPtr> ReadAsync(std::uint32_t nCount) override {
        return RunOnIoThread([pSelf = shared_from_this(), nCount]() -> BufferPtr {
            auto bytes = Posix::ReadAt(pSelf->m_pFd->Get(), pSelf->m_nPosition, nCount);
            pSelf->m_nPosition += bytes.size();
            return std::make_shared<VectorBuffer>(std::move(bytes));
        });
    }

private:
    const SharedDescriptor m_pFd;
    std::uint64_t m_nPosition = 0;
};

// What files by path and pinned files have in common: all but the way to the bytes.
class FileBase : public StorageFile {
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

    AsyncAction DeleteAsync() override {
        return RunOnIoThread([strPath = m_strPath] {
            const int nFault = Posix::OrderedFault("unlink");
            if (nFault != 0 || ::unlink(strPath.c_str()) != 0) {
                Posix::RaiseError(nFault != 0 ? nFault : errno, Posix::Direction::Write, strPath);
            }
        });
    }

private:
    const std::string m_strPath;
};

// A file that is held open.
class PinnedFile final : public FileBase {
public:
    PinnedFile(std::string strPath, SharedDescriptor pFd)
        : FileBase(std::move(strPath)), m_pFd(std::move(pFd)) {}
    PinnedFile(std::string strPath, std::exception_ptr pError)
        : FileBase(std::move(strPath)), m_pError(std::move(pError)) {}

    AsyncOperation<BasicProperties> GetBasicPropertiesAsync() override {
        return RunOnIoThread([pSelf = Self()] {
            return PropertiesOf(Posix::Status(pSelf->Descriptor()->Get(), pSelf->Path()));
        });
    }

    AsyncOperation<StreamPtr> OpenAsync(FileAccessMode eMode) override {
        return RunOnIoThread([pSelf = Self(), eMode]() -> StreamPtr {
            const SharedDescriptor pFd = pSelf->Descriptor();
            if (eMode != FileAccessMode::Read) {
                throw Platform::AccessDeniedException("a pinned file is for reading");
            }
            return std::make_shared<FileStream>(pFd);
        });
    }

    std::shared_ptr<StorageFile> PinForReading() override { return Self(); }

    AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) override {
        return RunOnIoThread([pSelf = Self(), pTarget = std::move(pTarget)] {
            Posix::ReplaceWithCopy(pSelf->Descriptor()->Get(), pTarget->Path());
        });
    }

private:
    std::shared_ptr<PinnedFile> Self() {
        return m_pError ? std::make_shared<PinnedFile>(Path(), m_pError)
                        : std::make_shared<PinnedFile>(Path(), m_pFd);
    }
    SharedDescriptor Descriptor() const {
        if (m_pError) {
            std::rethrow_exception(m_pError);
        }
        return m_pFd;
    }

    const SharedDescriptor m_pFd;
    const std::exception_ptr m_pError;
};

class PathFile final : public FileBase {
public:
    using FileBase::FileBase;

    AsyncOperation<BasicProperties> GetBasicPropertiesAsync() override {
        return RunOnIoThread([strPath = Path()] {
            const Posix::FileDescriptor fd = Posix::OpenRegular(strPath, O_RDONLY);
            return PropertiesOf(Posix::Status(fd.Get(), strPath));
        });
    }

    AsyncOperation<StreamPtr> OpenAsync(FileAccessMode eMode) override {
        const int nFlags = eMode == FileAccessMode::Read ? O_RDONLY : O_RDWR;
        return RunOnIoThread([strPath = Path(), nFlags]() -> StreamPtr {
            return std::make_shared<FileStream>(OpenShared(strPath, nFlags));
        });
    }

    std::shared_ptr<StorageFile> PinForReading() override {
        try {
            return std::make_shared<PinnedFile>(Path(), OpenShared(Path(), O_RDONLY));
        } catch (const Platform::Exception&) {
            return std::make_shared<PinnedFile>(Path(), std::current_exception());
        }
    }

    AsyncAction CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) override {
        return RunOnIoThread([strPath = Path(), pTarget = std::move(pTarget)] {
            const Posix::FileDescriptor fd = Posix::OpenRegular(strPath, O_RDONLY);
            Posix::ReplaceWithCopy(fd.Get(), pTarget->Path());
        });
    }
};

}

std::shared_ptr<StorageFile> FileAt(const std::string& strPath) {
    return std::make_shared<PathFile>(Posix::MakeAbsolute(strPath));
}

AsyncOperation<std::shared_ptr<StorageFile>> StorageFile::GetFileFromPathAsync(
    const std::string& strPath) {
    return RunOnIoThread([pFile = FileAt(strPath)]() -> std::shared_ptr<StorageFile> {
        Posix::OpenRegular(pFile->Path(), O_RDONLY);
        return pFile;
    });
}

}
