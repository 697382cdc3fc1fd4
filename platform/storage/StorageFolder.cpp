#include "platform/storage/StorageFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/FileLock_p.h"
#include "platform/storage/IoThreads_p.h"
#include "platform/storage/PosixCalls_p.h"

namespace Windows::Storage {

namespace {

using FilePtr = std::shared_ptr<StorageFile>;

void CheckName(const std::string& strName) {
    if (strName.empty() || strName == "." || strName == ".." ||
        strName.find('/') != std::string::npos || strName.find('\0') != std::string::npos) {
        throw Platform::InvalidArgumentException("not a file name: " + strName);
    }
}

// Makes an empty file; false when the name is taken.
bool MakeNew(const std::string& strPath) {
    constexpr mode_t kCommon = 0666; // less what the process's mask takes away
    const Posix::FileDescriptor fd(Posix::Call("create", [&] {
        return ::open(strPath.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kCommon);
    }));
    if (fd.Get() < 0 && errno != EEXIST) {
        Posix::RaiseError(errno, Posix::Direction::Write, strPath);
    }
    return fd.Get() >= 0;
}

// Puts a new file in the place of the old one, which streams that are open on
// it go on reading.
void MakeAnew(const std::string& strPath) {
    while (!MakeNew(strPath)) {
        if (::unlink(strPath.c_str()) != 0 && errno != ENOENT) {
            Posix::RaiseError(errno, Posix::Direction::Write, strPath);
        }
    }
}

FilePtr OpenExisting(const std::string& strPath) {
    Posix::OpenRegular(strPath, O_RDONLY);
    return StorageFile::FromPath(strPath);
}

FilePtr Create(const std::string& strFolder, const std::string& strName,
               CreationCollisionOption eOption) {
    CheckName(strName);
    std::string strPath = strFolder + "/" + strName;
    switch (eOption) {
        case CreationCollisionOption::ReplaceExisting:
            MakeAnew(strPath);
            break;
        case CreationCollisionOption::OpenIfExists:
            return MakeNew(strPath) ? StorageFile::FromPath(strPath) : OpenExisting(strPath);
        case CreationCollisionOption::FailIfExists:
            if (!MakeNew(strPath)) {
                throw Platform::Exception(Platform::ERROR_ALREADY_EXISTS, strPath + " exists");
            }
            break;
        case CreationCollisionOption::GenerateUniqueName:
            for (int nCopy = 2; !MakeNew(strPath); ++nCopy) {
                strPath = strFolder + "/" + StorageFolder::NumberedName(strName, nCopy);
            }
            break;
    }
    return StorageFile::FromPath(strPath);
}

class PathFolder final : public StorageFolder {
public:
    explicit PathFolder(std::string strPath) : m_strPath(std::move(strPath)) {}

    std::string Path() const override { return m_strPath; }

    FileOperation TryGetItemAsync(const std::string& strName) override {
        return RunOnIoThread([strFolder = m_strPath, strName]() -> FilePtr {
            CheckName(strName);
            const std::string strPath = strFolder + "/" + strName;
            struct stat status {};
            if (::lstat(strPath.c_str(), &status) != 0 && errno == ENOENT) {
                return nullptr;
            }
            return OpenExisting(strPath);
        });
    }

    FileOperation GetFileAsync(const std::string& strName) override {
        return RunOnIoThread([strFolder = m_strPath, strName]() -> FilePtr {
            CheckName(strName);
            return OpenExisting(strFolder + "/" + strName);
        });
    }

    FileOperation CreateFileAsync(const std::string& strName,
                                  CreationCollisionOption eOption) override {
        return RunOnIoThread([strFolder = m_strPath, strName, eOption]() -> FilePtr {
            return Create(strFolder, strName, eOption);
        });
    }

    Foundation::AsyncOperation<std::shared_ptr<FileLock>> LockAsync(
        const std::string& strName, std::chrono::milliseconds longest) override {
        return RunOnIoThread([strFolder = m_strPath, strName, longest] {
            CheckName(strName);
            return TakeFileLock(strFolder + "/." + strName + ".lock", longest);
        });
    }

private:
    const std::string m_strPath;
};

}

std::shared_ptr<StorageFolder> StorageFolder::FromPath(const std::string& strPath) {
    return std::make_shared<PathFolder>(Posix::MakeAbsolute(strPath));
}

std::string StorageFolder::NumberedName(const std::string& strName, int nCopy) {
    const std::size_t nDot = strName.rfind('.');
    const std::size_t nAt = nDot == std::string::npos || nDot == 0 ? strName.size() : nDot;
    return strName.substr(0, nAt) + " (" + std::to_string(nCopy) + ")" + strName.substr(nAt);
}

}
