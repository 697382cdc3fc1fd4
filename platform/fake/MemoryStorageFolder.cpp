#include "platform/fake/MemoryStorageFolder.h"

#include <utility>

#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using concurrency::task_completion_event;
using Windows::Storage::CreationCollisionOption;
using Windows::Storage::StorageFile;
using FileOperation = Windows::Storage::StorageFolder::FileOperation;

namespace {

template <class E>
FileOperation Failed(const E& error) {
    const task_completion_event<std::shared_ptr<StorageFile>> completion;
    completion.set_exception(std::make_exception_ptr(error));
    return FileOperation(completion.get_task());
}

FileOperation Ended(std::shared_ptr<StorageFile> pFile) {
    return FileOperation(
        concurrency::task_from_result<std::shared_ptr<StorageFile>>(std::move(pFile)));
}

FileOperation Failed(FileFailure eFailure) {
    switch (eFailure) {
        case FileFailure::Canceled: {
            const task_completion_event<std::shared_ptr<StorageFile>> completion;
            completion.set_canceled();
            return FileOperation(completion.get_task());
        }
        case FileFailure::DiskFull:
            return Failed(DiskFullException());
        case FileFailure::AccessDenied:
            return Failed(AccessDeniedException());
        default:
            return Failed(WriteFaultException());
    }
}

}

MemoryStorageFolder::MemoryStorageFolder(std::string strPath) : m_strPath(std::move(strPath)) {}

std::shared_ptr<MemoryStorageFile> MemoryStorageFolder::FindLocked(
    const std::string& strName) const {
    const auto it = m_files.find(strName);
    return it == m_files.end() || it->second->IsDeleted() ? nullptr : it->second;
}

FileOperation MemoryStorageFolder::TryGetItemAsync(const std::string& strName) {
    return Ended(File(strName));
}

FileOperation MemoryStorageFolder::GetFileAsync(const std::string& strName) {
    auto pFile = File(strName);
    return pFile ? Ended(std::move(pFile)) : Failed(FileNotFoundException());
}

FileOperation MemoryStorageFolder::CreateFileAsync(const std::string& strName,
                                                   CreationCollisionOption eOption) {
    const std::lock_guard<std::mutex> lock(m_lock);
    if (m_eCreate != FileFailure::None) {
        return Failed(m_eCreate);
    }
    std::string strFree = strName;
    if (const auto pThere = FindLocked(strName)) {
        switch (eOption) {
            case CreationCollisionOption::OpenIfExists:
                return Ended(pThere);
            case CreationCollisionOption::FailIfExists:
                return Failed(Exception(ERROR_ALREADY_EXISTS, "the file exists"));
            case CreationCollisionOption::ReplaceExisting:
                pThere->SetBytes({});
                return Ended(pThere);
            case CreationCollisionOption::GenerateUniqueName:
                for (int n = 2; FindLocked(strFree); ++n) {
                    strFree = NumberedName(strName, n);
                }
                break;
        }
    }
    auto pFile = MemoryStorageFile::Create(m_strPath + "/" + strFree, {});
    m_files[strFree] = pFile;
    return Ended(std::move(pFile));
}

void MemoryStorageFolder::FailCreate(FileFailure eFailure) {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_eCreate = eFailure;
}

std::shared_ptr<MemoryStorageFile> MemoryStorageFolder::File(const std::string& strName) const {
    const std::lock_guard<std::mutex> lock(m_lock);
    return FindLocked(strName);
}

void MemoryStorageFolder::Put(const std::shared_ptr<MemoryStorageFile>& pFile) {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_files[pFile->Name()] = pFile;
}

}
