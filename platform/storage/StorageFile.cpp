#include "platform/storage/StorageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/FileChangedException.h"
#include "platform/storage/FillBuffer_p.h"
#include "platform/storage/IoThreads_p.h"
#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/PosixFile_p.h"

namespace Windows::Storage {

using Foundation::AsyncAction;
using Foundation::AsyncOperation;
using Streams::FillBuffer;
using Streams::IBuffer;
using Streams::IRandomAccessStream;

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

// What tells the bytes of one moment from those after a write in place.
class FileState {
public:
    explicit FileState(const struct stat& status)
        : m_nSize(status.st_size), m_changed(status.st_mtim) {}

    bool IsThatOf(const struct stat& status) const {
        return status.st_size == m_nSize && status.st_mtim.tv_sec == m_changed.tv_sec &&
               status.st_mtim.tv_nsec == m_changed.tv_nsec;
    }

private:
    off_t m_nSize;
    timespec m_changed;
};

// Reads by offset, so that several streams share one open file. With a pinned
// state it refuses the bytes of any other.
class FileStream final : public IRandomAccessStream,
                         public std::enable_shared_from_this<FileStream> {
public:
    explicit FileStream(SharedDescriptor pFd, std::optional<FileState> pinned = std::nullopt)
        : m_pFd(std::move(pFd)), m_pinned(pinned) {}

    std::uint64_t Size() const override {
        return static_cast<std::uint64_t>(Posix::Status(m_pFd->Get(), "stream").st_size);
    }
    void Seek(std::uint64_t nPosition) override { m_nPosition = nPosition; }

    AsyncOperation<BufferPtr> ReadAsync(std::uint32_t nCount) override {
        return RunOnIoThread(
            [pSelf = shared_from_this(), nCount]() -> BufferPtr { return pSelf->Read(nCount); });
    }

private:
    BufferPtr Read(std::uint64_t nCount) {
        const auto nSize = static_cast<std::uint64_t>(
            std::max<off_t>(Posix::Status(m_pFd->Get(), "read").st_size, 0));
        const std::uint64_t nHere = nSize - std::min(nSize, m_nPosition);
        const auto pBuffer = std::make_shared<FillBuffer>(std::min(nCount, nHere));
        const std::size_t nRead = Posix::ReadAt(m_pFd->Get(), m_nPosition, pBuffer->Storage());
        // Looked at after the read, so that no write before its end is missed.
        if (m_pinned && !m_pinned->IsThatOf(Posix::Status(m_pFd->Get(), "read"))) {
            throw Platform::FileChangedException();
        }
        pBuffer->SetFilled(nRead);
        m_nPosition += nRead;
        return pBuffer;
    }

    const SharedDescriptor m_pFd;
    const std::optional<FileState> m_pinned;
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
    PinnedFile(std::string strPath, SharedDescriptor pFd, FileState state)
        : FileBase(std::move(strPath)), m_pFd(std::move(pFd)), m_state(state) {}
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
            return std::make_shared<FileStream>(pFd, pSelf->m_state);
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
                        : std::make_shared<PinnedFile>(Path(), m_pFd, *m_state);
    }
    SharedDescriptor Descriptor() const {
        if (m_pError) {
            std::rethrow_exception(m_pError);
        }
        return m_pFd;
    }

    const SharedDescriptor m_pFd;
    const std::optional<FileState> m_state; // of the moment of the pinning
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
            const SharedDescriptor pFd = OpenShared(Path(), O_RDONLY);
            return std::make_shared<PinnedFile>(Path(), pFd,
                                                FileState(Posix::Status(pFd->Get(), Path())));
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
